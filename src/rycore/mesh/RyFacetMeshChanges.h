#pragma once

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/undo/RyUndoItem.h"

#include <QPointer>

/// The facets of a mesh with all groups: old facets cannot take the groups of new ones.
class RyFacetsChange : public RyUndoItem
{
public:
    static constexpr quintptr Aspect = 2;
    explicit RyFacetsChange(RyFacetMesh *mesh) : m_mesh(mesh), m_key(mesh), m_facets(mesh->m_facets)
    {
        m_groups = mesh->grouping().names;
    }
    void swap() override
    {
        if (m_mesh)
            m_mesh->swapFacets(m_facets, m_groups);
    }
    RyUndoKey key() const override { return {m_key, Aspect}; }
    bool isAlive() const override { return !m_mesh.isNull(); }

private:
    QPointer<RyFacetMesh> m_mesh;
    const void *m_key;
    std::vector<RyFacet> m_facets;
    QStringList m_groups;
};

/// The groups of a mesh and who is in them.
class RyFaceGroupsChange : public RyUndoItem
{
public:
    static constexpr quintptr Aspect = 3;
    explicit RyFaceGroupsChange(RyFacetMesh *mesh) : m_mesh(mesh), m_key(mesh), m_grouping(mesh->grouping()) {}
    void swap() override
    {
        if (!m_mesh)
            return;
        const RyFacetMesh::Grouping now = m_mesh->grouping();
        m_mesh->restoreGrouping(m_grouping);
        m_grouping = now;
    }
    RyUndoKey key() const override { return {m_key, Aspect}; }
    bool isAlive() const override { return !m_mesh.isNull(); }

private:
    QPointer<RyFacetMesh> m_mesh;
    const void *m_key;
    RyFacetMesh::Grouping m_grouping;
};
