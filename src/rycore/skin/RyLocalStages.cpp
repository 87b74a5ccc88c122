#include "rycore/skin/RyLocalStages.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"

#include <algorithm>

namespace {

/// What follows the bone's own scale and rotation, which act about its origin.
RyAffine mapAfterBone(const RyBone &bone)
{
    const RyVec3 origin = bone.getOrigin();
    const double placed[3] = {double(origin.x) + bone.getXTransControl()->getValue(),
                              double(origin.y) + bone.getYTransControl()->getValue(),
                              double(origin.z) + bone.getZTransControl()->getValue()};
    const RyNode *parent = bone.getNodeParent();
    if (!parent)
        return RyAffine::fromTranslation(placed[0], placed[1], placed[2]);
    const RyAffine &parentMap = parent->figureMap();
    if (bone.inheritsScale())
        return RyAffine::fromTranslation(placed[0], placed[1], placed[2]) * parentMap;
    // Without its parent's scale: the rotations alone, at the place where the parent's full map puts the origin.
    double target[3];
    parentMap.mapPoint(placed, target);
    RyAffine rotation;
    for (const RyNode *node = parent; node && !qobject_cast<const RySkeleton *>(node); node = node->getNodeParent())
        rotation = rotation * RyAffine::fromRotation(node->getLocalRot());
    return rotation * RyAffine::fromTranslation(target[0], target[1], target[2]);
}

RyAffine rotationOfControl(const RyBone &bone, int axis)
{
    const RyFloatProperty *controls[3] = {bone.getXRotControl(), bone.getYRotControl(), bone.getZRotControl()};
    const double angle = double(controls[axis]->getValue()) * RyFastMath::RadiansPerDegree;
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

void RyLocalStages::fillMaps(const RyBone *bone, RyAffine maps[Count])
{
    if (!bone) {
        std::fill(maps, maps + Count, RyAffine());
        return;
    }
    const RyQuat orientation = bone->getOrientation();
    const RyAffine toBone =
        RyAffine::fromTranslation(-bone->getOrigin()) * RyAffine::fromRotation(orientation.inverse());
    const RyAffine fromBone = RyAffine::fromRotation(orientation) * mapAfterBone(*bone);
    const RyRotationOrder order = bone->getRotationOrder();
    RyAffine before = toBone * fromBone;
    maps[0] = before;
    RyAffine rotation;
    for (int turn = 2; turn >= 0; --turn) {
        rotation = rotationOfControl(*bone, order[turn]) * rotation;
        const RyAffine stage = toBone * rotation * fromBone;
        maps[1 + order[turn]] = share(stage, before);
        before = stage;
    }
    maps[4] = share(bone->figureMap(), before);
}
