#include "GltfFixture.h"

#include <QFile>

#include <cstdint>

namespace {

void word(QByteArray &bytes, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes.append(char(value >> (8 * i)));
}

} // namespace

QByteArray GltfFixture::glb(QByteArray json, QByteArray binary)
{
    while (json.size() % 4)
        json.append(' ');
    while (binary.size() % 4)
        binary.append('\0');
    QByteArray result("glTF");
    word(result, 2);
    word(result, std::uint32_t(12 + 8 + json.size() + (binary.isEmpty() ? 0 : 8 + binary.size())));
    word(result, std::uint32_t(json.size()));
    result.append("JSON").append(json);
    if (!binary.isEmpty()) {
        word(result, std::uint32_t(binary.size()));
        result.append("BIN").append('\0').append(binary);
    }
    return result;
}

QByteArray GltfFixture::skinnedBinary()
{
    QByteArray bytes;
    append<float>(bytes, {0, 0, 0, 1, 0, 0, 1, 2, 0, 0, 2, 0});                    // 0: positions, 48 bytes
    append<std::uint8_t>(bytes, {0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}); // 48: joints, 16
    append<float>(bytes, {0.5f, 0.5f, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});  // 64: weights, 64
    append<float>(bytes, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0,  0, 1,
                          1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1}); // 128: matrices, 128
    append<std::uint16_t>(bytes, {0, 1, 2, 0, 2, 3});                        // 256: indices, 12
    append<float>(bytes, {0, 1});                                            // 268: times, 8
    append<float>(bytes, {0, 0, 0, 1, 0, 0.6f, 0, 0.8f});                    // 276: turns, 32
    bytes.append("\x89PNG\r\n\x1a\n....");                                   // 308: an image, 12
    return bytes;                                                            // 320
}

QByteArray GltfFixture::skinnedJson(const QByteArray &bufferMember)
{
    return QByteArray(
               R"({"asset":{"version":"2.0","generator":"by hand"},"scene":0,)"
               R"("scenes":[{"nodes":[0,2],"name":"Main"}],"extensionsUsed":["VENDOR_unknown"],)"
               R"("extensions":{"VENDOR_unknown":{"a":[1,2.5,1e-07,{"deep":null}],"b":true}},)"
               R"("nodes":[{"name":"root","children":[1],"translation":[0,0.10000000149011612,0]},)"
               R"({"name":"tip","translation":[0,1,0],"rotation":[0,0,0,1],"extras":{"note":"left alone"}},)"
               R"({"mesh":0,"skin":0,"name":"body"}],)"
               R"("skins":[{"joints":[0,1],"inverseBindMatrices":3,"skeleton":0,"name":"rig"}],)"
               R"("meshes":[{"name":"quad","primitives":[{"attributes":{"POSITION":0,"JOINTS_0":1,"WEIGHTS_0":2},)"
               R"("indices":4,"material":0}]}],)"
               R"("materials":[{"name":"skin","pbrMetallicRoughness":{"baseColorFactor":[0.8,0.5,0.25,1],)"
               R"("baseColorTexture":{"index":0}},"doubleSided":true}],)"
               R"("textures":[{"source":0}],"images":[{"bufferView":7,"mimeType":"image/png"}],)"
               R"("animations":[{"name":"wave","channels":[{"sampler":0,"target":{"node":1,"path":"rotation"}}],)"
               R"("samplers":[{"input":5,"output":6}]}],)"
               R"("accessors":[)"
               R"({"bufferView":0,"componentType":5126,"count":4,"type":"VEC3","min":[0,0,0],"max":[1,2,0]},)"
               R"({"bufferView":1,"componentType":5121,"count":4,"type":"VEC4"},)"
               R"({"bufferView":2,"componentType":5126,"count":4,"type":"VEC4"},)"
               R"({"bufferView":3,"componentType":5126,"count":2,"type":"MAT4"},)"
               R"({"bufferView":4,"componentType":5123,"count":6,"type":"SCALAR"},)"
               R"({"bufferView":5,"componentType":5126,"count":2,"type":"SCALAR","min":[0],"max":[1]},)"
               R"({"bufferView":6,"componentType":5126,"count":2,"type":"VEC4"}],)"
               R"("bufferViews":[{"buffer":0,"byteLength":48,"target":34962},)"
               R"({"buffer":0,"byteOffset":48,"byteLength":16},{"buffer":0,"byteOffset":64,"byteLength":64},)"
               R"({"buffer":0,"byteOffset":128,"byteLength":128},{"buffer":0,"byteOffset":256,"byteLength":12},)"
               R"({"buffer":0,"byteOffset":268,"byteLength":8},{"buffer":0,"byteOffset":276,"byteLength":32},)"
               R"({"buffer":0,"byteOffset":308,"byteLength":12}],)"
               R"("buffers":[{)") +
           bufferMember + R"("byteLength":320}]})";
}

QByteArray GltfFixture::skinnedGlb()
{
    return glb(skinnedJson({}), skinnedBinary());
}

QString GltfFixture::put(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    const QString path = folder.filePath(name);
    QFile::remove(path); // writing over a file makes some file systems wait for the disk
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return {};
    return path;
}

QByteArray GltfFixture::contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
