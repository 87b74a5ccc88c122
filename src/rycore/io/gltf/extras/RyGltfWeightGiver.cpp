#include "rycore/io/gltf/extras/RyGltfWeightGiver.h"

#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>
#include <numeric>

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

/// Whether two bones weigh the same vertices in the same proportions, but for rounding: what is left where one gave a
/// share of its weights to the other.
bool areShares(const RyGltfBindingWeights &a, const RyGltfBindingWeights &b)
{
    constexpr double Rounding = 2.0; // each may have been shared again
    if (!std::equal(a.vertices.begin(), a.vertices.end(), b.vertices.begin(), b.vertices.end()))
        return false;
    const double sumA = std::accumulate(a.weights.begin(), a.weights.end(), 0.0);
    const double sumB = std::accumulate(b.weights.begin(), b.weights.end(), 0.0);
    for (size_t i = 0; i < a.weights.size(); ++i) {
        if (std::abs(double(a.weights[i]) / sumA - double(b.weights[i]) / sumB) * std::min(sumA, sumB) > Rounding)
            return false;
    }
    return true;
}

/// The bone of the file that a bone has its weights from, directly or through other new ones.
const RyGltfNodeSource *knownGiver(const RyGltfOrigin &origin, const RyNode &node)
{
    const auto *bone = qobject_cast<const RyBone *>(&node);
    const RyGltfNodeSource *source = nullptr;
    for (const quint64 serial : bone ? bone->getWeightGivers() : std::vector<quint64>()) {
        source = origin.findBone(serial);
        if (source)
            break;
    }
    const RyNode *figure = node.getSkeleton();
    return source && source->isBone && figure && origin.figures[size_t(source->figure)].sceneNode == figure ? source
                                                                                                            : nullptr;
}

/// The bone of the file that lost most of what a bone weighs, if it is beside that, or below such.
const RyGltfNodeSource *likelyGiver(const RyGltfOrigin &origin, const RyNode &bone)
{
    const RyGltfFigureSource *figure = origin.findFigureSource(bone.getSkeleton());
    const std::vector<RyGltfBoneWeights> all = ryGltfBoneWeights(bone.getSkeleton());
    const auto weightsOf = [&all](const RyNode *node) {
        const auto found = std::find_if(all.begin(), all.end(), [node](const auto &each) { return each.bone == node; });
        return found == all.end() ? nullptr : &found->weights;
    };
    const RyGltfBindingWeights *taken = weightsOf(&bone);
    if (!figure || !taken)
        return nullptr;
    const RyNode *giver = nullptr;
    std::pair<bool, qint64> best; // whether both have shares of the same weights, and how much was given
    for (const RyGltfLoadedWeights &before : *figure->weights) {
        if (!before.bone || !before.bone->getScene() || !origin.findSource(before.bone))
            continue;
        const RyGltfBindingWeights *now = weightsOf(before.bone);
        const qint64 given = givenTo(*taken, before, now);
        const std::pair match(given > 0 && now && areShares(*taken, *now), given);
        if (match > best) {
            best = match;
            giver = before.bone;
        }
    }
    const bool isBeside = giver && giver->isDescendantOf(bone.getNodeParent()) && !bone.isDescendantOf(giver);
    return isBeside ? origin.findSource(giver) : nullptr;
}

} // namespace

const RyGltfNodeSource *ryGltfWeightGiver(const RyGltfOrigin &origin, const RyNode &bone)
{
    const RyGltfNodeSource *known = knownGiver(origin, bone);
    if (!known)
        return likelyGiver(origin, bone);
    return known != ryGltfMovingBone(origin, bone.getNodeParent()) ? known : nullptr;
}

const RyGltfNodeSource *ryGltfMovingBone(const RyGltfOrigin &origin, const RyNode *bone)
{
    for (; bone; bone = bone->getNodeParent()) {
        const RyGltfNodeSource *source = origin.findSource(bone);
        if (!source && qobject_cast<const RyBone *>(bone)) {
            source = knownGiver(origin, *bone);
            source = source ? source : likelyGiver(origin, *bone);
        }
        if (source && source->isBone)
            return source;
    }
    return nullptr;
}
