#pragma once

#include <QPointer>

#include <vector>

class RyFloatProperty;

/// What a property shall result in.
struct RyWantedValue
{
    QPointer<RyFloatProperty> property;
    float value;
};

/// Makes these the resulting values of all of them, also where links pass on to one what is written to another. Current
/// values only. A value outside of the limits of a clamped property stays at the limit.
void adjustValues(const std::vector<RyWantedValue> &wanted);
