#pragma once

#include "rycore/base/RyFirstPlaces.h"
#include "rycore/mesh/RyFaceGroup.h"
#include "rycore/mesh/RyFacet.h"
#include "rycore/mesh/RyPolygon.h"
#include "rycore/mesh/RyVertexMesh.h"

#include <QStringList>

#include <memory>

/// A mesh of triangles and quads with face groups. Larger polygons are cut into triangles that are known to be one.
class RyFacetMesh : public RyVertexMesh
{
    Q_OBJECT
public:
    explicit RyFacetMesh(QObject *parent = nullptr);
    ~RyFacetMesh() override;

    /// A deep copy: positions, facets, polygons, groups, selection.
    RyFacetMesh *copy() const;

    int getNumFacets() const { return int(m_facets.size()); }
    const RyFacet &getFacet(int index) const { return m_facets[size_t(index)]; }
    const std::vector<RyFacet> &getFacets() const { return m_facets; }
    /// Replaces all facets (their `group` fields are ignored; use the groups below) and polygons, which are ascending
    /// and apart; those that the facets do not make are left out. Empties all groups and the selection; undoable where
    /// a hold is open.
    void setFacets(std::vector<RyFacet> facets, std::vector<RyPolygon> polygons = {});

    /// Polygons of more than four corners, ascending. Their facets may be in different groups.
    const std::vector<RyPolygon> &getPolygons() const { return m_polygons; }
    /// Null where none begins with that facet.
    const RyPolygon *findPolygon(int firstFacet) const;
    /// The corners of the polygon that begins with a facet, or else of that facet alone, from its first one on. Gives
    /// the number of its facets.
    int readPolygon(int firstFacet, std::vector<int> &corners) const;

    int getNumFaceGroups() const { return int(m_groups.size()); }
    RyFaceGroup *getFaceGroup(int index) const;
    /// The group of that name, null when there is none.
    RyFaceGroup *findFaceGroup(const QString &name) const;
    int findFaceGroupIndex(const QString &name) const;
    /// Does nothing when the group exists; undoable where a hold is open.
    void createFaceGroup(const QString &name);
    /// Those of them that do not exist, announced once.
    void createFaceGroups(const std::vector<QString> &names);
    void removeFaceGroup(const QString &name);
    void deselectAllFacets();
    void selectFacetsByIndexList(const RyIndexList &facets, bool select);
    bool isFacetSelected(int facet) const { return m_selected[size_t(facet)]; }
    /// Selected facets leave their group and enter this one; an unknown name does nothing.
    void addSelectedFacetsToGroup(const QString &name);
    /// Sets the group of every facet at once: `groupOfFacet[i]` indexes the groups or is -1.
    void setGroupsOfFacets(const std::vector<int> &groupOfFacet);

    /// Grows whenever groups come or go, or facets change group.
    quint64 groupRevision() const { return m_groupRevision; }

    /// The facet on the other side of edge `edge` (from corner `edge` to the next one) of a facet; -1 when there is
    /// none. Of several facets that share an edge the pairing is by order; built at first use.
    int getNeighbour(int facet, int edge) const;
    /// Smooth normals of the given positions (one per vertex, unit; zero for a vertex without facets).
    std::vector<RyVec3> computeNormals(const std::vector<RyVec3> &positions) const;

signals:
    /// Groups came or went, or facets changed group.
    void faceGroupsChanged();

protected:
    void editBegun() override;
    void editFinished() override;
    void editCancelled() override;

private:
    struct FacetsValue;
    struct GroupsValue;
    /// Names of the groups in order, and the group of every facet.
    struct Grouping
    {
        QStringList names;
        std::vector<int> groupOfFacet;
        bool operator==(const Grouping &) const = default;
    };
    QStringList groupNames() const;
    auto nameOfGroup() const
    {
        return [this](int group) -> const QString & { return m_groups[size_t(group)]->getName(); };
    }
    Grouping grouping() const;
    /// Groups that stay keep their objects.
    void restoreGrouping(const Grouping &grouping);
    void rebuildGroupLists();
    /// Facets changed group.
    void announceGroupsOfFacets();
    void announceGroups();
    /// The facets with the names of all groups: old facets cannot take the groups of new ones.
    struct Surface
    {
        std::vector<RyFacet> facets;
        std::vector<RyPolygon> polygons;
        QStringList groups;
        bool operator==(const Surface &) const = default;
    };
    Surface surface() const { return {m_facets, m_polygons, groupNames()}; }
    /// Exchanges all of it, the `group` fields of facets included.
    void swapSurface(Surface &surface);
    void keepGroups(const QStringList &names);
    void buildNeighbours() const;
    void recordGroups();

    std::vector<RyFacet> m_facets;
    std::vector<RyPolygon> m_polygons;
    std::vector<std::unique_ptr<RyFaceGroup>> m_groups;
    RyFirstPlaces<QString> m_groupPlaces; // by name
    std::vector<bool> m_selected;
    mutable std::vector<int> m_neighbours; // four per facet, empty until asked for
    quint64 m_groupRevision = 1;
    Surface m_snapshot;
};
