#include "rycore/math/RyAffine.h"

#include "rycore/math/RyFastMath.h"

#include <Eigen/Geometry>
#include <Eigen/SVD>

#include <algorithm>

using RyFastMath::toFloat;

RyAffine::RyAffine(const RyMatrix4 &matrix)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j)
            m[i][j] = matrix[i][j];
    }
}

RyAffine RyAffine::fromTranslation(const RyVec3 &t)
{
    return fromTranslation(t.x, t.y, t.z);
}

RyAffine RyAffine::fromTranslation(double x, double y, double z)
{
    RyAffine result;
    result.m[3][0] = x;
    result.m[3][1] = y;
    result.m[3][2] = z;
    return result;
}

RyAffine RyAffine::fromRotation(const RyQuat &q)
{
    RyAffine result;
    Eigen::Quaterniond turn(q.w, q.x, q.y, q.z);
    if (turn.squaredNorm() == 0.0)
        return result;
    turn.normalize();
    // The matrix that turns columns by the angle turns rows by minus the angle.
    const Eigen::Matrix3d rows = turn.toRotationMatrix();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            result.m[i][j] = rows(i, j);
    }
    return result;
}

RyAffine RyAffine::fromScale(double x, double y, double z)
{
    RyAffine result;
    result.m[0][0] = x;
    result.m[1][1] = y;
    result.m[2][2] = z;
    return result;
}

RyAffine RyAffine::operator*(const RyAffine &o) const
{
    RyAffine result;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j) {
            result.m[i][j] =
                m[i][0] * o.m[0][j] + m[i][1] * o.m[1][j] + m[i][2] * o.m[2][j] + (i == 3 ? o.m[3][j] : 0.0);
        }
    }
    return result;
}

bool RyAffine::operator==(const RyAffine &o) const
{
    return std::equal(&m[0][0], &m[0][0] + 12, &o.m[0][0]);
}

double RyAffine::determinant() const
{
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

bool RyAffine::invert(RyAffine &result) const
{
    result = RyAffine();
    // Rows brought to a like size, so that "singular" does not depend on the unit of length.
    double r[3][3];
    double size[3];
    for (int i = 0; i < 3; ++i) {
        size[i] = std::max({std::fabs(m[i][0]), std::fabs(m[i][1]), std::fabs(m[i][2])});
        if (!(size[i] > 0.0) || !std::isfinite(size[i]))
            return false;
        for (int j = 0; j < 3; ++j)
            r[i][j] = m[i][j] / size[i];
    }
    double adjugate[3][3];
    for (int i = 0; i < 3; ++i) {
        const int i1 = (i + 1) % 3;
        const int i2 = (i + 2) % 3;
        for (int j = 0; j < 3; ++j) {
            const int j1 = (j + 1) % 3;
            const int j2 = (j + 2) % 3;
            adjugate[j][i] = r[i1][j1] * r[i2][j2] - r[i1][j2] * r[i2][j1];
        }
    }
    const double det = r[0][0] * adjugate[0][0] + r[0][1] * adjugate[1][0] + r[0][2] * adjugate[2][0];
    if (std::fabs(det) < 1e-14)
        return false;
    RyAffine inverted;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            inverted.m[i][j] = adjugate[i][j] / det / size[j];
    }
    for (int j = 0; j < 3; ++j)
        inverted.m[3][j] = -(m[3][0] * inverted.m[0][j] + m[3][1] * inverted.m[1][j] + m[3][2] * inverted.m[2][j]);
    if (!std::all_of(&inverted.m[0][0], &inverted.m[0][0] + 12, [](double v) { return std::isfinite(v); }))
        return false;
    result = inverted;
    return true;
}

RyAffine RyAffine::inverse() const
{
    RyAffine result;
    invert(result);
    return result;
}

RyVec3 RyAffine::mapPoint(const RyVec3 &p) const
{
    const double in[3] = {p.x, p.y, p.z};
    double out[3];
    mapPoint(in, out);
    return {toFloat(out[0]), toFloat(out[1]), toFloat(out[2])};
}

void RyAffine::mapPoint(const double in[3], double out[3]) const
{
    const double p[3] = {in[0], in[1], in[2]};
    for (int j = 0; j < 3; ++j)
        out[j] = p[0] * m[0][j] + p[1] * m[1][j] + p[2] * m[2][j] + m[3][j];
}

RyVec3 RyAffine::mapDirection(const RyVec3 &d) const
{
    return {toFloat(d.x * m[0][0] + d.y * m[1][0] + d.z * m[2][0]),
            toFloat(d.x * m[0][1] + d.y * m[1][1] + d.z * m[2][1]),
            toFloat(d.x * m[0][2] + d.y * m[1][2] + d.z * m[2][2])};
}

RyMatrix4 RyAffine::toMatrix4() const
{
    RyMatrix4 result(true);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j)
            result[i][j] = toFloat(m[i][j]);
    }
    return result;
}

void RyAffine::decomposePolar(RyAffine &stretch, RyQuat &rotation) const
{
    Eigen::Matrix3d linear;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            linear(i, j) = m[i][j];
    }
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(linear, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Eigen::Matrix3d u = svd.matrixU();
    const Eigen::Matrix3d v = svd.matrixV();
    // Singular values come sorted; a reflection goes to the smallest.
    Eigen::Vector3d sign(1.0, 1.0, (u * v.transpose()).determinant() < 0.0 ? -1.0 : 1.0);
    const Eigen::Matrix3d turn = u * sign.asDiagonal() * v.transpose();
    const Eigen::Vector3d values = svd.singularValues().cwiseProduct(sign);
    const Eigen::Matrix3d left = u * values.asDiagonal() * u.transpose();
    const Eigen::Quaterniond q(turn);
    rotation = RyQuat(float(q.x()), float(q.y()), float(q.z()), float(q.w()));
    stretch = RyAffine();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            stretch.m[i][j] = 0.5 * (left(i, j) + left(j, i));
    }
}
