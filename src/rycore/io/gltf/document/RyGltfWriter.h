#pragma once

#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfParts.h"

/// Turns a document into the bytes of a file. The document itself is not changed.
class RyGltfWriter
{
public:
    explicit RyGltfWriter(const RyGltfDocument &document);

    /// `ending` is "glb" or "gltf", with or without a dot. `elsewhere`: the file goes to another folder than it came
    /// from, so files beside it are taken in. Empty with a message on failure.
    QByteArray toBytes(const QString &ending, bool elsewhere, QString *error) const;

    /// What the document would be written from. Throws RyGltfError when the tree holds a text that is not UTF-8.
    static RyGltfParts partsOf(const RyGltfDocument &document);
    /// A document of these parts that is good for being written, and nothing else: without a model.
    static std::unique_ptr<RyGltfDocument> assemble(const RyGltfParts &parts);

private:
    using Json = nlohmann::ordered_json;

    /// The pieces of one binary chunk, each at a multiple of four bytes.
    struct Pieces
    {
        std::vector<QByteArray> list;
        std::uint64_t size = 0;

        std::uint64_t append(const QByteArray &piece);
    };

    QByteArray compose(RyGltfDocument::Private::Form form, bool elsewhere) const;
    bool isAsRead(bool elsewhere) const;
    bool hasExternals() const;
    QByteArray composeBinary(bool elsewhere) const;
    QByteArray composeText(bool elsewhere) const;
    // `changed` gets the members of the tree that are written otherwise; most of a large tree is not.
    Json &changing(Json &changed, const char *key) const;
    void mergeBuffers(Json &changed, Pieces &pieces) const;
    void takeInImages(Json &changed, bool external, bool embedded, Pieces *pieces) const;

    const RyGltfDocument &m_document;
    const RyGltfDocument::Private &d;
};
