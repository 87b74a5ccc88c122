#pragma once

#include "rycore/io/gltf/save/RyGltfFigurePlan.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"
#include "rycore/io/gltf/save/RyGltfTreePatch.h"

/// Writes what the edited figures of a file bind: the joints of their skins with inverse bind matrices, and the
/// influences of the parts whose weights or joints changed. Figures that nobody touched stay as they are, bit for bit;
/// a mesh that other nodes use too is copied first. Nodes must have been written.
class RyGltfSkinPatch
{
public:
    explicit RyGltfSkinPatch(RyGltfScenePatch &patch) : m_patch(patch), m_tree(patch.document) {}

    /// False with a reason when the document would not be valid.
    bool apply(QString *error);

private:
    using Figure = RyGltfFigurePlan;
    using Skin = RyGltfSkinPlan;

    bool standsAbove(int node, const std::vector<int> &joints) const;
    void writeJoints(const Figure &figure);
    void separateMeshes(Figure &figure);
    void writeBinds(const Figure &figure);
    void writeInfluences(const Figure &figure);
    void writeVertices(const Figure &figure);
    void renewDirections(const Figure &figure, const Skin &skin, const std::vector<RyGltfLinear> &carried);
    void separateProp(const RyGltfFigureSource &source);
    void writeProp(const RyGltfFigureSource &source, int mesh);

    RyGltfScenePatch &m_patch;
    RyGltfTreePatch m_tree;
    std::vector<std::pair<const RyGltfFigureSource *, int>> m_props; // with other vertices, and their meshes
    std::map<int, std::vector<int>> m_users;                         // nodes by the mesh that they use
};
