#pragma once

#include <QByteArray>

/// Makes PNG files of other pictures, with a library that is loaded when the first one comes. Throws a `RyGltfError`
/// where that is not there.
namespace RyForeignPng {

/// Of a picture file of any kind; empty where it cannot be decoded.
QByteArray fromPicture(const QByteArray &picture);
/// Of texels of four bytes: blue, green, red, alpha; rows from above.
QByteArray fromTexels(const uchar *texels, int width, int height);

} // namespace RyForeignPng
