#pragma once

#include "pluginsource/RyJointTools/tool/drags/RySphereDrag.h"

#include <array>

/// Scales a sphere about its centre, along one of its axes or all of them. Along an axis what was pressed stays under
/// the mouse: the factor is how many times farther the mouse is from the centre. All of them are scaled from the
/// centre, where that would say nothing: there the factor grows by one for each radius of way along the diagonal. It
/// stays above zero.
class RySphereScaleDrag : public RySphereDrag
{
public:
    /// `axis` is -1 for all of them.
    RySphereScaleDrag(const RyDragContext &context, Sphere sphere, int axis);

    RyVec3 dragVector(const RyLine3 &ray) const override;
    /// Of the size at the press.
    float factor() const;

protected:
    void change(const Options &options) override;

private:
    int m_axis;
    RyHandleFrame m_frame;
    RyVec3 m_direction;                 // of the line that the mouse follows, in the world
    float m_radius;                     // the mean one at the press, in the world
    std::array<float, 3> m_startValues; // of the scale controls
};
