#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

class RyLegacyBendParam;
struct RyParamSpace;

/// Draws the four rays of a bend about its axis: lines of 100 cm from the driver's origin, with flags near their tips.
/// The flags of dynamic rays point to the side that moves, those of static rays to the side that rests. To be drawn
/// with depth testing off.
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
