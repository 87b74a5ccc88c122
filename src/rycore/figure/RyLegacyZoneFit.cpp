#include "rycore/figure/RyLegacyZoneFit.h"

#include "rycore/figure/RyLegacyBendRays.h"
#include "rycore/figure/RyLegacyBoneShape.h"
#include "rycore/figure/RyLegacySpheres.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/scene/RyBone.h"

namespace {

constexpr double StaticSpread = 135.0;
constexpr double DynamicSpread = 45.0;

/// Fits parameters to one bone. Those of its driver's space: the bone's own but for the smooth-scale of its parent.
class Fit
{
public:
    Fit(const RyBone &bone, const RyObject *object) : m_bone(bone), m_object(object), m_shape(bone, object) {}

    void apply(RyLegacyJointParam &param) const
    {
        param.beginEdit();
        RyLegacySpheres::place(param, m_shape.toFigureSpace(m_shape.sphereCenter), m_shape.sphereSize);
        if (auto *bend = dynamic_cast<RyLegacyBendParam *>(&param))
            setAngles(*bend);
        if (auto *twist = dynamic_cast<RyLegacyTwistParam *>(&param))
            setTwist(*twist);
        if (auto *scale = dynamic_cast<RyLegacySmoothScale *>(&param))
            setZones(*scale);
        param.finishEdit();
    }

private:
    void setAngles(RyLegacyBendParam &bend) const
    {
        RyVec3 across = m_shape.way;
        across[bend.getAxis()] = 0.0f;
        // A bend about the bone's own direction has no ray along it.
        if (across.length() > 1e-4f * m_shape.way.length())
            RyLegacyBendRays::around(bend.getAxis(), across, StaticSpread, DynamicSpread).writeTo(bend, false);
    }

    void setTwist(RyLegacyTwistParam &twist) const
    {
        const float start = m_shape.origin[twist.getAxis()];
        twist.setStart(start);
        twist.setEnd(start + m_shape.way[twist.getAxis()]);
    }

    /// The scale of the parent ends where that of the bone begins.
    void setZones(RyLegacySmoothScale &scale) const
    {
        const int axis = scale.getAxis();
        const bool isParents = scale.getDriver() != &m_bone;
        const RyLegacyBoneShape driver(*scale.getDriver(), m_object);
        const float joint = driver.toParameterSpace(m_shape.origin)[axis];
        const float end = driver.toParameterSpace(m_shape.toFigureSpace(m_shape.origin + m_shape.way))[axis];
        const bool fallsForward = (end >= joint) == isParents;
        const float before = joint - m_shape.radius;
        const float behind = joint + m_shape.radius;
        scale.setHiValid(fallsForward);
        scale.setLoValid(!fallsForward);
        if (fallsForward) {
            scale.setHiStart(before);
            scale.setHiEnd(behind);
        } else {
            scale.setLoStart(behind);
            scale.setLoEnd(before);
        }
    }

    const RyBone &m_bone;
    const RyObject *m_object;
    RyLegacyBoneShape m_shape;
};

} // namespace

bool RyLegacyZoneFit::fit(RyBone *bone)
{
    RyLegacyJoint *joint = RyLegacyJoint::findJoint(bone);
    if (!joint)
        return false;
    RyLegacyBinding *binding = joint->getBinding();
    const auto *parent = qobject_cast<const RyBone *>(bone->getNodeParent());
    const Fit fit(*bone, binding->getObject());
    binding->beginEdit();
    for (RyLegacyJointParam *param : joint->jointParamsIterator()) {
        const bool isJointScale = param->type() == RyLegacyJointParam::SmoothScale && param->getDriver() == parent;
        if (param->getDriver() && (param->getDriver() == bone || isJointScale))
            fit.apply(*param);
    }
    if (const RyLegacyJoint *parentJoint = binding->findJoint(parent)) {
        for (RyLegacyJointParam *param : parentJoint->jointParamsIterator()) {
            if (param->getDriver() == bone)
                fit.apply(*param);
        }
    }
    binding->finishEdit();
    return true;
}
