#pragma once

#include "rycore/scene/RyNode.h"

/// Looks along its local -Z, Y up. Its place and rotation are its pose controls (`getWSPos`, `getWSRot`).
class RyCamera : public RyNode
{
    Q_OBJECT
public:
    RyCamera();

    /// Places the camera at `eye`, looking at `target`.
    void lookAt(const RyVec3 &eye, const RyVec3 &target, const RyVec3 &up = RyVec3(0, 1, 0));
    RyVec3 viewDirection() const;

    /// Vertical opening angle in radians (perspective), or the visible height in centimetres (orthographic).
    float fieldOfView() const { return m_fieldOfView; }
    void setFieldOfView(float radians);
    bool isOrthographic() const { return m_orthographic; }
    void setOrthographic(bool onOff);
    float orthographicHeight() const { return m_orthographicHeight; }
    void setOrthographicHeight(float height);
    /// Distance from the eye to the point it turns about.
    float focalDistance() const { return m_focalDistance; }
    void setFocalDistance(float distance);

protected:
    RyNode *makeSameKind() const override;

signals:
    void lensChanged();

private:
    float m_fieldOfView = 0.6f;
    float m_orthographicHeight = 200.0f;
    float m_focalDistance = 400.0f;
    bool m_orthographic = false;
};
