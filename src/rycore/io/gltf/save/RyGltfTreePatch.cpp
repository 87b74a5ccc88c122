#include "rycore/io/gltf/save/RyGltfTreePatch.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"

#include <nlohmann/json.hpp>

#include <set>

using Json = nlohmann::ordered_json;

namespace {

void setList(Json &object, const char *key, const std::vector<int> &list)
{
    if (list.empty())
        object.erase(key); // the format knows no empty lists
    else
        object[key] = list;
}

Json madeMark()
{
    return Json{{"version", RyExtrasJson::Version}, {"made", true}};
}

void setIndex(Json &object, const char *key, int index)
{
    if (index < 0)
        object.erase(key);
    else
        object[key] = index;
}

} // namespace

Json &RyGltfTreePatch::changingTree()
{
    m_isChanged = true;
    return m_document.json();
}

void RyGltfTreePatch::setNode(int node, const QString &name)
{
    Json entry = Json::object();
    if (!name.isEmpty())
        entry["name"] = name.toStdString();
    RyExtrasJson::store(entry, madeMark());
    changingTree()["nodes"][size_t(node)] = std::move(entry);
}

int RyGltfTreePatch::addNode(const QString &name)
{
    changingTree()["nodes"].push_back(Json::object());
    setNode(nodeCount() - 1, name);
    return nodeCount() - 1;
}

int RyGltfTreePatch::addNodeInPlace(const QString &name)
{
    const int spare = m_document.takeSpareNode();
    if (spare < 0)
        return addNode(name);
    setNode(spare, name);
    return spare;
}

int RyGltfTreePatch::nodeCount() const
{
    const Json *nodes = RyExtrasJson::find(m_document.json(), "nodes");
    return nodes ? int(nodes->size()) : 0;
}

void RyGltfTreePatch::setChildren(int node, const std::vector<int> &children)
{
    setList(changingTree()["nodes"][size_t(node)], "children", children);
}

int RyGltfTreePatch::sceneCount() const
{
    const Json &tree = m_document.json();
    const auto scenes = tree.find("scenes");
    return scenes == tree.end() ? 0 : int(scenes->size());
}

std::vector<int> RyGltfTreePatch::sceneRoots(int scene) const
{
    const Json *entry = RyExtrasJson::entry(m_document.json(), "scenes", scene);
    const Json *list = entry ? RyExtrasJson::find(*entry, "nodes") : nullptr;
    std::vector<int> roots;
    std::set<size_t> known; // some files name a root twice
    for (const Json &root : list && list->is_array() ? *list : Json::array()) {
        if (RyGltfReferences::isIndex(root) && root.get<size_t>() < m_document.model().nodes.size() &&
            known.insert(root.get<size_t>()).second)
            roots.push_back(root.get<int>());
    }
    return roots;
}

void RyGltfTreePatch::setSceneRoots(int scene, const std::vector<int> &roots)
{
    setList(changingTree()["scenes"][size_t(scene)], "nodes", roots);
}

void RyGltfTreePatch::setSkinJoints(int skin, const std::vector<int> &joints, bool stillAbove)
{
    Json &json = changingTree()["skins"][size_t(skin)];
    json["joints"] = joints;
    if (!stillAbove)
        json.erase("skeleton");
}

int RyGltfTreePatch::cloneMesh(int mesh)
{
    Json &meshes = changingTree()["meshes"];
    Json copy = meshes[size_t(mesh)];
    RyExtrasJson::store(copy, madeMark());
    meshes.push_back(std::move(copy));
    return int(meshes.size()) - 1;
}

int RyGltfTreePatch::addMeshOf(const QString &name, const std::vector<std::pair<int, int>> &primitives)
{
    Json &meshes = changingTree()["meshes"];
    Json entry = Json::object();
    if (!name.isEmpty())
        entry["name"] = name.toStdString();
    for (const auto &[mesh, primitive] : primitives) {
        Json copy = meshes[size_t(mesh)]["primitives"][size_t(primitive)];
        RyExtrasJson::store(copy, Json());
        Json &attributes = copy["attributes"];
        Json others = Json::object();
        for (const auto &[key, accessor] : attributes.items()) {
            if (key.rfind("JOINTS_", 0) != 0 && key.rfind("WEIGHTS_", 0) != 0)
                others[key] = accessor;
        }
        attributes = std::move(others);
        entry["primitives"].push_back(std::move(copy));
    }
    const auto weights =
        primitives.empty() ? Json::iterator() : meshes[size_t(primitives.front().first)].find("weights");
    if (!primitives.empty() && weights != meshes[size_t(primitives.front().first)].end())
        entry["weights"] = *weights;
    RyExtrasJson::store(entry, madeMark());
    meshes.push_back(std::move(entry));
    return int(meshes.size()) - 1;
}

void RyGltfTreePatch::setNodeMesh(int node, int mesh, int skin)
{
    Json &json = changingTree()["nodes"][size_t(node)];
    setIndex(json, "mesh", mesh);
    setIndex(json, "skin", skin);
    if (mesh < 0)
        json.erase("weights"); // of its morphs
}

bool RyGltfTreePatch::hasContent(int node) const
{
    const Json &json = m_document.json()["nodes"][size_t(node)];
    return json.contains("mesh") || json.contains("camera") || json.contains("extensions");
}

bool RyGltfTreePatch::finish(QString *error)
{
    m_isChanged = false;
    return m_document.refresh(error);
}
