#include "rycore/io/gltf/file/RyGltfUri.h"

#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/math/RyLargePages.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>

bool RyGltfUri::isData(const std::string &uri)
{
    return qstrnicmp(uri.c_str(), "data:", 5) == 0;
}

QByteArray RyGltfUri::decodeData(const std::string &uri, QString *mimeType)
{
    const std::size_t comma = uri.find(',');
    if (!isData(uri) || comma == std::string::npos)
        throw RyGltfError{QStringLiteral("the data URI has no comma")};
    if (uri.size() > 0x7ffffff0u)
        throw RyGltfError{QStringLiteral("the data URI is too long")};
    const QByteArray head = QByteArray::fromRawData(uri.data() + 5, int(comma) - 5);
    const QByteArray body = QByteArray::fromRawData(uri.data() + comma + 1, int(uri.size() - comma) - 1);
    const QList<QByteArray> fields = head.split(';');
    if (mimeType)
        *mimeType = QString::fromUtf8(fields.first());
    if (fields.size() < 2 || fields.last().compare("base64", Qt::CaseInsensitive) != 0)
        return QByteArray::fromPercentEncoding(body);
    QByteArray::FromBase64Result decoded =
        QByteArray::fromBase64Encoding(body, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        throw RyGltfError{QStringLiteral("the data URI is not valid base64")};
    return std::move(decoded.decoded);
}

std::string RyGltfUri::encodeData(const QByteArray &bytes, const QString &mimeType)
{
    const QByteArray encoded = bytes.toBase64();
    std::string result = "data:" + mimeType.toStdString() + ";base64,";
    result.append(encoded.constData(), std::size_t(encoded.size()));
    return result;
}

QString RyGltfUri::filePath(const std::string &uri, const QString &folder)
{
    const QString shown = QString::fromUtf8(uri.data(), int(qMin<std::size_t>(uri.size(), 200)));
    const QByteArray decoded = QByteArray::fromPercentEncoding(QByteArray::fromStdString(uri));
    const QString path = QString::fromUtf8(decoded);
    const auto refuse = [&shown](const char *reason) {
        throw RyGltfError{QStringLiteral("the URI \"%1\" %2").arg(shown, QString::fromUtf8(reason))};
    };
    if (path.isEmpty())
        refuse("is empty");
    if (decoded.contains('\0') || decoded.size() > 4000)
        refuse("is no file name");
    if (path.contains(QLatin1Char(':')))
        refuse("does not name a file beside this one");
    if (path.startsWith(QLatin1Char('/')) || path.contains(QLatin1Char('\\')))
        refuse("is not relative");
    if (path.split(QLatin1Char('/')).contains(QStringLiteral("..")))
        refuse("leads out of the folder of this file");
    return folder + QLatin1Char('/') + path;
}

QByteArray RyGltfUri::readFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        throw RyGltfError{QStringLiteral("the file %1 does not exist").arg(path)};
    if (!info.isFile())
        throw RyGltfError{QStringLiteral("%1 is not a file").arg(path)};
    if (info.size() > 0x7fff0000)
        throw RyGltfError{QStringLiteral("the file %1 has more than two gigabytes").arg(path)};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw RyGltfError{QStringLiteral("the file %1 cannot be opened: %2").arg(path, file.errorString())};
    QByteArray bytes(int(info.size()), Qt::Uninitialized);
    RyLargePages::prefer(bytes.data(), size_t(bytes.size()));
    bytes.truncate(int(std::max<qint64>(0, file.read(bytes.data(), bytes.size()))));
    bytes += file.readAll(); // what came since, or all of a file that has no size
    if (file.error() != QFileDevice::NoError)
        throw RyGltfError{QStringLiteral("the file %1 cannot be read: %2").arg(path, file.errorString())};
    return bytes;
}

QString RyGltfUri::imageMimeType(const QByteArray &bytes)
{
    if (bytes.startsWith("\x89PNG\r\n\x1a\n"))
        return QStringLiteral("image/png");
    if (bytes.startsWith("\xff\xd8\xff"))
        return QStringLiteral("image/jpeg");
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return QStringLiteral("image/webp");
    if (bytes.startsWith("\xabKTX 20\xbb"))
        return QStringLiteral("image/ktx2");
    return {};
}
