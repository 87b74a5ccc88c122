#pragma once

#include "rycore/math/RyMatrix4.h"

namespace RyMatrix4Utilities {

/// Splits `M = scale * rotation * translation` (scale acts first). Exact for a product of that form; for a general
/// linear part the rotation is the nearest one (polar decomposition) and the scale is the diagonal of what is left.
/// A negative determinant puts the sign on one scale axis.
void decomposeMatrix(const RyMatrix4 &matrix, RyVec3 &translation, RyVec3 &scale, RyQuat &rotation);

} // namespace RyMatrix4Utilities
