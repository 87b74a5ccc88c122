#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"

#include "rycore/io/gltf/document/RyGltfAccessorReader.h"
#include "rycore/io/gltf/document/RyGltfSpares.h"

#include <algorithm>
#include <cstring>

using Json = nlohmann::ordered_json;

namespace {

constexpr int largestBuffer = 0x7ff00000;

const char *typeName(int componentCount)
{
    switch (componentCount) {
    case 1:
        return "SCALAR";
    case 2:
        return "VEC2";
    case 3:
        return "VEC3";
    case 4:
        return "VEC4";
    case 9:
        return "MAT3";
    case 16:
        return "MAT4";
    default:
        return nullptr;
    }
}

/// Of an object that is empty yet, with room for so many: growing copies them.
Json::object_t &membersFor(Json &object, std::size_t count)
{
    auto &members = object.get_ref<Json::object_t &>();
    members.reserve(count);
    return members;
}

} // namespace

Json &RyGltfDocument::Private::list(const char *key)
{
    isPatched = true;
    Json &result = tree[key];
    if (!result.is_array())
        result = Json::array();
    return result;
}

template<typename T>
int RyGltfDocument::Private::place(const T &what, std::vector<T> &all, Json entry, const char *key,
                                   std::vector<int> &spare)
{
    if (spare.empty()) {
        all.push_back(what);
        list(key).push_back(std::move(entry));
        return int(all.size()) - 1;
    }
    const int index = spare.back();
    spare.pop_back();
    all[std::size_t(index)] = what;
    list(key)[std::size_t(index)] = std::move(entry);
    return index;
}

bool RyGltfDocument::Private::appendBytes(const char *bytes, std::uint64_t size, RyGltfBufferView &view)
{
    Json &bufferList = list("buffers");
    const auto hasRoom = [size](const RyGltfBuffer &buffer) {
        return std::uint64_t(buffer.bytes.size()) + size + 4 <= std::uint64_t(largestBuffer);
    };
    if (size + 4 > std::uint64_t(largestBuffer))
        return false;
    if (storage.buffers.empty() || storage.buffers.back().source == RyGltfBuffer::External ||
        !hasRoom(storage.buffers.back())) {
        storage.buffers.emplace_back();
        bufferList.push_back(Json::object());
    }
    RyGltfBuffer &buffer = storage.buffers.back();
    while (buffer.bytes.size() % 4 != 0)
        buffer.bytes.append('\0');
    view.buffer = int(storage.buffers.size()) - 1;
    view.offset = std::uint64_t(buffer.bytes.size());
    view.length = size;
    buffer.bytes.append(bytes, int(size));
    bufferList.back()["byteLength"] = buffer.bytes.size();
    return true;
}

int RyGltfDocument::Private::appendView(const char *bytes, std::uint64_t size, int target, int stride)
{
    RyGltfBufferView view;
    if (!appendBytes(bytes, size, view))
        return -1;
    view.stride = std::uint64_t(stride);
    Json entry = Json::object();
    Json::object_t &members = membersFor(entry, 6);
    members.emplace_back("buffer", view.buffer);
    members.emplace_back("byteOffset", view.offset);
    members.emplace_back("byteLength", view.length);
    if (stride != 0)
        members.emplace_back("byteStride", stride);
    if (target != 0)
        members.emplace_back("target", target);
    RyGltfSpares::mark(entry);
    return place(view, storage.views, std::move(entry), "bufferViews", spareViews);
}

int RyGltfDocument::Private::appendAccessor(int view, int componentType, int componentCount, std::uint64_t count,
                                            bool normalized)
{
    RyGltfAccessor accessor;
    accessor.bufferView = view;
    accessor.componentType = componentType;
    accessor.componentCount = componentCount;
    accessor.count = count;
    accessor.normalized = normalized;
    RyGltfLayout layout;
    layout.componentSize = RyGltfAccessorReader::componentSize(componentType);
    layout.rows = componentCount == 9 ? 3 : componentCount == 16 ? 4 : componentCount;
    layout.columnStride = layout.rows * layout.componentSize;
    layout.elementSize = componentCount * layout.componentSize;
    const std::uint64_t stride = storage.views[std::size_t(view)].stride;
    layout.stride = stride != 0 ? stride : std::uint64_t(layout.elementSize);

    Json entry = Json::object();
    Json::object_t &members = membersFor(entry, 8); // with bounds
    members.emplace_back("bufferView", view);
    members.emplace_back("componentType", componentType);
    if (normalized)
        members.emplace_back("normalized", true);
    members.emplace_back("count", count);
    members.emplace_back("type", typeName(componentCount));
    RyGltfSpares::mark(entry);
    const bool hasFreshBytes =
        spareAccessors.empty() || model.accessors[std::size_t(spareAccessors.back())].bufferView < 0;
    const int index = place(accessor, model.accessors, std::move(entry), "accessors", spareAccessors);
    storage.layouts.resize(model.accessors.size());
    storage.layouts[std::size_t(index)] = layout;
    // Nothing uses it yet, and nothing else reads its bytes.
    useCounts.resize(model.accessors.size(), 0);
    isShared.resize(model.accessors.size(), false);
    isShared[std::size_t(index)] = false;
    viewReaders.resize(storage.views.size(), 0);
    viewReaders[std::size_t(view)] = 1;
    sharesValid = sharesValid && hasFreshBytes;
    return index;
}

void RyGltfDocument::Private::setBounds(int accessor, std::span<const float> values)
{
    const std::size_t components = std::size_t(model.accessors[std::size_t(accessor)].componentCount);
    if (values.size() < components)
        return;
    std::vector<float> low(values.begin(), values.begin() + std::ptrdiff_t(components));
    std::vector<float> high = low;
    for (std::size_t i = components; i < values.size(); ++i) {
        low[i % components] = std::min(low[i % components], values[i]);
        high[i % components] = std::max(high[i % components], values[i]);
    }
    Json &entry = list("accessors")[std::size_t(accessor)];
    const auto assign = [&entry](const char *key, const std::vector<float> &numbers) {
        Json array = Json::array();
        for (const float number : numbers)
            array.push_back(double(number));
        entry[key] = std::move(array);
    };
    assign("min", low);
    assign("max", high);
    storage.layouts[std::size_t(accessor)].hasBounds = true;
}

void RyGltfDocument::reuseSpares()
{
    const RyGltfSpares spares(*d);
    d->spareAccessors = spares.accessors();
    d->spareViews = spares.views();
    d->spareNodes.clear();
    for (auto node = spares.nodes().rbegin(); node != spares.nodes().rend(); ++node) {
        if (d->list("nodes")[std::size_t(*node)].size() == 1) // nothing but our mark
            d->spareNodes.push_back(*node);
    }
    std::reverse(d->spareAccessors.begin(), d->spareAccessors.end());
    std::reverse(d->spareViews.begin(), d->spareViews.end());
}

std::set<int> RyGltfDocument::numbersInExtensions() const
{
    return RyGltfSpares::numbersInExtensions(d->tree);
}

void RyGltfDocument::releaseUnused(const std::vector<int> &accessors)
{
    const std::vector<int> &uses = d->countUses();
    std::vector<bool> isReleased(d->model.accessors.size(), false), isNeeded(d->storage.views.size(), false);
    for (const int accessor : accessors)
        isReleased[std::size_t(accessor)] = uses[std::size_t(accessor)] == 0;
    const auto forViewsOf = [this](std::size_t accessor, const auto &function) {
        if (d->model.accessors[accessor].bufferView >= 0)
            function(std::size_t(d->model.accessors[accessor].bufferView));
        const RyGltfSparse &sparse = d->storage.layouts[accessor].sparse;
        if (d->model.accessors[accessor].sparse) {
            function(std::size_t(sparse.indexView));
            function(std::size_t(sparse.valueView));
        }
    };
    for (std::size_t i = 0; i < isReleased.size(); ++i) {
        if (!isReleased[i])
            forViewsOf(i, [&](std::size_t view) { isNeeded[view] = true; });
    }
    for (std::size_t i = 0; i < isReleased.size(); ++i) {
        if (!isReleased[i])
            continue;
        RyGltfSpares::mark(d->list("accessors")[i]);
        forViewsOf(i, [&](std::size_t view) {
            if (!isNeeded[view])
                RyGltfSpares::mark(d->list("bufferViews")[view]);
        });
    }
}

int RyGltfDocument::takeSpareNode()
{
    if (d->spareNodes.empty())
        return -1;
    const int node = d->spareNodes.back();
    d->spareNodes.pop_back();
    return node;
}

void RyGltfDocument::dropUnused()
{
    d->spareNodes.clear();
    d->spareAccessors.clear();
    d->spareViews.clear();
    RyGltfSpares spares(*d);
    if (!spares.isEmpty() || !d->freed.empty())
        spares.drop();
}

int RyGltfDocument::addFloatAccessor(std::span<const float> values, int componentCount, int target, bool withBounds)
{
    if (!typeName(componentCount) || values.empty() || values.size() % std::size_t(componentCount) != 0)
        return -1;
    const int view = d->appendView(reinterpret_cast<const char *>(values.data()), values.size_bytes(), target, 0);
    if (view < 0)
        return -1;
    const int accessor =
        d->appendAccessor(view, 5126, componentCount, values.size() / std::size_t(componentCount), false);
    if (withBounds)
        d->setBounds(accessor, values);
    return accessor;
}

int RyGltfDocument::addUintAccessor(std::span<const std::uint32_t> values, int componentCount, int componentType,
                                    int target, bool normalized)
{
    const std::uint32_t largest = componentType == 5121 ? 0xff : componentType == 5123 ? 0xffff : 0xffffffff;
    const bool known = componentType == 5121 || componentType == 5123 || componentType == 5125;
    if (!known || componentCount < 1 || componentCount > 4 || values.empty() ||
        values.size() % std::size_t(componentCount) != 0 ||
        std::any_of(values.begin(), values.end(), [largest](std::uint32_t value) { return value > largest; }))
        return -1;
    const int size = RyGltfAccessorReader::componentSize(componentType);
    const int elementSize = size * componentCount;
    // Elements of vertex attributes stand at multiples of four bytes.
    const int stride = target == 34962 ? (elementSize + 3) & ~3 : elementSize;
    const std::size_t count = values.size() / std::size_t(componentCount);
    std::vector<char> bytes(count * std::size_t(stride), 0);
    const auto write = [&]<typename T>(T) {
        const std::uint32_t *from = values.data();
        for (std::size_t i = 0; i < count; ++i) {
            char *to = bytes.data() + i * std::size_t(stride);
            for (int component = 0; component < componentCount; ++component, to += sizeof(T)) {
                const T value = T(*from++);
                std::memcpy(to, &value, sizeof value);
            }
        }
    };
    if (size == 1)
        write(std::uint8_t());
    else if (size == 2)
        write(std::uint16_t());
    else
        write(std::uint32_t());
    const int view = d->appendView(bytes.data(), bytes.size(), target, stride != elementSize ? stride : 0);
    return view < 0 ? -1 : d->appendAccessor(view, componentType, componentCount, count, normalized);
}

int RyGltfDocument::replaceFloats(int accessor, std::span<const float> values, int users)
{
    const std::size_t index = std::size_t(accessor);
    const RyGltfAccessor a = d->model.accessors.at(index);
    const RyGltfLayout layout = d->storage.layouts.at(index);
    const std::size_t components = std::size_t(a.componentCount);
    const bool own = a.componentType == 5126 && !a.sparse && a.bufferView >= 0 &&
                     values.size() == a.count * components && !layout.isPadded();
    const int bufferIndex = own ? d->storage.views[std::size_t(a.bufferView)].buffer : -1;
    if (!own || d->storage.buffers[std::size_t(bufferIndex)].source == RyGltfBuffer::External ||
        d->sharesBytes(accessor, users)) {
        int target = 0;
        const Json said =
            a.bufferView >= 0 ? d->list("bufferViews")[std::size_t(a.bufferView)].value("target", Json()) : Json();
        for (const int known : {34962, 34963}) {
            if (said == Json(known))
                target = known;
        }
        return addFloatAccessor(values, a.componentCount, target, layout.hasBounds);
    }
    const std::size_t elementBytes = components * sizeof(float);
    const unsigned char *old = d->storage.viewBytes(a.bufferView) + a.byteOffset;
    bool same = true;
    for (std::uint64_t i = 0; i < a.count && same; ++i)
        same = std::memcmp(old + i * layout.stride, values.data() + i * components, elementBytes) == 0;
    if (same)
        return accessor;
    RyGltfBuffer &buffer = d->storage.buffers[std::size_t(bufferIndex)];
    char *to = buffer.bytes.data() + d->storage.views[std::size_t(a.bufferView)].offset + a.byteOffset;
    for (std::uint64_t i = 0; i < a.count; ++i)
        std::memcpy(to + i * layout.stride, values.data() + i * components, elementBytes);
    if (layout.hasBounds)
        d->setBounds(accessor, values);
    return accessor;
}

bool RyGltfDocument::resizeFloats(int accessor, std::span<const float> values, int users)
{
    RyGltfAccessor &a = d->model.accessors.at(std::size_t(accessor));
    const RyGltfLayout &layout = d->storage.layouts.at(std::size_t(accessor));
    const std::size_t components = std::size_t(a.componentCount);
    if (a.componentType != 5126 || a.sparse || a.bufferView < 0 || layout.isPadded() || values.empty() ||
        values.size() % components != 0 || d->sharesBytes(accessor, users))
        return false;
    RyGltfBufferView &view = d->storage.views[std::size_t(a.bufferView)];
    const RyGltfBufferView old = view;
    if (old.stride != 0 || d->viewReaders[std::size_t(a.bufferView)] != 1 ||
        !d->appendBytes(reinterpret_cast<const char *>(values.data()), values.size_bytes(), view))
        return false;
    d->freed.push_back({old.buffer, old.offset, old.offset + old.length, 0, 0});
    Json &viewEntry = d->list("bufferViews")[std::size_t(a.bufferView)];
    viewEntry["buffer"] = view.buffer;
    viewEntry["byteOffset"] = view.offset;
    viewEntry["byteLength"] = view.length;
    a.count = values.size() / components;
    a.byteOffset = 0;
    Json &entry = d->list("accessors")[std::size_t(accessor)];
    entry["count"] = a.count;
    entry.erase("byteOffset");
    if (layout.hasBounds)
        d->setBounds(accessor, values);
    return true;
}

int RyGltfDocument::replaceUints(int accessor, std::span<const std::uint32_t> values, bool normalized, int users)
{
    const auto isOwn = [&] {
        if (accessor < 0)
            return false;
        const RyGltfAccessor &a = d->model.accessors.at(std::size_t(accessor));
        return a.componentType == 5123 && a.componentCount == 4 && a.normalized == normalized && !a.sparse &&
               a.bufferView >= 0 && values.size() == a.count * 4 &&
               d->storage.buffers[std::size_t(d->storage.views[std::size_t(a.bufferView)].buffer)].source !=
                   RyGltfBuffer::External &&
               !d->storage.layouts[std::size_t(accessor)].hasBounds && !d->sharesBytes(accessor, users);
    };
    if (!isOwn())
        return addUintAccessor(values, 4, 5123, 34962, normalized);
    const RyGltfAccessor &a = d->model.accessors[std::size_t(accessor)];
    const std::uint64_t stride = d->storage.layouts[std::size_t(accessor)].stride;
    const RyGltfBufferView &view = d->storage.views[std::size_t(a.bufferView)];
    QByteArray &bytes = d->storage.buffers[std::size_t(view.buffer)].bytes;
    char *to = bytes.data() + view.offset + a.byteOffset;
    for (std::uint64_t i = 0; i < a.count; ++i) {
        std::uint16_t four[4];
        for (std::size_t k = 0; k < 4; ++k)
            four[k] = std::uint16_t(values[i * 4 + k]);
        std::memcpy(to + i * stride, four, sizeof four);
    }
    return accessor;
}
