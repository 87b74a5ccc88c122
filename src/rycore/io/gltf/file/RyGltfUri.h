#pragma once

#include <QByteArray>
#include <QString>

#include <string>

/// What the URI of a buffer or an image stands for: data inside it, or a file beside the document.
class RyGltfUri
{
public:
    static bool isData(const std::string &uri);
    /// The bytes of a data URI and its MIME type. Throws RyGltfError when it cannot be decoded.
    static QByteArray decodeData(const std::string &uri, QString *mimeType = nullptr);
    static std::string encodeData(const QByteArray &bytes, const QString &mimeType);
    /// The file a relative URI names below `folder`. Throws RyGltfError for everything that could lead elsewhere:
    /// another scheme, an absolute path, a step upwards.
    static QString filePath(const std::string &uri, const QString &folder);
    /// All bytes of a regular file; throws RyGltfError with the system's reason.
    static QByteArray readFile(const QString &path);
    /// "image/png" and so on, from the first bytes; empty when they say nothing.
    static QString imageMimeType(const QByteArray &bytes);
};
