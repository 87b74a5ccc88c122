#include "pluginsource/RyJointTools/operations/regroupFacets.h"

#include "pluginsource/RyJointTools/operations/RyBindingInfluences.h"
#include "pluginsource/RyJointTools/operations/RyWeightSums.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyParallel.h"

namespace {

/// Threads share the facets in pieces of no less.
constexpr size_t LeastFacets = 4096;

/// By the index of a group.
std::vector<bool> groupsWithPair(const RyFacetMesh &mesh, const RySelectionMap &map)
{
    std::vector<bool> marks(size_t(mesh.getNumFaceGroups()), false);
    for (int i = 0; i < map.getNumPairs(); ++i) {
        if (const int group = mesh.findFaceGroupIndex(map.getPairGroup(i)); group >= 0)
            marks[size_t(group)] = true;
    }
    return marks;
}

/// For each facet the binding that weighs most on it; -1 without influences, and in the marked groups.
std::vector<int> strongestOfFacets(const RyFacetMesh &mesh, const std::vector<RyBindingWeights> &weights,
                                   int bindingCount, const std::vector<bool> &marks)
{
    const RyBindingInfluences influences(weights, mesh.getNumVertices());
    const std::vector<RyFacet> &facets = mesh.getFacets();
    std::vector<int> strongest(facets.size(), -1);
    RyParallel::forRanges(facets.size(), LeastFacets, [&](size_t begin, size_t end) {
        RyWeightSums sums(bindingCount);
        for (size_t i = begin; i < end; ++i) {
            const auto group = size_t(facets[i].group); // without a group beyond all marks
            if (group < marks.size() && marks[group])
                continue;
            const int corners = facets[i].count();
            for (int corner = 0; corner < corners; ++corner) {
                for (const RyBindingInfluences::Influence &influence : influences.of(facets[i].vertices[corner]))
                    sums.add(influence.binding, influence.weight);
            }
            strongest[i] = sums.largest([](int) { return true; });
            sums.clear();
        }
    });
    return strongest;
}

/// Makes groups and pairs for the bones that have facets. Gives the group of each binding, -1 for none.
std::vector<int> makeGroups(RyFacetMesh &mesh, const std::vector<RyBoneBinding *> &bindings,
                            const std::vector<int> &strongest, RySelectionMap &map, bool keepPairs)
{
    std::vector<bool> hasFacets(bindings.size(), false);
    for (const int binding : strongest) {
        if (binding >= 0)
            hasFacets[size_t(binding)] = true;
    }
    std::vector<int> groups(bindings.size(), -1);
    for (size_t i = 0; i < bindings.size(); ++i) {
        RyBone *bone = hasFacets[i] ? bindings[i]->getBone() : nullptr;
        if (!bone || (keepPairs && map.findPair(bone) >= 0))
            continue;
        const QString name = bone->getName();
        mesh.createFaceGroup(name);
        groups[i] = mesh.findFaceGroupIndex(name);
        map.addPair(name, bone, false);
    }
    return groups;
}

} // namespace

void regroupFacets(RyFacetMesh &mesh, const std::vector<RyBindingWeights> &weights,
                   const std::vector<RyBoneBinding *> &bindings, RySelectionMap &map, bool keepPairs)
{
    const std::vector<bool> marks = keepPairs ? groupsWithPair(mesh, map) : std::vector<bool>();
    std::vector<int> ofFacet = strongestOfFacets(mesh, weights, int(bindings.size()), marks);
    const std::vector<int> groups = makeGroups(mesh, bindings, ofFacet, map, keepPairs);
    bool isAnyGiven = false;
    for (size_t i = 0; i < ofFacet.size(); ++i) {
        const int group = ofFacet[i] < 0 ? -1 : groups[size_t(ofFacet[i])];
        isAnyGiven = isAnyGiven || group >= 0;
        ofFacet[i] = group >= 0 ? group : mesh.getFacet(int(i)).group;
    }
    if (isAnyGiven)
        mesh.deselectAllFacets();
    mesh.setGroupsOfFacets(ofFacet);
}
