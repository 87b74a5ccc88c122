#include "pluginsource/RyJointTools/operations/mirrorNode.h"

#include "pluginsource/RyJointTools/operations/changeRotationOrder.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/adjustValues.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyMirror.h"
#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyBone.h"
#include "rycore/skin/RySkinBinding.h"

#include <array>

namespace {

void mirrorRigging(const RyNode &source, const RyNode &target, int axis, std::vector<MirroredControl> &controls)
{
    const RyNodeRigging::Controls &from = source.riggingControls();
    const RyNodeRigging::Controls &to = target.riggingControls();
    for (size_t i = 0; i < from.size(); ++i) {
        if (from[i] && to[i])
            controls.push_back({from[i], to[i], RyNodeRigging::isReversedByMirror(int(i), axis)});
    }
}

/// Turns about the other axes change their sign, so that positive and negative as well as left and right change places.
void mirrorBulge(const RyBulgeBinding &source, const RyBulgeBinding &target, bool isAlong,
                 std::vector<MirroredControl> &controls)
{
    const auto &from = source.controllers();
    const auto &to = target.controllers();
    for (size_t i = 0; i < from.size(); ++i)
        controls.push_back({from[isAlong ? i : 3 - i], to[i], false});
}

/// False where the skin of a figure does not bind both.
bool mirrorBulges(const RyNode &source, const RyNode &target, int axis, std::vector<MirroredControl> &controls)
{
    const auto *figure = qobject_cast<const RyFigure *>(source.getSkeleton());
    const RySkinBinding *skin = figure ? RySkinBinding::findSkin(figure) : nullptr;
    const RyBoneBinding *from = skin ? skin->findBoneBinding(&source) : nullptr;
    const RyBoneBinding *to = skin ? skin->findBoneBinding(&target) : nullptr;
    for (int k = 0; from && to && k < 3; ++k) {
        const RyBulgeBinding *bulge = from->getBulgeBinding(k);
        const RyBulgeBinding *other = to->getBulgeBinding(k);
        if (bulge && other)
            mirrorBulge(*bulge, *other, k == axis, controls);
    }
    return !figure || (from && to);
}

/// All is read before anything is written: links pass on what is, and a node may be its own opposite.
void writeMirrored(const std::vector<MirroredControl> &controls)
{
    std::vector<float> defaults;
    std::vector<RyWantedValue> wanted;
    for (const MirroredControl &each : controls) {
        defaults.push_back(each.reflected(each.from->getDefaultValue()));
        wanted.push_back({each.to, each.reflected(each.from->getValue())});
    }
    for (size_t i = 0; i < controls.size(); ++i)
        controls[i].to->setDefaultValue(defaults[i]);
    adjustValues(wanted);
}

/// "Left Bend" on the one side is "Right Bend" on the other.
void mirrorLabels(const RyNode &source, const RyNode &target)
{
    const RyNodePose::Controls &from = source.poseControls();
    const RyNodePose::Controls &to = target.poseControls();
    for (size_t i = 0; i < from.size(); ++i) {
        const QString label = RyNameMarks(from[i]->getLabel()).exchanged(RyNameMarks::Which::All);
        if (to[i]->getLabel() != label)
            to[i]->setLabel(label);
    }
}

} // namespace

std::vector<MirroredControl> mirroredControls(const RyNode &source, const RyNode &target, int axis)
{
    std::vector<MirroredControl> controls;
    mirrorRigging(source, target, axis, controls);
    mirrorBulges(source, target, axis, controls);
    return controls;
}

MirrorResult mirrorNode(const RyNode *source, RyNode *target, int axis)
{
    if (!source || !target || axis < 0 || axis > 2)
        return MirrorResult::Done;
    changeRotationOrder(target, source->getRotationOrder());
    std::vector<MirroredControl> controls;
    mirrorRigging(*source, *target, axis, controls);
    const bool isComplete = mirrorBulges(*source, *target, axis, controls);
    target->beginEdit();
    writeMirrored(controls);
    target->finishEdit();
    if (!isComplete)
        return MirrorResult::WithoutBulges;
    if (!qobject_cast<const RyFigure *>(source->getSkeleton()))
        RyLegacyMirror::mirrorJoint(RyLegacyJoint::findJoint(source), RyLegacyJoint::findJoint(target), axis);
    target->setInheritScale(source->inheritsScale());
    mirrorLabels(*source, *target);
    return MirrorResult::Done;
}
