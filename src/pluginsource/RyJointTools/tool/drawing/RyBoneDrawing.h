#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyBoneFrames.h"

/// Draws bones as octahedra with an outline and a ring. With ghosts each bone is drawn at its default place too, and
/// dashed lines join bones to the tips of their parents. State is set once for all of them.
class RyBoneDrawing
{
public:
    explicit RyBoneDrawing(const RyDrawContext &context);

    void draw(const RyBoneFrames &frames) const;

private:
    struct Color
    {
        float red, green, blue;
    };
    static Color colorOf(const QColor &color);
    static void setColor(const Color &color, float alpha);

    bool isSeen(const RyBoneFrame &frame) const;
    void drawCodes(const RyBoneFrames &frames) const;
    void drawShapes(const RyBoneFrames &frames) const;
    void drawShape(const RyBoneFrame &frame, const Color &bodyColor, float outlineAlpha) const;
    /// The triangles of its octahedron, within glBegin and glEnd.
    static void putBody(const RyBoneFrame &frame);
    void drawOutline(const RyBoneFrame &frame, float alpha) const;
    void drawRing(const RyBoneFrame &frame, float alpha) const;
    void drawLinks(const RyBoneFrames &frames) const;

    const RyDrawContext &m_context;
    Color m_axisColors[3]; // of outlines and rings
};
