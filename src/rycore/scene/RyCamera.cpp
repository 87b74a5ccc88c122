#include "rycore/scene/RyCamera.h"

#include <algorithm>

RyCamera::RyCamera() : RyNode(Rigging::None) {}

void RyCamera::lookAt(const RyVec3 &eye, const RyVec3 &target, const RyVec3 &up)
{
    const RyVec3 back = (eye - target).normalized();
    RyVec3 right = up.cross(back).normalized();
    if (right == RyVec3())
        right = RyVec3(1, 0, 0);
    const RyVec3 realUp = back.cross(right);
    RyAffine map;
    for (int i = 0; i < 3; ++i) {
        map.m[0][i] = right[i];
        map.m[1][i] = realUp[i];
        map.m[2][i] = back[i];
        map.m[3][i] = eye[i];
    }
    RyAffine stretch;
    RyQuat rotation;
    map.decomposePolar(stretch, rotation);
    adjustLocalTransform(eye, rotation, RyMatrix3(), 1.0f);
    setFocalDistance((eye - target).length());
}

RyNode *RyCamera::makeSameKind() const
{
    auto *camera = new RyCamera;
    camera->m_fieldOfView = m_fieldOfView;
    camera->m_orthographicHeight = m_orthographicHeight;
    camera->m_focalDistance = m_focalDistance;
    camera->m_orthographic = m_orthographic;
    return camera;
}

RyVec3 RyCamera::viewDirection() const
{
    return getWSRot().multVec(RyVec3(0, 0, -1));
}

void RyCamera::setFieldOfView(float radians)
{
    m_fieldOfView = std::clamp(radians, 0.02f, 2.8f);
    emit lensChanged();
}

void RyCamera::setOrthographic(bool onOff)
{
    m_orthographic = onOff;
    emit lensChanged();
}

void RyCamera::setOrthographicHeight(float height)
{
    m_orthographicHeight = std::max(height, 0.001f);
    emit lensChanged();
}

void RyCamera::setFocalDistance(float distance)
{
    m_focalDistance = std::max(distance, 0.001f);
}
