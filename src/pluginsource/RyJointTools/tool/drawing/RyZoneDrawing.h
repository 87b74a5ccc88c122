#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

#include "rycore/math/RyMatrix4.h"

class RyLegacySmoothScale;
class RyLegacyTwistParam;
struct RyParamSpace;

/// Draws the zones of a joint parameter: crosses where they start and end on the parameter's axis and a line between
/// them. Rings stand about the ends of a twist zone, squares on their corners about those of smooth zones. The figure
/// hides nothing of them.
class RyZoneDrawing
{
public:
    /// `radius`: of rings, crosses and squares, in parameter space.
    RyZoneDrawing(const RyDrawContext &context, const RyParamSpace &space, float radius);

    void draw(const RyLegacyTwistParam &param) const;
    void draw(const RyLegacySmoothScale &param) const;

private:
    /// The plane across the axis at one end of a zone.
    struct End
    {
        const RyHandle &handle;
        int axis;
        RyVec3 center; // from the driver's origin, in bone axes
    };
    /// The ends are coordinates in parameter space.
    void drawZone(RyHandle::Target target, int axis, float start, float end) const;
    bool isSeen(const End &end) const;
    void drawCross(const End &end) const;
    void drawWay(const End &from, const End &to) const;
    void drawRing(const End &end) const;
    void drawDiamond(const End &end) const;
    /// To the tips of a cross, in order around the axis.
    RyVec3 arm(const End &end, int index) const;

    const RyDrawContext &m_context;
    RyVec3 m_origin;
    RyMatrix4 m_toWorld;
    float m_radius;
};
