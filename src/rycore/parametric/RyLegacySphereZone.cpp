#include "rycore/parametric/RyLegacySphereZone.h"

#include "rycore/parametric/RyLegacyRamps.h"

#include <limits>

RyLegacySphereZone::RyLegacySphereZone(const RyMatrix4 &dynamicMatrix, const RyMatrix4 &staticMatrix)
{
    m_dynamic.flat = !RyAffine(dynamicMatrix).invert(m_dynamic.toUnit);
    m_static.flat = !RyAffine(staticMatrix).invert(m_static.toUnit);
}

double RyLegacySphereZone::Sphere::distance(const double x[3]) const
{
    if (flat)
        return std::numeric_limits<double>::infinity();
    double unit[3];
    toUnit.mapPoint(x, unit);
    return std::sqrt(unit[0] * unit[0] + unit[1] * unit[1] + unit[2] * unit[2]);
}

double RyLegacySphereZone::weight(const double x[3]) const
{
    return weight(m_dynamic.distance(x), m_static.distance(x));
}

double RyLegacySphereZone::weight(double dynamicDistance, double staticDistance)
{
    constexpr double Margin = 1.05;
    const double reached = std::min(staticDistance, dynamicDistance / Margin);
    if (dynamicDistance <= 1.0)
        return 1.0;
    if (reached >= 1.0 || std::isinf(dynamicDistance))
        return 0.0;
    const double beyond = dynamicDistance - 1.0;
    return 1.0 - RyLegacyRamps::smooth(beyond / (beyond + (1.0 - reached)));
}
