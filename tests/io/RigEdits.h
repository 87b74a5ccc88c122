#pragma once

#include <QString>

#include <random>
#include <vector>

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
/// Moves so much weight, where it is there, from the first bone of each figure that has some to the next one.
void shiftWeights(RyScene &scene, int amount);
/// Below another node, in its place in the world or with its pose controls as they are.
void reparent(RyBone *bone, RyNode *parent, bool keepWorld);

/// All of it, and renaming, to be done to a bone without further choice.
struct Kind
{
    const char *name;
    void (*edit)(RyScene &scene, RyBone *bone, std::mt19937 &random);
};
const std::vector<Kind> &kinds();
RyBone *pick(const std::vector<RyBone *> &bones, std::mt19937 &random);
/// One of the kinds, done to one of the bones.
void editAtRandom(RyScene &scene, const std::vector<RyBone *> &bones, std::mt19937 &random);

} // namespace RigEdits
