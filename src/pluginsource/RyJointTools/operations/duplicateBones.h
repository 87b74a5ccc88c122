#pragma once

#include <QStringList>

#include <vector>

class RyAssetIOMgr;
class RyBone;
class RyFigure;
class RyNode;

/// How far below its skeleton a node hangs: 1 for its children, also for null and for a node without a parent.
int boneDepth(const RyNode *node);
/// Makes a bone like each of these bones of one figure, beside it, or below the duplicate of its parent where that is among
/// them too. Duplicates are bound like their originals, but without weights. Bones that cannot be duplicated are left out.
/// Nothing is recorded for undo, and the selection stays.
///
/// Returns what could not be done, one message each.
QStringList duplicateBones(RyFigure *figure, std::vector<RyBone *> bones, RyAssetIOMgr &assets);
