#pragma once

#include "rycore/math/RyMatrix3.h"
#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

/// Sixteen floats, row-major, for row vectors: the translation stands in elements 12, 13, 14 and
/// `glMultMatrixf(M.data())` draws `v M` without a transpose. `A * B` means A first, then B.
class RyMatrix4
{
public:
    /// The identity.
    RyMatrix4();
    /// `RyMatrix4(true)` is the identity, `RyMatrix4(false)` is all zero.
    explicit RyMatrix4(bool identity);
    explicit RyMatrix4(const RyQuat &q);
    explicit RyMatrix4(const RyMatrix3 &linear, const RyVec3 &translation = RyVec3());

    float *operator[](int row) { return m_values + 4 * row; }
    const float *operator[](int row) const { return m_values + 4 * row; }
    float *data() { return m_values; }
    const float *data() const { return m_values; }

    /// `M := M * T(t)`, `M := M * R(q)`, `M := M * S(s)`.
    void translate(const RyVec3 &t);
    void rotate(const RyQuat &q);
    void scale(const RyVec3 &s);
    void scale(float s) { scale(RyVec3(s, s, s)); }

    /// Image of a point (with the division by w where the fourth column is not 0,0,0,1).
    RyVec3 multVecMatrix(const RyVec3 &point) const;
    /// Image of a direction: the linear part alone.
    RyVec3 multDirMatrix(const RyVec3 &direction) const;
    RyMatrix4 operator*(const RyMatrix4 &o) const;
    bool operator==(const RyMatrix4 &o) const;
    bool operator!=(const RyMatrix4 &o) const { return !(*this == o); }
    /// The identity when singular.
    RyMatrix4 inverse() const;

    RyMatrix3 linear() const;
    RyVec3 translation() const { return {m_values[12], m_values[13], m_values[14]}; }

private:
    float m_values[16];
};

Q_DECLARE_METATYPE(RyMatrix4)
