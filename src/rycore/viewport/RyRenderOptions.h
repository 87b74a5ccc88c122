#pragma once

#include <QColor>

/// How the scene is shown under the tools.
struct RyRenderOptions
{
    QColor backgroundTop{78, 82, 88};
    QColor backgroundBottom{42, 44, 48};
    QColor grid{150, 156, 165};
    QColor clay{196, 184, 172};
    QColor wire{20, 22, 26};
    QColor accent{255, 153, 51};
    bool showGrid = true;
    /// The three axes in the corner.
    bool showAxes = true;
    bool wireframe = false;
    /// Figures let what is inside them show a little.
    bool seeThrough = false;
    /// How much of a see-through figure remains.
    float seeThroughAlpha = 0.74f;

    /// Device pixels for each logical one.
    float pixelRatio = 1.0f;

    bool operator==(const RyRenderOptions &) const = default;
};
