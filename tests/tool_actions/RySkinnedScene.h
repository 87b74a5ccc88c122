#pragma once

#include "support/RyMapOf.h"
#include "tool/RyWindowScene.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"

/// All weights of a map, or nothing for null.
std::vector<int> ryWeightsOf(const RyWeightMap *map);

/// The scene of the tool tests whose figure has a cloud of vertices and a skin that binds all five bones: random
/// weights whose sum is full for each vertex and kind of map.
struct RySkinnedScene : RyWindowScene
{
    enum Maps { General, Local, Both };
    explicit RySkinnedScene(Maps maps = General, int vertexCount = 60);

    RyBoneBinding *binding(const RyNode *bone) const { return skin->findBoneBinding(bone); }
    std::vector<RyVec3> shown() const { return object->getDeformedPositions(); }

    RyObject *object;
    RySkinBinding *skin;
};

/// What is wrong with a figure after bones came or went: weights of a vertex whose sum is neither full nor zero,
/// bindings and pairs without a bone of the skeleton, names or labels that are there twice. Empty when all is well.
QString ryFaultsOf(const RySkeleton *skeleton);
/// How far the vertices of two pictures of an object are apart at most; infinite for different counts.
float ryLargestWay(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b);
