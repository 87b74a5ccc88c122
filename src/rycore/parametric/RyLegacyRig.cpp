#include "rycore/parametric/RyLegacyRig.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyAffine.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacyBonePlaces.h"
#include "rycore/parametric/RyLegacyRigCache.h"
#include "rycore/scene/RyBoneListOrder.h"
#include "rycore/scene/RySkeleton.h"

#include <QSet>

namespace {

RyLegacyControls controlsOfPose(const RyNode &bone)
{
    const RyNodePose::Controls &pose = bone.poseControls();
    const double general = bone.getScaleControl()->getValue();
    RyLegacyControls controls;
    for (size_t i = 0; i < 3; ++i) {
        controls.turn[i] = double(pose[RyNodePose::Rotation + i]->getValue()) * RyFastMath::RadiansPerDegree;
        controls.translation[i] = pose[RyNodePose::Translation + i]->getValue();
        controls.scale[i] = general * pose[RyNodePose::Scale + i]->getValue();
    }
    return controls;
}

/// The controls that make a bone's map of what is above it, as near as controls can say it.
RyLegacyControls controlsOfMap(const RyNode &bone, const RyNode *parent, const RyQuat &parentTurn, RyQuat &turn)
{
    const RyAffine &map = bone.figureMap();
    const RyAffine above = parent ? parent->figureMap() : RyAffine();
    const RyVec3 origin = bone.getOrigin();
    RyAffine place;
    RyLegacyControls controls;
    const double from[3] = {origin.x, origin.y, origin.z};
    double to[3];
    map.mapPoint(from, to);
    if (above.invert(place))
        place.mapPoint(to, to);
    for (size_t i = 0; i < 3; ++i)
        controls.translation[i] = to[i] - from[i];
    const RyAffine local = bone.inheritsScale() ? map * place : map * RyAffine::fromRotation(parentTurn.inverse());
    RyAffine stretch;
    local.decomposePolar(stretch, turn);
    const RyQuat orientation = bone.getOrientation();
    const RyRotationOrder order = bone.getRotationOrder();
    const int axes[3] = {order[0], order[1], order[2]};
    const RyVec3 degrees = (orientation * turn * orientation.inverse()).toEuler(axes);
    const RyAffine inAxes =
        RyAffine::fromRotation(orientation) * stretch * RyAffine::fromRotation(orientation.inverse());
    for (int i = 0; i < 3; ++i) {
        controls.turn[size_t(i)] = double(degrees[i]) * RyFastMath::RadiansPerDegree;
        controls.scale[size_t(i)] = inAxes.m[i][i];
    }
    return controls;
}

} // namespace

RyLegacyRig RyLegacyRig::of(const RyLegacyBinding &binding, const RySkeleton &skeleton)
{
    return RyLegacyRigCache().of(binding, skeleton);
}

std::vector<RyNode *> RyLegacyRig::bonesOf(const RyLegacyBinding *binding, const RySkeleton &skeleton)
{
    const RyBoneListOrder order(RyBoneListOrder::Tree); // also within a pick pass
    const std::vector<RyBone *> own = skeleton.getAllBones();
    std::vector<RyNode *> bones(own.begin(), own.end());
    QSet<const RyNode *> listed(bones.begin(), bones.end());
    for (const RyLegacyJoint *joint : binding ? binding->joints() : std::vector<RyLegacyJoint *>()) {
        if (!RyLegacyBinding::isJoined(skeleton, joint->getBone()))
            continue;
        std::vector<RyNode *> chain;
        for (RyNode *node = joint->getBone(); node != joint->getBone()->getSkeleton(); node = node->getNodeParent()) {
            if (!listed.contains(node))
                chain.push_back(node);
            listed.insert(node);
        }
        bones.insert(bones.end(), chain.rbegin(), chain.rend());
    }
    return bones;
}

std::vector<RyLegacyControls> RyLegacyRig::controlsOf(const RySkeleton &skeleton)
{
    const std::vector<RyNode *> bones = bonesOf(RyLegacyBinding::findBinding(&skeleton), skeleton);
    const BonePlaces places(bones);
    std::vector<RyLegacyControls> controls;
    std::vector<RyQuat> turns; // from figure space to figure space
    for (const RyNode *bone : bones) {
        const int place = places.ofParent(bone);
        const RyNode *parent = place < 0 ? nullptr : bones[size_t(place)];
        const RyQuat parentTurn = parent ? turns[size_t(place)] : RyQuat();
        RyQuat turn = bone->getLocalRot();
        // Below a played bone scale is inherited in any case, which controls do not say.
        if (bone->isPlayed() || (parent && parent->isPlayed()))
            controls.push_back(controlsOfMap(*bone, parent, parentTurn, turn));
        else
            controls.push_back(controlsOfPose(*bone));
        turns.push_back((turn * parentTurn).normalized());
    }
    return controls;
}
