#pragma once

#include "rycore/math/RyAffine.h"

/// Weights by two spheres in parameter space: with `d` and `s` the distances from their centres in radii (dynamic and
/// static one), 1 for d <= 1, 0 for s >= 1, and `1 - S((d - 1) / ((d - 1) + (1 - s)))` between. The static sphere
/// reaches at least 5 % beyond the dynamic one (`s <= d / 1.05`), so that equal ones make no hard edge. A matrix
/// without inverse is a sphere that everything lies outside of.
class RyLegacySphereZone
{
public:
    RyLegacySphereZone() = default;
    RyLegacySphereZone(const RyMatrix4 &dynamicMatrix, const RyMatrix4 &staticMatrix);

    double weight(const double x[3]) const;
    static double weight(double dynamicDistance, double staticDistance);

private:
    struct Sphere
    {
        RyAffine toUnit;
        bool flat = false;
        double distance(const double x[3]) const;
    };
    Sphere m_dynamic;
    Sphere m_static;
};
