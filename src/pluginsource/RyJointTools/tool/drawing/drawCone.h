#pragma once

#include "rycore/math/RyVec3.h"

/// Size of a cone at a place in the space of the current modelview matrix: what keeps it as large on screen, up to a
/// limit.
float coneSizeAt(const RyVec3 &place);
/// A cone along an axis: the rim about `base`, the apex a quarter of `size` beyond it.
void drawCone(const RyVec3 &base, int axis, float size);
