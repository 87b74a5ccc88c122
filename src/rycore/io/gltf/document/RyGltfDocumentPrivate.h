#pragma once

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/file/RyGlbContainer.h"
#include "rycore/io/gltf/file/RyGltfStorage.h"

#include <nlohmann/json.hpp>

/// Bytes that something reads: from, to, and how they repeat.
struct RyGltfByteSpan
{
    int buffer;
    std::uint64_t from;
    std::uint64_t to;
    std::uint64_t stride;
    std::uint64_t size;
};

/// What the document consists of; shared by the files that implement it.
struct RyGltfDocument::Private
{
    using Json = nlohmann::ordered_json;

    enum Form {
        NoForm, // made here
        TextForm,
        BinaryForm
    };

    Json tree;
    RyGltfModel model;
    RyGltfStorage storage;

    QString path; // of the file that was read
    Form form = NoForm;
    QByteArray file;        // its bytes; empty where they will not be asked for
    QByteArray jsonText;    // the part of them the tree came from
    bool isPatched = false; // whether the tree was handed out to be changed
    std::vector<RyGlbContainer::Chunk> otherChunks;

    std::vector<int> spareAccessors, spareViews, spareNodes; // places to use again, the last first
    std::vector<RyGltfByteSpan> freed;                       // bytes that accessors left for others

    /// How often each accessor is used by anything; counted when asked for.
    mutable std::vector<int> useCounts;
    mutable bool useCountsValid = false;
    /// Whether anything else reads bytes of each accessor; found when asked for.
    mutable std::vector<bool> isShared;
    mutable std::vector<int> viewReaders; // of each view, found with it
    mutable bool sharesValid = false;

    /// Builds model and layouts from the tree and the buffers. Throws RyGltfError.
    void readModel(QStringList *warnings);
    QString folder() const;
    const std::vector<int> &countUses() const;
    /// Follows one use that goes from one accessor to another, so that nothing is counted anew. `before` may be null
    /// and may be no index, `after` may be -1.
    void moveUse(const Json *before, int after);
    struct Reader
    {
        RyGltfByteSpan span;
        int accessor; // -1: an image, a sparse accessor's lists or an extension
        int view;
    };
    void gatherReaders(std::vector<Reader> &readers) const;
    const std::vector<bool> &findShared() const;
    /// Whether anything but the accessor's `users` known users reads its bytes.
    bool sharesBytes(int accessor, int users) const;

    Json &list(const char *key);
    /// Puts something and its entry into their lists, where there is a place to spare or at the end; gives the index.
    template<typename T>
    int place(const T &what, std::vector<T> &all, Json entry, const char *key, std::vector<int> &spare);
    /// Bytes at the end of a buffer of our own or of the container; the index of their new buffer view, or -1 when
    /// there is no room.
    int appendView(const char *bytes, std::uint64_t size, int target, int stride);
    /// The bytes alone, whose place the view gets. False when there is no room.
    bool appendBytes(const char *bytes, std::uint64_t size, RyGltfBufferView &view);
    int appendAccessor(int view, int componentType, int componentCount, std::uint64_t count, bool normalized);
    void setBounds(int accessor, std::span<const float> values);
};
