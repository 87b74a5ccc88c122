#pragma once

class RyNode;
class RyRotationOrder;

/// What a change of the rotation order did.
enum class OrderChange {
    None, // no node, or it had that order
    Done,
    AnglesKept // bends turn about other axes with the angles that they had
};

/// Gives a node another rotation order. The parameters that it drives, on its own joint and on those of its parent and
/// children, are named and turned after the new order; bend angles that are still those of a new bone become those of
/// a new bone with that order. Spheres of parameters about another axis now keep their places, and their turns and
/// scales go to the axes that replace theirs. Opens no undo hold.
OrderChange changeRotationOrder(RyNode *node, const RyRotationOrder &order);
