#include "rycore/skin/RyNormalMap.h"

#include <algorithm>
#include <cmath>

namespace {

double sizeOf(const double m[3][3])
{
    double sum = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            sum += m[i][j] * m[i][j];
    }
    return std::sqrt(sum);
}

} // namespace

RyAffine RyNormalMap::of(const RyAffine &map)
{
    double linear[3][3];
    double cofactors[3][3];
    for (int i = 0; i < 3; ++i) {
        const double *a = map.m[(i + 1) % 3];
        const double *b = map.m[(i + 2) % 3];
        for (int j = 0; j < 3; ++j) {
            linear[i][j] = map.m[i][j];
            cofactors[i][j] = a[(j + 1) % 3] * b[(j + 2) % 3] - a[(j + 2) % 3] * b[(j + 1) % 3];
        }
    }
    const double size = sizeOf(linear);
    const double factor = std::copysign(size / sizeOf(cofactors), map.determinant());
    if (!std::isfinite(factor))
        return map;
    RyAffine result;
    double apart = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            result.m[i][j] = factor * cofactors[i][j];
            apart = std::max(apart, std::fabs(result.m[i][j] - linear[i][j]));
        }
    }
    // Rounding of a chain of turns is no shear.
    constexpr double Tolerance = 1e-5;
    return apart <= Tolerance * size ? map : result;
}
