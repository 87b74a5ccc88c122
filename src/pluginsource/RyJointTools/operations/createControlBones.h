#pragma once

#include <vector>

class QString;
class RyBone;
class RyNode;
class RySkeleton;

enum class RyControlBoneMode { SelectedAndChildren, ChildrenOfSelected };

/// The bones of a skeleton that are to have control bones: each selected one that has no selected bone above it, and
/// all bones below, or these alone. In order of selection, parents before children.
std::vector<RyBone *> listBonesToControl(const std::vector<RyNode *> &selection, const RySkeleton *skeleton,
                                         RyControlBoneMode mode);

/// Makes a control bone for each of these bones of one skeleton, parents first: a bone at the same place, named by the
/// prefix and the bone's name, that poses the bone through ten links and has its face group. It hangs below the control
/// bone that was made for the bone's parent, else beside the bone. It has no weights, and the pose of the bone stays.
/// Left out are bones whose name begins with the prefix and those whose control bone's name is taken.
///
/// Returns how many were made. Undoable where a hold is open.
int createControlBones(const std::vector<RyBone *> &bones, const QString &prefix);
