#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

class RyLegacyBendParam;
struct RyParamSpace;

/// Draws the four rays of a bend about its axis: lines of 100 cm from the driver's origin, each with a flag at its tip
/// that points to where the next dynamic ray lies. To be drawn with depth testing off.
class RyAngleDrawing
{
public:
    RyAngleDrawing(const RyDrawContext &context, const RyParamSpace &space, int axis);

    void draw(const RyLegacyBendParam &param) const;

private:
    /// `angle` and `flagAngle`: radians.
    void drawRay(const RyHandle &handle, float angle, float flagAngle) const;
    RyVec3 placeAt(float angle, float radius) const;

    const RyDrawContext &m_context;
    RyVec3 m_center;
    RyHandleFrame::AngleReferences m_references;
};
