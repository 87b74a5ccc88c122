#include "rycore/io/gltf/document/RyGltfGaps.h"

#include "rycore/io/gltf/document/RyGltfSpares.h"
#include "rycore/io/gltf/file/RyGltfJson.h"

#include <algorithm>
#include <cstring>

namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint64_t smallestView = 4;

std::uint64_t aligned(std::uint64_t offset)
{
    return (offset + 3) & ~std::uint64_t(3);
}

} // namespace

void RyGltfGaps::close()
{
    for (int buffer = 0; buffer < int(d.storage.buffers.size()); ++buffer) {
        const bool isNamed = std::any_of(m_unused.begin(), m_unused.end(),
                                         [&](int view) { return d.storage.views[size_t(view)].buffer == buffer; }) ||
                             std::any_of(d.freed.begin(), d.freed.end(),
                                         [&](const RyGltfByteSpan &span) { return span.buffer == buffer; });
        if (isNamed && d.storage.buffers[size_t(buffer)].source != RyGltfBuffer::External)
            closeIn(buffer, find(buffer));
    }
}

bool RyGltfGaps::isUnused(int view) const
{
    return std::binary_search(m_unused.begin(), m_unused.end(), view);
}

/// Compressed bytes are named by extensions of views.
std::uint64_t RyGltfGaps::endOfNamed(int buffer) const
{
    std::uint64_t end = 0;
    for (const Json &view : d.tree["bufferViews"]) {
        const Json *extensions = RyGltfJson::find(view, "extensions");
        if (!extensions)
            continue;
        for (const Json &extension : *extensions) {
            if (extension.is_object() && extension.value("buffer", Json()) == Json(buffer) &&
                extension.contains("byteOffset") && extension["byteOffset"].is_number_unsigned() &&
                extension.contains("byteLength") && extension["byteLength"].is_number_unsigned()) {
                end = std::max(end, extension["byteOffset"].get<std::uint64_t>() +
                                        extension["byteLength"].get<std::uint64_t>());
            }
        }
    }
    return end;
}

/// Rising, apart, each of a length that four divides.
std::vector<RyGltfGaps::Range> RyGltfGaps::find(int buffer) const
{
    std::vector<Range> used{{0, endOfNamed(buffer)}}, unused;
    for (int i = 0; i < int(d.storage.views.size()); ++i) {
        const RyGltfBufferView &view = d.storage.views[size_t(i)];
        if (view.buffer == buffer)
            (isUnused(i) ? unused : used).push_back({view.offset, view.offset + view.length});
    }
    for (const RyGltfByteSpan &span : d.freed) {
        if (span.buffer == buffer)
            unused.push_back({span.from, span.to});
    }
    const auto isBefore = [](const Range &a, const Range &b) { return a.from < b.from; };
    std::sort(used.begin(), used.end(), isBefore);
    std::sort(unused.begin(), unused.end(), isBefore);
    const std::uint64_t size = std::uint64_t(d.storage.buffers[size_t(buffer)].bytes.size());
    std::vector<Range> gaps;
    std::uint64_t from = 0; // nothing before it can go any more
    size_t next = 0;        // of those in use
    for (const Range &range : unused) {
        from = aligned(std::max(from, range.from));
        const std::uint64_t end = std::min(aligned(range.to), size); // with the padding behind it
        while (from < end) {
            for (; next < used.size() && used[next].from <= from; ++next)
                from = std::max(from, aligned(used[next].to));
            const std::uint64_t to = next < used.size() ? std::min(end, used[next].from) : end;
            const std::uint64_t length = to > from ? (to - from) & ~std::uint64_t(3) : 0;
            if (length == 0)
                break;
            if (!gaps.empty() && gaps.back().to == from)
                gaps.back().to += length;
            else
                gaps.push_back({from, from + length});
            from += length;
        }
    }
    return gaps;
}

/// In place: fresh memory for as much again takes longer than moving the bytes.
void RyGltfGaps::closeIn(int index, const std::vector<Range> &gaps)
{
    RyGltfBuffer &buffer = d.storage.buffers[size_t(index)];
    char *const start = buffer.bytes.data();
    char *to = start;
    std::uint64_t from = 0;
    std::vector<std::uint64_t> removed{0}; // before the end of each gap, one behind
    const auto keep = [&](std::uint64_t end) {
        if (to != start + from)
            std::memmove(to, start + from, size_t(end - from));
        to += end - from;
    };
    for (const Range &gap : gaps) {
        keep(gap.from);
        from = gap.to;
        removed.push_back(removed.back() + gap.to - gap.from);
    }
    keep(std::uint64_t(buffer.bytes.size()));
    buffer.bytes.resize(int(to - start));
    if (std::uint64_t(buffer.bytes.size()) < smallestView)
        buffer.bytes.append(QByteArray(int(smallestView) - buffer.bytes.size(), '\0'));
    const std::uint64_t size = std::uint64_t(buffer.bytes.size());

    Json &list = d.list("bufferViews");
    for (int i = 0; i < int(d.storage.views.size()); ++i) {
        RyGltfBufferView &view = d.storage.views[size_t(i)];
        if (view.buffer != index)
            continue;
        const auto behind = std::upper_bound(gaps.begin(), gaps.end(), view.offset,
                                             [](std::uint64_t offset, const Range &gap) { return offset < gap.to; });
        const std::uint64_t before = view.offset - removed[size_t(behind - gaps.begin())];
        if (!isUnused(i)) {
            if (before == view.offset)
                continue;
            view.offset = before;
            list[size_t(i)]["byteOffset"] = before;
            continue;
        }
        view = {index, std::min(before, size - smallestView) & ~std::uint64_t(3), smallestView, 0};
        Json entry{{"buffer", index}, {"byteOffset", view.offset}, {"byteLength", smallestView}};
        RyGltfSpares::mark(entry);
        list[size_t(i)] = std::move(entry);
    }
    d.list("buffers")[size_t(index)]["byteLength"] = size;
}
