#pragma once

#include "rycore/math/RyVec3.h"

class RyBone;

/// A bone that is in no scene yet, at these places (current and default), with the current orientation and the rotation
/// order of a bone of a skeleton, and named after it: unique in that skeleton. It is not posed.
RyBone *makeBoneLike(const RyBone *source, const RyVec3 &origin, const RyVec3 &endPoint);
