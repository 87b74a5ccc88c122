#include "ryhost/batch/streamOutsideFile.h"

#include "rycore/io/gltf/file/RyGlbContainer.h"
#include "rycore/io/gltf/file/RyGltfError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cctype>

namespace {

/// The text of the tree, in the bytes; empty without one.
QByteArray jsonOf(const QByteArray &bytes, const QString &ending)
{
    if (ending == QLatin1String("gltf"))
        return bytes;
    if (ending != QLatin1String("glb") || !RyGlbContainer::isContainer(bytes))
        return {};
    try {
        return RyGlbContainer::split(bytes, nullptr).json;
    } catch (const RyGltfError &) {
        return {};
    }
}

/// Whether the value of some member "uri" may be another thing than a data URI. Most files name none, or hold nothing
/// but long data, which the reader will parse and this need not.
bool mayNameFiles(const QByteArray &json)
{
    const QByteArray key("\"uri\""), data("\"data:");
    for (int at = json.indexOf(key); at >= 0; at = json.indexOf(key, at)) {
        at += key.size();
        while (at < json.size() && (std::isspace(uchar(json.at(at))) || json.at(at) == ':'))
            ++at;
        if (json.mid(at, data.size()).toLower() != data)
            return true;
    }
    return json.contains("\\u"); // which a key may be written with
}

} // namespace

QString streamOutsideFile(const QByteArray &bytes, const QString &ending)
{
    const QByteArray json = jsonOf(bytes, ending);
    if (!mayNameFiles(json))
        return {};
    const QJsonObject tree = QJsonDocument::fromJson(json).object();
    for (const char *list : {"buffers", "images"}) {
        for (const QJsonValue &entry : tree.value(QLatin1String(list)).toArray()) {
            const QString uri = entry.toObject().value(QLatin1String("uri")).toString();
            if (!uri.isEmpty() && !uri.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
                return QLatin1Char('"') + uri + QLatin1Char('"');
        }
    }
    return {};
}
