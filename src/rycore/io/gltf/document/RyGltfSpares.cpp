#include "rycore/io/gltf/document/RyGltfSpares.h"

#include "rycore/io/gltf/document/RyGltfGaps.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/file/RyGltfJson.h"

#include <algorithm>
#include <limits>
#include <utility>

using Json = RyGltfSpares::Json;

namespace {

void gatherNumbers(const Json &value, std::set<int> &numbers)
{
    if (RyGltfReferences::isIndex(value) && value.get<double>() <= double(std::numeric_limits<int>::max()))
        numbers.insert(value.get<int>());
    if (value.is_structured()) {
        for (const Json &each : value)
            gatherNumbers(each, numbers);
    }
}

void gatherFromExtensions(const Json &value, std::set<int> &numbers)
{
    if (const auto *elements = value.get_ptr<const Json::array_t *>()) {
        for (const Json &each : *elements) {
            if (each.is_structured())
                gatherFromExtensions(each, numbers);
        }
    } else if (const auto *members = value.get_ptr<const Json::object_t *>()) {
        for (const auto &[key, each] : *members) {
            if (key == std::string_view("extensions"))
                gatherNumbers(each, numbers);
            else if (each.is_structured())
                gatherFromExtensions(each, numbers);
        }
    }
}

bool saysOfItself(const Json &entry, const char *key)
{
    const Json *extras = RyGltfJson::find(entry, "extras");
    const Json *ours = extras ? RyGltfJson::find(*extras, RyGltfDocument::ExtrasKey) : nullptr;
    const Json *said = ours ? RyGltfJson::find(*ours, key) : nullptr;
    return said && *said == Json(true);
}

/// The entries of a list that are marked and stand for none of the numbers.
std::vector<int> madeBut(const std::vector<bool> &used, const Json &entries)
{
    std::vector<int> result;
    for (size_t i = 0; i < entries.size() && i < used.size(); ++i) {
        if (!used[i] && RyGltfSpares::isMade(entries[i]))
            result.push_back(int(i));
    }
    return result;
}

} // namespace

void RyGltfSpares::mark(Json &entry)
{
    static const Json made{{"version", RyGltfDocument::ExtrasVersion}, {"made", true}};
    entry["extras"][RyGltfDocument::ExtrasKey] = made;
}

bool RyGltfSpares::isMade(const Json &entry)
{
    return saysOfItself(entry, "made");
}

RyGltfSpares::RyGltfSpares(RyGltfDocument::Private &document) : d(document)
{
    const auto hasMade = [this](const char *list) {
        const Json &entries = RyGltfReferences::listIn(d.tree, list);
        return std::any_of(entries.begin(), entries.end(), isMade);
    };
    const char *const lists[] = {"accessors", "bufferViews", "nodes", "meshes", "materials", "textures", "images"};
    if (std::none_of(std::begin(lists), std::end(lists), hasMade))
        return;
    // Any number in an extension may be the place of something.
    std::set<int> named = numbersInExtensions(d.tree);
    findNodes(named);
    m_looks.emplace(d.tree, m_nodes);
    findAccessors(named);
    findViews(std::move(named));
}

std::set<int> RyGltfSpares::numbersInExtensions(const Json &tree)
{
    std::set<int> numbers;
    gatherFromExtensions(tree, numbers);
    return numbers;
}

void RyGltfSpares::findAccessors(const std::set<int> &named)
{
    std::vector<int> counts = d.countUses();
    for (const int mesh : m_looks->of(RyGltfList::Meshes)) {
        RyGltfReferences::visit(RyGltfList::Meshes, std::as_const(d.tree)["meshes"][size_t(mesh)],
                                [&counts](RyGltfList to, const Json &index) {
                                    if (to == RyGltfList::Accessors && index.get<std::uint64_t>() < counts.size())
                                        --counts[index.get<size_t>()];
                                });
    }
    std::vector<bool> used(counts.size());
    std::transform(counts.begin(), counts.end(), used.begin(), [](int count) { return count > 0; });
    for (const int number : named) {
        if (number >= 0 && size_t(number) < used.size())
            used[size_t(number)] = true;
    }
    m_accessors = madeBut(used, RyGltfReferences::listIn(d.tree, "accessors"));
}

void RyGltfSpares::findViews(std::set<int> named)
{
    std::vector<bool> isSpare(d.model.accessors.size(), false);
    for (const int accessor : m_accessors)
        isSpare[size_t(accessor)] = true;
    std::vector<bool> used(d.storage.views.size(), false);
    const auto use = [&used](int view) {
        if (view >= 0 && size_t(view) < used.size())
            used[size_t(view)] = true;
    };
    for (size_t i = 0; i < d.model.accessors.size(); ++i) {
        if (isSpare[i])
            continue;
        use(d.model.accessors[i].bufferView);
        if (d.model.accessors[i].sparse) {
            use(d.storage.layouts[i].sparse.indexView);
            use(d.storage.layouts[i].sparse.valueView);
        }
    }
    const Json &images = RyGltfReferences::listIn(d.tree, "images");
    const std::vector<int> &unused = m_looks->of(RyGltfList::Images);
    for (size_t i = 0; i < images.size(); ++i) {
        if (images[i].contains("bufferView") && !std::binary_search(unused.begin(), unused.end(), int(i)))
            gatherNumbers(images[i]["bufferView"], named);
    }
    for (const int number : named)
        use(number);
    m_views = madeBut(used, RyGltfReferences::listIn(d.tree, "bufferViews"));
}

/// By something else than the node above it.
std::vector<bool> RyGltfSpares::findUsedNodes(const std::set<int> &named) const
{
    std::vector<bool> used(d.model.nodes.size(), false);
    const auto use = [&used](std::uint64_t node) {
        if (node < used.size())
            used[size_t(node)] = true;
    };
    for (const RyGltfList list : {RyGltfList::Scenes, RyGltfList::Animations, RyGltfList::Skins}) {
        const Json *entries = RyGltfReferences::findList(d.tree, list);
        for (size_t i = 0; entries && i < entries->size(); ++i) {
            RyGltfReferences::visit(list, (*entries)[i], [&use](RyGltfList to, const Json &index) {
                if (to == RyGltfList::Nodes)
                    use(index.get<std::uint64_t>());
            });
        }
    }
    for (const int number : named)
        use(std::uint64_t(number));
    return used;
}

void RyGltfSpares::findNodes(const std::set<int> &named)
{
    const Json &entries = RyGltfReferences::listIn(d.tree, "nodes");
    const std::vector<bool> used = findUsedNodes(named);
    const std::vector<int> order = ryGltfPreOrder(d.model);
    std::vector<bool> isRemoved(used.size(), false), isSpare(used.size(), false);
    for (const int node : order) {
        const int parent = d.model.nodes[size_t(node)].parent;
        isRemoved[size_t(node)] =
            parent < 0 ? saysOfItself(entries[size_t(node)], "removed") : isRemoved[size_t(parent)];
    }
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const std::vector<int> &below = d.model.nodes[size_t(*node)].children;
        isSpare[size_t(*node)] =
            isRemoved[size_t(*node)] && !used[size_t(*node)] && isMade(entries[size_t(*node)]) &&
            std::all_of(below.begin(), below.end(), [&](int child) { return isSpare[size_t(child)]; });
    }
    for (size_t node = 0; node < isSpare.size(); ++node) {
        if (isSpare[node])
            m_nodes.push_back(int(node));
    }
}

void RyGltfSpares::drop()
{
    dropNodes();
    if (m_looks)
        m_looks->drop(d.tree);
    d.isPatched = true;
    dropAccessors();
    if (!m_views.empty() || !d.freed.empty())
        RyGltfGaps(d, m_views).close();
    d.freed.clear();
    dropViews();
    d.useCountsValid = false;
    d.sharesValid = false;
}

void RyGltfSpares::dropNodes()
{
    if (m_nodes.empty())
        return;
    Json &list = d.list("nodes");
    for (const int node : m_nodes) {
        const int parent = d.model.nodes[size_t(node)].parent;
        if (Json *below = parent < 0 ? nullptr : RyGltfJson::find(list[size_t(parent)], "children")) {
            below->erase(std::remove(below->begin(), below->end(), Json(node)), below->end());
            if (below->empty())
                list[size_t(parent)].erase("children"); // the format knows no empty lists
        }
        Json entry = Json::object();
        mark(entry);
        entry["extras"][RyGltfDocument::ExtrasKey]["removed"] = true;
        list[size_t(node)] = std::move(entry);
    }
    for (auto last = m_nodes.rbegin(); last != m_nodes.rend() && size_t(*last) + 1 == list.size(); ++last)
        list.erase(list.size() - 1);
}

void RyGltfSpares::dropAccessors()
{
    if (m_accessors.empty())
        return;
    Json &list = d.list("accessors");
    for (const int accessor : m_accessors) {
        Json entry{{"componentType", 5121}, {"count", 1}, {"type", "SCALAR"}};
        mark(entry);
        list[size_t(accessor)] = std::move(entry);
    }
    for (auto last = m_accessors.rbegin(); last != m_accessors.rend() && size_t(*last) + 1 == list.size(); ++last)
        list.erase(list.size() - 1);
    if (list.empty())
        d.tree.erase("accessors");
}

void RyGltfSpares::dropViews()
{
    if (m_views.empty())
        return;
    Json &list = d.list("bufferViews");
    for (auto last = m_views.rbegin(); last != m_views.rend() && size_t(*last) + 1 == list.size(); ++last)
        list.erase(list.size() - 1);
    if (list.empty())
        d.tree.erase("bufferViews");
}
