#pragma once

#include "rycore/math/RyLine3.h"
#include "rycore/viewport/picking/RyFacetOwners.h"
#include "rycore/viewport/picking/RyMeshRayCaster.h"

#include <memory>
#include <unordered_map>
#include <vector>

class RyNode;
class RyObject;
class RyScene;

/// Finds what a ray meets first in a scene, exactly, from the deformed meshes.
class RyNodePicker
{
public:
    struct Hit
    {
        RyNode *node = nullptr;     // what a click would select
        RyNode *meshNode = nullptr; // whose object was hit
        int facet = -1;
        double distance = 0.0; // in the world, along the ray
    };
    /// Looks at meshes and weights again only when `dataRevision` differs from the last call's.
    Hit pick(const RyScene &scene, const RyLine3 &ray, quint64 dataRevision);

    /// The part of a mesh that stands for a node.
    struct Patch
    {
        RyNode *meshNode = nullptr;
        std::vector<RyVec3> positions;   // of the mesh, deformed, in its node's space
        std::vector<unsigned> triangles; // three vertices each
        std::vector<unsigned> border;    // two vertices for each edge with the patch on one side only
    };
    /// All patches of a node; the same reference until something changes.
    const std::vector<Patch> &patchesOf(const RyScene &scene, const RyNode *node, quint64 dataRevision);

    /// The node that a click on `node` selects: the parent while the selection is promoted, never an unselectable one.
    static RyNode *selectableFor(RyNode *node);

private:
    struct Entry
    {
        RyMeshRayCaster caster;
        RyFacetOwners owners;
    };
    Entry *entryFor(RyNode *node, quint64 dataRevision);
    void collect(RyNode *meshNode, const RyNode *node, quint64 dataRevision);

    quint64 m_dataRevision = 0;
    std::unordered_map<const RyObject *, std::unique_ptr<Entry>> m_entries;
    std::unordered_map<const RyObject *, quint64> m_castRevisions;
    const RyNode *m_patchNode = nullptr;
    quint64 m_patchRevision = 0;
    std::vector<Patch> m_patches;
};
