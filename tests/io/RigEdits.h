#pragma once

#include <QString>

class RyBone;
class RyNode;
class RyScene;

/// What artists do to the bones of a figure, through the scene's own interface. Weights are moved and normalised as the
/// actions do it, so that meshes stay where they are.
namespace RigEdits {

/// Children move up, weights go to the nearest bone above that has some.
void deleteBone(RyScene &scene, RyBone *bone);
/// The lower half becomes a bone with a copy of the weights, which takes over the bones below.
RyBone *splitBone(RyScene &scene, RyBone *bone);
/// A bone beside it with a copy of its weights.
RyBone *addSibling(RyScene &scene, RyBone *bone);
/// A bone at its end with weights of zero.
RyBone *addChild(RyScene &scene, RyBone *bone);
/// The bone and its first bones below, three at most, again beside it, with weights of zero.
RyBone *duplicateChain(RyScene &scene, RyBone *bone);
/// Below another node, in its place in the world or with its pose controls as they are.
void reparent(RyBone *bone, RyNode *parent, bool keepWorld);

} // namespace RigEdits
