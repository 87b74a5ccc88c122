#include "rycore/io/gltf/document/RyGltfWriter.h"

#include "rycore/io/gltf/file/RyGltfJson.h"
#include "rycore/io/gltf/file/RyGltfUri.h"

#include <new>

namespace {

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

} // namespace

std::uint64_t RyGltfWriter::Pieces::append(const QByteArray &piece)
{
    const std::uint64_t offset = (size + 3) & ~std::uint64_t(3);
    list.push_back(piece);
    size = offset + std::uint64_t(piece.size());
    return offset;
}

RyGltfWriter::RyGltfWriter(const RyGltfDocument &document) : m_document(document), d(*document.d) {}

QByteArray RyGltfWriter::toBytes(const QString &ending, bool elsewhere, QString *error) const
{
    using Private = RyGltfDocument::Private;
    QString reason;
    try {
        const QString name = ending.section(QLatin1Char('.'), -1).toLower();
        if (name == QLatin1String("glb"))
            return compose(Private::BinaryForm, elsewhere);
        if (name == QLatin1String("gltf"))
            return compose(Private::TextForm, elsewhere);
        reason = QStringLiteral("\"%1\" is neither glb nor gltf").arg(ending);
    } catch (const std::bad_alloc &) {
        reason = QStringLiteral("there is not enough memory");
    } catch (const std::exception &exception) {
        reason = QString::fromUtf8(exception.what());
    }
    if (error)
        *error = reason;
    return {};
}

QByteArray RyGltfWriter::compose(RyGltfDocument::Private::Form form, bool elsewhere) const
{
    if (form == d.form && isAsRead(elsewhere))
        return d.file;
    return form == RyGltfDocument::Private::BinaryForm ? composeBinary(elsewhere) : composeText(elsewhere);
}

bool RyGltfWriter::hasExternals() const
{
    for (const RyGltfBuffer &buffer : d.storage.buffers) {
        if (buffer.source == RyGltfBuffer::External)
            return true;
    }
    const auto images = d.tree.find("images");
    if (images == d.tree.end())
        return false;
    for (const Json &image : *images) {
        const auto uri = image.find("uri");
        if (uri != image.end() && uri->is_string() && !RyGltfUri::isData(uri->get_ref<const std::string &>()))
            return true;
    }
    return false;
}

bool RyGltfWriter::isAsRead(bool elsewhere) const
{
    for (const RyGltfBuffer &buffer : d.storage.buffers) {
        if (buffer.source == RyGltfBuffer::Made || buffer.isChanged())
            return false;
    }
    if (d.file.isEmpty() || (elsewhere && hasExternals()))
        return false;
    return !d.isPatched || d.tree == RyGltfJson::parse(viewOf(d.jsonText));
}

/// What is written in place of a member of the tree: a copy of it, made when it is first asked for.
RyGltfWriter::Json &RyGltfWriter::changing(Json &changed, const char *key) const
{
    if (!changed.contains(key))
        changed[key] = d.tree.value(key, Json::array());
    return changed[key];
}

void RyGltfWriter::mergeBuffers(Json &changed, Pieces &pieces) const
{
    std::vector<std::uint64_t> offsets;
    for (const RyGltfBuffer &buffer : d.storage.buffers)
        offsets.push_back(pieces.append(buffer.bytes));
    if (offsets.size() < 2 || !d.tree.contains("bufferViews"))
        return;
    const auto move = [&offsets](Json &object) {
        Json *found = RyGltfJson::find(object, "buffer");
        if (!found || !found->is_number())
            return;
        const std::size_t buffer = found->get<std::size_t>();
        if (buffer == 0 || buffer >= offsets.size())
            return;
        *found = 0;
        if (Json *offset = RyGltfJson::find(object, "byteOffset"))
            *offset = offset->get<std::uint64_t>() + offsets[buffer];
        else
            object["byteOffset"] = offsets[buffer];
    };
    for (Json &view : changing(changed, "bufferViews")) {
        move(view);
        Json *extensions = RyGltfJson::find(view, "extensions");
        if (!extensions || !extensions->is_object())
            continue;
        for (Json &extension : *extensions) {
            if (extension.is_object())
                move(extension);
        }
    }
}

void RyGltfWriter::takeInImages(Json &changed, bool external, bool embedded, Pieces *pieces) const
{
    const auto known = d.tree.find("images");
    if (known == d.tree.end() || !known->is_array())
        return;
    Json images = *known;
    const std::size_t viewCount = d.storage.views.size();
    Json newViews = Json::array();
    for (std::size_t i = 0; i < images.size(); ++i) {
        Json &image = images[i];
        const auto uri = image.find("uri");
        if (uri == image.end() || !uri->is_string())
            continue;
        const bool isData = RyGltfUri::isData(uri->get_ref<const std::string &>());
        if (isData ? !embedded : !external)
            continue;
        QString type;
        const QByteArray bytes = m_document.imageBytes(int(i), &type);
        if (bytes.isEmpty())
            continue; // it could not be read before either; its name stays
        if (type.isEmpty())
            type = QStringLiteral("image/png");
        if (!pieces) {
            *uri = RyGltfUri::encodeData(bytes, type);
            continue;
        }
        Json view = Json::object();
        view["buffer"] = 0;
        view["byteOffset"] = pieces->append(bytes);
        view["byteLength"] = bytes.size();
        image.erase("uri");
        image["bufferView"] = viewCount + newViews.size();
        image["mimeType"] = type.toStdString();
        newViews.push_back(std::move(view));
    }
    changed["images"] = std::move(images);
    if (newViews.empty())
        return;
    Json &views = changing(changed, "bufferViews");
    for (Json &view : newViews)
        views.push_back(std::move(view));
}

QByteArray RyGltfWriter::composeBinary(bool elsewhere) const
{
    const bool converted = d.form != RyGltfDocument::Private::BinaryForm;
    Json changed = Json::object();
    RyGltfJson::makeRoom(changed);
    Pieces pieces;
    mergeBuffers(changed, pieces);
    takeInImages(changed, converted || elsewhere, converted, &pieces);
    if (!pieces.list.empty()) {
        Json buffer = Json::object();
        const auto buffers = d.tree.find("buffers");
        if (buffers != d.tree.end() && !buffers->empty())
            buffer = buffers->front();
        buffer.erase("uri");
        buffer["byteLength"] = pieces.size;
        changed["buffers"] = Json::array({std::move(buffer)});
    }
    const QByteArray text = RyGltfJson::dump(d.tree, changed, {});
    RyGltfJson::clear(changed);
    return RyGlbContainer::join(text, pieces.list, !pieces.list.empty(), d.otherChunks);
}

QByteArray RyGltfWriter::composeText(bool elsewhere) const
{
    Json changed = Json::object();
    RyGltfJson::makeRoom(changed);
    for (std::size_t i = 0; i < d.storage.buffers.size(); ++i) {
        const RyGltfBuffer &buffer = d.storage.buffers[i];
        const bool asIs = (buffer.source == RyGltfBuffer::DataUri && !buffer.isChanged()) ||
                          (buffer.source == RyGltfBuffer::External && !elsewhere);
        if (!asIs) {
            changing(changed, "buffers")[i]["uri"] =
                RyGltfUri::encodeData(buffer.bytes, QStringLiteral("application/octet-stream"));
        }
    }
    takeInImages(changed, elsewhere, false, nullptr);
    RyGltfJson::Layout layout{2, ' '};
    bool endsLine = true;
    if (d.form == RyGltfDocument::Private::TextForm) {
        layout = RyGltfJson::layoutOf(viewOf(d.jsonText));
        endsLine = d.jsonText.endsWith('\n');
    }
    QByteArray text = RyGltfJson::dump(d.tree, changed, layout);
    if (endsLine)
        text.append('\n');
    return text;
}
