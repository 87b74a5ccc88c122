#include "rycore/io/gltf/document/RyGltfBufferReader.h"

#include "rycore/io/gltf/document/RyGltfAccessorReader.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfUri.h"

#include <algorithm>

namespace {

/// Accessors without a buffer read as zeros and cost no byte in the file; their number needs a limit of its own.
constexpr std::uint64_t maximumZeroElements = std::uint64_t(1) << 22;
/// Many accessors may name the same long list of replaced elements.
constexpr std::uint64_t maximumSparseElements = 100'000'000;

struct ElementType
{
    const char *name;
    int columns;
    int rows;
};
constexpr ElementType elementTypes[] = {{"SCALAR", 1, 1}, {"VEC2", 1, 2}, {"VEC3", 1, 3}, {"VEC4", 1, 4},
                                        {"MAT2", 2, 2},   {"MAT3", 3, 3}, {"MAT4", 4, 4}};

} // namespace

void RyGltfBufferReader::readBuffers(const QByteArray &owner, const QByteArray &chunk, const QString &folder)
{
    const RyGltfCursor list = m_root.array("buffers");
    m_storage.buffers.clear();
    m_storage.buffers.reserve(std::size_t(list.size()));
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        const std::uint64_t length = cursor.count("byteLength");
        RyGltfBuffer buffer;
        const std::string *uri = cursor.rawText("uri");
        try {
            if (uri && RyGltfUri::isData(*uri)) {
                buffer.source = RyGltfBuffer::DataUri;
                buffer.original = RyGltfUri::decodeData(*uri);
            } else if (uri) {
                buffer.source = RyGltfBuffer::External;
                buffer.original = RyGltfUri::readFile(RyGltfUri::filePath(*uri, folder));
            } else if (i == 0 && !chunk.isNull()) {
                buffer.source = RyGltfBuffer::Chunk;
                buffer.owner = owner;
                buffer.original = chunk;
            } else {
                throw RyGltfError{QStringLiteral("has neither a URI nor a binary chunk")};
            }
        } catch (const RyGltfError &error) {
            cursor.refuse(error.message());
        }
        const std::uint64_t size = std::uint64_t(buffer.original.size());
        if (size < length)
            cursor.refuse(QStringLiteral("%1 bytes announced, %2 there").arg(length).arg(size));
        if (buffer.source == RyGltfBuffer::Chunk) {
            if (size > length + 3)
                m_warnings.add(cursor.path() + QStringLiteral(": the binary chunk is longer than announced"));
            buffer.original = QByteArray::fromRawData(chunk.constData(), int(length));
        } else {
            buffer.original.truncate(int(length));
        }
        buffer.bytes = buffer.original;
        m_storage.buffers.push_back(std::move(buffer));
    }
    if (!chunk.isNull() && (m_storage.buffers.empty() || m_storage.buffers.front().source != RyGltfBuffer::Chunk))
        m_warnings.add(QStringLiteral("no buffer uses the binary chunk"));
}

void RyGltfBufferReader::readViews()
{
    const RyGltfCursor list = m_root.array("bufferViews");
    m_storage.views.clear();
    m_storage.views.reserve(std::size_t(list.size()));
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        RyGltfBufferView view;
        view.buffer = cursor.index("buffer", int(m_storage.buffers.size()), "buffer");
        if (view.buffer < 0)
            cursor.refuse(QStringLiteral("has no \"buffer\""));
        view.offset = cursor.count("byteOffset", 0);
        view.length = cursor.count("byteLength");
        view.stride = cursor.count("byteStride", 0);
        if (view.stride > 65536)
            cursor.refuse(QStringLiteral("a stride of %1 bytes is not valid").arg(view.stride));
        const std::uint64_t size = std::uint64_t(m_storage.buffers[std::size_t(view.buffer)].bytes.size());
        if (view.offset > size || view.length > size - view.offset) {
            cursor.refuse(QStringLiteral("bytes %1 to %2 lie outside of buffer %3 of %4 bytes")
                              .arg(view.offset)
                              .arg(view.offset + view.length)
                              .arg(view.buffer)
                              .arg(size));
        }
        m_storage.views.push_back(view);
    }
}

void RyGltfBufferReader::checkRange(const RyGltfCursor &cursor, int viewIndex, std::uint64_t offset,
                                    std::uint64_t stride, std::uint64_t elementSize, std::uint64_t count) const
{
    if (count == 0)
        return;
    // Everything here is at most 2^53 but the product; it is compared by division.
    const RyGltfBufferView &view = m_storage.views[std::size_t(viewIndex)];
    const bool fits = offset <= view.length && elementSize <= view.length - offset &&
                      count - 1 <= (view.length - offset - elementSize) / stride;
    if (!fits) {
        cursor.refuse(QStringLiteral("%1 elements of %2 bytes from byte %3 on do not fit in buffer view %4 of %5 bytes")
                          .arg(count)
                          .arg(elementSize)
                          .arg(offset)
                          .arg(viewIndex)
                          .arg(view.length));
    }
}

RyGltfAccessor RyGltfBufferReader::readAccessor(const RyGltfCursor &cursor, RyGltfLayout &layout) const
{
    RyGltfAccessor accessor;
    accessor.componentType = int(std::min<std::uint64_t>(cursor.count("componentType"), 65536));
    layout.componentSize = RyGltfAccessorReader::componentSize(accessor.componentType);
    if (layout.componentSize == 0)
        cursor.refuse(QStringLiteral("unknown component type %1").arg(accessor.componentType));
    const std::string *typeName = cursor.rawText("type");
    const ElementType *type = nullptr;
    for (const ElementType &candidate : elementTypes) {
        if (typeName && *typeName == candidate.name)
            type = &candidate;
    }
    if (!type)
        cursor.refuse(QStringLiteral("unknown type \"%1\"").arg(cursor.text("type")));
    accessor.componentCount = type->columns * type->rows;
    layout.rows = type->rows;
    layout.columnStride = type->rows * layout.componentSize;
    if (type->columns > 1)
        layout.columnStride = (layout.columnStride + 3) & ~3;
    layout.elementSize = layout.columnStride * type->columns;
    layout.stride = std::uint64_t(layout.elementSize);
    layout.hasBounds = cursor.has("min") || cursor.has("max");

    accessor.count = cursor.count("count");
    accessor.byteOffset = cursor.count("byteOffset", 0);
    accessor.normalized = cursor.flag("normalized");
    accessor.bufferView = cursor.index("bufferView", int(m_storage.views.size()), "buffer view");
    if (accessor.bufferView >= 0) {
        const std::uint64_t stride = m_storage.views[std::size_t(accessor.bufferView)].stride;
        if (stride != 0 && stride < layout.stride)
            cursor.refuse(QStringLiteral("elements of %1 bytes at a stride of %2").arg(layout.stride).arg(stride));
        if (stride != 0)
            layout.stride = stride;
        checkRange(cursor, accessor.bufferView, accessor.byteOffset, layout.stride, std::uint64_t(layout.elementSize),
                   accessor.count);
    } else if (accessor.count > maximumZeroElements) {
        cursor.refuse(QStringLiteral("%1 elements without a buffer").arg(accessor.count));
    }
    return accessor;
}

void RyGltfBufferReader::readSparse(const RyGltfCursor &accessorCursor, const RyGltfAccessor &accessor,
                                    RyGltfLayout &layout) const
{
    const RyGltfCursor cursor = accessorCursor.object("sparse");
    const RyGltfCursor indices = cursor.object("indices");
    const RyGltfCursor values = cursor.object("values");
    if (!indices.exists() || !values.exists())
        cursor.refuse(QStringLiteral("has no indices or no values"));
    RyGltfSparse &sparse = layout.sparse;
    sparse.count = cursor.count("count");
    if (sparse.count > accessor.count)
        cursor.refuse(QStringLiteral("%1 replaced elements of %2").arg(sparse.count).arg(accessor.count));
    sparse.indexType = int(std::min<std::uint64_t>(indices.count("componentType"), 65536));
    if (sparse.indexType != 5121 && sparse.indexType != 5123 && sparse.indexType != 5125)
        indices.refuse(QStringLiteral("component type %1 cannot be an index").arg(sparse.indexType));
    const int viewCount = int(m_storage.views.size());
    sparse.indexView = indices.index("bufferView", viewCount, "buffer view");
    sparse.indexOffset = indices.count("byteOffset", 0);
    sparse.valueView = values.index("bufferView", viewCount, "buffer view");
    sparse.valueOffset = values.count("byteOffset", 0);
    if (sparse.indexView < 0 || sparse.valueView < 0)
        cursor.refuse(QStringLiteral("has no buffer view"));
    const std::uint64_t indexSize = std::uint64_t(RyGltfAccessorReader::componentSize(sparse.indexType));
    checkRange(indices, sparse.indexView, sparse.indexOffset, indexSize, indexSize, sparse.count);
    checkRange(values, sparse.valueView, sparse.valueOffset, std::uint64_t(layout.elementSize),
               std::uint64_t(layout.elementSize), sparse.count);
    RyGltfAccessor list;
    list.bufferView = sparse.indexView;
    list.byteOffset = sparse.indexOffset;
    list.componentType = sparse.indexType;
    list.count = sparse.count;
    RyGltfLayout listLayout;
    listLayout.componentSize = listLayout.columnStride = listLayout.elementSize = int(indexSize);
    listLayout.stride = indexSize;
    for (const std::uint32_t index : RyGltfAccessorReader(list, listLayout, m_storage).readUints()) {
        if (index >= accessor.count)
            indices.refuse(QStringLiteral("element %1 does not exist (there are %2)").arg(index).arg(accessor.count));
    }
}

void RyGltfBufferReader::readAccessors(RyGltfModel &model)
{
    const RyGltfCursor list = m_root.array("accessors");
    model.accessors.clear();
    model.accessors.reserve(std::size_t(list.size()));
    m_storage.layouts.clear();
    m_storage.layouts.reserve(std::size_t(list.size()));
    std::uint64_t sparseElements = 0;
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        RyGltfLayout layout;
        RyGltfAccessor accessor = readAccessor(cursor, layout);
        accessor.sparse = cursor.object("sparse").exists();
        if (accessor.sparse)
            readSparse(cursor, accessor, layout);
        sparseElements += layout.sparse.count;
        if (sparseElements > maximumSparseElements)
            cursor.refuse(QStringLiteral("more than %1 elements are replaced in all").arg(maximumSparseElements));
        if (accessor.count == 0)
            m_warnings.add(cursor.path() + QStringLiteral(": has no elements"));
        model.accessors.push_back(accessor);
        m_storage.layouts.push_back(layout);
    }
}
