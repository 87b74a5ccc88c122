#pragma once

#include "rycore/math/RyVec3.h"

#include <functional>

class RyAffine;

/// Changes a value until what it moves stands where it should, for values whose change also turns the space that they
/// are given in. `toWorld` is that space's map as it is now, the first guess of how the place answers the value; each
/// try corrects the guess (Broyden's method). `place` puts a value in and returns the place in the world that comes of
/// it. Ends with the best value in, at the latest after two dozen tries.
void bringToPlace(const RyVec3 &target, const RyVec3 &value, const RyVec3 &placeOfValue, const RyAffine &toWorld,
                  const std::function<RyVec3(const RyVec3 &)> &place);
