#pragma once

class RyNode;
class RySkeleton;

/// Turns the orientation so that the first axis of the rotation order points from the origin to the end point, forwards
/// or backwards, whichever the bone already goes. Current value only. A bone without length gets the identity. Any kind
/// of node; false for null only.
bool alignNode(RyNode *node);
/// Aligns a bone and all bones below it, depth first; anything that is no bone ends the walk. True when any was
/// aligned.
bool alignBranch(RyNode *node);
/// Aligns the branches that begin at the children of a figure, in one rig edit. True when any bone was aligned.
bool alignAllBones(const RySkeleton &skeleton);
