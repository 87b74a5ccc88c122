#pragma once

class RyNode;

/// Puts the origin on the end point of the parent. False for null and without a parent.
bool snapCenterPoint(RyNode *node);
/// Puts the end point at the mean of the origins of the children that are bones. False for null only: a node without
/// children stays as it is, and one whose children are all no bones gets (0,0,0).
bool snapEndPoint(RyNode *node);
