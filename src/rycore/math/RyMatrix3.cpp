#include "rycore/math/RyMatrix3.h"

#include "rycore/math/RyAffine.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/math/RyQuat.h"

#include <algorithm>

using RyFastMath::toFloat;

RyMatrix3::RyMatrix3() : m_rows{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}} {}

RyMatrix3::RyMatrix3(const RyQuat &q)
{
    const RyAffine rotation = RyAffine::fromRotation(q);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            m_rows[i][j] = float(rotation.m[i][j]);
    }
}

RyMatrix3 RyMatrix3::diagonal(const RyVec3 &d)
{
    RyMatrix3 result;
    for (int i = 0; i < 3; ++i)
        result.m_rows[i][i] = d[i];
    return result;
}

void RyMatrix3::setRow(int index, const RyVec3 &v)
{
    for (int j = 0; j < 3; ++j)
        m_rows[index][j] = v[j];
}

RyVec3 RyMatrix3::multVec(const RyVec3 &v) const
{
    RyVec3 result;
    for (int j = 0; j < 3; ++j)
        result[j] = toFloat(double(v.x) * m_rows[0][j] + double(v.y) * m_rows[1][j] + double(v.z) * m_rows[2][j]);
    return result;
}

RyMatrix3 RyMatrix3::operator*(const RyMatrix3 &o) const
{
    RyMatrix3 result;
    for (int i = 0; i < 3; ++i)
        result.setRow(i, o.multVec(row(i)));
    return result;
}

bool RyMatrix3::operator==(const RyMatrix3 &o) const
{
    return std::equal(&m_rows[0][0], &m_rows[0][0] + 9, &o.m_rows[0][0]);
}

float RyMatrix3::determinant() const
{
    return toFloat(RyAffine(RyMatrix4(*this)).determinant());
}

RyMatrix3 RyMatrix3::inverse() const
{
    return RyAffine(RyMatrix4(*this)).inverse().toMatrix4().linear();
}

RyMatrix3 RyMatrix3::transposed() const
{
    RyMatrix3 result;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            result.m_rows[i][j] = m_rows[j][i];
    }
    return result;
}
