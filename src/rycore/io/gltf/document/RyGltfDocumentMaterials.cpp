#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfSpares.h"

#include <algorithm>

using Json = nlohmann::ordered_json;

void RyGltfDocument::markFans(int mesh, int primitive)
{
    const char *const name = "FB_ngon_encoding";
    d->model.meshes.at(std::size_t(mesh)).primitives.at(std::size_t(primitive)).hasFans = true;
    d->list("meshes")[std::size_t(mesh)]["primitives"][std::size_t(primitive)]["extensions"][name] = Json::object();
    Json &used = d->list("extensionsUsed");
    if (std::find(used.begin(), used.end(), name) == used.end())
        used.push_back(name);
}

int RyGltfDocument::addImage(const QString &name, const QByteArray &bytes, const QString &mimeType)
{
    const int view = d->appendView(bytes.constData(), std::uint64_t(bytes.size()), 0, 0);
    if (view < 0)
        return -1;
    Json entry = Json::object();
    if (!name.isEmpty())
        entry["name"] = name.toStdString();
    entry["bufferView"] = view;
    entry["mimeType"] = mimeType.toStdString();
    RyGltfSpares::mark(entry);
    Json &images = d->list("images");
    images.push_back(std::move(entry));
    return int(images.size()) - 1;
}

int RyGltfDocument::addMaterial(const RyGltfMaterial &material)
{
    Json roughness = Json::object();
    if (material.baseColor != RyGltfMaterial().baseColor) {
        roughness["baseColorFactor"] = Json::array();
        for (const float number : material.baseColor)
            roughness["baseColorFactor"].push_back(std::clamp(double(number), 0.0, 1.0));
    }
    if (material.baseColorTexture >= 0) {
        Json texture = Json::object();
        texture["source"] = material.baseColorTexture;
        RyGltfSpares::mark(texture);
        Json &textures = d->list("textures");
        textures.push_back(std::move(texture));
        roughness["baseColorTexture"] = Json{{"index", textures.size() - 1}};
    }
    roughness["metallicFactor"] = 0.0;
    Json entry = Json::object();
    if (!material.name.isEmpty())
        entry["name"] = material.name.toStdString();
    entry["pbrMetallicRoughness"] = std::move(roughness);
    if (material.baseColor[3] < 1.0f)
        entry["alphaMode"] = "BLEND";
    if (material.doubleSided)
        entry["doubleSided"] = true;
    RyGltfSpares::mark(entry);
    d->list("materials").push_back(std::move(entry));
    d->model.materials.push_back(material);
    return int(d->model.materials.size()) - 1;
}
