#pragma once

#include <QString>

#include <vector>

class RyElement;
class RyNode;
class RyScene;

/// Puts one node in the place of another: what conversions between props and figures share. All of it is undoable where
/// a hold is open.
namespace RyNodeReplacement {

/// `with` gets the label, flags, rotation order, rigging, pose, links and face groups of `node` and hangs beside it,
/// right before it; it enters the scene that `node` is in. Children, object and selection stay where they are.
void takePlace(RyNode *node, RyNode *with);
/// Moves the object, which then deforms with its new node alone: modifiers stay in it.
void moveObject(RyNode *from, RyNode *to);
/// Removes links by which elements that are about to go move what stays.
void cutLinks(const std::vector<const RyElement *> &going);
/// Takes `node` out of its scene, or from its parent where it is in none; `with` is selected in its place where it was
/// selected. Undo and redo select what was selected before and after.
void removeNode(RyNode *node, RyNode *with, const std::vector<RyNode *> &selectionBefore);
/// Keeps the selection for undo: call it before anything else of the step.
std::vector<RyNode *> rememberSelection(RyScene *scene);

} // namespace RyNodeReplacement
