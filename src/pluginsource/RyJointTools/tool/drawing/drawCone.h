#pragma once

#include "rycore/math/RyVec3.h"

class RyMatrix4;
class RyViewVolume;

/// Size of a cone at a place: what keeps it as large on screen, up to a limit.
float coneSizeAt(const RyViewVolume &volume, const RyVec3 &place);
/// A cone along an axis: the rim about `base`, the apex a quarter of `size` beyond it, all of it then mapped to the
/// world.
void drawCone(const RyMatrix4 &toWorld, const RyVec3 &base, int axis, float size);
