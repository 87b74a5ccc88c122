#pragma once

class QString;
class RyBone;
class RyNode;
class RyRotationOrder;

/// Adds a bone as the last child of a node: it starts at the node's end point and goes as far as the node does along
/// the first axis of its rotation order. It inherits scale from a skeleton only. Where the node's figure has a skin,
/// the bone is bound to it without weights; that of a parametric figure gets a joint. Records into an undo hold that is
/// open, but opens none.
///
/// Returns the new bone, null for null.
RyBone *createChildBone(RyNode *parent, const QString &name, const QString &label, const RyRotationOrder &order);
