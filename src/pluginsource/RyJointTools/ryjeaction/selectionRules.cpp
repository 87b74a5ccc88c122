#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"

const RySelectionRule isAnyNode = {[](const RyNode *primary) { return primary != nullptr; },
                                   QT_TRANSLATE_NOOP("RyJEToolAction", "Select something in the scene first.")};

const RySelectionRule isSkeletonOrBone = {
    [](const RyNode *primary) { return qobject_cast<const RySkeleton *>(primary) || isBone(primary); },
    QT_TRANSLATE_NOOP("RyJEToolAction", "Select a bone or a figure first.")};

const RySelectionRule isBone = {[](const RyNode *primary) { return qobject_cast<const RyBone *>(primary) != nullptr; },
                                QT_TRANSLATE_NOOP("RyJEToolAction", "Select a bone first.")};

const RySelectionRule isOfFigure = {
    [](const RyNode *primary) { return primary && qobject_cast<const RyFigure *>(primary->getSkeleton()); },
    QT_TRANSLATE_NOOP("RyJEToolAction", "Select a weight-mapped figure or a part of one first.")};

const RySelectionRule isBoneOfFigure = {
    [](const RyNode *primary) { return isBone(primary) && isOfFigure(primary); },
    QT_TRANSLATE_NOOP("RyJEToolAction", "Select a bone of a weight-mapped figure first.")};
