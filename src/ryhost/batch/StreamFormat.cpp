#include "ryhost/batch/StreamFormat.h"

#include "rycore/io/foreign/RyForeignContent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QtEndian>

namespace {

constexpr char BinaryMark[] = "glTF";
constexpr int BinaryHeader = 20; // of the file and of its first chunk
constexpr int LongestLookedAt = 4096;

QByteArray withoutByteOrderMark(const QByteArray &bytes)
{
    return bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
}

/// Whether the first line that says something is one of a text with vertices and facets.
bool isObj(const QByteArray &start)
{
    static const QList<QByteArray> keys{"v", "vn", "vt", "f", "o", "g", "s", "l", "mtllib", "usemtl"};
    if (start.contains('\0'))
        return false;
    for (const QByteArray &line : start.split('\n')) {
        const QByteArray text = line.simplified();
        if (text.isEmpty() || text.startsWith('#'))
            continue;
        return text.contains(' ') && keys.contains(text.left(text.indexOf(' ')));
    }
    return false;
}

QByteArray jsonOf(const QByteArray &bytes, const QString &ending)
{
    if (ending == QLatin1String("gltf"))
        return withoutByteOrderMark(bytes);
    if (ending != QLatin1String("glb") || bytes.size() < BinaryHeader)
        return {};
    const quint32 length = qFromLittleEndian<quint32>(bytes.constData() + 12);
    return bytes.mid(BinaryHeader, int(std::min<quint32>(length, quint32(bytes.size()))));
}

} // namespace

QString streamFormatOf(const QByteArray &bytes)
{
    if (bytes.startsWith(BinaryMark))
        return QStringLiteral("glb");
    const QByteArray start = withoutByteOrderMark(bytes.left(LongestLookedAt));
    if (start.trimmed().startsWith('{'))
        return QStringLiteral("gltf");
    const QString foreign = RyForeignContent::endingOf(bytes.left(RyForeignContent::Needed));
    if (!foreign.isEmpty())
        return foreign;
    return isObj(start) ? QStringLiteral("obj") : QString();
}

QString streamOutsideFile(const QByteArray &bytes, const QString &ending)
{
    const QJsonObject tree = QJsonDocument::fromJson(jsonOf(bytes, ending)).object();
    for (const char *list : {"buffers", "images"}) {
        for (const QJsonValue &entry : tree.value(QLatin1String(list)).toArray()) {
            const QString uri = entry.toObject().value(QLatin1String("uri")).toString();
            if (!uri.isEmpty() && !uri.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
                return QLatin1Char('"') + uri + QLatin1Char('"');
        }
    }
    return {};
}
