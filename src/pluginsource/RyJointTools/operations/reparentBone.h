#pragma once

class RyBone;
class RyNode;

/// What keeps a bone from hanging below a node.
enum class ReparentObstacle { None, Loop, OtherSkeleton };

/// Loop: the node is the bone itself or below it. OtherSkeleton: the bone would leave the skeleton whose skin binds it,
/// and its weights with it. A bone without a skeleton may go anywhere, and every bone may be left without a parent
/// (null).
ReparentObstacle findReparentObstacle(const RyBone *bone, const RyNode *newParent);
/// Takes the bone from its parent and makes it the last child of the new one; null leaves it without a parent. Values
/// that are relative to the parent stay as they are, so that a posed bone may move. Opens no undo hold. Nothing happens
/// where the bone may not hang below the node.
void reparentBone(RyBone *bone, RyNode *newParent);
