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

std::array<RyFloatProperty *, 9> riggingOf(const RyNode &node)
{
    return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
            node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
            node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
}

/// Points lose their side along the axis. A turn about an axis (a, angle) becomes (a M, -angle), which in angles of
/// fixed XYZ order reverses the two about the other axes and keeps the one about the mirror axis: to the bit.
void mirrorRigging(const RyNode &source, const RyNode &target, int axis, std::vector<MirroredControl> &controls)
{
    const auto from = riggingOf(source);
    const auto to = riggingOf(target);
    for (size_t i = 0; i < from.size(); ++i) {
        const bool isAlong = int(i % 3) == axis;
        const bool isAngle = i >= 6;
        if (from[i] && to[i])
            controls.push_back({from[i], to[i], isAngle != isAlong});
    }
}

/// Turns about the other axes change their sign, so that positive and negative as well as left and right change places.
void mirrorBulge(const RyBulgeBinding &source, const RyBulgeBinding &target, bool isAlong,
                 std::vector<MirroredControl> &controls)
{
    const std::array from = {source.getPosLeftBulgeController(), source.getNegLeftBulgeController(),
                             source.getPosRightBulgeController(), source.getNegRightBulgeController()};
    const std::array to = {target.getPosLeftBulgeController(), target.getNegLeftBulgeController(),
                           target.getPosRightBulgeController(), target.getNegRightBulgeController()};
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
    const auto controls = [](const RyNode &node) {
        return std::array{node.getXTransControl(), node.getYTransControl(), node.getZTransControl(),
                          node.getXRotControl(),   node.getYRotControl(),   node.getZRotControl(),
                          node.getScaleControl(),  node.getXScaleControl(), node.getYScaleControl(),
                          node.getZScaleControl()};
    };
    const auto from = controls(source);
    const auto to = controls(target);
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
