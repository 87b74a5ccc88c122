#include "rycore/io/gltf/save/RyGltfVertexPatch.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"

#include <algorithm>

RyGltfVertexPatch::RyGltfVertexPatch(RyGltfDocument &document, const RyFacetMesh &mesh, const RyAffine &toFigure)
    : m_document(document), m_mesh(mesh), m_toFigure(toFigure), m_toMesh(toFigure.inverse())
{}

void RyGltfVertexPatch::write(int mesh, int primitive, const RyMeshPart &part)
{
    const RyGltfPrimitive before = m_document.model().meshes[size_t(mesh)].primitives[size_t(primitive)];
    if (before.positions < 0)
        return;
    const size_t count = part.vertexOfSplit.size();
    std::vector<float> points = m_document.readFloats(before.positions);
    if (points.size() != 3 * count)
        return;
    std::vector<bool> isOther(count, false);
    for (size_t split = 0; split < count; ++split) {
        const RyVec3 now = m_mesh.getVertex(part.vertexOfSplit[split]);
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
    const auto replace = [this](int accessor, const std::vector<float> &values) {
        const auto [known, isNew] = m_written.try_emplace(accessor, -1);
        if (isNew)
            known->second = m_document.replaceFloats(accessor, values);
        return known->second;
    };
    if (before.normals >= 0) {
        const std::vector<float> normals = m_document.readFloats(before.normals);
        if (normals.size() == 3 * count) {
            m_document.setPrimitiveAttribute(mesh, primitive, "NORMAL",
                                             replace(before.normals, normalsNow(normals, points, isOther, part)));
        }
    }
    m_document.setPrimitiveAttribute(mesh, primitive, "POSITION", replace(before.positions, points));
}

std::vector<float> RyGltfVertexPatch::normalsNow(const std::vector<float> &before, const std::vector<float> &points,
                                                 const std::vector<bool> &isOther, const RyMeshPart &part) const
{
    // Splits with one number share a smooth normal. Only those next to a moved vertex get another.
    std::map<int, RyVec3> sums;
    for (size_t t = 0; t + 2 < part.triangles.size(); t += 3) {
        const unsigned *corners = &part.triangles[t];
        if (isOther[corners[0]] || isOther[corners[1]] || isOther[corners[2]]) {
            for (int corner = 0; corner < 3; ++corner)
                sums.emplace(part.normalOfSplit[corners[corner]], RyVec3());
        }
    }
    const auto pointAt = [&points](unsigned split) {
        return RyVec3(points[3 * split], points[3 * split + 1], points[3 * split + 2]);
    };
    for (size_t t = 0; t + 2 < part.triangles.size(); t += 3) {
        const unsigned *corners = &part.triangles[t];
        const RyVec3 normal =
            (pointAt(corners[1]) - pointAt(corners[0])).cross(pointAt(corners[2]) - pointAt(corners[0]));
        for (int corner = 0; corner < 3; ++corner) {
            const auto sum = sums.find(part.normalOfSplit[corners[corner]]);
            if (sum != sums.end())
                sum->second += normal;
        }
    }
    std::vector<float> result = before;
    for (size_t split = 0; split < part.normalOfSplit.size(); ++split) {
        const auto sum = sums.find(part.normalOfSplit[split]);
        if (sum == sums.end() || sum->second.length() == 0.0f)
            continue;
        // Small triangles of files in metres have tiny cross products.
        const RyVec3 normal = (sum->second / sum->second.length()).normalized();
        for (int axis = 0; axis < 3; ++axis)
            result[3 * split + size_t(axis)] = normal[axis];
    }
    return result;
}
