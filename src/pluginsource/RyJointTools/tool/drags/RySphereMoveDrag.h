#pragma once

#include "pluginsource/RyJointTools/tool/drags/RySphereDrag.h"

/// Moves a sphere along an axis of parameter space, by the way in the world: exact where nothing is scaled.
class RySphereMoveDrag : public RySphereDrag
{
public:
    RySphereMoveDrag(const RyDragContext &context, Sphere sphere, int axis);

    RyVec3 dragVector(const RyLine3 &ray) const override;

protected:
    void change(const Options &options) override;

private:
    int m_axis;
    RyHandleFrame m_frame;
    float m_startValue;
};
