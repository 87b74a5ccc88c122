#pragma once

#include <QString>

#include <vector>

class RyWeightMap;

namespace RyWeightNormalizer {

/// Scales the weights that these maps give a vertex to full weight, where their sum is above 0: rounded down, and the
/// largest (the first of equal ones) takes the rest. Maps whose weights do not change are not written.
void normalize(const std::vector<RyWeightMap *> &maps);

/// A new map with the mean of three maps, rounded; a missing one counts as zero.
RyWeightMap *mean(const QString &name, const RyWeightMap *const maps[3]);

} // namespace RyWeightNormalizer
