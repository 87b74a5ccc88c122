#include "rycore/io/gltf/document/RyGltfUnusedLooks.h"

#include "rycore/io/gltf/document/RyGltfSpares.h"
#include "rycore/io/gltf/file/RyGltfJson.h"

#include <algorithm>

using Json = RyGltfUnusedLooks::Json;

namespace {

constexpr RyGltfList Lists[] = {RyGltfList::Meshes, RyGltfList::Materials, RyGltfList::Textures, RyGltfList::Images};

double largestNumber(const Json &value)
{
    double largest = value.is_number() ? value.get<double>() : -1.0;
    for (const Json &each : value.is_structured() ? value : Json::array())
        largest = std::max(largest, largestNumber(each));
    return largest;
}

/// In extensions that may name anything by it.
double largestUnknown(const Json &value)
{
    double largest = -1.0;
    if (!value.is_structured())
        return largest;
    for (const auto &[key, each] : value.items()) {
        if (key != "extensions" || !each.is_object() || !value.is_object()) {
            largest = std::max(largest, largestUnknown(each));
            continue;
        }
        for (const auto &[name, extension] : each.items()) {
            const bool isKnown = RyGltfReferences::knowsExtension(QString::fromStdString(name));
            largest = std::max(largest, isKnown ? largestUnknown(extension) : largestNumber(extension));
        }
    }
    return largest;
}

/// The texts by which the channels of a clip name what they drive.
template<class Value, class Work>
void forPointers(Value &clip, const Work &work)
{
    Value *channels = RyGltfJson::find(clip, "channels");
    for (size_t i = 0; channels && channels->is_array() && i < channels->size(); ++i) {
        Value *at = &(*channels)[i];
        for (const char *key : {"target", "extensions", "KHR_animation_pointer", "pointer"})
            at = at ? RyGltfJson::find(*at, key) : nullptr;
        if (at && at->is_string())
            work(*at);
    }
}

} // namespace

RyGltfUnusedLooks::RyGltfUnusedLooks(const Json &tree, const std::vector<int> &unusedNodes)
{
    const auto hasMade = [&tree](RyGltfList list) {
        const Json *entries = RyGltfReferences::findList(tree, list);
        return entries && std::any_of(entries->begin(), entries->end(), RyGltfSpares::isMade);
    };
    if (std::none_of(std::begin(Lists), std::end(Lists), hasMade))
        return;
    m_unused[size_t(RyGltfList::Nodes)] = unusedNodes;
    const double largest = largestUnknown(tree);
    std::array<std::vector<bool>, ryGltfListCount> used;
    const Use use = [&used](RyGltfList to, int index) {
        std::vector<bool> &ofList = used[size_t(to)];
        ofList.resize(std::max(ofList.size(), size_t(index) + 1));
        ofList[size_t(index)] = true;
    };
    // What uses something stands in a list before it.
    for (int i = 0; i <= int(RyGltfList::Images); ++i) {
        const RyGltfList list = RyGltfList(i);
        const Json *entries = RyGltfReferences::findList(tree, list);
        const size_t count = entries ? entries->size() : 0;
        used[size_t(i)].resize(std::max(used[size_t(i)].size(), count));
        const bool isOurs = std::find(std::begin(Lists), std::end(Lists), list) != std::end(Lists);
        for (size_t entry = 0; entry < count; ++entry) {
            if (isOurs && !used[size_t(i)][entry] && double(entry) > largest && RyGltfSpares::isMade((*entries)[entry]))
                m_unused[size_t(i)].push_back(int(entry));
            else if (!isUnused(list, entry))
                visitUses((*entries)[entry], list, use);
        }
    }
    m_unused[size_t(RyGltfList::Nodes)].clear();
}

void RyGltfUnusedLooks::visitUses(const Json &entry, RyGltfList list, const Use &use)
{
    constexpr double Most = 1e9;
    RyGltfReferences::visit(list, entry, [&use](RyGltfList to, const Json &index) {
        if (index.get<double>() < Most)
            use(to, index.get<int>());
    });
    if (list != RyGltfList::Animations)
        return;
    forPointers(entry, [&use](const Json &text) {
        RyGltfList to;
        int index = -1;
        std::string rest;
        if (RyGltfReferences::splitPointer(text.get<std::string>(), to, index, rest))
            use(to, index);
    });
}

bool RyGltfUnusedLooks::isUnused(RyGltfList list, size_t index) const
{
    return std::binary_search(of(list).begin(), of(list).end(), int(index));
}

bool RyGltfUnusedLooks::isEmpty() const
{
    return std::all_of(m_unused.begin(), m_unused.end(), [](const std::vector<int> &list) { return list.empty(); });
}

void RyGltfUnusedLooks::drop(Json &tree) const
{
    if (isEmpty())
        return;
    for (const RyGltfList list : Lists) {
        if (of(list).empty())
            continue;
        Json &entries = RyGltfReferences::makeList(tree, list);
        for (auto last = of(list).rbegin(); last != of(list).rend(); ++last)
            entries.erase(size_t(*last));
        if (!entries.empty())
            continue;
        const char *const keys[] = {"meshes", "materials", "textures", "images"};
        tree.erase(keys[std::find(std::begin(Lists), std::end(Lists), list) - std::begin(Lists)]);
    }
    renumber(tree);
}

int RyGltfUnusedLooks::placeOf(RyGltfList list, int index) const
{
    const std::vector<int> &gone = of(list);
    return index - int(std::lower_bound(gone.begin(), gone.end(), index) - gone.begin());
}

void RyGltfUnusedLooks::renumber(Json &tree) const
{
    for (int i = 0; i < ryGltfListCount; ++i) {
        const RyGltfList list = RyGltfList(i);
        if (!RyGltfReferences::findList(tree, list))
            continue;
        for (Json &entry : RyGltfReferences::makeList(tree, list)) {
            RyGltfReferences::visit(list, entry, [this](RyGltfList to, Json &index) {
                const std::vector<int> &gone = of(to);
                if (!gone.empty() && index.get<double>() > gone.front())
                    index = placeOf(to, index.get<int>());
            });
            if (list != RyGltfList::Animations)
                continue;
            forPointers(entry, [this](Json &text) {
                RyGltfList to;
                int index = -1;
                std::string rest;
                if (RyGltfReferences::splitPointer(text.get<std::string>(), to, index, rest))
                    text = RyGltfReferences::joinPointer(to, placeOf(to, index), rest);
            });
        }
    }
}
