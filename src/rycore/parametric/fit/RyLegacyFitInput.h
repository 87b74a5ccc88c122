#pragma once

#include "rycore/parametric/RyLegacyRig.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

class RyLegacyBinding;
class RySkeleton;

/// All that a fit depends on. Equal inputs give equal weights.
struct RyLegacyFitInput
{
    /// How far a bone turns about its axes X, Y and Z, in radians.
    using Limits = std::array<std::pair<double, double>, 3>;

    RyLegacyRig rig;
    std::vector<RyVec3> rest;
    std::vector<Limits> limits;     // of each bone
    std::vector<std::string> names; // of the bones, for the report

    static RyLegacyFitInput of(const RyLegacyBinding &binding, const RySkeleton &skeleton);
    bool operator==(const RyLegacyFitInput &o) const;
};
