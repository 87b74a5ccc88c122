#include "rycore/io/gltf/extras/RyOwnExtras.h"

#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include <algorithm>
#include <set>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

namespace {

/// What stands in nodes under one of our keys, counted for bones and for other nodes.
struct Counted
{
    const char *key;
    const char *what;
    int bones = 0;
    int others = 0;
};

QString ofHowMany(const Counted &counted)
{
    QStringList holders;
    if (counted.bones > 0)
        holders.append(counted.bones == 1 ? QStringLiteral("1 bone") : QStringLiteral("%1 bones").arg(counted.bones));
    if (counted.others > 0) {
        holders.append(counted.others == 1 ? QStringLiteral("1 other node")
                                           : QStringLiteral("%1 other nodes").arg(counted.others));
    }
    return QStringLiteral("%1 of %2").arg(QString::fromLatin1(counted.what), holders.join(QStringLiteral(" and ")));
}

const Json &listOf(const Json &holder, const char *key)
{
    static const Json none = Json::array();
    const Json *list = find(holder, key);
    return list && list->is_array() ? *list : none;
}

std::set<size_t> jointsOf(const Json &tree)
{
    std::set<size_t> joints;
    for (const Json &skin : listOf(tree, "skins")) {
        for (const Json &joint : listOf(skin, "joints")) {
            if (joint.is_number_unsigned())
                joints.insert(joint.get<size_t>());
        }
    }
    return joints;
}

void sayNodes(const Json &tree, QStringList &said)
{
    Counted kinds[] = {{"end", "end points, rotation orders and orientations"},
                       {"defaults", "defaults that differ from the values"},
                       {"limits", "limits"},
                       {"label", "labels"},
                       {"flags", "what is hidden, cannot be selected or inherits no scale"}};
    const std::set<size_t> joints = jointsOf(tree);
    const Json &nodes = listOf(tree, "nodes");
    int carriers = 0;
    for (size_t node = 0; node < nodes.size(); ++node) {
        const Json *ours = RyExtrasJson::ours(nodes[node]);
        for (Counted &kind : kinds) {
            if (ours && find(*ours, kind.key))
                ++(joints.count(node) ? kind.bones : kind.others);
        }
        carriers += ours && find(*ours, "figure") ? 1 : 0;
    }
    for (const Counted &kind : kinds) {
        if (kind.bones + kind.others > 0)
            said.append(ofHowMany(kind));
    }
    if (carriers > 0)
        said.append(QStringLiteral("which figures hang on other nodes, and are figures of their own"));
}

bool hasGroups(const Json &figure)
{
    return listOf(figure, "faceGroups").size() > 1 || !listOf(figure, "selectionMap").empty();
}

bool hasFree(const Json &mesh)
{
    const Json &primitives = listOf(mesh, "primitives");
    return std::any_of(primitives.begin(), primitives.end(), [](const Json &primitive) {
        const Json *ours = RyExtrasJson::ours(primitive);
        return ours && find(*ours, "free");
    });
}

void sayFile(const Json &tree, QStringList &said)
{
    const Json *ours = RyExtrasJson::ours(tree);
    const Json &figures = ours ? listOf(*ours, "figures") : listOf(tree, "none");
    const auto count = [&figures](auto &&matches) { return std::count_if(figures.begin(), figures.end(), matches); };
    const auto has = [&count](const char *key) {
        return count([key](const Json &figure) { return find(figure, key) != nullptr; }) > 0;
    };
    if (count(hasGroups) > 0)
        said.append(QStringLiteral("face groups, and which bones a click on them selects"));
    if (has("parametric"))
        said.append(QStringLiteral("the joint parameters of parametric figures, for which plain weights stand"));
    if (has("maps"))
        said.append(QStringLiteral("weight maps of single axes, of scaling and of bulges"));
    if (has("skin"))
        said.append(QStringLiteral("weights of figures without a mesh"));
    if (has("morphs"))
        said.append(QStringLiteral("limits, defaults and labels of morphs"));
    if (has("follows"))
        said.append(QStringLiteral("which figures follow another one"));
    if (ours && !listOf(*ours, "links").empty())
        said.append(QStringLiteral("links between values"));
    const Json &meshes = listOf(tree, "meshes");
    if (std::any_of(meshes.begin(), meshes.end(), hasFree))
        said.append(QStringLiteral("that some vertices follow no bone: the first one holds them"));
}

void takeOutOf(Json &value)
{
    if (value.is_object()) {
        const auto extras = value.find("extras");
        if (extras != value.end() && extras->is_object() && extras->erase(RyExtrasJson::Key) > 0) {
            const auto replaced = extras->find(RyExtrasJson::ReplacedKey);
            if (extras->empty()) {
                value.erase("extras");
            } else if (replaced != extras->end() && extras->size() == 1) {
                Json before = std::move(*replaced);
                *extras = std::move(before);
            }
        }
        for (auto &[key, member] : value.items()) {
            if (key != "extras")
                takeOutOf(member);
        }
    } else if (value.is_array()) {
        for (Json &each : value) {
            if (each.is_structured())
                takeOutOf(each);
        }
    }
}

/// Highest first, so that those below keep their numbers until it is their turn.
void dropRemovedSkins(RyGltfDocument &document, const std::vector<int> &removed)
{
    const std::set<int> named = document.numbersInExtensions();
    Json &tree = document.json();
    for (auto skin = removed.rbegin(); skin != removed.rend(); ++skin) {
        if (named.lower_bound(*skin) != named.end())
            continue;
        tree["skins"].erase(size_t(*skin));
        for (Json &node : tree["nodes"]) {
            const auto used = node.find("skin");
            if (used != node.end() && used->is_number_integer() && used->get<int>() > *skin)
                *used = used->get<int>() - 1;
        }
    }
    if (tree["skins"].empty())
        tree.erase("skins");
}

} // namespace

QStringList RyOwnExtras::takeOut(RyGltfDocument &document)
{
    QStringList said;
    const RyGltfDocument &read = document;
    sayNodes(read.json(), said);
    sayFile(read.json(), said);
    std::vector<int> removed;
    for (size_t skin = 0; skin < listOf(read.json(), "skins").size(); ++skin) {
        if (RyTreeExtras::isRemoved(document, "skins", int(skin)))
            removed.push_back(int(skin));
    }
    takeOutOf(document.json());
    if (!removed.empty())
        dropRemovedSkins(document, removed);
    return said;
}
