#include "rycore/io/gltf/save/RyGltfNewMesh.h"

#include "rycore/io/RyPartPolygons.h"
#include "rycore/io/RyPolygonFans.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/save/RyGltfInfluenceWriter.h"
#include "rycore/io/gltf/save/RyGltfMorphWriter.h"
#include "rycore/io/gltf/save/RyGltfNewLooks.h"
#include "rycore/scene/RyFacetShape.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <unordered_map>

namespace {

constexpr int ForVertices = 34962;
constexpr int ForIndices = 34963;

struct PlaceHash
{
    size_t operator()(const RyVec3 &place) const
    {
        std::uint32_t bits[3];
        std::memcpy(bits, &place, sizeof bits);
        std::uint64_t value = (bits[0] | (std::uint64_t(bits[1]) << 32)) * 0xff51afd7ed558ccdull;
        value = (value ^ (value >> 32) ^ bits[2]) * 0xc4ceb9fe1a85ec53ull;
        return size_t(value ^ (value >> 29));
    }
};

} // namespace

RyGltfNewMesh::RyGltfNewMesh(RyGltfDocument &document, RyGltfNewLooks &looks, const RyFacetShape &shape,
                             const RyAffine &toMesh)
    : m_document(document), m_looks(looks), m_shape(shape), m_toMesh(toMesh), m_parts(shape.getParts())
{
    const RyFacetMesh &mesh = *shape.getFacetMesh();
    if (!m_parts || !m_parts->fits(mesh))
        makePart();
    else
        m_normals.emplace(shape);
    m_points.reserve(size_t(mesh.getNumVertices()));
    for (const RyVec3 &p : mesh.getPositions()) {
        const double from[3] = {p.x, p.y, p.z};
        double at[3];
        m_toMesh.mapPoint(from, at);
        m_points.emplace_back(float(at[0]), float(at[1]), float(at[2]));
    }
    tagByPlace();
}

void RyGltfNewMesh::makePart()
{
    const RyFacetMesh &mesh = *m_shape.getFacetMesh();
    auto parts = std::make_shared<RyMeshParts>();
    parts->parts.resize(1);
    RyMeshPart &part = parts->parts.front();
    part.facetCount = mesh.getNumFacets();
    part.vertexOfSplit.resize(size_t(mesh.getNumVertices()));
    std::iota(part.vertexOfSplit.begin(), part.vertexOfSplit.end(), 0);
    part.hasFans = std::any_of(mesh.getFacets().begin(), mesh.getFacets().end(),
                               [](const RyFacet &facet) { return !facet.isTriangle(); }) ||
                   !mesh.getPolygons().empty();
    RyPolygonFans fans(unsigned(mesh.getNumVertices()));
    std::vector<int> vertices;
    std::vector<unsigned> corners;
    std::vector<RyVec3> positions;
    for (int facet = 0; facet < mesh.getNumFacets();) {
        facet += mesh.readPolygon(facet, vertices);
        corners.assign(vertices.begin(), vertices.end());
        positions.clear();
        for (const int vertex : vertices)
            positions.push_back(mesh.getVertex(vertex));
        if (part.hasFans)
            fans.add(corners, positions);
        else
            fans.triangles.insert(fans.triangles.end(), corners.begin(), corners.end());
    }
    part.triangles = std::move(fans.triangles);
    part.vertexOfSplit.insert(part.vertexOfSplit.end(), fans.copies.begin(), fans.copies.end());
    m_parts = parts;
}

std::vector<RyVec3> RyGltfNewMesh::normalsOf(const RyMeshPart &part) const
{
    std::vector<RyVec3> normals;
    if (m_normals) {
        normals = m_normals->of(part);
    } else {
        const RyFacetMesh &mesh = *m_shape.getFacetMesh();
        const std::vector<RyVec3> smooth = mesh.computeNormals(mesh.getPositions());
        for (const int vertex : part.vertexOfSplit)
            normals.push_back(smooth[size_t(vertex)]);
    }
    RyAffine stretch;
    RyQuat turn;
    m_toMesh.decomposePolar(stretch, turn);
    for (RyVec3 &normal : normals) {
        normal = turn.multVec(normal).normalized();
        if (normal == RyVec3())
            normal = RyVec3(0, 1, 0);
    }
    return normals;
}

/// Readers join vertices at one place.
void RyGltfNewMesh::tagByPlace()
{
    std::unordered_map<RyVec3, int, PlaceHash> counts;
    counts.reserve(m_points.size());
    m_tags.reserve(m_points.size());
    for (const RyVec3 &point : m_points)
        m_tags.push_back(counts[point]++);
}

RyGltfNewMesh::Attributes RyGltfNewMesh::addAttributes(const RyMeshPart &part, const std::vector<RyVec3> &normals) const
{
    std::vector<float> points, directions;
    points.reserve(3 * normals.size());
    directions.reserve(3 * normals.size());
    for (size_t split = 0; split < normals.size(); ++split) {
        const RyVec3 &point = m_points[size_t(part.vertexOfSplit[split])];
        points.insert(points.end(), {point.x, point.y, point.z});
        directions.insert(directions.end(), {normals[split].x, normals[split].y, normals[split].z});
    }
    const int normalAccessor = m_document.addFloatAccessor(directions, 3, ForVertices);
    Attributes attributes{{"POSITION", m_document.addFloatAccessor(points, 3, ForVertices, true)},
                          {"NORMAL", normalAccessor}};
    if (!part.uvs.empty())
        attributes.emplace_back("TEXCOORD_0", m_document.addFloatAccessor(part.uvs, 2, ForVertices));
    return attributes;
}

int RyGltfNewMesh::write(const QString &name, const RyGltfInfluences *influences, const std::vector<int> &places)
{
    const int mesh = m_document.addMesh(name);
    int primitive = 0;
    RyPartPolygons polygons(*m_shape.getFacetMesh(), *m_parts);
    RyGltfMorphWriter morphs(m_document, m_shape, m_toMesh.inverse());
    RyGltfInfluenceWriter::Part influencePart;
    influencePart.places = places;
    for (const RyMeshPart &part : m_parts->parts) {
        if (influences)
            influencePart.sets =
                std::max(influencePart.sets, RyGltfInfluenceWriter(*influences).setsNeeded(&part.vertexOfSplit));
    }
    for (const RyMeshPart &part : m_parts->parts) {
        std::vector<int> firstCorners;
        polygons.forNextPart([&firstCorners](const RyPartPolygon &polygon) {
            if (polygon.firstCorner != 0)
                firstCorners.insert(firstCorners.end(), {polygon.firstTriangle, polygon.firstCorner});
        });
        if (part.triangles.empty())
            continue;
        Attributes attributes = addAttributes(part, normalsOf(part));
        if (influences) {
            influencePart.vertexOfSplit = &part.vertexOfSplit;
            for (auto &attribute : RyGltfInfluenceWriter(*influences).addTo(m_document, influencePart))
                attributes.push_back(std::move(attribute));
        }
        const bool hasLook = part.look >= 0 && size_t(part.look) < m_parts->looks.size();
        const int material = hasLook ? m_looks.materialOf(m_parts->looks[size_t(part.look)]) : -1;
        m_document.addPrimitive(mesh, attributes, m_document.addUintAccessor(part.triangles, 1, 5125, ForIndices),
                                material);
        if (part.hasFans)
            m_document.markFans(mesh, primitive);
        if (!firstCorners.empty())
            RyTreeExtras::storeFirstCorners(m_document, mesh, primitive, firstCorners);
        if (!m_shape.getMorphs().empty())
            morphs.writeTargets(mesh, primitive, part);
        storeTags(mesh, primitive, part, influences);
        ++primitive;
    }
    if (!m_shape.getMorphs().empty())
        morphs.writeValues(mesh);
    return mesh;
}

void RyGltfNewMesh::storeTags(int mesh, int primitive, const RyMeshPart &part, const RyGltfInfluences *influences) const
{
    std::vector<int> apart, free;
    for (size_t split = 0; split < part.vertexOfSplit.size(); ++split) {
        const int vertex = part.vertexOfSplit[split];
        if (m_tags[size_t(vertex)] > 0)
            apart.insert(apart.end(), {int(split), m_tags[size_t(vertex)]});
        if (influences && influences->of(vertex).empty())
            free.push_back(int(split));
    }
    if (!apart.empty())
        RyTreeExtras::storeApart(m_document, mesh, primitive, apart);
    if (!free.empty())
        RyTreeExtras::storeFree(m_document, mesh, primitive, free);
    if (!part.withoutUv.empty())
        RyTreeExtras::storeWithoutUv(m_document, mesh, primitive, part.withoutUv);
    if (!part.hasNormals())
        RyTreeExtras::storeMadeNormals(m_document, mesh, primitive);
}
