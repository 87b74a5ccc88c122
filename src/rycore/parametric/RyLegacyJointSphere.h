#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/math/RyMatrix4.h"

#include <array>

class RyFloatProperty;
class RyLegacyJointParam;

/// One of the two spheres of a joint parameter: the image of the unit sphere about (0,0,0) under a matrix of ten
/// controls, in parameter space and centimetres. The matrix scales first (general times axis scale), then turns by the
/// rotation controls (degrees, fixed order XYZ), then moves.
class RyLegacyJointSphere : public RyElement
{
    Q_OBJECT
public:
    /// `name` goes before the names of the controls. `radius`: default and current general scale.
    RyLegacyJointSphere(RyLegacyJointParam *param, const QString &name, float radius);

    RyLegacyJointParam *getParam() const { return m_param; }
    RyFloatProperty *getXTransControl() const { return m_controls[0]; }
    RyFloatProperty *getYTransControl() const { return m_controls[1]; }
    RyFloatProperty *getZTransControl() const { return m_controls[2]; }
    RyFloatProperty *getXRotControl() const { return m_controls[3]; }
    RyFloatProperty *getYRotControl() const { return m_controls[4]; }
    RyFloatProperty *getZRotControl() const { return m_controls[5]; }
    /// The general scale.
    RyFloatProperty *getScaleControl() const { return m_controls[6]; }
    RyFloatProperty *getXScaleControl() const { return m_controls[7]; }
    RyFloatProperty *getYScaleControl() const { return m_controls[8]; }
    RyFloatProperty *getZScaleControl() const { return m_controls[9]; }
    /// In the order of the getters above.
    const std::array<RyFloatProperty *, 10> &controls() const { return m_controls; }

    RyMatrix4 getMatrix() const;
    /// Makes the resulting values those of the matrix, which is split into scale, rotation and translation; the general
    /// scale stays unless it is 0, which becomes 1. `asDefault`: the defaults too.
    void setMatrix(const RyMatrix4 &matrix, bool asDefault);

    void propertyChanged(RyFloatProperty *property) override;

private:
    RyLegacyJointParam *m_param;
    std::array<RyFloatProperty *, 10> m_controls{};
};
