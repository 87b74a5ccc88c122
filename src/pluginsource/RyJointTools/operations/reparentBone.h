#pragma once

class RyBone;
class RyNode;

/// Whether a bone that moves from below one node to below another stays at the same level: both nodes have the same
/// parent, or a common one as many steps up, below the skeleton or at it. Either may be null.
bool areAtTheSameLevel(const RyNode *oldParent, const RyNode *newParent);
/// Whether the bone may hang below the node: not below itself or its own descendants.
bool canHangBelow(const RyBone *bone, const RyNode *newParent);
/// Takes the bone from its parent and makes it the last child of the new one; null leaves it without a parent. Values that
/// are relative to the parent stay as they are, so that a posed bone may move. Opens no undo hold. Nothing happens where the
/// bone may not hang below the node.
void reparentBone(RyBone *bone, RyNode *newParent);
