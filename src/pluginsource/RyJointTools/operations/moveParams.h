#pragma once

#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

#include <QPointer>

#include <vector>

class RyFloatProperty;
class RyLegacyBinding;
class RyLegacyJointParam;
class RyLegacyJointSphere;
class RyNode;

// How parameters of joints go along with bones. All write current values only, within whatever undo hold is open; null
// parameters and axes other than 0 to 2 do nothing. A value along an axis counts from the origin of figure space, as
// parameter space does, so that it moves by as much as its bone does.

inline bool isAxis(int axis)
{
    return axis >= 0 && axis <= 2;
}

/// The parameters that tell of the joint at a node: those of the node's joint, and the copies of what it drives on its
/// parent's joint. What a child drives tells of the joint at the child.
std::vector<RyLegacyJointParam *> paramsAround(const RyNode *node);
/// The ends of zones, which are values along the parameter's axis.
std::vector<RyFloatProperty *> zoneEnds(const RyLegacyJointParam &param);

/// Both spheres and the ends of zones move by `way`.
void translateParam(RyLegacyJointParam *param, const RyVec3 &way);
/// Both spheres turn about their own centres, after their own turns.
void rotateParam(RyLegacyJointParam *param, const RyQuat &turn);
/// The centres of both spheres and the ends of zones are scaled from a point along one axis.
void scaleParam(RyLegacyJointParam *param, const RyVec3 &center, int axis, float factor);
/// The spheres and zones of a parameter of the node move along one axis, and so do those of the parameters of its bone
/// children that match in kind, axis and driver, the bone itself or its parent, and so on downward.
void propagateParamTranslation(const RyNode *node, RyLegacyJointParam *param, float way, int axis);
void propagateSphereTranslation(RyLegacyJointSphere *sphere, float way, int axis);

/// Makes what changes in joints around a node and below it one announcement of their binding, while it lives.
class RyBindingEdit
{
public:
    explicit RyBindingEdit(const RyNode *node);
    ~RyBindingEdit();
    RyBindingEdit(const RyBindingEdit &) = delete;
    RyBindingEdit &operator=(const RyBindingEdit &) = delete;

private:
    QPointer<RyLegacyBinding> m_binding;
};
