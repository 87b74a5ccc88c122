#include "rycore/parametric/RyLegacyMotion.h"

#include <algorithm>
#include <cmath>

RyLegacyMotion::RyLegacyMotion(const RyLegacyRig::Bone &bone, const RyLegacyControls &itsControls)
    : controls(itsControls)
{
    // Transposed: an inverse quaternion would be rounded to floats.
    const RyAffine turn = RyAffine::fromRotation(bone.orientation);
    for (int i = 0; i < 3; ++i) {
        origin[i] = bone.origin[i];
        order[i] = bone.order[i];
        for (int j = 0; j < 3; ++j)
            toAxes[i][j] = turn.m[j][i];
    }
    const RyLegacyControls rest;
    isTurned = controls.turn != rest.turn;
    isScaled = controls.scale != rest.scale;
    isMoved = controls.translation != rest.translation;
}

void RyLegacyMotion::mapLinear(const RyLegacyFractions &by, Scale scale, const double in[3], double out[3]) const
{
    double y[3];
    for (int j = 0; j < 3; ++j)
        y[j] = in[0] * toAxes[0][j] + in[1] * toAxes[1][j] + in[2] * toAxes[2][j];
    if (isScaled && scale != Scale::None) {
        double s[3];
        for (size_t i = 0; i < 3; ++i)
            s[i] = 1.0 + by.scale * (controls.scale[i] - 1.0);
        if (scale == Scale::Normals)
            carryNormals(s);
        for (int i = 0; i < 3; ++i)
            y[i] *= s[i];
    }
    for (const int axis : order) {
        const double angle = by.turn[axis] * controls.turn[size_t(axis)];
        if (angle == 0.0)
            continue;
        const double s = std::sin(angle);
        const double c = std::cos(angle);
        double &next = y[(axis + 1) % 3];
        double &last = y[(axis + 2) % 3];
        const double turned = next * c - last * s;
        last = next * s + last * c;
        next = turned;
    }
    for (int j = 0; j < 3; ++j)
        out[j] = y[0] * toAxes[j][0] + y[1] * toAxes[j][1] + y[2] * toAxes[j][2];
}

void RyLegacyMotion::mapPoint(const RyLegacyFractions &by, const double in[3], double out[3]) const
{
    const double from[3] = {in[0] - origin[0], in[1] - origin[1], in[2] - origin[2]};
    mapLinear(by, Scale::Points, from, out);
    for (size_t i = 0; i < 3; ++i)
        out[i] += origin[i] + by.translation * controls.translation[i];
}

RyAffine RyLegacyMotion::wholeLinear(Scale scale) const
{
    double linear[3][3];
    std::copy(&toAxes[0][0], &toAxes[0][0] + 9, &linear[0][0]);
    if (isScaled) {
        double factors[3] = {controls.scale[0], controls.scale[1], controls.scale[2]};
        if (scale == Scale::Normals)
            carryNormals(factors);
        for (auto &row : linear) {
            for (int k = 0; k < 3; ++k)
                row[k] *= factors[k];
        }
    }
    for (const int axis : order)
        appendTurn(linear, axis, controls.turn[size_t(axis)]);
    RyAffine map;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            map.m[i][j] = linear[i][0] * toAxes[j][0] + linear[i][1] * toAxes[j][1] + linear[i][2] * toAxes[j][2];
    }
    return map;
}

RyAffine RyLegacyMotion::wholeMap() const
{
    RyAffine map = wholeLinear(Scale::Points);
    double image[3];
    map.mapPoint(origin, image);
    for (size_t k = 0; k < 3; ++k)
        map.m[3][k] = origin[k] - image[k] + controls.translation[k];
    return map;
}

RyAffine RyLegacyMotion::wholeNormalMap() const
{
    return wholeLinear(Scale::Normals);
}

void RyLegacyMotion::appendTurn(double matrix[3][3], int axis, double angle)
{
    if (angle == 0.0)
        return;
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    for (int i = 0; i < 3; ++i) {
        double &next = matrix[i][(axis + 1) % 3];
        double &last = matrix[i][(axis + 2) % 3];
        const double turned = next * c - last * s;
        last = next * s + last * c;
        next = turned;
    }
}

void RyLegacyMotion::carryNormals(double s[3])
{
    const double inverse[3] = {s[1] * s[2], s[0] * s[2], s[0] * s[1]};
    const auto size = [](const double v[3]) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); };
    const double factor = std::copysign(size(s) / size(inverse), s[0] * s[1] * s[2]);
    if (!std::isfinite(factor))
        return;
    for (int i = 0; i < 3; ++i)
        s[i] = factor * inverse[i];
}
