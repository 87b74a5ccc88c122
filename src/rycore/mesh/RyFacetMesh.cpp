#include "rycore/mesh/RyFacetMesh.h"

#include "rycore/undo/RyValueChange.h"

#include <algorithm>
#include <numeric>

namespace {

bool isFan(const std::vector<RyFacet> &facets, const RyPolygon &polygon)
{
    if (polygon.facetCount < 3 || polygon.facetCount > int(facets.size()) - polygon.firstFacet ||
        polygon.firstCorner < 0 || polygon.firstCorner >= polygon.count())
        return false;
    const RyFacet *facet = &facets[size_t(polygon.firstFacet)];
    for (int i = 0; i < polygon.facetCount; ++i) {
        if (!facet[i].isTriangle() || facet[i].vertices[0] != facet->vertices[0] ||
            (i > 0 && facet[i].vertices[1] != facet[i - 1].vertices[2]))
            return false;
    }
    return true;
}

} // namespace

RyFacetMesh::RyFacetMesh(QObject *parent) : RyVertexMesh(parent) {}

RyFacetMesh::~RyFacetMesh() = default;

RyFacetMesh *RyFacetMesh::copy() const
{
    auto *mesh = new RyFacetMesh;
    mesh->setObjectName(objectName());
    std::vector<RyVec3> positions = getPositions();
    mesh->swapPositions(positions);
    mesh->m_facets = m_facets;
    mesh->m_polygons = m_polygons;
    for (const auto &group : m_groups)
        mesh->m_groups.push_back(std::make_unique<RyFaceGroup>(*group));
    mesh->m_selected = m_selected;
    mesh->m_neighbours = m_neighbours;
    return mesh;
}

/// Facets, polygons and groups.
struct RyFacetMesh::FacetsValue : RyValueOf<RyFacetMesh, Surface>
{
    static Value get(const RyFacetMesh &mesh) { return mesh.surface(); }
    static void exchange(RyFacetMesh &mesh, Value &value) { mesh.swapSurface(value); }
};

/// The groups and who is in them.
struct RyFacetMesh::GroupsValue : RyValueOf<RyFacetMesh, Grouping>
{
    static Grouping get(const RyFacetMesh &mesh) { return mesh.grouping(); }
    static void put(RyFacetMesh &mesh, const Grouping &grouping) { mesh.restoreGrouping(grouping); }
};

void RyFacetMesh::setFacets(std::vector<RyFacet> facets, std::vector<RyPolygon> polygons)
{
    RyValueChange<FacetsValue>::record(this);
    for (RyFacet &facet : facets) {
        if (facet.group != -1) // facets fill many pages: they are written only where they differ
            facet.group = -1;
    }
    int from = 0; // behind the last polygon
    std::erase_if(polygons, [&](const RyPolygon &polygon) {
        const bool isThere = polygon.firstFacet >= from && isFan(facets, polygon);
        from = isThere ? polygon.firstFacet + polygon.facetCount : from;
        return !isThere;
    });
    Surface next{std::move(facets), std::move(polygons), groupNames()};
    swapSurface(next);
}

void RyFacetMesh::swapSurface(Surface &surface)
{
    const QStringList names = groupNames();
    m_facets.swap(surface.facets);
    m_polygons.swap(surface.polygons);
    m_selected.assign(m_facets.size(), false);
    m_neighbours.clear();
    keepGroups(surface.groups);
    rebuildGroupLists();
    surface.groups = names;
    touch();
    announceGroups();
}

const RyPolygon *RyFacetMesh::findPolygon(int firstFacet) const
{
    const auto found = std::lower_bound(m_polygons.begin(), m_polygons.end(), firstFacet,
                                        [](const RyPolygon &polygon, int facet) { return polygon.firstFacet < facet; });
    return found != m_polygons.end() && found->firstFacet == firstFacet ? &*found : nullptr;
}

int RyFacetMesh::readPolygon(int firstFacet, std::vector<int> &corners) const
{
    const RyFacet &first = getFacet(firstFacet);
    corners.assign(first.vertices, first.vertices + first.count());
    const RyPolygon *polygon = findPolygon(firstFacet);
    if (!polygon)
        return 1;
    for (int i = 1; i < polygon->facetCount; ++i)
        corners.push_back(getFacet(firstFacet + i).vertices[2]);
    std::rotate(corners.begin(), corners.begin() + polygon->firstCorner, corners.end());
    return polygon->facetCount;
}

RyFaceGroup *RyFacetMesh::getFaceGroup(int index) const
{
    return index >= 0 && index < getNumFaceGroups() ? m_groups[size_t(index)].get() : nullptr;
}

RyFaceGroup *RyFacetMesh::findFaceGroup(const QString &name) const
{
    return getFaceGroup(findFaceGroupIndex(name));
}

int RyFacetMesh::findFaceGroupIndex(const QString &name) const
{
    return m_groupPlaces.find(name, getNumFaceGroups(), nameOfGroup());
}

void RyFacetMesh::createFaceGroup(const QString &name)
{
    createFaceGroups({name});
}

void RyFacetMesh::createFaceGroups(const std::vector<QString> &names)
{
    const size_t before = m_groups.size();
    for (const QString &name : names) {
        if (findFaceGroup(name))
            continue;
        if (m_groups.size() == before)
            recordGroups();
        m_groupPlaces.append(name, getNumFaceGroups(), nameOfGroup());
        m_groups.push_back(std::make_unique<RyFaceGroup>(name));
    }
    if (m_groups.size() == before)
        return;
    announceGroups();
    announceContent();
}

void RyFacetMesh::removeFaceGroup(const QString &name)
{
    const int index = findFaceGroupIndex(name);
    if (index < 0)
        return;
    recordGroups();
    m_groups.erase(m_groups.begin() + index);
    m_groupPlaces.forget();
    for (RyFacet &facet : m_facets) {
        if (facet.group == index)
            facet.group = -1;
        else if (facet.group > index)
            --facet.group;
    }
    announceGroups();
    announceContent();
}

void RyFacetMesh::deselectAllFacets()
{
    m_selected.assign(m_facets.size(), false);
}

void RyFacetMesh::selectFacetsByIndexList(const RyIndexList &facets, bool select)
{
    for (int i = 0; i < facets.count(); ++i) {
        const int facet = facets.getIndex(i);
        if (facet >= 0 && facet < getNumFacets())
            m_selected[size_t(facet)] = select;
    }
}

void RyFacetMesh::addSelectedFacetsToGroup(const QString &name)
{
    const int index = findFaceGroupIndex(name);
    if (index < 0)
        return;
    Grouping wanted = grouping();
    for (size_t i = 0; i < m_facets.size(); ++i) {
        if (m_selected[i])
            wanted.groupOfFacet[i] = index;
    }
    setGroupsOfFacets(wanted.groupOfFacet);
}

void RyFacetMesh::setGroupsOfFacets(const std::vector<int> &groupOfFacet)
{
    const size_t count = std::min(groupOfFacet.size(), m_facets.size());
    const auto wanted = [&, groups = getNumFaceGroups()](size_t i) {
        return groupOfFacet[i] < groups ? std::max(groupOfFacet[i], -1) : -1;
    };
    size_t first = 0;
    while (first < count && m_facets[first].group == wanted(first))
        ++first;
    if (first == count)
        return;
    recordGroups();
    for (size_t i = first; i < count; ++i)
        m_facets[i].group = wanted(i);
    announceGroupsOfFacets();
}

QStringList RyFacetMesh::groupNames() const
{
    QStringList names;
    for (const auto &group : m_groups)
        names.append(group->getName());
    return names;
}

RyFacetMesh::Grouping RyFacetMesh::grouping() const
{
    Grouping result;
    result.names = groupNames();
    result.groupOfFacet.reserve(m_facets.size());
    for (const RyFacet &facet : m_facets)
        result.groupOfFacet.push_back(facet.group);
    return result;
}

void RyFacetMesh::keepGroups(const QStringList &names)
{
    if (names == groupNames())
        return;
    QHash<QString, size_t> places;
    for (size_t i = 0; i < m_groups.size(); ++i)
        places.insert(m_groups[i]->getName(), i);
    std::vector<std::unique_ptr<RyFaceGroup>> groups;
    for (const QString &name : names) {
        const auto now = places.constFind(name);
        groups.push_back(now == places.constEnd() ? std::make_unique<RyFaceGroup>(name) : std::move(m_groups[*now]));
    }
    m_groups = std::move(groups);
    m_groupPlaces.forget();
}

void RyFacetMesh::restoreGrouping(const Grouping &wanted)
{
    keepGroups(wanted.names);
    const size_t count = std::min(m_facets.size(), wanted.groupOfFacet.size());
    for (size_t i = 0; i < count; ++i)
        m_facets[i].group = wanted.groupOfFacet[i];
    announceGroupsOfFacets();
}

void RyFacetMesh::announceGroupsOfFacets()
{
    rebuildGroupLists();
    announceGroups();
    announceContent();
}

void RyFacetMesh::announceGroups()
{
    ++m_groupRevision;
    emit faceGroupsChanged();
}

void RyFacetMesh::rebuildGroupLists()
{
    if (m_groups.empty())
        return;
    struct Run
    {
        int group, first, count;
    };
    std::vector<Run> runs;
    std::vector<int> counts(m_groups.size(), 0);
    const int facetCount = getNumFacets();
    for (int first = 0, end = 0; first < facetCount; first = end) {
        const int group = m_facets[size_t(first)].group;
        while (end < facetCount && m_facets[size_t(end)].group == group)
            ++end;
        if (group < 0)
            continue;
        runs.push_back({group, first, end - first});
        counts[size_t(group)] += end - first;
    }
    std::vector<int *> ends;
    for (size_t i = 0; i < m_groups.size(); ++i) {
        m_groups[i]->facets().preSizeArray(counts[i]);
        ends.push_back(m_groups[i]->facets().getIndicesPtr());
    }
    for (const Run &run : runs) {
        int *&end = ends[size_t(run.group)];
        std::iota(end, end + run.count, run.first);
        end += run.count;
    }
}

void RyFacetMesh::recordGroups()
{
    RyValueChange<GroupsValue>::record(this);
}

int RyFacetMesh::getNeighbour(int facet, int edge) const
{
    if (facet < 0 || facet >= getNumFacets() || edge < 0 || edge >= m_facets[size_t(facet)].count())
        return -1;
    if (m_neighbours.empty())
        buildNeighbours();
    return m_neighbours[size_t(4 * facet + edge)];
}

void RyFacetMesh::buildNeighbours() const
{
    struct Side
    {
        int low, high, place; // place = 4 * facet + edge
        bool operator<(const Side &o) const { return high != o.high ? high < o.high : place < o.place; }
    };
    const auto forSides = [this](const auto &take) {
        for (size_t i = 0; i < m_facets.size(); ++i) {
            const RyFacet &facet = m_facets[i];
            const int count = facet.count();
            for (int edge = 0; edge < count; ++edge) {
                const int a = facet.vertices[edge];
                const int b = facet.vertices[(edge + 1) % count];
                if (a != b)
                    take(Side{std::min(a, b), std::max(a, b), int(4 * i) + edge});
            }
        }
    };
    // By their lower vertex first: few meet at one, and sorting those costs next to nothing.
    int highest = -1;
    forSides([&](const Side &side) { highest = std::max(highest, side.low); });
    std::vector<size_t> starts(size_t(highest) + 2, 0);
    forSides([&](const Side &side) { ++starts[size_t(side.low) + 1]; });
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<Side> sides(starts.back());
    std::vector<size_t> next(starts.begin(), starts.end() - 1);
    forSides([&](const Side &side) { sides[next[size_t(side.low)]++] = side; });
    for (size_t vertex = 0; vertex + 1 < starts.size(); ++vertex)
        std::sort(sides.begin() + ptrdiff_t(starts[vertex]), sides.begin() + ptrdiff_t(starts[vertex + 1]));
    m_neighbours.assign(4 * m_facets.size(), -1);
    for (size_t first = 0; first < sides.size();) {
        size_t end = first;
        while (end < sides.size() && sides[end].low == sides[first].low && sides[end].high == sides[first].high)
            ++end;
        for (size_t k = first; k < end; ++k) {
            const int place = sides[k].place;
            if (m_neighbours[size_t(place)] >= 0)
                continue;
            for (size_t other = k + 1; other < end; ++other) {
                const int otherPlace = sides[other].place;
                if (m_neighbours[size_t(otherPlace)] >= 0 || otherPlace / 4 == place / 4)
                    continue;
                m_neighbours[size_t(place)] = otherPlace / 4;
                m_neighbours[size_t(otherPlace)] = place / 4;
                break;
            }
        }
        first = end;
    }
}

std::vector<RyVec3> RyFacetMesh::computeNormals(const std::vector<RyVec3> &positions) const
{
    std::vector<RyVec3> normals(positions.size());
    const int count = int(positions.size());
    for (const RyFacet &facet : m_facets) {
        const int corners = facet.count();
        if (std::any_of(facet.vertices, facet.vertices + corners, [count](int v) { return v < 0 || v >= count; }))
            continue;
        const auto at = [&](int corner) { return positions[size_t(facet.vertices[corner])]; };
        // Twice the area times the normal, for a quad by its diagonals.
        const RyVec3 normal =
            corners == 3 ? (at(1) - at(0)).cross(at(2) - at(0)) : (at(2) - at(0)).cross(at(3) - at(1));
        for (int corner = 0; corner < corners; ++corner)
            normals[size_t(facet.vertices[corner])] += normal;
    }
    for (RyVec3 &normal : normals)
        normal.normalize();
    return normals;
}

void RyFacetMesh::editBegun()
{
    RyVertexMesh::editBegun();
    m_snapshot = surface();
}

void RyFacetMesh::editFinished()
{
    m_snapshot = {};
    RyVertexMesh::editFinished();
}

void RyFacetMesh::editCancelled()
{
    if (!(surface() == m_snapshot))
        swapSurface(m_snapshot);
    m_snapshot = {};
    RyVertexMesh::editCancelled();
}
