#include "rycore/io/gltf/document/RyGltfParts.h"

#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfWriter.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfJson.h"
#include "rycore/io/gltf/file/RyGltfUri.h"

#include <QFileInfo>

#include <algorithm>
#include <new>

namespace {

using Json = nlohmann::ordered_json;

constexpr char NoData[] = "data:,"; // stands where a data URI was

const std::string *dataUriOf(const Json &entry)
{
    const Json *uri = RyGltfJson::find(entry, "uri");
    const std::string *text = uri && uri->is_string() ? &uri->get_ref<const std::string &>() : nullptr;
    return text && RyGltfUri::isData(*text) ? text : nullptr;
}

/// The beginning of a text, which shows how its lines are indented, with its end.
QByteArray layoutLike(const QByteArray &text)
{
    constexpr int Most = 64;
    return QByteArray(text.constData(), std::min(text.size(), Most)) + (text.endsWith('\n') ? '\n' : '}');
}

/// The entry with another URI, without copying the one that it has.
Json withUri(const Json &entry, const std::string &uri)
{
    Json result = Json::object();
    for (const auto &[key, value] : entry.items())
        result[key] = key == "uri" ? Json(uri) : value;
    return result;
}

/// A list of the tree without data URIs, each of which is handed to `take` with its place.
template<typename Take>
Json plainList(const Json &list, const Take &take)
{
    Json plain = Json::array();
    for (std::size_t i = 0; i < list.size(); ++i) {
        const std::string *uri = dataUriOf(list[i]);
        if (uri)
            take(i, QByteArray(uri->data(), int(uri->size())));
        plain.push_back(uri ? withUri(list[i], NoData) : list[i]);
    }
    return plain;
}

} // namespace

RyGltfParts RyGltfParts::of(const RyGltfDocument &document)
{
    return RyGltfWriter::partsOf(document);
}

RyGltfParts RyGltfWriter::partsOf(const RyGltfDocument &document)
{
    const RyGltfDocument::Private &d = *document.d;
    RyGltfParts parts;
    parts.path = d.path;
    parts.isBinary = d.form != RyGltfDocument::Private::TextForm;
    if (!parts.isBinary)
        parts.layout = layoutLike(d.jsonText);
    for (const RyGltfBuffer &buffer : d.storage.buffers)
        parts.buffers.push_back({buffer.source, buffer.bytes, false, buffer.owner});
    for (const RyGlbContainer::Chunk &chunk : d.otherChunks)
        parts.otherChunks.push_back({chunk.type, QByteArray(chunk.bytes.constData(), chunk.bytes.size())});
    Json changed = Json::object();
    RyGltfJson::makeRoom(changed);
    if (const Json *list = RyGltfJson::find(d.tree, "buffers"); list && list->is_array()) {
        changed["buffers"] = plainList(*list, [&](std::size_t i, const QByteArray &uri) {
            const RyGltfBuffer *buffer = i < d.storage.buffers.size() ? &d.storage.buffers[i] : nullptr;
            if (buffer && buffer->source == RyGltfBuffer::DataUri && !buffer->isChanged())
                parts.buffers[i] = {buffer->source, uri, true, {}};
        });
    }
    if (const Json *list = RyGltfJson::find(d.tree, "images"); list && list->is_array()) {
        changed["images"] = plainList(*list, [&](std::size_t i, const QByteArray &uri) {
            parts.pictures.push_back({int(i), uri});
        });
    }
    parts.tree = RyGltfJson::dump(d.tree, changed, {});
    RyGltfJson::clear(changed);
    return parts;
}

/// Whether a file beside the document is no more what it was when that was read.
bool RyGltfParts::hasChangedExternals() const
{
    const Json json = RyGltfJson::parse({tree.constData(), std::size_t(tree.size())});
    const Json *list = RyGltfJson::find(json, "buffers");
    const QString folder = path.isEmpty() ? QString() : QFileInfo(path).absolutePath();
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        if (buffers[i].source != RyGltfBuffer::External)
            continue;
        const Json *uri = list && i < list->size() ? RyGltfJson::find((*list)[i], "uri") : nullptr;
        if (!uri || !uri->is_string())
            return true;
        try {
            const QString file = RyGltfUri::filePath(uri->get_ref<const std::string &>(), folder);
            if (!RyGltfUri::readFile(file).startsWith(buffers[i].bytes))
                return true;
        } catch (const RyGltfError &) {
            return true;
        }
    }
    return false;
}

std::unique_ptr<RyGltfDocument> RyGltfWriter::assemble(const RyGltfParts &parts)
{
    std::unique_ptr<RyGltfDocument> document(new RyGltfDocument);
    RyGltfDocument::Private &d = *document->d;
    d.path = parts.path;
    d.form = parts.isBinary ? RyGltfDocument::Private::BinaryForm : RyGltfDocument::Private::TextForm;
    d.jsonText = parts.layout;
    d.isPatched = true;
    d.tree = RyGltfJson::parse({parts.tree.constData(), std::size_t(parts.tree.size())});
    const auto setUri = [&d](const char *list, std::size_t place, const QByteArray &uri) {
        const Json *known = RyGltfJson::find(d.tree, list);
        if (!known || place >= known->size())
            throw RyGltfError{QStringLiteral("%1[%2] is missing").arg(QLatin1String(list)).arg(place)};
        d.tree[list][place]["uri"] = uri.toStdString();
    };
    for (std::size_t i = 0; i < parts.buffers.size(); ++i) {
        RyGltfBuffer buffer;
        buffer.source = parts.buffers[i].source;
        buffer.bytes = parts.buffers[i].isText ? RyGltfUri::decodeData(parts.buffers[i].bytes.toStdString())
                                               : parts.buffers[i].bytes;
        if (parts.buffers[i].isText)
            setUri("buffers", i, parts.buffers[i].bytes);
        if (parts.buffers[i].isText || buffer.source == RyGltfBuffer::External)
            buffer.original = buffer.bytes;
        d.storage.buffers.push_back(std::move(buffer));
    }
    for (const RyGltfParts::Picture &picture : parts.pictures)
        setUri("images", std::size_t(picture.image), picture.uri);
    for (const RyGltfParts::Chunk &chunk : parts.otherChunks)
        d.otherChunks.push_back({chunk.type, chunk.bytes});
    // Images in views of buffers are found through these when files beside the document are taken in.
    const Json *views = RyGltfJson::find(d.tree, "bufferViews");
    for (std::size_t i = 0; views && i < views->size(); ++i)
        d.storage.views.emplace_back();
    return document;
}

std::unique_ptr<RyGltfDocument> RyGltfParts::document(QString *error, QStringList *warnings) const
{
    QString reason;
    try {
        const bool elsewhere = path.isEmpty() || hasChangedExternals();
        const std::unique_ptr<RyGltfDocument> whole = RyGltfWriter::assemble(*this);
        const QString ending = isBinary ? QStringLiteral("glb") : QStringLiteral("gltf");
        const QByteArray bytes = RyGltfWriter(*whole).toBytes(ending, elsewhere, &reason);
        if (!bytes.isEmpty())
            return RyGltfDocument::parse(path, bytes, warnings);
    } catch (const std::bad_alloc &) {
        reason = QStringLiteral("there is not enough memory");
    } catch (const std::exception &exception) {
        reason = QString::fromUtf8(exception.what());
    }
    if (error)
        *error = reason;
    return nullptr;
}
