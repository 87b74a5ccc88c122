#pragma once

#include "rycore/io/gltf/document/RyGltfCursor.h"
#include "rycore/io/gltf/document/RyGltfModel.h"
#include "rycore/io/gltf/file/RyGltfStorage.h"
#include "rycore/io/gltf/file/RyGltfWarnings.h"

/// Buffers, buffer views and accessors of the tree, checked so that every byte an accessor stands for exists.
class RyGltfBufferReader
{
public:
    RyGltfBufferReader(const RyGltfCursor &root, RyGltfStorage &storage, RyGltfWarnings &warnings)
        : m_root(root), m_storage(storage), m_warnings(warnings)
    {}

    /// Loads the buffers: the container's chunk (null when there is none, `owner` holds its bytes), data URIs, and
    /// files in `folder`.
    void readBuffers(const QByteArray &owner, const QByteArray &chunk, const QString &folder);
    void readViews();
    void readAccessors(RyGltfModel &model);

private:
    RyGltfAccessor readAccessor(const RyGltfCursor &cursor, RyGltfLayout &layout) const;
    void readSparse(const RyGltfCursor &accessorCursor, const RyGltfAccessor &accessor, RyGltfLayout &layout) const;
    void checkRange(const RyGltfCursor &cursor, int view, std::uint64_t offset, std::uint64_t stride,
                    std::uint64_t elementSize, std::uint64_t count) const;

    const RyGltfCursor &m_root;
    RyGltfStorage &m_storage;
    RyGltfWarnings &m_warnings;
};
