#pragma once

class RyNode;

// What an action needs of the primary selection, which may be null, to be enabled.

bool isAnyNode(const RyNode *primary);
bool isSkeletonOrBone(const RyNode *primary);
bool isBone(const RyNode *primary);
/// A weight-mapped figure, or any node of one.
bool isOfFigure(const RyNode *primary);
