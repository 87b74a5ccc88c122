#pragma once

#include <vector>

class RyBoneBinding;
class RyFacetMesh;
class RySelectionMap;
struct RyBindingWeights;

/// Pairs each face group that has facets with the bone that weighs most on it, the first of equal ones; a vertex weighs
/// once for each facet that it is a corner of. `keepPairs` leaves groups and bones alone that have a pair, so that a
/// bone gets one group. Undoable where a hold is open.
void pairFaceGroups(const RyFacetMesh &mesh, const std::vector<RyBindingWeights> &weights,
                    const std::vector<RyBoneBinding *> &bindings, RySelectionMap &map, bool keepPairs);
