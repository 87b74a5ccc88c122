#pragma once

#include "rycore/io/gltf/file/RyGltfStorage.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class RyGltfDocument;

/// What a document would be written from, as bytes alone, safe to be read by another thread. Buffers of their own are
/// shared, so that taking those of a binary file costs little more than the text of the tree; data URIs and other
/// chunks are copied.
struct RyGltfParts
{
    struct Buffer
    {
        RyGltfBuffer::Source source = RyGltfBuffer::Made;
        QByteArray bytes; // of one that still is the data URI it was read from: that text
        bool isText = false;
        QByteArray owner; // of the memory, where that is a part of something larger
    };
    /// A data URI of an image, by the place of that.
    struct Picture
    {
        int image = 0;
        QByteArray uri;
    };
    struct Chunk
    {
        quint32 type = 0;
        QByteArray bytes;
    };

    QString path; ///< of the file that it was read from; empty for a document made by us
    bool isBinary = true;
    QByteArray layout; ///< a text laid out like the one that was read; empty for a binary file
    QByteArray tree;   ///< without the data URIs
    std::vector<Buffer> buffers;
    std::vector<Picture> pictures;
    std::vector<Chunk> otherChunks;

    /// Throws RyGltfError when the tree holds a text that is not UTF-8.
    static RyGltfParts of(const RyGltfDocument &document);
    /// The document that a save of these parts to their path would give when it is opened. Files beside it are taken
    /// from its folder where they are as they were, and otherwise as part of the document. Null with a reason.
    std::unique_ptr<RyGltfDocument> document(QString *error, QStringList *warnings) const;

private:
    bool hasChangedExternals() const;
};
