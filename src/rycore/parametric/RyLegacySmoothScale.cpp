#include "rycore/parametric/RyLegacySmoothScale.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

RyLegacySmoothScale::RyLegacySmoothScale(const QString &name, int axis, RyBone *driver)
    : RyLegacyJointParam(name, axis, driver, HighSide)
{
    constexpr float Farthest = RyLegacyTwistParam::Farthest;
    constexpr float Far = RyLegacyTwistParam::Far;
    addController("Smooth Zones", "hiStart", "High Start", Far, Farthest);
    addController("Smooth Zones", "hiEnd", "High End", Farthest, Farthest);
    addController("Smooth Zones", "loStart", "Low Start", -Far, Farthest);
    addController("Smooth Zones", "loEnd", "Low End", -Farthest, Farthest);
}

float RyLegacySmoothScale::zone(int index) const
{
    return controllers()[size_t(index)]->getValue();
}

void RyLegacySmoothScale::setZone(int index, float value)
{
    controllers()[size_t(index)]->adjustValue(value);
}

RyLegacyJointParam *RyLegacySmoothScale::copy() const
{
    return copyInto(new RyLegacySmoothScale(QString(), getAxis(), getDriver()));
}
