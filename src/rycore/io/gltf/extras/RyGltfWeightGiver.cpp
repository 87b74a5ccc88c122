#include "rycore/io/gltf/extras/RyGltfWeightGiver.h"

#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace {

/// What a bone gave away: its weights as they were read that are larger than those now, at the vertices that another
/// bone weighs; half of its own where the other has a copy of them. All lists are ascending.
qint64 givenTo(const RyGltfBindingWeights &taker, const RyGltfLoadedWeights &before, const RyGltfBindingWeights *now)
{
    if (now && now->isSameAs(taker))
        return std::accumulate(now->weights.begin(), now->weights.end(), qint64(0)) / 2;
    qint64 sum = 0;
    size_t j = 0, k = 0;
    for (size_t i = 0; i < taker.vertices.size(); ++i) {
        const int vertex = taker.vertices[i];
        while (j < before.vertices.size() && before.vertices[j] < vertex)
            ++j;
        while (now && k < now->vertices.size() && now->vertices[k] < vertex)
            ++k;
        const int then = j < before.vertices.size() && before.vertices[j] == vertex ? before.weights[j] : 0;
        const bool has = now && k < now->vertices.size() && now->vertices[k] == vertex;
        sum += std::clamp(then - (has ? int(now->weights[k]) : 0), 0, int(taker.weights[i]));
    }
    return sum;
}

} // namespace

const RyNode *ryGltfWeightGiver(const RyGltfOrigin &origin, const RyNode &bone)
{
    const RyGltfFigureSource *figure = origin.findFigureSource(bone.getSkeleton());
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(&bone);
    const RyBoneBinding *binding = skin ? skin->findBoneBinding(&bone) : nullptr;
    if (!figure || !binding)
        return nullptr;
    const RyGltfBindingWeights taken(*binding);
    const RyNode *giver = nullptr;
    qint64 most = 0;
    for (const RyGltfLoadedWeights &before : *figure->weights) {
        if (!before.bone || !before.bone->getScene() || !origin.findSource(before.bone))
            continue;
        std::optional<RyGltfBindingWeights> now;
        if (const RyBoneBinding *rest = skin->findBoneBinding(before.bone))
            now.emplace(*rest);
        const qint64 given = givenTo(taken, before, now ? &*now : nullptr);
        if (given > most) {
            most = given;
            giver = before.bone;
        }
    }
    const bool isBeside = giver && giver->isDescendantOf(bone.getNodeParent()) && !bone.isDescendantOf(giver);
    return isBeside ? giver : nullptr;
}
