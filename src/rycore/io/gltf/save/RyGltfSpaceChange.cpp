#include "rycore/io/gltf/save/RyGltfSpaceChange.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/scene/RyMeshPart.h"

#include <Eigen/Geometry>
#include <Eigen/LU>

#include <algorithm>
#include <cmath>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

constexpr float Rounding = 1e-6f; // of directions about one long

/// The linear part, for column vectors.
Eigen::Matrix3d linearOf(const RyAffine &map)
{
    Eigen::Matrix3d linear;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            linear(column, row) = map.m[row][column];
    }
    return linear;
}

RyAffine mapOf(const RyGltfLinear &linear)
{
    RyAffine map;
    for (size_t row = 0; row < 3; ++row)
        std::copy(linear[row].begin(), linear[row].end(), map.m[row]);
    return map;
}

/// Turns normals as the cross products of edges turn, which new normals of the mesh are.
Eigen::Matrix3d cofactorOf(const Eigen::Matrix3d &linear)
{
    Eigen::Matrix3d result;
    for (int column = 0; column < 3; ++column)
        result.col(column) = linear.col((column + 1) % 3).cross(linear.col((column + 2) % 3));
    return result;
}

Eigen::Vector3d directionAt(const std::vector<float> &numbers, size_t place)
{
    return {double(numbers[place]), double(numbers[place + 1]), double(numbers[place + 2])};
}

void setDirection(std::vector<float> &numbers, size_t place, const Eigen::Vector3d &direction)
{
    if (!direction.allFinite())
        return;
    for (int axis = 0; axis < 3; ++axis)
        numbers[place + size_t(axis)] = float(direction[axis]);
}

} // namespace

void RyGltfSpaceChange::turnTangents(int mesh, int primitive, const RyMeshPart &part) const
{
    constexpr size_t width = 4;
    const int accessor = attributeOf(mesh, primitive, "TANGENT");
    const std::vector<float> before = accessor < 0 ? std::vector<float>() : m_document.readFloats(accessor);
    if (before.empty() || before.size() != width * part.vertexOfSplit.size())
        return;
    std::vector<float> now = before;
    for (size_t split = 0; split < part.vertexOfSplit.size(); ++split) {
        const Eigen::Matrix3d linear = linearOf(changeOf(part.vertexOfSplit[split]));
        const Eigen::Vector3d turned = linear * directionAt(before, width * split);
        setDirection(now, width * split, turned / turned.norm());
    }
    m_document.setPrimitiveAttribute(mesh, primitive, "TANGENT", replace(accessor, before, now));
}

int RyGltfSpaceChange::turnDeltas(const std::string &attribute, int accessor, int mesh, int primitive,
                                  const RyMeshPart &part) const
{
    const bool isNormal = attribute == "NORMAL";
    const int base = isNormal || attribute == "TANGENT" ? attributeOf(mesh, primitive, attribute) : -1;
    if (base < 0)
        return accessor;
    const size_t width = isNormal ? 3 : 4;
    const std::vector<float> bases = m_document.readFloats(base);
    const std::vector<float> before = m_document.readFloats(accessor);
    const size_t count = part.vertexOfSplit.size();
    if (bases.size() != width * count || before.size() != 3 * count)
        return accessor;
    std::vector<float> now = before;
    for (size_t split = 0; split < count; ++split) {
        const Eigen::Matrix3d linear = linearOf(changeOf(part.vertexOfSplit[split]));
        const Eigen::Matrix3d turn = isNormal ? cofactorOf(linear) : linear;
        // Sums are made one long after they were weighed: with the factor that the base got, each weight shows the
        // turned sum.
        const double factor = (turn.inverse() * directionAt(bases, width * split)).norm();
        setDirection(now, 3 * split, factor * (turn * directionAt(before, 3 * split)));
    }
    return replace(accessor, before, now);
}

int RyGltfSpaceChange::attributeOf(int mesh, int primitive, const std::string &name) const
{
    const Json &json = std::as_const(m_document).json()["meshes"][size_t(mesh)]["primitives"][size_t(primitive)];
    const Json *accessor = find(json["attributes"], name.c_str());
    const bool isThere =
        accessor && accessor->is_number_integer() && *accessor >= 0 && *accessor < m_document.model().accessors.size();
    return isThere ? accessor->get<int>() : -1;
}

/// From the mesh space of the file to the one in which the vertex is written.
RyAffine RyGltfSpaceChange::changeOf(int vertex) const
{
    RyAffine map = m_before;
    if (m_figure.toNodePose)
        map = map * mapOf((*m_figure.toNodePose)[size_t(vertex)]);
    if (!m_carried.empty())
        map = map * mapOf(m_carried[size_t(vertex)]);
    return map * m_toMesh;
}

int RyGltfSpaceChange::replace(int accessor, const std::vector<float> &before, const std::vector<float> &now) const
{
    const bool isSame = std::equal(before.begin(), before.end(), now.begin(),
                                   [](float a, float b) { return std::abs(a - b) < Rounding; });
    return isSame ? accessor : m_document.replaceFloats(accessor, now);
}
