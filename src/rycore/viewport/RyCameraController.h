#pragma once

#include "rycore/math/RyBox3.h"

#include <QPointF>
#include <QSizeF>

class RyCamera;

/// Moves a camera about the point it looks at, as a turntable: Y stays up in the picture. Pixels are logical, y down.
class RyCameraController
{
public:
    explicit RyCameraController(RyCamera *camera) : m_camera(camera) {}

    RyVec3 target() const;
    /// Turns so that the scene follows the mouse.
    void orbit(const QPointF &pixels);
    void pan(const QPointF &pixels, const QSizeF &view);
    /// Brings everything nearer by `factor` (below 1) or farther away; what is under the pixel stays there.
    void zoom(double factor, const QPointF &pixel, const QSizeF &view);
    /// Moves until the box fills the view, keeping the direction. An empty box does nothing.
    void frame(const RyBox3 &box, const QSizeF &view);
    /// Yaw 0 looks at the front (from +Z), 90 degrees from +X; elevation 90 looks down.
    void setDirection(double yawDegrees, double elevationDegrees);
    /// Switches the projection, the size of what is at the target stays.
    void setOrthographic(bool onOff);

private:
    void angles(double &yaw, double &elevation) const;
    void place(const RyVec3 &target, double yaw, double elevation, double distance);

    RyCamera *m_camera;
};
