#include "ryforeign/RyForeignPivot.h"

#include <algorithm>

bool RyForeignPivot::hasPoints() const
{
    for (const Vector *each : {&rotationOffset, &rotationPivot, &scalingOffset, &scalingPivot}) {
        if (*each != Vector{})
            return true;
    }
    return false;
}

/// Roff Rp R Rp^-1 Soff Sp S Sp^-1, without R S.
RyForeignPivot::Vector RyForeignPivot::shift(const RyAffine &rotation, const Vector &scale) const
{
    Vector inner{}, turned{};
    for (size_t i = 0; i < 3; ++i) {
        const double sign = scale[i] * scaling[i] < 0.0 ? -1.0 : 1.0;
        inner[i] = sign * (scalingOffset[i] + scalingPivot[i] - rotationPivot[i]) - scale[i] * scalingPivot[i];
    }
    rotation.mapPoint(inner.data(), turned.data());
    for (size_t i = 0; i < 3; ++i)
        turned[i] += rotationOffset[i] + rotationPivot[i];
    return turned;
}

RyAffine RyForeignPivot::placed(const RyAffine &local) const
{
    RyAffine rotation; // of a node that is scaled to nothing nobody knows it
    if (std::all_of(scaling.begin(), scaling.end(), [](double part) { return part != 0.0; })) {
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column)
                rotation.m[row][column] = local.m[row][column] / scaling[size_t(row)];
        }
    }
    const Vector by = shift(rotation, scaling);
    return local * RyAffine::fromTranslation(by[0], by[1], by[2]);
}
