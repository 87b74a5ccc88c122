#include "pluginsource/RyJointTools/operations/pairFaceGroups.h"

#include "pluginsource/RyJointTools/operations/RyFaceGroupCorners.h"
#include "pluginsource/RyJointTools/operations/RyWeightSums.h"
#include "pluginsource/RyJointTools/operations/listBindingWeights.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyParallel.h"

namespace {

using Sums = std::vector<RyWeightSums::Sum>;

/// What each list of weights adds to each group, by the index of the group.
std::vector<Sums> sumsOfWeights(const std::vector<RyBindingWeights> &weights, const RyFaceGroupCorners &corners,
                                int groupCount)
{
    std::vector<Sums> result(weights.size());
    RyParallel::forRanges(weights.size(), 1, [&](size_t begin, size_t end) {
        RyWeightSums sums(groupCount);
        for (size_t i = begin; i < end; ++i) {
            const RyBindingWeights &its = weights[i];
            for (int k = 0; k < its.count; ++k) {
                corners.forGroups(its.vertices[k],
                                  [&](int group, int count) { sums.add(group, qint64(count) * its.weights[k]); });
            }
            result[i] = sums.sums();
            sums.clear();
        }
    });
    return result;
}

/// What each binding weighs on each group, for the groups in their order; a binding may be there several times.
std::vector<Sums> sumsOfGroups(const std::vector<RyBindingWeights> &weights, const RyFaceGroupCorners &corners,
                               int groupCount)
{
    const std::vector<Sums> ofWeights = sumsOfWeights(weights, corners, groupCount);
    std::vector<Sums> result(static_cast<size_t>(groupCount));
    for (size_t i = 0; i < weights.size(); ++i) {
        for (const RyWeightSums::Sum &sum : ofWeights[i])
            result[size_t(sum.key)].push_back({weights[i].binding, sum.weight});
    }
    return result;
}

} // namespace

void pairFaceGroups(const RyFacetMesh &mesh, const std::vector<RyBindingWeights> &weights,
                    const std::vector<RyBoneBinding *> &bindings, RySelectionMap &map, bool keepPairs)
{
    RyFaceGroupCorners corners(mesh);
    const int groupCount = mesh.getNumFaceGroups();
    for (int i = 0; i < groupCount; ++i) {
        if (!keepPairs || map.findPair(mesh.getFaceGroup(i)->getName()) < 0)
            corners.add(*mesh.getFaceGroup(i), i);
    }
    const std::vector<Sums> ofGroups = sumsOfGroups(weights, corners, groupCount);
    const auto boneOf = [&](int binding) { return bindings[size_t(binding)]->getBone(); };
    RyWeightSums sums(int(bindings.size()));
    for (int i = 0; i < groupCount; ++i) {
        for (const RyWeightSums::Sum &sum : ofGroups[size_t(i)])
            sums.add(sum.key, sum.weight);
        const int best = sums.largest([&](int b) { return !keepPairs || map.findPair(boneOf(b)) < 0; });
        if (best >= 0 && boneOf(best))
            map.addPair(mesh.getFaceGroup(i)->getName(), boneOf(best), false);
        sums.clear();
    }
}
