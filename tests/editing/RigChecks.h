#pragma once

#include <QString>

#include <array>
#include <map>
#include <vector>

class RyBone;
class RyScene;
class RySkeleton;
class RySkinBinding;

/// What must hold of every figure after every edit, read from the scene the slow and plain way.
///
/// Each function gives an empty text when it holds and otherwise says what is wrong.
namespace RigChecks {

/// General, local X, Y, Z and scale weights.
constexpr int Kinds = 5;
/// For each kind the sum of each vertex' weights over all bindings; an entry is empty where no binding has maps of the
/// kind.
using WeightSums = std::array<std::vector<int>, Kinds>;
WeightSums weightSums(const RySkinBinding &skin);

/// Sums are full weight, or zero where they were zero before.
QString weightsAreWhole(const WeightSums &before, const WeightSums &after);
/// Every binding has a bone of its skeleton or of one that this hangs on, no bone two bindings.
QString bindingsHaveBones(const RySkeleton &skeleton);
/// Every pair of the selection map has a node of the figure.
QString pairsHaveNodes(const RySkeleton &skeleton);
/// No two nodes of a figure share a name, and every bone has one.
QString namesAreUnique(const RySkeleton &skeleton);
/// Every joint of a parametric figure has a bone of it, and so has every parameter a driver; no bone has two joints,
/// and each is found by its bone.
QString jointsHaveBones(const RySkeleton &skeleton);
/// A parametric figure shows what one does that has kept nothing of what was before: all is finite and the same.
QString deformsAsNew(const RySkeleton &skeleton);
/// Bones are in the scene, parents list their children, children know their parents.
QString treeIsSound(const RySkeleton &skeleton);

/// Who gets the weights of a bone that is deleted: the nearest bone above it that is bound; where the skeleton comes
/// first, the first of its own children that is. Null: nobody, and they go.
RyBone *receiverOf(const RyBone *deleted);

/// The sums of all skins of a scene, to compare with later.
std::map<const RySkinBinding *, WeightSums> allWeightSums(const RyScene &scene);
/// Everything above for every figure of a scene.
QString check(const RyScene &scene, const std::map<const RySkinBinding *, WeightSums> &before);

} // namespace RigChecks
