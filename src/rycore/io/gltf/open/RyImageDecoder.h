#pragma once

#include <QImage>
#include <QStringList>

/// Decodes pictures. What the libraries that do it have to say about a picture, which they would print, is collected.
namespace RyImageDecoder {

/// Null when it cannot be decoded.
QImage decode(const QByteArray &bytes, QStringList *words);

} // namespace RyImageDecoder
