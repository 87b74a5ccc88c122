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
    bool isSeen(const RyMatrix4 &toWorld) const;
    void drawPoint(RyHandle::Target target, const RyMatrix4 &toWorld) const;
    void drawArrow(const RyMatrix4 &toWorld, const RyHandle &handle) const;
    void drawCrosshair(const RyMatrix4 &toWorld, const RyHandle &handle) const;
    void drawBall(const RyMatrix4 &toWorld, const RyHandle &handle) const;

    const RyDrawContext &m_context;
};
