#pragma once

#include "ryforeign/RyForeignBinds.h"
#include "ryforeign/RyForeignInput.h"
#include "ryforeign/RyForeignTree.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

class RyForeignMeshWriter;
class RyForeignSkin;
class RyGltfDocument;

/// Makes a glTF document of a foreign file: its nodes below one that carries unit and axes, its meshes, skins, morphs,
/// clips and materials.
class RyForeignConverter
{
public:
    /// The tree is placed in the world of the document, its joints are marked.
    RyForeignConverter(const RyForeignInput &input, const RyForeignTree &tree, const RyAffine &top);
    ~RyForeignConverter();

    /// Told how much is done, from 0 to 1; null when nobody wants it any more.
    std::unique_ptr<RyGltfDocument> convert(const std::function<bool(double)> &progress);

private:
    void addNodes();
    int addNode(const QString &name, const RyAffine &local, int parent, bool isDriven);
    void planSkins();
    /// The topmost joint above it, or itself: joints that hang below one another are one figure, also where plain nodes
    /// stand between them.
    int topOf(int joint) const { return m_tops[size_t(joint)]; }
    int figureOf(int top);
    bool addMeshes(const std::function<bool(double)> &progress);
    void addMesh(int node, RyForeignMeshWriter &writer);
    void addSkeletonsWithoutMesh();
    int writeSkin(const RyForeignSkin &skin, const RyAffine &toFigure);
    void noteRest() const;

    const RyForeignInput &m_input;
    const RyForeignTree &m_tree;
    RyAffine m_top;
    RyForeignBinds m_binds;
    std::unique_ptr<RyGltfDocument> m_document;
    std::vector<int> m_nodeOf;                             // of the document, by nodes of the tree
    std::vector<int> m_shownBy;                            // of the document: what shows their meshes, -1 for none
    std::map<int, std::unique_ptr<RyForeignSkin>> m_skins; // by nodes with a skinned mesh
    std::vector<int> m_tops;                               // per node of the tree, see topOf
    std::vector<int> m_figures;                    // per node of the tree: a joint nearer to the figure's first top
    std::map<std::vector<unsigned>, int> m_meshes; // of the document, without a skin
    int m_lines = 0;
};
