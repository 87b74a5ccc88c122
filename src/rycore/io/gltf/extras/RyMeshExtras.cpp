#include "rycore/io/gltf/extras/RyMeshExtras.h"

#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"

#include <QSet>

#include <algorithm>

using RyExtrasJson::find;
using RyMeshExtras::Json;

namespace {

/// Number of the first triangle of each facet, and behind them that of all triangles: a file holds quads as two.
std::vector<int> firstTriangles(const RyFacetMesh &mesh)
{
    std::vector<int> first;
    first.reserve(mesh.getFacets().size() + 1);
    first.push_back(0);
    for (const RyFacet &facet : mesh.getFacets())
        first.push_back(first.back() + facet.count() - 2);
    return first;
}

/// Runs of triangles per group, in the order of the groups.
Json groupsJson(const RyFacetMesh &mesh)
{
    const std::vector<int> triangles = firstTriangles(mesh);
    Json groups = Json::array();
    for (int g = 0; g < mesh.getNumFaceGroups(); ++g) {
        const RyFaceGroup &group = *mesh.getFaceGroup(g);
        Json runs = Json::array();
        const RyIndexList &facets = group.getFacets();
        for (int i = 0; i < facets.count();) {
            int last = i;
            while (last + 1 < facets.count() && facets.getIndex(last + 1) == facets.getIndex(last) + 1)
                ++last;
            const int first = triangles[size_t(facets.getIndex(i))];
            runs.push_back(Json::array({first, triangles[size_t(facets.getIndex(last)) + 1] - first}));
            i = last + 1;
        }
        groups.push_back(Json{{"name", group.getName().toStdString()}, {"runs", std::move(runs)}});
    }
    return groups;
}

/// Part and number of triangles by turns, as the facets of the mesh go from one part to another; null where they come
/// part by part.
Json orderJson(const RyFacetMesh &mesh, const RyMeshParts *parts)
{
    if (!parts || parts->order.empty() || !parts->fits(mesh))
        return Json();
    Json order = Json::array();
    int facet = 0;
    for (const RyMeshParts::Run &run : parts->order) {
        int triangles = 0;
        for (const int end = facet + run.facetCount; facet < end; ++facet)
            triangles += mesh.getFacet(facet).count() - 2;
        order.push_back(run.part);
        order.push_back(triangles);
    }
    return order;
}

/// Facets have other places now; those of one part still follow one another in their order.
void movePolygons(std::vector<RyPolygon> &polygons, const std::vector<int> &placeOf)
{
    for (RyPolygon &polygon : polygons)
        polygon.firstFacet = placeOf[size_t(polygon.firstFacet)];
    std::sort(polygons.begin(), polygons.end(),
              [](const RyPolygon &a, const RyPolygon &b) { return a.firstFacet < b.firstFacet; });
}

} // namespace

bool RyMeshExtras::applyFaceGroups(const Json &figure, RyFacetMesh &mesh, QStringList *messages)
{
    const Json *groups = find(figure, "faceGroups");
    if (!groups || !groups->is_array())
        return false;
    const std::vector<int> triangles = firstTriangles(mesh);
    const int triangleCount = triangles.back();
    std::vector<int> groupOfTriangle(size_t(triangleCount), -1);
    QStringList names;
    const auto fits = [&] {
        const Json *whole = find(figure, "facets");
        if (whole && (!whole->is_number_integer() || whole->get<long long>() != triangleCount))
            return false;
        for (const Json &group : *groups) {
            const Json *name = find(group, "name");
            const Json *runs = find(group, "runs");
            if (!name || !name->is_string() || !runs || !runs->is_array())
                return false;
            for (const Json &run : *runs) {
                if (!run.is_array() || run.size() != 2 || !run[0].is_number_integer() || !run[1].is_number_integer())
                    return false;
                const long long first = run[0].get<long long>();
                const long long count = run[1].get<long long>();
                if (first < 0 || count < 0 || first > triangleCount || count > triangleCount - first)
                    return false;
                std::fill_n(groupOfTriangle.begin() + first, count, names.size());
            }
            names.append(QString::fromStdString(name->get<std::string>()));
        }
        return names.size() == QSet<QString>(names.begin(), names.end()).size();
    };
    if (!fits()) {
        if (messages)
            messages->append(QStringLiteral("The stored face groups do not fit the mesh and are left out"));
        return false;
    }
    mesh.createFaceGroups({names.begin(), names.end()});
    std::vector<int> groupOfFacet;
    for (int facet = 0; facet < mesh.getNumFacets(); ++facet)
        groupOfFacet.push_back(groupOfTriangle[size_t(triangles[size_t(facet)])]);
    mesh.setGroupsOfFacets(groupOfFacet);
    return true;
}

void RyMeshExtras::applyFacetOrder(const Json &figure, std::vector<RyFacet> &facets, std::vector<RyPolygon> &polygons,
                                   RyMeshParts &parts, QStringList *messages)
{
    const Json *runs = find(figure, "order");
    if (!runs)
        return;
    std::vector<size_t> next, end; // facets of each part that are still to come
    for (size_t count = 0; const RyMeshPart &part : parts.parts) {
        next.push_back(count);
        end.push_back(count += size_t(part.facetCount));
    }
    std::vector<RyFacet> ordered;
    ordered.reserve(facets.size());
    std::vector<int> placeOf(facets.size());
    const auto fits = [&] {
        if (!runs->is_array() || runs->size() % 2 != 0)
            return false;
        for (size_t i = 0; i < runs->size(); i += 2) {
            const Json &part = (*runs)[i];
            const Json &count = (*runs)[i + 1];
            if (!part.is_number_integer() || !count.is_number_integer() || part.get<long long>() < 0 ||
                part.get<long long>() >= (long long)(next.size())) {
                return false;
            }
            const size_t place = part.get<size_t>();
            const size_t before = ordered.size();
            long long left = count.get<long long>();
            for (; left > 0 && next[place] < end[place]; left -= ordered.back().count() - 2) {
                placeOf[next[place]] = int(ordered.size());
                ordered.push_back(facets[next[place]++]);
            }
            if (left != 0)
                return false;
            parts.order.push_back({int(place), int(ordered.size() - before)});
        }
        return ordered.size() == facets.size();
    };
    if (fits()) {
        facets = std::move(ordered);
        movePolygons(polygons, placeOf);
        return;
    }
    parts.order.clear();
    if (messages)
        messages->append(QStringLiteral("The stored order of the facets does not fit the mesh and is left out"));
}

void RyMeshExtras::store(const RyFacetMesh &mesh, const RyMeshParts *parts, Json &figure)
{
    figure["facets"] = firstTriangles(mesh).back();
    figure["faceGroups"] = groupsJson(mesh);
    Json order = orderJson(mesh, parts);
    if (!order.is_null())
        figure["order"] = std::move(order);
}

QString RyMeshExtras::groupsText(const RyFacetMesh &mesh)
{
    return QString::fromStdString(groupsJson(mesh).dump());
}
