#pragma once

#include "CharacterScene.h"
#include "FigureSketch.h"

#include <map>
#include <random>
#include <utility>
#include <vector>

/// A figure, turned, scaled and posed, of two meshes with morph targets, and a prop with some on a joint. The body
/// (node 3) has two primitives and 50 targets, dense, sparse, of whole numbers and of nothing, the head (node 4) 12
/// that share some of the body's names, the prop (node 5) four. Some targets have no name. A clip drives the body's
/// weights.
class MorphFile
{
public:
    static constexpr int BodyTargets = 50;
    static constexpr int HeadTargets = 12;
    static constexpr int PropTargets = 4;

    explicit MorphFile(unsigned seed);

    FigureSketch sketch;
    /// By the name in the scene: nodes and numbers of the targets that make the morph, and where it starts.
    using Targets = std::vector<std::pair<int, int>>;
    std::map<QString, Targets> figureMorphs, propMorphs;
    std::map<QString, float> starts;

    /// What the file's nodes have to say for the values that a node of the scene has now.
    static GltfPose weightsOf(const std::map<QString, Targets> &morphs, const RyNode &node, GltfPose pose = {});

private:
    int addTarget(int kind);
    nlohmann::json targets(int count, int firstKind);

    std::mt19937 m_random;
};
