#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/file/RyGltfJson.h"

#include <algorithm>

// Who reads what: bytes may be overwritten only where nobody else looks at them.

using Json = nlohmann::ordered_json;

namespace {

/// The bytes an accessor reads: from, to, and how they repeat.
struct Span
{
    int buffer;
    std::uint64_t from;
    std::uint64_t to;
    std::uint64_t stride;
    std::uint64_t size;
};

bool overlap(const Span &a, const Span &b)
{
    if (a.buffer != b.buffer || a.to <= b.from || b.to <= a.from)
        return false;
    if (a.stride != b.stride)
        return true;
    // Interleaved: they meet only where their elements meet within one period.
    const std::uint64_t low = std::min(a.from, b.from);
    const bool aFirst = a.from == low;
    const std::uint64_t shift = (aFirst ? b.from - a.from : a.from - b.from) % a.stride;
    return shift < (aFirst ? a.size : b.size) || a.stride - shift < (aFirst ? b.size : a.size);
}

const Json &listOf(const Json &object, const char *key)
{
    static const Json none = Json::array();
    const Json *found = RyGltfJson::find(object, key);
    return found ? *found : none;
}

} // namespace

const std::vector<int> &RyGltfDocument::Private::countUses() const
{
    if (useCountsValid)
        return useCounts;
    useCounts.assign(model.accessors.size(), 0);
    const auto count = [this](RyGltfList to, const Json &index) {
        if (to == RyGltfList::Accessors && index.get<std::uint64_t>() < useCounts.size())
            ++useCounts[index.get<std::size_t>()];
    };
    for (const RyGltfList list : {RyGltfList::Nodes, RyGltfList::Animations, RyGltfList::Skins, RyGltfList::Meshes}) {
        const Json *entries = RyGltfReferences::findList(tree, list);
        for (std::size_t i = 0; entries && i < entries->size(); ++i)
            RyGltfReferences::visit(list, (*entries)[i], count);
    }
    useCountsValid = true;
    return useCounts;
}

bool RyGltfDocument::Private::sharesBytes(int accessor, int users) const
{
    if (countUses()[std::size_t(accessor)] > users)
        return true;
    const auto spanOf = [this](int index) {
        const RyGltfAccessor &a = model.accessors[std::size_t(index)];
        const RyGltfLayout &layout = storage.layouts[std::size_t(index)];
        const RyGltfBufferView &view = storage.views[std::size_t(a.bufferView)];
        const std::uint64_t from = view.offset + a.byteOffset;
        const std::uint64_t size = std::uint64_t(layout.elementSize);
        const std::uint64_t to = a.count == 0 ? from : from + (a.count - 1) * layout.stride + size;
        return Span{view.buffer, from, to, layout.stride, size};
    };
    const auto viewSpan = [this](int index) {
        const RyGltfBufferView &view = storage.views[std::size_t(index)];
        return Span{view.buffer, view.offset, view.offset + view.length, 0, 0};
    };
    const Span own = spanOf(accessor);
    for (int i = 0; i < int(model.accessors.size()); ++i) {
        const RyGltfAccessor &other = model.accessors[std::size_t(i)];
        const RyGltfSparse &sparse = storage.layouts[std::size_t(i)].sparse;
        if (i != accessor && other.bufferView >= 0 && overlap(own, spanOf(i)))
            return true;
        if (other.sparse && (overlap(own, viewSpan(sparse.indexView)) || overlap(own, viewSpan(sparse.valueView))))
            return true;
    }
    for (const Json &image : listOf(tree, "images")) {
        const auto view = image.find("bufferView");
        if (view != image.end() && RyGltfReferences::isIndex(*view) &&
            view->get<std::uint64_t>() < storage.views.size() && overlap(own, viewSpan(view->get<int>())))
            return true;
    }
    // An extension may read a buffer view in ways of its own.
    const Json &views = listOf(tree, "bufferViews");
    for (std::size_t i = 0; i < views.size() && i < storage.views.size(); ++i) {
        if (views[i].contains("extensions") && overlap(own, viewSpan(int(i))))
            return true;
    }
    return false;
}
