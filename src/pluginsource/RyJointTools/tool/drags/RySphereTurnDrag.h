#pragma once

#include "pluginsource/RyJointTools/tool/drags/RySphereDrag.h"

#include "rycore/math/RyAffine.h"

/// Turns a sphere about one of its own axes, around its centre: what was pressed goes to the direction of the mouse.
/// Nothing while rotation axes are restricted.
class RySphereTurnDrag : public RySphereDrag
{
public:
    RySphereTurnDrag(const RyDragContext &context, Sphere sphere, int axis);

    RyVec3 dragVector(const RyLine3 &ray) const override;

protected:
    void change(const Options &options) override;

private:
    /// Of a way in the world about the ring's axis, in radians, right-handed in parameter space.
    float signedAngle(const RyVec3 &way) const;

    int m_axis;
    RyHandleFrame m_frame;
    RyAffine m_toParamSpace;
    RyVec3 m_ringAxis; // in parameter space, as the references
    RyVec3 m_references[2];
};
