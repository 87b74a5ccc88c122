#include "rycore/io/gltf/RyGltfTreePatch.h"

#include "rycore/io/gltf/RyGltfDocument.h"

#include <nlohmann/json.hpp>

#include <algorithm>

using Json = nlohmann::ordered_json;

namespace {

/// Takes a number out of a list member; an empty list of children goes as a whole.
void takeFrom(Json &holder, const char *member, int number)
{
    const auto list = holder.find(member);
    if (list == holder.end() || !list->is_array())
        return;
    for (auto item = list->begin(); item != list->end(); ++item) {
        if (item->is_number_integer() && item->get<long long>() == number) {
            list->erase(item);
            break;
        }
    }
    if (list->empty())
        holder.erase(member);
}

} // namespace

void RyGltfTreePatch::moveNode(int node, int parent)
{
    Json &tree = m_document.json();
    Json &nodes = tree["nodes"];
    for (Json &each : nodes)
        takeFrom(each, "children", node);
    for (Json &scene : tree["scenes"])
        takeFrom(scene, "nodes", node);
    if (parent >= 0) {
        nodes[size_t(parent)]["children"].push_back(node);
        return;
    }
    const auto scene = tree.find("scene");
    const size_t shown = scene != tree.end() && scene->is_number_integer() ? scene->get<size_t>() : 0;
    if (shown < tree["scenes"].size())
        tree["scenes"][shown]["nodes"].push_back(node);
}

void RyGltfTreePatch::hideMesh(int node)
{
    Json &json = m_document.json()["nodes"][size_t(node)];
    for (const char *member : {"mesh", "skin", "weights"})
        json.erase(member);
}

void RyGltfTreePatch::setSkinJoints(int skin, const std::vector<int> &joints)
{
    Json &json = m_document.json()["skins"][size_t(skin)];
    json["joints"] = joints;
    json.erase("skeleton"); // need not stand above the new joints
}

void RyGltfTreePatch::removeSkins(std::vector<int> skins)
{
    Json &tree = m_document.json();
    std::sort(skins.begin(), skins.end());
    for (auto skin = skins.rbegin(); skin != skins.rend(); ++skin) {
        tree["skins"].erase(size_t(*skin));
        for (Json &node : tree["nodes"]) {
            const auto used = node.find("skin");
            if (used == node.end() || !used->is_number_integer())
                continue;
            const int number = used->get<int>();
            if (number == *skin)
                node.erase("skin");
            else if (number > *skin)
                node["skin"] = number - 1;
        }
    }
    if (tree["skins"].empty())
        tree.erase("skins");
}

bool RyGltfTreePatch::finish(QString *error)
{
    return m_document.refresh(error);
}
