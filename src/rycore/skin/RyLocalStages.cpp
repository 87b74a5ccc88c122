#include "rycore/skin/RyLocalStages.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyNormalMap.h"

#include <algorithm>

namespace {

/// The map of a bone that neither turns nor scales: its translation and what its parent does. Where the parent's scale
/// is not passed on that depends on the origin, otherwise not, not even by rounding.
RyAffine unturnedMap(const RyBone &bone)
{
    const double moved[3] = {bone.getXTransControl()->getValue(), bone.getYTransControl()->getValue(),
                             bone.getZTransControl()->getValue()};
    const RyNode *parent = bone.getNodeParent();
    const RyAffine translation = RyAffine::fromTranslation(moved[0], moved[1], moved[2]);
    if (!parent)
        return translation;
    const RyAffine &parentMap = parent->figureMap();
    if (bone.inheritsScale())
        return translation * parentMap;
    // Without its parent's scale: the rotations alone, at the place where the parent's full map puts the origin.
    const RyVec3 origin = bone.getOrigin();
    const double placed[3] = {origin.x + moved[0], origin.y + moved[1], origin.z + moved[2]};
    double target[3];
    parentMap.mapPoint(placed, target);
    RyAffine rotation;
    for (const RyNode *node = parent; node && !qobject_cast<const RySkeleton *>(node); node = node->getNodeParent())
        rotation = rotation * RyAffine::fromRotation(node->getLocalRot());
    return RyAffine::fromTranslation(-origin) * rotation * RyAffine::fromTranslation(target[0], target[1], target[2]);
}

bool isScaled(const RyBone &bone)
{
    const double general = bone.getScaleControl()->getValue();
    const RyFloatProperty *controls[3] = {bone.getXScaleControl(), bone.getYScaleControl(), bone.getZScaleControl()};
    return std::any_of(controls, controls + 3, [general](auto *each) { return general * each->getValue() != 1.0; });
}

RyAffine rotationOfControl(const RyBone &bone, int axis)
{
    const double angle = double(bone.rotationControl(axis)->getValue()) * RyFastMath::RadiansPerDegree;
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    const int next = (axis + 1) % 3;
    const int last = (axis + 2) % 3;
    RyAffine result;
    result.m[next][next] = c;
    result.m[next][last] = s;
    result.m[last][next] = -s;
    result.m[last][last] = c;
    return result;
}

/// The identity plus the difference of two stages.
RyAffine share(const RyAffine &stage, const RyAffine &before)
{
    RyAffine result;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j)
            result.m[i][j] += stage.m[i][j] - before.m[i][j];
    }
    return result;
}

} // namespace

void RyLocalStages::appendChannels(const RyBoneBinding &binding, std::vector<RySkinDeformer::Channel> &channels)
{
    RySkinDeformer::Channel local[3];
    size_t count = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const RyWeightMap *map = binding.getLocalWeights(axis);
        local[axis] = RySkinDeformer::Channel::fromMap(map);
        count = map ? std::max(count, size_t(map->getNumWeights())) : count;
    }
    std::vector<float> sums(count, 0.0f);
    for (const RySkinDeformer::Channel &channel : local) {
        for (size_t i = 0; i < channel.vertices.size(); ++i)
            sums[size_t(channel.vertices[i])] += channel.weights[i];
    }
    RySkinDeformer::Channel mean;
    for (size_t i = 0; i < sums.size(); ++i) {
        if (sums[i] > 0.0f) {
            mean.vertices.push_back(int(i));
            mean.weights.push_back(sums[i] / 3.0f);
        }
    }
    RySkinDeformer::Channel scale =
        binding.getScaleWeights() ? RySkinDeformer::Channel::fromMap(binding.getScaleWeights()) : mean;
    channels.push_back(std::move(mean));
    for (RySkinDeformer::Channel &channel : local)
        channels.push_back(std::move(channel));
    channels.push_back(std::move(scale));
}

void RyLocalStages::fillMaps(const RyBone *bone, RyAffine maps[Count], RyAffine normalMaps[Count])
{
    std::fill(maps, maps + Count, RyAffine());
    std::fill(normalMaps, normalMaps + Count, RyAffine());
    if (!bone)
        return;
    if (bone->isPlayed()) { // files know the mean of the local maps alone
        maps[0] = bone->figureMap();
        normalMaps[0] = RyNormalMap::of(maps[0]);
        return;
    }
    // From figure space to the bone's axes about its origin, and back.
    const RyQuat orientation = bone->getOrientation();
    const RyAffine toBone =
        RyAffine::fromTranslation(-bone->getOrigin()) * RyAffine::fromRotation(orientation.inverse());
    const RyAffine fromBone = RyAffine::fromRotation(orientation) * RyAffine::fromTranslation(bone->getOrigin());
    const RyAffine unturned = unturnedMap(*bone);
    const RyRotationOrder order = bone->getRotationOrder();
    RyAffine before = unturned;
    const auto setStage = [&](int index, const RyAffine &stage) {
        maps[index] = share(stage, before);
        normalMaps[index] = share(RyNormalMap::of(stage), RyNormalMap::of(before));
        before = stage;
    };
    maps[0] = unturned;
    normalMaps[0] = RyNormalMap::of(unturned);
    RyAffine rotation;
    for (int turn = 2; turn >= 0; --turn) {
        rotation = rotationOfControl(*bone, order[turn]) * rotation;
        setStage(1 + order[turn], rotation == RyAffine() ? unturned : toBone * rotation * fromBone * unturned);
    }
    setStage(4, isScaled(*bone) ? bone->figureMap() : before);
}
