#pragma once

#include "rycore/math/RyLine3.h"
#include "rycore/math/RyVec3.h"

#include <QPoint>

/// Help for drawing with the GL context that is current; sizes and rays come from its matrices and viewport.
class RyGLUtility
{
public:
    /// The ray of the world (of the current modelview matrix' space) through a point in window pixels of the viewport
    /// widget (logical, y down).
    static RyLine3 pixelToRay(const QPoint &point);
    /// A ring about axis 0, 1 or 2 at `offset` along it. The flag makes it filled.
    static void drawCircle(int segments, float radius, int axis, bool filled, float offset);
    /// A sphere about the origin: wireframe or solid. The flag turns its normals inside. Density 1 is legal.
    static void drawSphere(int density, float radius, bool inside, bool solid);
    /// World length that covers so many pixels (logical) at a place given in the current modelview matrix' space.
    static float displayToPerspectiveSize(float pixels, const RyVec3 &position);

    /// Device pixels per logical pixel that the two conversions above use for the current context.
    static void setDevicePixelRatio(float ratio);
    static float devicePixelRatio();
};
