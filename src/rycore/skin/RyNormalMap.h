#pragma once

#include "rycore/math/RyAffine.h"

namespace RyNormalMap {

/// The linear map that carries the normals of a surface where `map` carries its points: the inverse transpose, brought
/// to the size and the sign of `map`, so that it is the map itself, to the bit, where that turns, mirrors and scales
/// all directions alike. Lines that are flattened to nothing leave the normal of the plane; the map itself where not
/// even a plane is left. Its translation means nothing.
RyAffine of(const RyAffine &map);

} // namespace RyNormalMap
