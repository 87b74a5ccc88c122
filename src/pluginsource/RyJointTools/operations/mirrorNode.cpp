#include "pluginsource/RyJointTools/operations/mirrorNode.h"

#include "pluginsource/RyJointTools/operations/changeRotationOrder.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyMirror.h"
#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyBone.h"
#include "rycore/skin/RySkinBinding.h"

#include <array>

namespace {

void copyValue(const RyFloatProperty *from, RyFloatProperty *to, bool isNegated)
{
    // Never the negative zero, which would be another value to files and dumps.
    const auto turned = [isNegated](float value) { return isNegated ? 0.0f - value : 0.0f + value; };
    to->setDefaultValue(turned(from->getDefaultValue()));
    if (to->getValue() != turned(from->getValue())) // links may round what they add
        to->adjustValue(turned(from->getValue()));
}

std::array<RyFloatProperty *, 9> riggingOf(const RyNode &node)
{
    return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
            node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
            node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
}

/// Points lose their side along the axis. A turn about an axis (a, angle) becomes (a M, -angle), which in angles of
/// fixed XYZ order reverses the two about the other axes and keeps the one about the mirror axis: to the bit.
void mirrorRigging(const RyNode &source, RyNode &target, int axis)
{
    const auto from = riggingOf(source);
    const auto to = riggingOf(target);
    target.beginEdit();
    for (size_t i = 0; i < from.size(); ++i) {
        const bool isAlong = int(i % 3) == axis;
        const bool isAngle = i >= 6;
        if (from[i] && to[i])
            copyValue(from[i], to[i], isAngle != isAlong);
    }
    target.finishEdit();
}

/// Turns about the other axes change their sign, so that positive and negative as well as left and right change places.
void mirrorBulge(const RyBulgeBinding &source, const RyBulgeBinding &target, bool isAlong)
{
    const std::array from = {source.getPosLeftBulgeController(), source.getNegLeftBulgeController(),
                             source.getPosRightBulgeController(), source.getNegRightBulgeController()};
    const std::array to = {target.getPosLeftBulgeController(), target.getNegLeftBulgeController(),
                           target.getPosRightBulgeController(), target.getNegRightBulgeController()};
    for (size_t i = 0; i < from.size(); ++i)
        copyValue(from[isAlong ? i : 3 - i], to[i], false);
}

/// False where the skin does not bind both.
bool mirrorBulges(const RyFigure &figure, const RyNode &source, const RyNode &target, int axis)
{
    const RySkinBinding *skin = RySkinBinding::findSkin(&figure);
    const RyBoneBinding *from = skin ? skin->findBoneBinding(&source) : nullptr;
    const RyBoneBinding *to = skin ? skin->findBoneBinding(&target) : nullptr;
    if (!from || !to)
        return false;
    for (int k = 0; k < 3; ++k) {
        const RyBulgeBinding *bulge = from->getBulgeBinding(k);
        const RyBulgeBinding *other = to->getBulgeBinding(k);
        if (bulge && other)
            mirrorBulge(*bulge, *other, k == axis);
    }
    return true;
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

MirrorResult mirrorNode(const RyNode *source, RyNode *target, int axis)
{
    if (!source || !target || axis < 0 || axis > 2)
        return MirrorResult::Done;
    changeRotationOrder(target, source->getRotationOrder());
    mirrorRigging(*source, *target, axis);
    if (const auto *figure = qobject_cast<const RyFigure *>(source->getSkeleton())) {
        if (!mirrorBulges(*figure, *source, *target, axis))
            return MirrorResult::WithoutBulges;
    } else {
        RyLegacyMirror::mirrorJoint(RyLegacyJoint::findJoint(source), RyLegacyJoint::findJoint(target), axis);
    }
    target->setInheritScale(source->inheritsScale());
    mirrorLabels(*source, *target);
    return MirrorResult::Done;
}
