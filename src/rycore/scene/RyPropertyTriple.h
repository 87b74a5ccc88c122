#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyVec3.h"

/// Three float properties, one for each axis, read as a vector.
namespace RyPropertyTriple {

inline RyVec3 read(RyFloatProperty *const *properties, bool byDefault)
{
    if (byDefault)
        return {properties[0]->getDefaultValue(), properties[1]->getDefaultValue(), properties[2]->getDefaultValue()};
    return {properties[0]->getValue(), properties[1]->getValue(), properties[2]->getValue()};
}

} // namespace RyPropertyTriple
