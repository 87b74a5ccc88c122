#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"

namespace {

bool isThere(const RyNode *primary)
{
    return primary != nullptr;
}

template<typename T>
bool isA(const RyNode *primary)
{
    return qobject_cast<const T *>(primary) != nullptr;
}

bool hasFigure(const RyNode *primary)
{
    return primary && isA<RyFigure>(primary->getSkeleton());
}

} // namespace

// clang-format off
const RySelectionRule always           = {allOf<>, nullptr, false};
const RySelectionRule isAnyNode        = {isThere, QT_TRANSLATE_NOOP("RyJEToolAction", "Select something in the scene first.")};
const RySelectionRule isSkeletonOrBone = {anyOf<isA<RySkeleton>, isA<RyBone>>, QT_TRANSLATE_NOOP("RyJEToolAction", "Select a bone or a figure first.")};
const RySelectionRule isBone           = {isA<RyBone>, QT_TRANSLATE_NOOP("RyJEToolAction", "Select a bone first.")};
const RySelectionRule isOfFigure       = {hasFigure, QT_TRANSLATE_NOOP("RyJEToolAction", "Select a weight-mapped figure or a part of one first.")};
const RySelectionRule isBoneOfFigure   = {allOf<isA<RyBone>, hasFigure>, QT_TRANSLATE_NOOP("RyJEToolAction", "Select a bone of a weight-mapped figure first.")};
// clang-format on
