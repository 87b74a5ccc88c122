#pragma once

class RyWeightMap;

/// Adds the weights of `source` to those of `target`, up to full weight, within an edit of it. Nothing unless both are
/// there and have the same number of weights; works on the affected vertices alone.
void ryAddWeights(const RyWeightMap *source, RyWeightMap *target);
