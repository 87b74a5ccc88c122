#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

class RyMatrix4;
class RyNode;

/// Draws the handles of a node's origin and end point in their frames: axis arrows with cones, a crosshair and a ball
/// at each. Nothing for a node without rigging.
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
    Sizes measure(const RyMatrix4 &toWorld) const;
    void drawPoint(RyHandle::Target target, const RyMatrix4 &toWorld) const;
    void drawArrow(int axis, float coneSize) const;
    void drawCrosshair() const;

    const RyDrawContext &m_context;
};
