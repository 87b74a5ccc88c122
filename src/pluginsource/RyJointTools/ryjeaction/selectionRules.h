#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RySelectionRule.h"

extern const RySelectionRule always;
extern const RySelectionRule isAnyNode;
extern const RySelectionRule isSkeletonOrBone;
extern const RySelectionRule isBone;
/// A weight-mapped figure, or any node of one.
extern const RySelectionRule isOfFigure;
extern const RySelectionRule isBoneOfFigure;
