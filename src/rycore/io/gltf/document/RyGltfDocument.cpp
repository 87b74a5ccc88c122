#include "rycore/io/gltf/document/RyGltfDocument.h"

#include "rycore/io/RySafeFile.h"
#include "rycore/io/gltf/document/RyGltfAccessorReader.h"
#include "rycore/io/gltf/document/RyGltfBufferReader.h"
#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfMeshReader.h"
#include "rycore/io/gltf/document/RyGltfNodeReader.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/document/RyGltfWriter.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfJson.h"
#include "rycore/io/gltf/file/RyGltfUri.h"

#include <QFileInfo>

#include <new>
#include <utility>

namespace {

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

/// Extensions that may be required because they change neither shape nor rig.
bool isHarmless(const QString &extension)
{
    return RyGltfReferences::knowsExtension(extension) && extension != QLatin1String("EXT_mesh_gpu_instancing") &&
           extension != QLatin1String("EXT_meshopt_compression") &&
           extension != QLatin1String("KHR_draco_mesh_compression");
}

/// Major number of a version text "2.0"; -1 when it is none.
int majorVersion(const QString &text)
{
    bool valid = false;
    const int major = text.section(QLatin1Char('.'), 0, 0).toInt(&valid);
    return valid ? major : -1;
}

void checkAsset(const RyGltfCursor &root)
{
    const RyGltfCursor asset = root.object("asset");
    if (!asset.exists())
        throw RyGltfError{QStringLiteral("there is no \"asset\": this is not a glTF document")};
    const QString version = asset.text("version");
    if (majorVersion(version) != 2)
        asset.refuse(QStringLiteral("glTF version \"%1\" is not supported, only 2").arg(version));
    const QString least = asset.text("minVersion");
    if (!least.isEmpty() && least != QLatin1String("2.0"))
        asset.refuse(QStringLiteral("the file needs glTF version %1").arg(least));
    const RyGltfCursor required = root.array("extensionsRequired");
    for (int i = 0; i < required.size(); ++i) {
        const auto &value = required.element(i).value();
        const QString name = value.is_string() ? QString::fromStdString(value.get<std::string>()) : QString();
        if (!isHarmless(name))
            required.refuse(QStringLiteral("the extension %1 is needed and not supported").arg(name));
    }
}

} // namespace

RyGltfDocument::RyGltfDocument() : d(std::make_unique<Private>()) {}

RyGltfDocument::~RyGltfDocument()
{
    RyGltfJson::clear(d->tree);
}

QString RyGltfDocument::Private::folder() const
{
    return path.isEmpty() ? QString() : QFileInfo(path).absolutePath();
}

void RyGltfDocument::Private::readModel(QStringList *warningList)
{
    RyGltfWarnings warnings(warningList);
    const RyGltfCursor root(tree);
    RyGltfBufferReader bufferReader(root, storage, warnings);
    bufferReader.readViews();
    bufferReader.readAccessors(model);
    RyGltfMeshReader meshReader(root, storage, warnings);
    meshReader.readMaterials(model);
    meshReader.readMeshes(model);
    RyGltfNodeReader(root, model, warnings).read();
    useCountsValid = false;
    sharesValid = false;
}

/// What `read` gives, or null with the reason why there is none.
template<typename Read>
static std::unique_ptr<RyGltfDocument> readOrRefuse(const QString &path, QString *error, const Read &read)
{
    QString reason;
    try {
        return read();
    } catch (const std::bad_alloc &) {
        reason = QStringLiteral("there is not enough memory");
    } catch (const std::exception &exception) {
        reason = QString::fromUtf8(exception.what());
    }
    if (error)
        *error = QStringLiteral("%1 cannot be opened: %2").arg(path, reason);
    return nullptr;
}

std::unique_ptr<RyGltfDocument> RyGltfDocument::read(const QString &path, QString *error, QStringList *warnings)
{
    return readOrRefuse(path, error, [&] { return parse(path, RyGltfUri::readFile(path), warnings); });
}

std::unique_ptr<RyGltfDocument> RyGltfDocument::fromBytes(const QString &path, const QByteArray &bytes, QString *error,
                                                          QStringList *warnings)
{
    return readOrRefuse(path, error, [&] { return parse(path, bytes, warnings); });
}

std::unique_ptr<RyGltfDocument> RyGltfDocument::parse(const QString &path, const QByteArray &bytes,
                                                      QStringList *warnings)
{
    std::unique_ptr<RyGltfDocument> document(new RyGltfDocument);
    Private &d = *document->d;
    d.path = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    d.file = bytes;
    if (d.file.isEmpty())
        throw RyGltfError{QStringLiteral("the file is empty")};
    QByteArray chunk;
    QStringList found;
    if (RyGlbContainer::isContainer(d.file)) {
        const RyGlbContainer container = RyGlbContainer::split(d.file, &found);
        d.form = Private::BinaryForm;
        d.jsonText = container.json;
        d.otherChunks = container.others;
        chunk = container.binary;
    } else {
        d.form = Private::TextForm;
        d.jsonText = QByteArray::fromRawData(d.file.constData(), d.file.size());
    }
    d.tree = RyGltfJson::parse(viewOf(d.jsonText));
    const RyGltfCursor root(d.tree);
    checkAsset(root);
    {
        RyGltfWarnings bufferWarnings(&found);
        RyGltfBufferReader(root, d.storage, bufferWarnings).readBuffers(d.file, chunk, d.folder());
    }
    d.readModel(&found);
    if (warnings)
        warnings->append(found);
    return document;
}

std::unique_ptr<RyGltfDocument> RyGltfDocument::create()
{
    std::unique_ptr<RyGltfDocument> document(new RyGltfDocument);
    Private::Json &tree = document->d->tree;
    tree = Private::Json::object();
    tree["asset"] = Private::Json::object();
    tree["asset"]["version"] = "2.0";
    tree["scene"] = 0;
    tree["scenes"] = Private::Json::array();
    tree["scenes"].push_back(Private::Json::object());
    return document;
}

std::unique_ptr<RyGltfDocument> RyGltfDocument::clone() const
{
    std::unique_ptr<RyGltfDocument> document(new RyGltfDocument);
    *document->d = *d;
    RyGltfJson::makeRoom(document->d->tree);
    return document;
}

std::unique_ptr<RyGltfDocument> RyGltfDocument::moveTree()
{
    Private::Json tree = std::exchange(d->tree, Private::Json::object());
    std::unique_ptr<RyGltfDocument> document = clone();
    document->d->tree = std::move(tree);
    document->d->file.clear();
    return document;
}

bool RyGltfDocument::refresh(QString *error)
{
    RyGltfModel oldModel = d->model;
    RyGltfStorage oldStorage = d->storage;
    QString reason;
    try {
        if (RyGltfCursor(d->tree).array("buffers").size() != int(d->storage.buffers.size()))
            throw RyGltfError{QStringLiteral("buffers: were added or removed")};
        d->readModel(nullptr);
        return true;
    } catch (const std::exception &exception) {
        reason = QString::fromUtf8(exception.what());
    }
    d->model = std::move(oldModel);
    d->storage = std::move(oldStorage);
    if (error)
        *error = reason;
    return false;
}

void RyGltfDocument::refreshClips()
{
    RyGltfWarnings warnings(nullptr);
    const RyGltfCursor root(d->tree);
    RyGltfNodeReader(root, d->model, warnings).readAnimations();
}

QString RyGltfDocument::path() const
{
    return d->path;
}

int RyGltfDocument::shownScene() const
{
    const auto scenes = d->tree.find("scenes");
    const int count = scenes == d->tree.end() ? 0 : int(scenes->size());
    const auto chosen = d->tree.find("scene");
    if (chosen != d->tree.end() && RyGltfReferences::isIndex(*chosen) && chosen->get<long long>() < count)
        return chosen->get<int>();
    return count == 0 ? -1 : 0;
}

const RyGltfModel &RyGltfDocument::model() const
{
    return d->model;
}

nlohmann::ordered_json &RyGltfDocument::json()
{
    d->useCountsValid = false;
    d->sharesValid = false;
    d->isPatched = true;
    return d->tree;
}

nlohmann::ordered_json &RyGltfDocument::clips()
{
    d->useCountsValid = false;
    return d->list("animations");
}

const nlohmann::ordered_json &RyGltfDocument::json() const
{
    return d->tree;
}

std::vector<float> RyGltfDocument::readFloats(int accessor) const
{
    const std::size_t i = std::size_t(accessor);
    return RyGltfAccessorReader(d->model.accessors.at(i), d->storage.layouts.at(i), d->storage).readFloats();
}

std::vector<std::uint32_t> RyGltfDocument::readUints(int accessor) const
{
    const std::size_t i = std::size_t(accessor);
    return RyGltfAccessorReader(d->model.accessors.at(i), d->storage.layouts.at(i), d->storage).readUints();
}

bool RyGltfDocument::hasFiniteNumbers(int accessor) const
{
    const std::size_t i = std::size_t(accessor);
    return RyGltfAccessorReader(d->model.accessors.at(i), d->storage.layouts.at(i), d->storage).isFinite();
}

std::span<const unsigned char> RyGltfDocument::packedBytes(int accessor) const
{
    const std::size_t i = std::size_t(accessor);
    return RyGltfAccessorReader(d->model.accessors.at(i), d->storage.layouts.at(i), d->storage).packedBytes();
}

QByteArray RyGltfDocument::imageBytes(int image, QString *mimeType) const
{
    QString type;
    QByteArray bytes;
    try {
        const RyGltfCursor images = RyGltfCursor(d->tree).array("images");
        if (image < 0 || image >= images.size())
            return {};
        const RyGltfCursor cursor = images.objectAt(image);
        int view = -1;
        if (const std::string *uri = cursor.rawText("uri")) {
            if (RyGltfUri::isData(*uri))
                bytes = RyGltfUri::decodeData(*uri, &type);
            else if (!d->path.isEmpty())
                bytes = RyGltfUri::readFile(RyGltfUri::filePath(*uri, d->folder()));
        } else if (cursor.member("bufferView").peekIndex(int(d->storage.views.size()), view)) {
            const char *from = reinterpret_cast<const char *>(d->storage.viewBytes(view));
            bytes = QByteArray(from, int(d->storage.views[std::size_t(view)].length));
        }
        if (cursor.has("mimeType"))
            type = cursor.text("mimeType");
    } catch (const RyGltfError &) {
        return {};
    }
    if (mimeType) {
        const QString sniffed = RyGltfUri::imageMimeType(bytes);
        *mimeType = type.isEmpty() ? sniffed : type;
    }
    return bytes;
}

QByteArray RyGltfDocument::toBytes(const QString &ending, QString *error) const
{
    return RyGltfWriter(*this).toBytes(ending, false, error);
}

bool RyGltfDocument::write(const QString &path, QString *error) const
{
    const QFileInfo target(path);
    const bool elsewhere = d->path.isEmpty() || QFileInfo(target.absolutePath()).canonicalFilePath() !=
                                                    QFileInfo(d->folder()).canonicalFilePath();
    QString reason;
    const QByteArray bytes = RyGltfWriter(*this).toBytes(target.suffix(), elsewhere, &reason);
    if (bytes.isEmpty()) {
        if (error)
            *error = QStringLiteral("%1 cannot be written: %2").arg(path, reason);
        return false;
    }
    return RySafeFile::write(path, bytes, error);
}
