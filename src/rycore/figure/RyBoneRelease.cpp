#include "rycore/figure/RyBoneRelease.h"

#include "rycore/figure/RyLegacyBoneRemoval.h"
#include "rycore/mesh/ryAddWeights.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

namespace {

/// The weights, but no bulges: these push away from the line of the bone that goes.
void giveWeights(const RyBoneBinding &from, RyBoneBinding &to)
{
    const auto give = [](RyWeightMap *source, RyWeightMap *target, const auto &set) {
        if (source && !target)
            set(source->copy());
        else
            ryAddWeights(source, target);
    };
    give(from.getWeights(), to.getWeights(), [&to](RyWeightMap *map) { to.setWeights(map); });
    give(from.getScaleWeights(), to.getScaleWeights(), [&to](RyWeightMap *map) { to.setScaleWeights(map); });
    for (int axis = 0; axis < 3; ++axis) {
        give(from.getLocalWeights(axis), to.getLocalWeights(axis),
             [&to, axis](RyWeightMap *map) { to.setLocalWeights(map, axis); });
    }
}

void releaseVertices(RySkinBinding &skin, const std::vector<RyBone *> &bones, RyBone *receiver)
{
    RyBoneBinding *holder = receiver ? skin.findBoneBinding(receiver) : nullptr;
    bool isReleased = false;
    for (const RyBone *bone : bones) {
        RyBoneBinding *binding = skin.findBoneBinding(bone);
        if (!binding)
            continue;
        if (!holder && receiver) {
            holder = new RyBoneBinding;
            holder->setBone(receiver);
            skin.addBoneBinding(holder);
        }
        if (holder)
            giveWeights(*binding, *holder);
        skin.removeBoneBinding(binding);
        isReleased = true;
    }
    if (isReleased)
        skin.normalize(0, RySkinBinding::AllWeights, false);
}

} // namespace

void RyBoneRelease::release(const RySkeleton &figure, const std::vector<RyBone *> &bones, RyBone *receiver)
{
    if (RySkinBinding *skin = RySkinBinding::findSkin(&figure))
        releaseVertices(*skin, bones, receiver);
    const bool isParametric = RyLegacyBinding::findBinding(&figure);
    RySelectionMap *map = figure.getSelectionMap();
    for (RyBone *bone : bones) {
        if (isParametric)
            RyLegacyBoneRemoval(bone).removeLegacyJoint();
        for (int pair = map ? map->findPair(bone) : -1; pair >= 0; pair = map->findPair(bone))
            map->removePair(pair);
    }
}
