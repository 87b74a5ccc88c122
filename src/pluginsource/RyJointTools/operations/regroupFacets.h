#pragma once

#include <vector>

class RyBoneBinding;
class RyFacetMesh;
class RySelectionMap;
struct RyBindingWeights;

/// Gives each facet to the bone that weighs most on it, the first of equal ones: into a face group that has the bone's
/// name and is paired with it. Facets without influences stay where they are. `keepPairs` leaves the facets of groups
/// that have a pair alone, and bones that have one. Undoable where a hold is open, but for the selection of facets: it
/// is empty afterwards when a facet was given away.
void regroupFacets(RyFacetMesh &mesh, const std::vector<RyBindingWeights> &weights,
                   const std::vector<RyBoneBinding *> &bindings, RySelectionMap &map, bool keepPairs);
