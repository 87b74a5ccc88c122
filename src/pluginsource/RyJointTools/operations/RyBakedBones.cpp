#include "pluginsource/RyJointTools/operations/RyBakedBones.h"

#include "pluginsource/RyJointTools/operations/RyHeldValues.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

static std::vector<std::pair<RyFloatProperty *, float>> neutralPoseOf(const RyBone &bone)
{
    std::vector<std::pair<RyFloatProperty *, float>> pose;
    for (size_t i = 0; i < bone.poseControls().size(); ++i)
        pose.emplace_back(bone.poseControls()[i], i < RyNodePose::GeneralScale ? 0.0f : 1.0f);
    return pose;
}

RyBakedBones::RyBakedBones(const RySkeleton &figure)
{
    for (RyBone *bone : figure.ownBones()) {
        const RyNode *above = bone->getNodeParent();
        m_areConnected = m_areConnected && (above == &figure || qobject_cast<const RyBone *>(above));
        m_records.push_back(recordOf(bone));
    }
}

RyBakedBones::Record RyBakedBones::recordOf(RyBone *bone)
{
    RyQuat turn;
    for (const RyNode *node = bone; qobject_cast<const RyBone *>(node); node = node->getNodeParent())
        turn = turn * node->getLocalRot();
    const RyAffine &map = bone->figureMap();
    return {bone,
            map.mapPoint(bone->getOrigin()),
            map.mapPoint(bone->getEndPoint()),
            bone->getOrientation() * turn,
            {map, turn}};
}

std::vector<RyBone *> RyBakedBones::bones() const
{
    std::vector<RyBone *> bones;
    for (const Record &record : m_records)
        bones.push_back(record.bone);
    return bones;
}

bool RyBakedBones::isPosed() const
{
    return std::any_of(m_records.begin(), m_records.end(), [](const Record &record) {
        return !(record.carried == RyBone::Carried()) || !(record.bone->getLocalMap() == RyAffine());
    });
}

void RyBakedBones::shiftLimits(const RyBone &bone)
{
    for (int axis = 0; axis < 3; ++axis) {
        RyFloatProperty *control = bone.rotationControl(axis);
        const float value = control->getRawValue();
        if (!control->isClamped() || value == 0.0f)
            continue;
        control->setMin(control->getMin() - value);
        control->setMax(control->getMax() - value);
    }
}

void RyBakedBones::apply() const
{
    for (const Record &record : m_records) {
        RyBone &bone = *record.bone;
        // What the pose does not touch keeps its numbers to the bit.
        if (!(record.carried == RyBone::Carried())) {
            bone.setOrigin(record.origin, true);
            bone.setEndPoint(record.endPoint, true);
            bone.setOrientation(record.orientation, true);
        }
        bone.carry(record.carried);
        shiftLimits(bone);
        bone.setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
    }
}

/// What has to result where links add to a value, from within the figure or from elsewhere.
void RyBakedBones::hold(RyHeldValues &values) const
{
    for (const Record &record : m_records) {
        const RyBone &bone = *record.bone;
        for (const auto &[control, neutral] : neutralPoseOf(bone))
            values.add(control, neutral);
        if (record.carried == RyBone::Carried())
            continue;
        for (int axis = 0; axis < 3; ++axis) {
            values.add(bone.riggingControls()[size_t(RyNodeRigging::Origin + axis)], record.origin[axis]);
            values.add(bone.riggingControls()[size_t(RyNodeRigging::End + axis)], record.endPoint[axis]);
        }
    }
}
