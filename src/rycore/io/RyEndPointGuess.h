#pragma once

#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

#include <vector>

/// End points for bones of a file that holds none. All in figure space.
struct RyEndPointBone
{
    int parent = -1; ///< index of the bone above, -1 for a root; parents stand before their children
    RyVec3 origin;
    RyQuat orientation;
    bool hasEndMarker = false; ///< the file has a node that marks the end ("..._end", "...Nub", "End Site")
    RyVec3 endMarker;
    std::vector<int> vertices; ///< vertices that follow this bone more than any other
};

/// A bone with one child ends where the child begins. With several it ends at the child whose subtree is more than one
/// and a half times the next one's, otherwise at their mean. A leaf takes the parent's own axis in the leaf's frame,
/// turned to where its vertices lie, and reaches as far as those do (98th percentile, between 0.1 and 3 times the
/// distance to the parent).
std::vector<RyVec3> ryGuessEndPoints(const std::vector<RyEndPointBone> &bones, const std::vector<RyVec3> &positions,
                                     float figureHeight);
