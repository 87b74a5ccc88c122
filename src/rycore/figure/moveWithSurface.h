#pragma once

#include "rycore/math/RyVec3.h"

#include <functional>
#include <optional>
#include <vector>

struct RyFacet;

/// Where points go that belong to a surface, as it goes from its base to other positions: each by what the vertices
/// move, mixed by its coordinates in the base (RyCageCoordinates). Equal points go to equal places. On all cores;
/// `progress` is called in the calling thread meanwhile with the part that is done, and gives false to cancel: then
/// there is no result.
std::optional<std::vector<RyVec3>> moveWithSurface(const std::vector<RyVec3> &points, const std::vector<RyVec3> &base,
                                                   const std::vector<RyVec3> &positions,
                                                   const std::vector<RyFacet> &facets,
                                                   const std::function<bool(double)> &progress);
