#include "rycore/io/obj/RyObjMeshBuilder.h"

#include "rycore/io/RyPartNormals.h"
#include "rycore/io/obj/RyObjFile.h"
#include "rycore/io/obj/RyObjLooks.h"
#include "rycore/scene/RyFacetShape.h"

#include <algorithm>
#include <bit>
#include <cmath>

RyObjMeshBuilder::RyObjMeshBuilder(const RyObjFile &file, double unit, RyObjLooks &looks)
    : m_file(file), m_unit(unit), m_looks(looks)
{
    m_positions.reserve(file.positions.size());
    for (const std::array<double, 3> &p : file.positions)
        m_positions.emplace_back(float(p[0] * unit), float(p[1] * unit), float(p[2] * unit));
}

RyFacetShape *RyObjMeshBuilder::makeShape()
{
    Facets made;
    made.facets.reserve(m_file.facets.size());
    made.groups.reserve(m_file.facets.size());
    if (needsParts())
        makePartFacets(made);
    else
        makeFacets(made);
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(std::move(m_positions));
    mesh->setFacets(std::move(made.facets), std::move(made.polygons));
    mesh->createFaceGroups(m_file.groups);
    mesh->setGroupsOfFacets(made.groups);
    auto *shape = new RyFacetShape(mesh);
    if (m_parts) {
        shape->setParts(m_parts);
        fillMissingNormals(*shape);
    }
    return shape;
}

void RyObjMeshBuilder::Facets::add(const std::vector<int> &vertices, int start, int group)
{
    const int count = int(vertices.size());
    const auto at = [&](int corner) { return vertices[size_t(corner % count)]; };
    if (count <= 4) {
        facets.push_back({{at(0), at(1), at(2), count == 4 ? at(3) : -1}, -1});
        groups.push_back(group);
        return;
    }
    polygons.push_back({int(facets.size()), count - 2, (count - start) % count});
    for (int i = 1; i + 1 < count; ++i) {
        facets.push_back({{at(start), at(start + i), at(start + i + 1), -1}, -1});
        groups.push_back(group);
    }
}

bool RyObjMeshBuilder::needsParts() const
{
    if (m_file.facets.empty())
        return false;
    if (std::any_of(m_file.materials.begin(), m_file.materials.end(),
                    [](const QString &name) { return !name.isEmpty(); }))
        return true;
    if (m_file.texcoords.empty() && m_file.normals.empty())
        return false;
    return std::any_of(m_file.corners.begin(), m_file.corners.end(),
                       [](const RyObjFile::Corner &corner) { return corner.texcoord >= 0 || corner.normal >= 0; });
}

void RyObjMeshBuilder::makeFacets(Facets &result)
{
    RyPolygonFans fans(unsigned(m_positions.size()));
    std::vector<int> vertices;
    std::vector<RyVec3> points;
    for (const RyObjFile::Facet &polygon : m_file.facets) {
        vertices.clear();
        points.clear();
        for (int i = 0; i < polygon.cornerCount; ++i)
            vertices.push_back(m_file.corners[size_t(polygon.firstCorner + i)].vertex);
        int start = 0;
        if (polygon.cornerCount > 4) {
            for (const int vertex : vertices)
                points.push_back(m_positions[size_t(vertex)]);
            start = fans.add({vertices.begin(), vertices.end()}, points);
            countFolded(fans, polygon.cornerCount);
        }
        result.add(vertices, start, polygon.group);
    }
}

void RyObjMeshBuilder::countFolded(const RyPolygonFans &fans, int cornerCount)
{
    m_foldedCount += cornerCount > 4 && fans.isFolded();
}

/// A part for each material that facets have, in the order in which they come.
void RyObjMeshBuilder::assignParts()
{
    m_parts = std::make_shared<RyMeshParts>();
    m_partOfMaterial.assign(m_file.materials.size() + 1, -1);
    for (const RyObjFile::Facet &facet : m_file.facets) {
        const bool hasName = facet.material >= 0 && !m_file.materials[size_t(facet.material)].isEmpty();
        int &part = m_partOfMaterial[size_t(facet.material + 1)];
        if (!hasName && part < 0)
            part = m_partOfMaterial.front();
        if (part >= 0)
            continue;
        part = int(m_parts->parts.size());
        m_parts->parts.emplace_back();
        if (!hasName) {
            m_partOfMaterial.front() = part;
            continue;
        }
        m_parts->parts.back().name = m_file.materials[size_t(facet.material)];
        m_parts->parts.back().look = int(m_parts->looks.size());
        m_parts->looks.push_back(m_looks.lookOf(m_parts->parts.back().name));
    }
}

/// Some programs write the same numbers anew for every corner.
void RyObjMeshBuilder::joinEqualNumbers()
{
    const auto bits = [](double number) { return std::bit_cast<std::int32_t>(float(number) + 0.0f); };
    RyKeyTable texcoords, normals;
    std::vector<int> firstTexcoord, firstNormal; // by the numbers of the tables
    for (size_t i = 0; i < m_file.texcoords.size(); ++i) {
        const auto number = size_t(texcoords.numberOf({bits(m_file.texcoords[i][0]), bits(m_file.texcoords[i][1])}));
        if (number == firstTexcoord.size())
            firstTexcoord.push_back(int(i));
        m_texcoords.push_back(firstTexcoord[number]);
    }
    for (size_t i = 0; i < m_file.normals.size(); ++i) {
        const std::array<double, 3> &normal = m_file.normals[i];
        if (!(std::hypot(normal[0], normal[1], normal[2]) > 1e-12)) {
            m_normals.push_back(-1);
            continue;
        }
        const auto number = size_t(normals.numberOf({bits(normal[0]), bits(normal[1]), bits(normal[2])}));
        if (number == firstNormal.size())
            firstNormal.push_back(int(i));
        m_normals.push_back(firstNormal[number]);
    }
}

/// Corners of one part that are alike in all share a split vertex; those of a part stand in the order of their
/// vertices.
void RyObjMeshBuilder::findSplits()
{
    m_splitOfCorner.reserve(m_file.corners.size()); // first the number in the table
    for (const RyObjFile::Facet &facet : m_file.facets) {
        const int part = m_partOfMaterial[size_t(facet.material + 1)];
        m_splitOfCorner.resize(size_t(facet.firstCorner));
        for (int i = 0; i < facet.cornerCount; ++i) {
            const RyObjFile::Corner &corner = m_file.corners[size_t(facet.firstCorner + i)];
            m_splitOfCorner.push_back(m_corners.numberOf(
                {part, corner.vertex, corner.texcoord < 0 ? -1 : m_texcoords[size_t(corner.texcoord)],
                 corner.normal < 0 ? -1 : m_normals[size_t(corner.normal)]}));
        }
    }
    m_usedCorners = int(m_corners.keys().size());
    std::vector<int> first(m_positions.size() + 1, 0); // by vertex: where its corners go
    for (const RyKeyTable::Key &key : m_corners.keys())
        ++first[size_t(key[1]) + 1];
    for (size_t vertex = 0; vertex < m_positions.size(); ++vertex)
        first[vertex + 1] += first[vertex];
    std::vector<int> byVertex(m_corners.keys().size());
    for (size_t i = 0; i < m_corners.keys().size(); ++i)
        byVertex[size_t(first[size_t(m_corners.keys()[i][1])]++)] = int(i);
    m_cornerOfSplit.resize(m_parts->parts.size());
    for (const int corner : byVertex)
        m_cornerOfSplit[size_t(m_corners.keys()[size_t(corner)][0])].push_back(corner);
}

bool RyObjMeshBuilder::isNatural() const
{
    std::vector<bool> seen(m_positions.size(), false);
    int next = 0;
    for (const std::vector<int> &splits : m_cornerOfSplit) {
        for (const int corner : splits) {
            const int vertex = m_corners.keys()[size_t(corner)][1];
            if (!seen[size_t(vertex)] && vertex != next++)
                return false;
            seen[size_t(vertex)] = true;
        }
    }
    return next == int(m_positions.size());
}

void RyObjMeshBuilder::nameAllVertices()
{
    if (isNatural())
        return;
    std::vector<int> all;
    const std::vector<int> own = std::move(m_cornerOfSplit.front());
    auto next = own.begin();
    for (int vertex = 0; vertex < int(m_positions.size()); ++vertex) {
        if (next == own.end() || m_corners.keys()[size_t(*next)][1] != vertex)
            all.push_back(m_corners.numberOf({0, vertex, -1, -1}));
        while (next != own.end() && m_corners.keys()[size_t(*next)][1] == vertex)
            all.push_back(*next++);
    }
    m_cornerOfSplit.front() = std::move(all);
}

void RyObjMeshBuilder::fillSplits()
{
    std::vector<int> splitOfNumber(m_corners.keys().size());
    for (size_t p = 0; p < m_parts->parts.size(); ++p) {
        RyMeshPart &part = m_parts->parts[p];
        const std::vector<int> &splits = m_cornerOfSplit[p];
        const auto has = [&](size_t kind) {
            return std::any_of(splits.begin(), splits.end(),
                               [&](int corner) { return m_corners.keys()[size_t(corner)][kind] >= 0; });
        };
        const bool hasUvs = has(2);
        const bool hasNormals = has(3);
        for (const int corner : splits) {
            const auto &[of, vertex, texcoord, normal] = m_corners.keys()[size_t(corner)];
            splitOfNumber[size_t(corner)] = int(part.vertexOfSplit.size());
            part.vertexOfSplit.push_back(vertex);
            part.normalOfSplit.push_back(m_normalNumbers.numberOf({vertex, normal}));
            if (hasUvs) {
                const bool isThere = texcoord >= 0;
                if (!isThere && corner < m_usedCorners)
                    part.withoutUv.push_back(int(part.vertexOfSplit.size()) - 1);
                part.uvs.push_back(isThere ? float(m_file.texcoords[size_t(texcoord)][0]) : 0.0f);
                part.uvs.push_back(isThere ? float(1.0 - m_file.texcoords[size_t(texcoord)][1]) : 0.0f);
            }
            if (hasNormals) {
                RyVec3 direction;
                if (normal >= 0) {
                    const auto &[x, y, z] = m_file.normals[size_t(normal)];
                    const double length = std::hypot(x, y, z);
                    direction = {float(x / length), float(y / length), float(z / length)};
                }
                part.normals.push_back(direction);
            }
        }
    }
    m_parts->normalCount = int(m_normalNumbers.keys().size());
    for (int &corner : m_splitOfCorner)
        corner = splitOfNumber[size_t(corner)];
}

void RyObjMeshBuilder::addRun(int part, int facetCount)
{
    m_parts->parts[size_t(part)].facetCount += facetCount;
    if (m_parts->order.empty() || m_parts->order.back().part != part)
        m_parts->order.push_back({part, 0});
    m_parts->order.back().facetCount += facetCount;
}

void RyObjMeshBuilder::makePartFacets(Facets &result)
{
    assignParts();
    joinEqualNumbers();
    findSplits();
    nameAllVertices();
    fillSplits();
    const bool hasPolygons = std::any_of(m_file.facets.begin(), m_file.facets.end(),
                                         [](const RyObjFile::Facet &facet) { return facet.cornerCount > 3; });
    std::vector<RyPolygonFans> fans;
    for (RyMeshPart &part : m_parts->parts) {
        part.hasFans = hasPolygons;
        fans.emplace_back(unsigned(part.vertexOfSplit.size()));
    }
    std::vector<unsigned> splits;
    std::vector<int> vertices;
    std::vector<RyVec3> points;
    for (const RyObjFile::Facet &polygon : m_file.facets) {
        const int part = m_partOfMaterial[size_t(polygon.material + 1)];
        const size_t from = size_t(polygon.firstCorner);
        const int count = polygon.cornerCount;
        splits.assign(m_splitOfCorner.begin() + polygon.firstCorner,
                      m_splitOfCorner.begin() + polygon.firstCorner + count);
        vertices.clear();
        points.clear();
        for (int corner = 0; corner < count; ++corner) {
            vertices.push_back(m_file.corners[from + size_t(corner)].vertex);
            points.push_back(m_positions[size_t(vertices.back())]);
        }
        RyPolygonFans &fan = fans[size_t(part)];
        int start = 0;
        if (hasPolygons) {
            start = fan.add(splits, points);
            countFolded(fan, count);
        } else {
            fan.triangles.insert(fan.triangles.end(), splits.begin(), splits.end());
        }
        result.add(vertices, start, polygon.group);
        addRun(part, count > 4 ? count - 2 : 1);
    }
    if (m_parts->order.size() == m_parts->parts.size())
        m_parts->order.clear(); // part by part
    for (size_t p = 0; p < fans.size(); ++p) {
        RyMeshPart &part = m_parts->parts[p];
        part.triangles = std::move(fans[p].triangles);
        for (const unsigned split : fans[p].copies) {
            part.vertexOfSplit.push_back(part.vertexOfSplit[split]);
            part.normalOfSplit.push_back(part.normalOfSplit[split]);
            if (std::binary_search(part.withoutUv.begin(), part.withoutUv.end(), int(split)))
                part.withoutUv.push_back(int(part.vertexOfSplit.size()) - 1);
            if (!part.uvs.empty())
                part.uvs.insert(part.uvs.end(), {part.uvs[2 * split], part.uvs[2 * split + 1]});
            if (!part.normals.empty())
                part.normals.push_back(part.normals[split]);
        }
    }
}

/// Corners without a normal among others that have one get a smooth one.
void RyObjMeshBuilder::fillMissingNormals(RyFacetShape &shape)
{
    const RyPartNormals shown(shape);
    for (RyMeshPart &part : m_parts->parts) {
        if (part.normals.empty())
            continue;
        if (m_parts->shapedFrom.empty())
            m_parts->shapedFrom = shape.getFacetMesh()->getPositions();
        if (std::find(part.normals.begin(), part.normals.end(), RyVec3()) != part.normals.end())
            part.normals = shown.of(part);
    }
}
