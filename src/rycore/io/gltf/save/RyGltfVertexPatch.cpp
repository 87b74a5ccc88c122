#include "rycore/io/gltf/save/RyGltfVertexPatch.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"

#include <algorithm>
#include <map>
#include <tuple>

RyGltfVertexPatch::RyGltfVertexPatch(RyGltfDocument &document, const RyFacetMesh &mesh, const RyAffine &toFigure)
    : m_document(document), m_mesh(mesh), m_toFigure(toFigure), m_toMesh(toFigure.inverse())
{}

void RyGltfVertexPatch::write(const std::vector<Part> &parts)
{
    for (const Sharers &sharers : sharersOf(parts, "POSITION"))
        writePositions(sharers);
}

std::vector<RyGltfVertexPatch::Sharers> RyGltfVertexPatch::sharersOf(const std::vector<Part> &parts,
                                                                     const char *attribute) const
{
    const bool isPosition = qstrcmp(attribute, "POSITION") == 0;
    std::vector<Sharers> result;
    std::map<std::tuple<int, const std::vector<int> &>, size_t> known; // where in the result
    for (const Part &part : parts) {
        const RyGltfPrimitive &primitive =
            m_document.model().meshes[size_t(part.mesh)].primitives[size_t(part.primitive)];
        const int accessor = isPosition ? primitive.positions : primitive.normals;
        if (accessor < 0)
            continue;
        const auto [place, isNew] = known.try_emplace(
            std::tuple<int, const std::vector<int> &>(accessor, part.source->vertexOfSplit), result.size());
        if (isNew)
            result.push_back({accessor, {part}});
        else
            result[place->second].parts.push_back(part);
    }
    return result;
}

void RyGltfVertexPatch::writePositions(const Sharers &sharers)
{
    const std::vector<int> &vertexOfSplit = sharers.parts.front().source->vertexOfSplit;
    const size_t count = vertexOfSplit.size();
    std::vector<float> points = m_document.readFloats(sharers.accessor);
    if (points.size() != 3 * count)
        return;
    std::vector<bool> isOther(count, false);
    for (size_t split = 0; split < count; ++split) {
        const RyVec3 now = m_mesh.getVertex(vertexOfSplit[split]);
        float *point = &points[3 * split];
        const double from[3] = {double(point[0]), double(point[1]), double(point[2])};
        double at[3];
        m_toFigure.mapPoint(from, at);
        if (RyVec3(float(at[0]), float(at[1]), float(at[2])) == now)
            continue;
        isOther[split] = true;
        const double wanted[3] = {double(now.x), double(now.y), double(now.z)};
        m_toMesh.mapPoint(wanted, at);
        for (int axis = 0; axis < 3; ++axis)
            point[axis] = float(at[axis]);
    }
    if (std::find(isOther.begin(), isOther.end(), true) == isOther.end())
        return;
    for (const Sharers &ofNormal : sharersOf(sharers.parts, "NORMAL"))
        writeNormals(ofNormal, points, isOther);
    replace(sharers, "POSITION", points);
}

void RyGltfVertexPatch::replace(const Sharers &sharers, const char *attribute, const std::vector<float> &values)
{
    const int accessor = m_document.replaceFloats(sharers.accessor, values, int(sharers.parts.size()));
    for (const Part &part : sharers.parts)
        m_document.setPrimitiveAttribute(part.mesh, part.primitive, attribute, accessor);
}

void RyGltfVertexPatch::writeNormals(const Sharers &sharers, const std::vector<float> &points,
                                     const std::vector<bool> &isOther)
{
    std::vector<float> result = m_document.readFloats(sharers.accessor);
    if (result.size() != points.size())
        return;
    // Splits with one number share a smooth normal, with the triangles of all primitives around it. Only those next to
    // a moved vertex get another. Sharers group their splits alike.
    const std::vector<int> &normalOfSplit = sharers.parts.front().source->normalOfSplit;
    std::map<int, RyVec3> sums;
    const auto forTriangles = [&sharers](const auto &work) {
        for (const Part &part : sharers.parts) {
            const auto &triangles = part.source->triangles;
            for (size_t t = 0; t + 2 < triangles.size(); t += 3)
                work(&triangles[t]);
        }
    };
    forTriangles([&](const unsigned *corners) {
        if (isOther[corners[0]] || isOther[corners[1]] || isOther[corners[2]]) {
            for (int corner = 0; corner < 3; ++corner)
                sums.emplace(normalOfSplit[corners[corner]], RyVec3());
        }
    });
    const auto pointAt = [&points](unsigned split) {
        return RyVec3(points[3 * split], points[3 * split + 1], points[3 * split + 2]);
    };
    forTriangles([&](const unsigned *corners) {
        const RyVec3 normal =
            (pointAt(corners[1]) - pointAt(corners[0])).cross(pointAt(corners[2]) - pointAt(corners[0]));
        for (int corner = 0; corner < 3; ++corner) {
            const auto sum = sums.find(normalOfSplit[corners[corner]]);
            if (sum != sums.end())
                sum->second += normal;
        }
    });
    for (size_t split = 0; split < normalOfSplit.size(); ++split) {
        const auto sum = sums.find(normalOfSplit[split]);
        if (sum == sums.end() || sum->second.length() == 0.0f)
            continue;
        // Small triangles of files in metres have tiny cross products.
        const RyVec3 normal = (sum->second / sum->second.length()).normalized();
        for (int axis = 0; axis < 3; ++axis)
            result[3 * split + size_t(axis)] = normal[axis];
    }
    replace(sharers, "NORMAL", result);
}
