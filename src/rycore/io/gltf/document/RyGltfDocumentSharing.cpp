#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/file/RyGltfJson.h"

#include <algorithm>
#include <tuple>

// Who reads what: bytes may be overwritten only where nobody else looks at them.

using Json = nlohmann::ordered_json;

namespace {

using Span = RyGltfByteSpan;

bool overlap(const Span &a, const Span &b)
{
    if (a.buffer != b.buffer || a.to <= b.from || b.to <= a.from)
        return false;
    if (a.stride != b.stride || a.stride == 0) // whole views have none
        return true;
    // Interleaved: they meet only where their elements meet within one period.
    const std::uint64_t low = std::min(a.from, b.from);
    const bool aFirst = a.from == low;
    const std::uint64_t shift = (aFirst ? b.from - a.from : a.from - b.from) % a.stride;
    return shift < (aFirst ? a.size : b.size) || a.stride - shift < (aFirst ? b.size : a.size);
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
            RyGltfReferences::visit(list, (*entries)[i], count, RyGltfList::Accessors);
    }
    useCountsValid = true;
    return useCounts;
}

void RyGltfDocument::Private::moveUse(const Json *before, int after)
{
    if (!useCountsValid)
        return;
    if (before && RyGltfReferences::isIndex(*before) && before->get<std::uint64_t>() < useCounts.size())
        --useCounts[before->get<std::size_t>()];
    if (after >= 0 && std::size_t(after) < useCounts.size())
        ++useCounts[std::size_t(after)];
}

bool RyGltfDocument::Private::sharesBytes(int accessor, int users) const
{
    return countUses()[std::size_t(accessor)] > users || findShared()[std::size_t(accessor)];
}

const std::vector<bool> &RyGltfDocument::Private::findShared() const
{
    if (sharesValid)
        return isShared;
    isShared.assign(model.accessors.size(), false);
    viewReaders.assign(storage.views.size(), 0);
    std::vector<Reader> readers;
    gatherReaders(readers);
    for (const Reader &reader : readers)
        ++viewReaders[std::size_t(reader.view)];
    std::sort(readers.begin(), readers.end(), [](const Reader &a, const Reader &b) {
        return std::tie(a.span.buffer, a.span.from) < std::tie(b.span.buffer, b.span.from);
    });
    std::vector<const Reader *> open; // those that reach to where the walk is
    for (const Reader &reader : readers) {
        std::erase_if(open, [&reader](const Reader *other) {
            return other->span.buffer != reader.span.buffer || other->span.to <= reader.span.from;
        });
        for (const Reader *other : open) {
            if (!overlap(reader.span, other->span))
                continue;
            for (const int accessor : {reader.accessor, other->accessor}) {
                if (accessor >= 0)
                    isShared[std::size_t(accessor)] = true;
            }
        }
        open.push_back(&reader);
    }
    sharesValid = true;
    return isShared;
}

void RyGltfDocument::Private::gatherReaders(std::vector<Reader> &readers) const
{
    const auto addView = [this, &readers](int index) {
        const RyGltfBufferView &view = storage.views[std::size_t(index)];
        readers.push_back({{view.buffer, view.offset, view.offset + view.length, 0, 0}, -1, index});
    };
    for (std::size_t i = 0; i < model.accessors.size(); ++i) {
        const RyGltfAccessor &accessor = model.accessors[i];
        const RyGltfLayout &layout = storage.layouts[i];
        if (accessor.bufferView >= 0) {
            const RyGltfBufferView &view = storage.views[std::size_t(accessor.bufferView)];
            const std::uint64_t from = view.offset + accessor.byteOffset;
            const std::uint64_t size = std::uint64_t(layout.elementSize);
            const std::uint64_t to = accessor.count == 0 ? from : from + (accessor.count - 1) * layout.stride + size;
            readers.push_back({{view.buffer, from, to, layout.stride, size}, int(i), accessor.bufferView});
        }
        if (accessor.sparse) {
            addView(layout.sparse.indexView);
            addView(layout.sparse.valueView);
        }
    }
    for (const Json &image : RyGltfReferences::listIn(tree, "images")) {
        const auto view = image.find("bufferView");
        if (view != image.end() && RyGltfReferences::isIndex(*view) &&
            view->get<std::uint64_t>() < storage.views.size())
            addView(view->get<int>());
    }
    // An extension may read a buffer view in ways of its own.
    const Json &views = RyGltfReferences::listIn(tree, "bufferViews");
    for (std::size_t i = 0; i < views.size() && i < storage.views.size(); ++i) {
        if (views[i].contains("extensions"))
            addView(int(i));
    }
}
