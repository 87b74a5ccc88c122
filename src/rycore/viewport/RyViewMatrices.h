#pragma once

#include "rycore/math/RyLine3.h"
#include "rycore/math/RyMatrix4.h"

#include <QPointF>

class RyCamera;

/// Where a camera puts the world in a picture of a given size. The size is in pixels, y down; which pixels (logical or
/// device) is the caller's choice.
class RyViewMatrices
{
public:
    RyViewMatrices() = default;
    RyViewMatrices(const RyCamera &camera, double width, double height);

    const RyMatrix4 &view() const { return m_view; }
    const RyMatrix4 &projection() const { return m_projection; }
    double width() const { return m_width; }
    double height() const { return m_height; }

    bool isOrthographic() const { return m_projection[2][3] == 0.0f; }
    /// False when the point is behind the eye.
    bool project(const RyVec3 &world, QPointF &pixel) const;
    RyLine3 ray(const QPointF &pixel) const;
    /// World length of one pixel at a place.
    float pixelSize(const RyVec3 &world) const;

    /// Loads projection and modelview matrix into the current context; the modelview matrix stays the current one.
    void load() const;

    /// The ray through normalised device coordinates (-1 to 1, y up) for any pair of matrices.
    static RyLine3 unproject(const float modelview[16], const float projection[16], double x, double y);

    bool operator==(const RyViewMatrices &o) const;

private:
    RyMatrix4 m_view;
    RyMatrix4 m_projection;
    double m_width = 1;
    double m_height = 1;
};
