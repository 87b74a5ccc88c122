#pragma once

class RyNode;

// How far down nodes hang.

/// How far below its skeleton a node hangs: 1 for its children, also for null and for a node without a parent.
int boneDepth(const RyNode *node);
/// Whether a bone that moves from below one node to below another stays at the same level: both nodes have the same
/// parent, or a common one as many steps up, below the skeleton or at it. Either may be null.
bool areAtTheSameLevel(const RyNode *oldParent, const RyNode *newParent);
