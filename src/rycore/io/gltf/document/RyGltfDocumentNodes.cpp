#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/document/RyGltfSpares.h"

#include <algorithm>
#include <cmath>

using Json = nlohmann::ordered_json;

namespace {

template<std::size_t N>
bool isFinite(const std::array<double, N> &numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

/// Brings one part of a transform into the node; what has not changed keeps the way it is written.
template<std::size_t N>
void setPart(Json &node, const char *key, const std::array<double, N> &before, const std::array<double, N> &now,
             const std::array<double, N> &identity)
{
    if (before == now)
        return;
    if (now == identity) {
        node.erase(key);
        return;
    }
    Json &numbers = node[key];
    if (!numbers.is_array() || numbers.size() != N) {
        numbers = Json::array();
        for (const double number : now)
            numbers.push_back(number);
        return;
    }
    for (std::size_t i = 0; i < N; ++i) {
        if (before[i] != now[i])
            numbers[i] = now[i];
    }
}

void setText(Json &object, const char *key, const QString &text)
{
    if (text.isEmpty())
        object.erase(key);
    else
        object[key] = text.toStdString();
}

void setIndex(Json &object, const char *key, int index)
{
    if (index < 0)
        object.erase(key);
    else
        object[key] = index;
}

int attribute(const Json &attributes, const std::string &name)
{
    const auto found = attributes.find(name);
    return found == attributes.end() ? -1 : found->get<int>();
}

bool startsWith(const std::string &text, const char *prefix)
{
    return text.rfind(prefix, 0) == 0;
}

void followInfluences(const Json &attributes, RyGltfPrimitive &primitive)
{
    primitive.joints.clear();
    primitive.weights.clear();
    for (int set = 0;; ++set) {
        const int joints = attribute(attributes, "JOINTS_" + std::to_string(set));
        const int weights = attribute(attributes, "WEIGHTS_" + std::to_string(set));
        if (joints < 0 || weights < 0)
            return;
        primitive.joints.push_back(joints);
        primitive.weights.push_back(weights);
    }
}

/// Brings the change of one attribute into the model; the others stay as they were judged when the file was read.
void followAttribute(const Json &attributes, const std::string &name, RyGltfPrimitive &primitive)
{
    if (name == "POSITION")
        primitive.positions = attribute(attributes, name);
    else if (name == "NORMAL")
        primitive.normals = attribute(attributes, name);
    else if (name == "TEXCOORD_0")
        primitive.texcoords = attribute(attributes, name);
    else if (name == "COLOR_0")
        primitive.colors = attribute(attributes, name);
    else if (startsWith(name, "JOINTS_") || startsWith(name, "WEIGHTS_"))
        followInfluences(attributes, primitive);
}

} // namespace

void RyGltfDocument::setNodeTransform(int node, const RyGltfTransform &transform)
{
    static const RyGltfTransform identity;
    if (!isFinite(transform.matrix) || !isFinite(transform.translation) || !isFinite(transform.rotation) ||
        !isFinite(transform.scale))
        return;
    RyGltfTransform &before = d->model.nodes.at(std::size_t(node)).transform;
    Json &entry = d->list("nodes")[std::size_t(node)];
    if (transform.hasMatrix) {
        if (!before.hasMatrix) {
            for (const char *key : {"translation", "rotation", "scale"})
                entry.erase(key);
        }
        setPart(entry, "matrix", before.hasMatrix ? before.matrix : identity.matrix, transform.matrix, identity.matrix);
        const bool written = entry.contains("matrix");
        before = RyGltfTransform();
        before.hasMatrix = written;
        before.matrix = transform.matrix;
        return;
    }
    if (before.hasMatrix)
        entry.erase("matrix");
    setPart(entry, "translation", before.translation, transform.translation, identity.translation);
    setPart(entry, "rotation", before.rotation, transform.rotation, identity.rotation);
    setPart(entry, "scale", before.scale, transform.scale, identity.scale);
    before = transform;
    before.matrix = identity.matrix;
}

void RyGltfDocument::setNodeName(int node, const QString &name)
{
    RyGltfNode &entry = d->model.nodes.at(std::size_t(node));
    if (entry.name == name)
        return;
    entry.name = name;
    setText(d->list("nodes")[std::size_t(node)], "name", name);
}

int RyGltfDocument::addNode(const QString &name, const RyGltfTransform &transform, int parent)
{
    const int index = int(d->model.nodes.size());
    Json entry = Json::object();
    setText(entry, "name", name);
    d->list("nodes").push_back(std::move(entry));
    d->model.nodes.emplace_back();
    d->model.nodes.back().name = name;
    setNodeTransform(index, transform);
    d->model.nodes.back().parent = parent;
    if (parent >= 0) {
        d->model.nodes.at(std::size_t(parent)).children.push_back(index);
        d->list("nodes")[std::size_t(parent)]["children"].push_back(index);
        return index;
    }
    d->model.sceneRoots.push_back(index);
    if (const int scene = shownScene(); scene >= 0)
        d->list("scenes")[std::size_t(scene)]["nodes"].push_back(index);
    return index;
}

int RyGltfDocument::addMesh(const QString &name)
{
    Json entry = Json::object();
    setText(entry, "name", name);
    entry["primitives"] = Json::array();
    RyGltfSpares::mark(entry);
    d->list("meshes").push_back(std::move(entry));
    d->model.meshes.emplace_back();
    d->model.meshes.back().name = name;
    return int(d->model.meshes.size()) - 1;
}

void RyGltfDocument::addPrimitive(int mesh, const std::vector<std::pair<std::string, int>> &attributes, int indices,
                                  int material)
{
    RyGltfPrimitive primitive;
    primitive.indices = indices;
    primitive.material = material;
    Json entry = Json::object();
    entry["attributes"] = Json::object();
    for (const auto &[name, accessor] : attributes)
        entry["attributes"][name] = accessor;
    setIndex(entry, "indices", indices);
    setIndex(entry, "material", material);
    for (const auto &[name, accessor] : attributes)
        followAttribute(entry["attributes"], name, primitive);
    for (const auto &[name, accessor] : entry["attributes"].items())
        d->moveUse(nullptr, accessor.get<int>());
    d->moveUse(nullptr, indices);
    d->model.meshes.at(std::size_t(mesh)).primitives.push_back(primitive);
    d->list("meshes")[std::size_t(mesh)]["primitives"].push_back(std::move(entry));
}

void RyGltfDocument::setPrimitiveAttribute(int mesh, int primitive, const std::string &name, int accessor)
{
    RyGltfPrimitive &target = d->model.meshes.at(std::size_t(mesh)).primitives.at(std::size_t(primitive));
    Json &attributes = d->list("meshes")[std::size_t(mesh)]["primitives"][std::size_t(primitive)]["attributes"];
    const auto before = attributes.find(name);
    d->moveUse(before == attributes.end() ? nullptr : &*before, accessor);
    setIndex(attributes, name.c_str(), accessor);
    followAttribute(attributes, name, target);
}

void RyGltfDocument::setTargets(int mesh, int primitive,
                                const std::vector<std::vector<std::pair<std::string, int>>> &targets)
{
    std::vector<int> &positions =
        d->model.meshes.at(std::size_t(mesh)).primitives.at(std::size_t(primitive)).morphPositions;
    Json entry = Json::array();
    positions.clear();
    for (const auto &target : targets) {
        Json attributes = Json::object();
        for (const auto &[name, accessor] : target)
            attributes[name] = accessor;
        for (const auto &[name, accessor] : attributes.items())
            d->moveUse(nullptr, accessor.get<int>());
        positions.push_back(attribute(attributes, "POSITION"));
        entry.push_back(std::move(attributes));
    }
    Json &json = d->list("meshes")[std::size_t(mesh)]["primitives"][std::size_t(primitive)];
    for (const Json &target : RyGltfReferences::listIn(json, "targets")) {
        if (!target.is_object())
            continue;
        for (const auto &[name, accessor] : target.items())
            d->moveUse(&accessor, -1);
    }
    if (targets.empty())
        json.erase("targets");
    else
        json["targets"] = std::move(entry);
}

void RyGltfDocument::setInfluences(int mesh, int primitive, const std::vector<std::pair<std::string, int>> &attributes)
{
    const Json &before = d->list("meshes")[std::size_t(mesh)]["primitives"][std::size_t(primitive)]["attributes"];
    std::vector<std::string> old;
    for (const auto &[name, accessor] : before.items()) {
        const bool stays = std::any_of(attributes.begin(), attributes.end(),
                                       [&name = name](const auto &attribute) { return attribute.first == name; });
        if (!stays && (startsWith(name, "JOINTS_") || startsWith(name, "WEIGHTS_")))
            old.push_back(name);
    }
    for (const std::string &name : old)
        setPrimitiveAttribute(mesh, primitive, name, -1);
    for (const auto &[name, accessor] : attributes)
        setPrimitiveAttribute(mesh, primitive, name, accessor);
}

int RyGltfDocument::addSkin(const QString &name, const std::vector<int> &joints, int inverseBindMatrices, int skeleton)
{
    RyGltfSkin skin;
    skin.name = name;
    skin.joints = joints;
    skin.inverseBindMatrices = inverseBindMatrices;
    skin.skeleton = skeleton;
    Json entry = Json::object();
    setText(entry, "name", name);
    setIndex(entry, "inverseBindMatrices", inverseBindMatrices);
    setIndex(entry, "skeleton", skeleton);
    entry["joints"] = joints;
    d->moveUse(nullptr, inverseBindMatrices);
    d->list("skins").push_back(std::move(entry));
    d->model.skins.push_back(std::move(skin));
    return int(d->model.skins.size()) - 1;
}

void RyGltfDocument::setNodeMeshAndSkin(int node, int mesh, int skin)
{
    RyGltfNode &target = d->model.nodes.at(std::size_t(node));
    target.mesh = mesh;
    target.skin = skin;
    Json &entry = d->list("nodes")[std::size_t(node)];
    setIndex(entry, "mesh", mesh);
    setIndex(entry, "skin", skin);
}

void RyGltfDocument::setSkinInverseBindMatrices(int skin, int accessor)
{
    d->model.skins.at(std::size_t(skin)).inverseBindMatrices = accessor;
    Json &entry = d->list("skins")[std::size_t(skin)];
    const auto before = entry.find("inverseBindMatrices");
    d->moveUse(before == entry.end() ? nullptr : &*before, accessor);
    setIndex(entry, "inverseBindMatrices", accessor);
}
