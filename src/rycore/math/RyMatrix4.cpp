#include "rycore/math/RyMatrix4.h"

#include "rycore/math/RyAffine.h"
#include "rycore/math/RyFastMath.h"

#include <Eigen/LU>

#include <algorithm>

using RyFastMath::toFloat;

RyMatrix4::RyMatrix4() : RyMatrix4(true) {}

RyMatrix4::RyMatrix4(bool identity)
{
    for (int i = 0; i < 16; ++i)
        m_values[i] = identity && i % 5 == 0 ? 1.0f : 0.0f;
}

RyMatrix4::RyMatrix4(const RyQuat &q) : RyMatrix4(RyMatrix3(q)) {}

RyMatrix4::RyMatrix4(const RyMatrix3 &linear, const RyVec3 &translation) : RyMatrix4(true)
{
    for (int i = 0; i < 3; ++i) {
        std::copy(linear[i], linear[i] + 3, (*this)[i]);
        m_values[12 + i] = translation[i];
    }
}

void RyMatrix4::translate(const RyVec3 &t)
{
    *this = *this * RyMatrix4(RyMatrix3(), t);
}

void RyMatrix4::rotate(const RyQuat &q)
{
    *this = *this * RyMatrix4(q);
}

void RyMatrix4::scale(const RyVec3 &s)
{
    *this = *this * RyMatrix4(RyMatrix3::diagonal(s));
}

RyVec3 RyMatrix4::multVecMatrix(const RyVec3 &point) const
{
    double r[4];
    for (int j = 0; j < 4; ++j) {
        r[j] = double(point.x) * m_values[j] + double(point.y) * m_values[4 + j] + double(point.z) * m_values[8 + j] +
               m_values[12 + j];
    }
    const bool affine = m_values[3] == 0.0f && m_values[7] == 0.0f && m_values[11] == 0.0f && m_values[15] == 1.0f;
    if (affine)
        return {toFloat(r[0]), toFloat(r[1]), toFloat(r[2])};
    if (r[3] == 0.0)
        return {};
    return {toFloat(r[0] / r[3]), toFloat(r[1] / r[3]), toFloat(r[2] / r[3])};
}

RyVec3 RyMatrix4::multDirMatrix(const RyVec3 &direction) const
{
    return linear().multVec(direction);
}

RyMatrix4 RyMatrix4::operator*(const RyMatrix4 &o) const
{
    RyMatrix4 result(false);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k)
                sum += double((*this)[i][k]) * o[k][j];
            result[i][j] = toFloat(sum);
        }
    }
    return result;
}

bool RyMatrix4::operator==(const RyMatrix4 &o) const
{
    return std::equal(m_values, m_values + 16, o.m_values);
}

RyMatrix4 RyMatrix4::inverse() const
{
    if (m_values[3] == 0.0f && m_values[7] == 0.0f && m_values[11] == 0.0f && m_values[15] == 1.0f)
        return RyAffine(*this).inverse().toMatrix4();
    const Eigen::Matrix4d values =
        Eigen::Map<const Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(m_values).cast<double>();
    const Eigen::FullPivLU<Eigen::Matrix4d> lu(values);
    if (!lu.isInvertible())
        return RyMatrix4(true);
    const Eigen::Matrix4d inverted = lu.inverse();
    RyMatrix4 result(false);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            result[i][j] = toFloat(inverted(i, j));
    }
    return result;
}

RyMatrix3 RyMatrix4::linear() const
{
    RyMatrix3 result;
    for (int i = 0; i < 3; ++i)
        std::copy((*this)[i], (*this)[i] + 3, result[i]);
    return result;
}
