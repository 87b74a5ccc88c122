#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

#include "rycore/math/RyMatrix4.h"

/// Draws the handles of a node's origin and end point: axis arrows with cones, a crosshair and a ball at each. The
/// origin's axes are the parent's, the end point's the node's own; the ball of the end point is the posed end point.
/// Nothing for a node without rigging.
class RyManipulatorDrawing
{
public:
    explicit RyManipulatorDrawing(const RyDrawContext &context) : m_context(context) {}

    void draw(const RyNode &node) const;

private:
    /// What keeps its size on screen, measured where the handles stand.
    struct Sizes
    {
        float ballRadius;
        float cones[3];
    };
    Sizes measure(const RyMatrix4 &frame) const;
    void drawPoint(RyHandle::Target target, const Sizes &sizes) const;
    void drawArrow(int axis, float coneSize) const;
    void drawCrosshair() const;

    const RyDrawContext &m_context;
};
