#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

/// One buffer of the document. Untouched bytes are a view into the file that was read.
struct RyGltfBuffer
{
    enum Source {
        Chunk, // of the binary container
        DataUri,
        External, // a file beside the document; never changed
        Made      // by us
    };

    Source source = Made;
    QByteArray owner;    // what `original` points into, if anything
    QByteArray original; // as read
    QByteArray bytes;    // as it is now; shares `original` until it is changed

    bool isChanged() const
    {
        return bytes.constData() != original.constData() ? bytes != original : bytes.size() != original.size();
    }
};

struct RyGltfBufferView
{
    int buffer = 0;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint64_t stride = 0; // 0: packed
};

struct RyGltfSparse
{
    std::uint64_t count = 0;
    int indexView = -1;
    std::uint64_t indexOffset = 0;
    int indexType = 0;
    int valueView = -1;
    std::uint64_t valueOffset = 0;
};

/// How the elements of an accessor lie in memory.
struct RyGltfLayout
{
    int componentSize = 4;
    int rows = 1;         // components that stand together; columns of small matrices are padded
    int columnStride = 4; // bytes from one column to the next
    int elementSize = 4;
    std::uint64_t stride = 4;
    bool hasBounds = false;
    RyGltfSparse sparse;

    bool isPadded() const { return columnStride != rows * componentSize; }
};

/// Buffers and what tells where things lie in them, in step with the tree's arrays.
struct RyGltfStorage
{
    std::vector<RyGltfBuffer> buffers;
    std::vector<RyGltfBufferView> views;
    std::vector<RyGltfLayout> layouts; // per accessor

    const unsigned char *viewBytes(int view) const
    {
        const RyGltfBufferView &v = views[std::size_t(view)];
        return reinterpret_cast<const unsigned char *>(buffers[std::size_t(v.buffer)].bytes.constData()) + v.offset;
    }
};
