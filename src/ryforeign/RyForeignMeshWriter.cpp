#include "ryforeign/RyForeignMeshWriter.h"

#include "rycore/io/RyPolygonFans.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "ryforeign/RyForeignCorners.h"
#include "ryforeign/RyForeignInfluences.h"
#include "ryforeign/RyForeignMorphs.h"
#include "ryforeign/RyForeignSkin.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr int ForVertices = 34962;
constexpr int ForIndices = 34963;

RyVec3 vectorOf(const aiVector3D &v)
{
    return {float(v.x), float(v.y), float(v.z)};
}

bool isFinite(const aiVector3D &v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// No reader takes a place that is none.
RyVec3 placeOf(const aiVector3D &v)
{
    return isFinite(v) ? vectorOf(v) : RyVec3();
}

/// Of length 1; readers want that even where a file has none.
RyVec3 direction(const aiVector3D &v)
{
    const RyVec3 unit = vectorOf(v).normalized();
    return std::isfinite(unit.length()) && unit.length() > 0.5f ? unit : RyVec3(0, 1, 0);
}

} // namespace

int RyForeignMeshWriter::write(const aiNode &node, const QString &name, const RyForeignSkin *skin)
{
    m_hasPolygons = false;
    bool hasFaces = false;
    for (unsigned m = 0; m < node.mNumMeshes; ++m) {
        const aiMesh &mesh = *m_input.scene->mMeshes[node.mMeshes[m]];
        for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
            m_hasPolygons = m_hasPolygons || mesh.mFaces[f].mNumIndices > 3;
            hasFaces = hasFaces || mesh.mFaces[f].mNumIndices > 2;
            lines += mesh.mFaces[f].mNumIndices < 3;
        }
    }
    if (!hasFaces)
        return -1;
    const int index = m_document.addMesh(name);
    RyForeignMorphs morphs(m_input, m_document, node);
    int primitive = 0;
    for (unsigned m = 0; m < node.mNumMeshes; ++m) {
        const aiMesh &mesh = *m_input.scene->mMeshes[node.mMeshes[m]];
        std::optional<RyForeignInfluences> influences;
        if (skin)
            influences.emplace(mesh, skin->placesOf(mesh));
        RyForeignCorners corners(mesh, influences ? &*influences : nullptr);
        if (influences)
            influences->normalize(corners.firsts);
        addTriangles(mesh, corners);
        if (m_triangles.empty())
            continue;
        noteStrangeNumbers(mesh, corners.firsts, name);
        Attributes attributes = addAttributes(mesh, corners.firsts);
        if (influences)
            addInfluences(*influences, corners.firsts, skin->joints.size(), attributes);
        const int material = mesh.mMaterialIndex < m_materials.size() ? m_materials[mesh.mMaterialIndex] : -1;
        m_document.addPrimitive(index, attributes, m_document.addUintAccessor(m_triangles, 1, 5125, ForIndices),
                                material);
        if (m_hasPolygons)
            m_document.markFans(index, primitive);
        if (!m_firstCorners.empty())
            RyTreeExtras::storeFirstCorners(m_document, index, primitive, m_firstCorners);
        if (influences && !m_free.empty())
            RyTreeExtras::storeFree(m_document, index, primitive, m_free);
        morphs.writeTargets(index, primitive, mesh, m, corners.firsts);
        ++primitive;
    }
    morphs.writeNames(index, name);
    return index;
}

/// Of three corners plain ones, unless there are larger polygons, which readers tell by the fans that they are cut to.
void RyForeignMeshWriter::addTriangles(const aiMesh &mesh, RyForeignCorners &corners)
{
    m_triangles.clear();
    m_firstCorners.clear();
    if (!m_hasPolygons)
        m_triangles.reserve(3 * size_t(mesh.mNumFaces));
    RyPolygonFans fans(unsigned(corners.firsts.size()));
    std::vector<unsigned> polygon;
    std::vector<RyVec3> positions;
    for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
        const aiFace &face = mesh.mFaces[f];
        polygon.clear();
        for (unsigned i = 0; i < face.mNumIndices; ++i)
            polygon.push_back(corners.vertexOf[face.mIndices[i]]);
        if (polygon.size() < 3)
            continue;
        if (!m_hasPolygons) {
            m_triangles.insert(m_triangles.end(), polygon.begin(), polygon.end());
            continue;
        }
        positions.clear();
        for (unsigned i = 0; i < face.mNumIndices; ++i)
            positions.push_back(placeOf(mesh.mVertices[face.mIndices[i]]));
        const int first = int(fans.triangles.size() / 3);
        const int count = int(polygon.size());
        if (const int start = fans.add(polygon, positions); start != 0)
            m_firstCorners.insert(m_firstCorners.end(), {first, count - start});
    }
    if (!m_hasPolygons)
        return;
    m_triangles = std::move(fans.triangles);
    for (const unsigned copied : fans.copies)
        corners.firsts.push_back(corners.firsts[copied]);
}

void RyForeignMeshWriter::noteStrangeNumbers(const aiMesh &mesh, const std::vector<std::uint32_t> &firsts,
                                             const QString &name) const
{
    int places = 0, coordinates = 0;
    for (const std::uint32_t corner : firsts) {
        places += !isFinite(mesh.mVertices[corner]);
        for (unsigned set = 0; set < mesh.GetNumUVChannels(); ++set) {
            const aiVector3D &uv = mesh.mTextureCoords[set][corner];
            coordinates += !std::isfinite(uv.x) || !std::isfinite(uv.y);
        }
    }
    if (places > 0)
        m_input.say(QStringLiteral("Mesh \"%1\": the places of %2 vertices are no numbers; these vertices were put to "
                                   "the origin of the mesh")
                        .arg(name)
                        .arg(places));
    if (coordinates > 0)
        m_input.say(QStringLiteral("Mesh \"%1\": %2 texture coordinates are no numbers; they were made 0")
                        .arg(name)
                        .arg(coordinates));
}

RyForeignMeshWriter::Attributes RyForeignMeshWriter::addAttributes(const aiMesh &mesh,
                                                                   const std::vector<std::uint32_t> &firsts) const
{
    Attributes attributes;
    std::vector<float> numbers;
    const auto add = [&](const std::string &name, int components, bool withBounds, const auto &write) {
        numbers.resize(firsts.size() * size_t(components));
        float *to = numbers.data();
        for (const std::uint32_t corner : firsts) {
            write(corner, to);
            to += components;
        }
        attributes.emplace_back(name, m_document.addFloatAccessor(numbers, components, ForVertices, withBounds));
    };
    const auto writeVector = [](const RyVec3 &v, float *to) {
        to[0] = v.x;
        to[1] = v.y;
        to[2] = v.z;
    };
    add("POSITION", 3, true,
        [&](std::uint32_t corner, float *to) { writeVector(placeOf(mesh.mVertices[corner]), to); });
    if (mesh.HasNormals())
        add("NORMAL", 3, false,
            [&](std::uint32_t corner, float *to) { writeVector(direction(mesh.mNormals[corner]), to); });
    for (unsigned set = 0; set < mesh.GetNumUVChannels(); ++set) {
        add("TEXCOORD_" + std::to_string(set), 2, false, [&](std::uint32_t corner, float *to) {
            const aiVector3D &uv = mesh.mTextureCoords[set][corner];
            const bool isNumber = std::isfinite(uv.x) && std::isfinite(uv.y);
            to[0] = isNumber ? float(uv.x) : 0.0f;
            to[1] = isNumber ? 1.0f - float(uv.y) : 0.0f; // counted from above
        });
    }
    for (unsigned set = 0; set < mesh.GetNumColorChannels(); ++set) {
        add("COLOR_" + std::to_string(set), 4, false, [&](std::uint32_t corner, float *to) {
            const aiColor4D &color = mesh.mColors[set][corner];
            for (const ai_real part : {color.r, color.g, color.b, color.a})
                *to++ = std::isfinite(part) ? std::clamp(float(part), 0.0f, 1.0f) : 1.0f;
        });
    }
    return attributes;
}

/// A vertex that nothing moves is held by the first joint, since the format has no other way; our extras say so.
void RyForeignMeshWriter::addInfluences(const RyForeignInfluences &influences, const std::vector<std::uint32_t> &firsts,
                                        size_t jointCount, Attributes &attributes)
{
    m_free.clear();
    for (size_t vertex = 0; vertex < firsts.size(); ++vertex) {
        if (influences.count(firsts[vertex]) == 0)
            m_free.push_back(int(vertex));
    }
    const unsigned sets = std::max(1u, (influences.most() + 3) / 4);
    std::vector<std::uint32_t> joints;
    std::vector<float> weights;
    for (unsigned set = 0; set < sets; ++set) {
        joints.assign(4 * firsts.size(), 0);
        weights.assign(4 * firsts.size(), 0.0f);
        for (size_t vertex = 0; vertex < firsts.size(); ++vertex) {
            const unsigned count = influences.count(firsts[vertex]);
            const RyForeignInfluences::Influence *all = influences.begin(firsts[vertex]);
            for (unsigned i = 4 * set; i < std::min(count, 4 * set + 4); ++i) {
                joints[4 * vertex + i % 4] = all[i].joint;
                weights[4 * vertex + i % 4] = all[i].weight;
            }
            if (set == 0 && count == 0)
                weights[4 * vertex] = 1.0f;
        }
        const std::string number = std::to_string(set);
        attributes.emplace_back("JOINTS_" + number,
                                m_document.addUintAccessor(joints, 4, jointCount > 256 ? 5123 : 5121, ForVertices));
        attributes.emplace_back("WEIGHTS_" + number, m_document.addFloatAccessor(weights, 4, ForVertices));
    }
}
