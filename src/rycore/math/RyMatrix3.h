#pragma once

#include "rycore/math/RyVec3.h"

class RyQuat;

/// A linear map of row vectors, row-major: `v M` is `M.multVec(v)`; the rows are the images of the unit axes.
class RyMatrix3
{
public:
    /// The identity.
    RyMatrix3();
    /// `multVec(v) == q.multVec(v)`.
    explicit RyMatrix3(const RyQuat &q);
    static RyMatrix3 diagonal(const RyVec3 &d);

    float *operator[](int row) { return m_rows[row]; }
    const float *operator[](int row) const { return m_rows[row]; }
    RyVec3 row(int index) const { return {m_rows[index][0], m_rows[index][1], m_rows[index][2]}; }
    void setRow(int index, const RyVec3 &v);

    RyVec3 multVec(const RyVec3 &v) const;
    /// This map first, then `o`.
    RyMatrix3 operator*(const RyMatrix3 &o) const;
    bool operator==(const RyMatrix3 &o) const;
    bool operator!=(const RyMatrix3 &o) const { return !(*this == o); }
    float determinant() const;
    /// The identity when singular.
    RyMatrix3 inverse() const;
    RyMatrix3 transposed() const;

private:
    float m_rows[3][3];
};
