#include "rycore/viewport/RyCameraController.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/undo/RyUndoStackSilence.h"
#include "rycore/viewport/RyViewMatrices.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double DegreesPerPixel = 0.35;
constexpr double NearestDistance = 0.5;
constexpr double FarthestDistance = 100000.0;
constexpr double FrameMargin = 1.08;

} // namespace

RyVec3 RyCameraController::target() const
{
    return m_camera->getWSPos() + m_camera->viewDirection() * m_camera->focalDistance();
}

void RyCameraController::angles(double &yaw, double &elevation) const
{
    const RyQuat rotation = m_camera->getWSRot();
    const RyVec3 right = rotation.multVec(RyVec3(1, 0, 0));
    const RyVec3 back = rotation.multVec(RyVec3(0, 0, 1));
    yaw = std::atan2(-double(right.z), double(right.x));
    elevation = std::asin(std::clamp(double(back.y), -1.0, 1.0));
}

void RyCameraController::place(const RyVec3 &target, double yaw, double elevation, double distance)
{
    const RyVec3 back(float(std::sin(yaw) * std::cos(elevation)), float(std::sin(elevation)),
                      float(std::cos(yaw) * std::cos(elevation)));
    const RyVec3 up(float(-std::sin(yaw) * std::sin(elevation)), float(std::cos(elevation)),
                    float(-std::cos(yaw) * std::sin(elevation)));
    const double reach = std::clamp(distance, NearestDistance, FarthestDistance);
    // Looking around is no edit, not even in the middle of a drag.
    const RyUndoStackSilence silence;
    m_camera->lookAt(target + back * float(reach), target, up);
}

void RyCameraController::orbit(const QPointF &pixels)
{
    double yaw = 0;
    double elevation = 0;
    angles(yaw, elevation);
    const double step = DegreesPerPixel * RyFastMath::RadiansPerDegree;
    const double pole = 0.5 * RyFastMath::Pi;
    place(target(), yaw - pixels.x() * step, std::clamp(elevation + pixels.y() * step, -pole, pole),
          m_camera->focalDistance());
}

void RyCameraController::pan(const QPointF &pixels, const QSizeF &view)
{
    const RyViewMatrices matrices(*m_camera, view.width(), view.height());
    const RyVec3 center = target();
    const float size = matrices.pixelSize(center);
    const RyQuat rotation = m_camera->getWSRot();
    const RyVec3 shift = rotation.multVec(RyVec3(float(-pixels.x()) * size, float(pixels.y()) * size, 0));
    double yaw = 0;
    double elevation = 0;
    angles(yaw, elevation);
    place(center + shift, yaw, elevation, m_camera->focalDistance());
}

void RyCameraController::zoom(double factor, const QPointF &pixel, const QSizeF &view)
{
    const RyVec3 center = target();
    const double distance = m_camera->focalDistance();
    const bool flat = m_camera->isOrthographic();
    const double wanted = std::clamp(distance * factor, NearestDistance, FarthestDistance);
    const double real = flat ? std::clamp(factor, 0.01, 100.0) : wanted / distance;
    const RyLine3 ray = RyViewMatrices(*m_camera, view.width(), view.height()).ray(pixel);
    RyVec3 anchor;
    if (!ray.planeIntersect(center, m_camera->viewDirection(), anchor))
        anchor = center;
    double yaw = 0;
    double elevation = 0;
    angles(yaw, elevation);
    if (flat)
        m_camera->setOrthographicHeight(float(m_camera->orthographicHeight() * real));
    place(anchor + (center - anchor) * float(real), yaw, elevation, flat ? distance : wanted);
}

void RyCameraController::frame(const RyBox3 &box, const QSizeF &view)
{
    if (box.isEmpty())
        return;
    const RyQuat toCamera = m_camera->getWSRot().inverse();
    const RyVec3 center = box.getCenter();
    const RyVec3 half = box.getExtents() * 0.5f;
    const double aspect = std::max(view.width(), 1.0) / std::max(view.height(), 1.0);
    const double tanHeight = std::tan(0.5 * m_camera->fieldOfView());
    double distance = 0.0;
    double height = 0.0;
    for (int corner = 0; corner < 8; ++corner) {
        const RyVec3 p = toCamera.multVec(
            RyVec3(corner & 1 ? half.x : -half.x, corner & 2 ? half.y : -half.y, corner & 4 ? half.z : -half.z));
        const double spread = std::max(std::abs(double(p.y)), std::abs(double(p.x)) / aspect) * FrameMargin;
        distance = std::max(distance, p.z + spread / tanHeight);
        height = std::max(height, 2.0 * spread);
    }
    double yaw = 0;
    double elevation = 0;
    angles(yaw, elevation);
    if (m_camera->isOrthographic())
        m_camera->setOrthographicHeight(float(std::max(height, 1.0)));
    place(center, yaw, elevation, std::max(distance, 1.0));
}

void RyCameraController::setDirection(double yawDegrees, double elevationDegrees)
{
    place(target(), yawDegrees * RyFastMath::RadiansPerDegree, elevationDegrees * RyFastMath::RadiansPerDegree,
          m_camera->focalDistance());
}

void RyCameraController::setOrthographic(bool onOff)
{
    if (onOff == m_camera->isOrthographic())
        return;
    const double tanHeight = std::tan(0.5 * m_camera->fieldOfView());
    if (onOff) {
        m_camera->setOrthographicHeight(float(2.0 * tanHeight * m_camera->focalDistance()));
    } else {
        double yaw = 0;
        double elevation = 0;
        angles(yaw, elevation);
        place(target(), yaw, elevation, 0.5 * m_camera->orthographicHeight() / tanHeight);
    }
    m_camera->setOrthographic(onOff);
}
