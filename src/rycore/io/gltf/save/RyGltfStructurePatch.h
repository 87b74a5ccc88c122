#pragma once

#include "rycore/base/RyPointerTable.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"
#include "rycore/io/gltf/save/RyGltfTops.h"
#include "rycore/io/gltf/save/RyGltfTreePatch.h"

/// Brings the tree of a patched document in line with the scene: new nodes, other parents, another order of children,
/// and bones and props that are gone.
///
/// What is gone stays in the file's lists, since everything else refers to nodes by their place there, but hangs
/// nowhere any more. A node that holds something the scene does not know (a camera, an empty node below it) stays where
/// it is, as a plain node.
class RyGltfStructurePatch
{
public:
    explicit RyGltfStructurePatch(RyGltfScenePatch &patch) : m_patch(patch), m_tree(patch.document) {}

    /// Fills `edits`, `nodeOf`, `added` and `removed`. False with a reason when the tree would not be valid.
    bool apply(const RyScene &scene, QString *error);
    /// Whether bones or props were added, removed or hung elsewhere.
    static bool isEdited(const RyGltfOrigin &source);

private:
    void walk(const RyNode &top, const RyPointerTable<const RyGltfNodeSource *> &sources);
    void findRemoved();
    int parentNow(const RyNode &node, int index) const;
    int survivingAbove(int node) const;
    int homeOf(const RyNode *figure) const;
    void placeNodes();
    void join(int a, int b, const QString &name);
    /// The joints of a skin stand below one node; trees that an edit brought into one skin get one.
    void gatherRoots(const RyGltfFigureSource &figure);
    void dropFigure(const RyGltfFigureSource &figure);
    void writeLists();
    std::vector<int> findFirstHeld() const;
    static void sortSiblings(std::vector<int> &siblings, const std::vector<int> &firstHeld);
    std::vector<int> newOrder(const std::vector<int> &before, int parent) const;

    RyGltfScenePatch &m_patch;
    RyGltfTreePatch m_tree;
    std::vector<const RyNode *> m_order;     // nodes of the scene that stand in the file, pre-order
    std::map<int, std::vector<int>> m_below; // the same by their parents
    std::vector<int> m_parents;              // per node of the patched document, as wanted
    RyGltfTops m_topsBefore;                 // in the file
    RyGltfTops m_tops;                       // of `m_parents`, once nodes have their places
    int m_firstJoined = 0;                   // nodes from here on stand above several trees
    std::vector<bool> m_isManaged;           // stands in the scene
    std::vector<bool> m_hangsNowhere;        // top of what is gone
};
