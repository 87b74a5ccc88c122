#pragma once

#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"

/// Takes the bytes out of a buffer that only unused views name, or that accessors left. What lies behind them moves, by
/// multiples of four bytes, and the views of it with it; nothing moves that an extension names by its place in the
/// buffer.
class RyGltfGaps
{
public:
    /// `unused`: views, in ascending order.
    RyGltfGaps(RyGltfDocument::Private &document, const std::vector<int> &unused) : d(document), m_unused(unused) {}

    /// Unused views keep their places in the list, with a few bytes of others.
    void close();

private:
    struct Range
    {
        std::uint64_t from;
        std::uint64_t to;
    };

    bool isUnused(int view) const;
    std::uint64_t endOfNamed(int buffer) const;
    std::vector<Range> find(int buffer) const;
    void closeIn(int buffer, const std::vector<Range> &gaps);

    RyGltfDocument::Private &d;
    const std::vector<int> &m_unused;
};
