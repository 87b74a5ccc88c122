#include "rycore/base/adjustValues.h"

#include "rycore/base/RyFloatProperty.h"

/// True when something was written.
static bool adjustOnce(const std::vector<RyWantedValue> &wanted)
{
    bool written = false;
    for (const RyWantedValue &each : wanted) {
        if (!each.property || each.property->getValue() == each.value)
            continue;
        const float raw = each.property->getRawValue();
        each.property->adjustValue(each.value);
        written |= each.property && each.property->getRawValue() != raw;
    }
    return written;
}

void adjustValues(const std::vector<RyWantedValue> &wanted)
{
    // What hangs on a value moves with it and is put right in the next turn; links make no circles, so there is an end.
    for (size_t turn = 0; turn <= wanted.size() && adjustOnce(wanted); ++turn)
        continue;
}
