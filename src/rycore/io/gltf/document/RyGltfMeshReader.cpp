#include "rycore/io/gltf/document/RyGltfMeshReader.h"

#include "rycore/io/gltf/document/RyGltfAccessorReader.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>

namespace {

template<typename T>
std::uint32_t largest(const unsigned char *bytes, std::uint64_t stride, std::uint64_t count)
{
    std::uint32_t result = 0;
    if (stride == sizeof(T)) { // a loop that registers of several numbers can take
        for (std::uint64_t i = 0; i < count; ++i) {
            T value;
            std::memcpy(&value, bytes + i * sizeof(T), sizeof(T));
            result = std::max<std::uint32_t>(result, value);
        }
        return result;
    }
    for (std::uint64_t i = 0; i < count; ++i) {
        T value;
        std::memcpy(&value, bytes + i * stride, sizeof(T));
        result = std::max<std::uint32_t>(result, value);
    }
    return result;
}

} // namespace

void RyGltfMeshReader::readMaterials(RyGltfModel &model) const
{
    const RyGltfCursor images = m_root.array("images");
    const RyGltfCursor textures = m_root.array("textures");
    const RyGltfCursor list = m_root.array("materials");
    model.materials.clear();
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        RyGltfMaterial material;
        material.name = cursor.text("name");
        material.doubleSided = cursor.flag("doubleSided");
        const RyGltfCursor roughness = cursor.object("pbrMetallicRoughness");
        double color[4];
        if (roughness.numbers("baseColorFactor", color, 4)) {
            for (int k = 0; k < 4; ++k)
                material.baseColor[std::size_t(k)] = float(color[k]);
        }
        int texture = -1;
        const RyGltfCursor textureIndex = roughness.object("baseColorTexture").member("index");
        if (textureIndex.exists()) {
            int image = -1;
            if (textureIndex.peekIndex(textures.size(), texture)) {
                const RyGltfCursor entry = textures.element(texture);
                const RyGltfCursor extensions = entry.member("extensions");
                if (entry.member("source").peekIndex(images.size(), image) ||
                    extensions.member("EXT_texture_webp").member("source").peekIndex(images.size(), image) ||
                    extensions.member("KHR_texture_basisu").member("source").peekIndex(images.size(), image))
                    material.baseColorTexture = image;
            }
            if (image < 0)
                m_warnings.add(textureIndex.path() + QStringLiteral(": the texture has no image and is not shown"));
        }
        model.materials.push_back(material);
    }
}

int RyGltfMeshReader::readAttribute(const RyGltfCursor &attributes, const char *name, const RyGltfModel &model) const
{
    return attributes.index(name, int(model.accessors.size()), "accessor");
}

int RyGltfMeshReader::readOptional(const RyGltfCursor &attributes, const char *name, const RyGltfModel &model,
                                   int least, int most, std::uint64_t count) const
{
    const int index = readAttribute(attributes, name, model);
    if (index < 0)
        return -1;
    const RyGltfAccessor &accessor = model.accessors[std::size_t(index)];
    if (accessor.componentCount < least || accessor.componentCount > most || accessor.count != count) {
        m_warnings.add(attributes.member(name).path() +
                       QStringLiteral(": accessor %1 does not fit the vertices and is not used").arg(index));
        return -1;
    }
    return index;
}

void RyGltfMeshReader::readInfluences(const RyGltfCursor &attributes, const RyGltfModel &model, std::uint64_t count,
                                      RyGltfPrimitive &primitive) const
{
    for (int set = 0;; ++set) {
        const std::string jointsName = "JOINTS_" + std::to_string(set);
        const std::string weightsName = "WEIGHTS_" + std::to_string(set);
        const int joints = readAttribute(attributes, jointsName.c_str(), model);
        const int weights = readAttribute(attributes, weightsName.c_str(), model);
        if (joints < 0 && weights < 0)
            return;
        if (joints < 0 || weights < 0) {
            m_warnings.add(attributes.path() + QStringLiteral(": %1 stands without %2 and is not used")
                                                   .arg(QString::fromStdString(joints < 0 ? weightsName : jointsName),
                                                        QString::fromStdString(joints < 0 ? jointsName : weightsName)));
            return;
        }
        const RyGltfAccessor &j = model.accessors[std::size_t(joints)];
        const RyGltfAccessor &w = model.accessors[std::size_t(weights)];
        const bool jointsFit = j.componentType == 5121 || j.componentType == 5123 || j.componentType == 5125;
        if (j.componentCount != 4 || !jointsFit)
            attributes.refuse(QStringLiteral("%1 is not made of four indices").arg(QString::fromStdString(jointsName)));
        const bool weightsFit = w.componentType == 5126 || w.componentType == 5121 || w.componentType == 5123;
        if (w.componentCount != 4 || !weightsFit)
            attributes.refuse(
                QStringLiteral("%1 is not made of four weights").arg(QString::fromStdString(weightsName)));
        if (j.count != count || w.count != count) {
            attributes.refuse(
                QStringLiteral("%1 joints and %2 weights for %3 vertices").arg(j.count).arg(w.count).arg(count));
        }
        primitive.joints.push_back(joints);
        primitive.weights.push_back(weights);
    }
}

void RyGltfMeshReader::checkIndices(const RyGltfCursor &cursor, const RyGltfModel &model,
                                    const RyGltfPrimitive &primitive, std::uint64_t count) const
{
    const RyGltfAccessor &accessor = model.accessors[std::size_t(primitive.indices)];
    const RyGltfLayout &layout = m_storage.layouts[std::size_t(primitive.indices)];
    const RyGltfCursor where = cursor.member("indices");
    if (accessor.componentCount != 1 || accessor.componentType == 5126)
        where.refuse(QStringLiteral("accessor %1 does not hold indices").arg(primitive.indices));
    std::uint32_t most = 0;
    if (accessor.sparse || accessor.bufferView < 0 || accessor.componentType == 5120 ||
        accessor.componentType == 5122) {
        for (const std::uint32_t index : RyGltfAccessorReader(accessor, layout, m_storage).readUints())
            most = std::max(most, index);
    } else {
        const unsigned char *bytes = m_storage.viewBytes(accessor.bufferView) + accessor.byteOffset;
        most = layout.componentSize == 1   ? largest<std::uint8_t>(bytes, layout.stride, accessor.count)
               : layout.componentSize == 2 ? largest<std::uint16_t>(bytes, layout.stride, accessor.count)
                                           : largest<std::uint32_t>(bytes, layout.stride, accessor.count);
    }
    if (accessor.count > 0 && most >= count)
        where.refuse(QStringLiteral("vertex %1 does not exist (there are %2)").arg(most).arg(count));
}

RyGltfPrimitive RyGltfMeshReader::readPrimitive(const RyGltfCursor &cursor, const RyGltfModel &model) const
{
    RyGltfPrimitive primitive;
    const std::uint64_t mode = cursor.count("mode", 4);
    if (mode > 6)
        cursor.refuse(QStringLiteral("unknown mode %1").arg(mode));
    primitive.mode = int(mode);
    const RyGltfCursor material = cursor.member("material");
    if (material.exists() && !material.peekIndex(int(model.materials.size()), primitive.material))
        m_warnings.add(material.path() + QStringLiteral(": the material does not exist"));
    const RyGltfCursor attributes = cursor.object("attributes");
    primitive.positions = readAttribute(attributes, "POSITION", model);
    primitive.indices = readAttribute(cursor, "indices", model);
    if (primitive.positions < 0) {
        m_warnings.add(cursor.path() + QStringLiteral(": has no positions and is not shown"));
        return primitive;
    }
    const RyGltfAccessor &positions = model.accessors[std::size_t(primitive.positions)];
    const std::uint64_t count = positions.count;
    // Where a compressed shape has no plain one beside it, the accessors stand for nothing.
    for (const char *compression : {"KHR_draco_mesh_compression", "EXT_meshopt_compression"}) {
        if (positions.bufferView < 0 && !positions.sparse && cursor.object("extensions").has(compression))
            cursor.refuse(QStringLiteral("the shape is compressed with %1, which is not supported").arg(compression));
    }
    if (positions.componentCount != 3)
        attributes.refuse(QStringLiteral("POSITION is not made of three numbers"));
    primitive.normals = readOptional(attributes, "NORMAL", model, 3, 3, count);
    primitive.texcoords = readOptional(attributes, "TEXCOORD_0", model, 2, 2, count);
    primitive.colors = readOptional(attributes, "COLOR_0", model, 3, 4, count);
    readInfluences(attributes, model, count, primitive);
    primitive.hasFans = primitive.mode == 4 && cursor.object("extensions").has("FB_ngon_encoding");
    const RyGltfCursor targets = cursor.array("targets");
    for (int i = 0; i < targets.size(); ++i)
        primitive.morphPositions.push_back(readOptional(targets.objectAt(i), "POSITION", model, 3, 3, count));
    if (primitive.indices >= 0)
        checkIndices(cursor, model, primitive, count);
    return primitive;
}

void RyGltfMeshReader::readTargets(const RyGltfCursor &cursor, RyGltfMesh &mesh)
{
    const RyGltfCursor weights = cursor.array("weights");
    for (int i = 0; i < weights.size(); ++i)
        mesh.weights.push_back(weights.element(i).asNumber());
    // Extras may be anything.
    const nlohmann::ordered_json &value = cursor.member("extras").value();
    const auto names = value.is_object() ? value.find("targetNames") : value.end();
    if (names == value.end() || !names->is_array())
        return;
    for (const auto &name : *names) {
        mesh.targetNames.push_back(name.is_string() ? QString::fromStdString(name.get_ref<const std::string &>())
                                                    : QString());
    }
}

void RyGltfMeshReader::readMeshes(RyGltfModel &model) const
{
    std::vector<bool> checked(model.accessors.size(), false);
    const RyGltfCursor list = m_root.array("meshes");
    model.meshes.clear();
    std::uint64_t total = 0;
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        RyGltfMesh mesh;
        mesh.name = cursor.text("name");
        const RyGltfCursor primitives = cursor.array("primitives");
        for (int k = 0; k < primitives.size(); ++k) {
            const RyGltfPrimitive primitive = readPrimitive(primitives.objectAt(k), model);
            const int positions = primitive.positions;
            if (positions >= 0) {
                const RyGltfAccessor &accessor = model.accessors[std::size_t(positions)];
                total += accessor.count * (1 + primitive.morphPositions.size());
                const RyGltfLayout &layout = m_storage.layouts[std::size_t(positions)];
                if (!checked[std::size_t(positions)] && !RyGltfAccessorReader(accessor, layout, m_storage).isFinite()) {
                    m_warnings.add(QStringLiteral("accessors[%1]: positions that are not finite numbers read as 0")
                                       .arg(positions));
                }
                checked[std::size_t(positions)] = true;
            }
            if (primitive.indices >= 0)
                total += model.accessors[std::size_t(primitive.indices)].count;
            if (total > maximumVertices)
                cursor.refuse(QStringLiteral("the meshes have more than %1 vertices in all").arg(maximumVertices));
            mesh.primitives.push_back(primitive);
        }
        readTargets(cursor, mesh);
        model.meshes.push_back(std::move(mesh));
    }
}
