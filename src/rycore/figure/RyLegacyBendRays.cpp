#include "rycore/figure/RyLegacyBendRays.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBendParam.h"

#include <algorithm>
#include <cmath>

/// The angle of the ray that points along a direction, in degrees.
static double angleOf(int bendAxis, const RyVec3 &direction)
{
    const double x = direction.x;
    const double y = direction.y;
    const double z = direction.z;
    const double angle = bendAxis == 0 ? std::atan2(y, -z) : bendAxis == 1 ? std::atan2(z, x) : std::atan2(y, x);
    return angle * RyFastMath::DegreesPerRadian;
}

static float wrapped(double degrees)
{
    const float turn = float(degrees); // rounded: what is all but half a turn is one
    return turn > 180.0f ? turn - 360.0f : turn <= -180.0f ? turn + 360.0f : turn;
}

RyLegacyBendRays RyLegacyBendRays::around(int bendAxis, const RyVec3 &direction, double staticSpread,
                                          double dynamicSpread)
{
    const double centre = angleOf(bendAxis, direction);
    return {{wrapped(centre + staticSpread), wrapped(centre + dynamicSpread), wrapped(centre - dynamicSpread),
             wrapped(centre - staticSpread)}};
}

RyLegacyBendRays RyLegacyBendRays::ofNewBone(int firstAxis, int bendAxis, bool forward)
{
    return around(bendAxis, RyVec3::axis(firstAxis) * (forward ? 1.0f : -1.0f), 90.0, 45.0);
}

RyLegacyBendRays RyLegacyBendRays::of(const RyLegacyBendParam &bend, bool byDefault)
{
    RyLegacyBendRays rays;
    for (size_t i = 0; i < 4; ++i) {
        const RyFloatProperty *angle = bend.controllers()[i];
        rays.degrees[i] = byDefault ? angle->getDefaultValue() : angle->getValue();
    }
    return rays;
}

bool RyLegacyBendRays::isNear(const RyLegacyBendRays &other) const
{
    return std::equal(degrees.begin(), degrees.end(), other.degrees.begin(),
                      [](float a, float b) { return std::abs(std::remainder(a - b, 360.0f)) < 0.01f; });
}

void RyLegacyBendRays::writeTo(RyLegacyBendParam &bend, bool asDefault) const
{
    bend.beginEdit();
    for (size_t i = 0; i < 4; ++i) {
        if (asDefault)
            bend.controllers()[i]->setDefaultValue(degrees[i]);
        bend.controllers()[i]->adjustValue(degrees[i]);
    }
    bend.finishEdit();
}
