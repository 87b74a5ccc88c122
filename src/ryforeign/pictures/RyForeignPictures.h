#pragma once

#include <QByteArray>

/// What the library exports that decodes pictures for the reading process. It needs the toolkit's drawing, which takes
/// long to load, and few files have a picture that needs it: it is loaded for these.
namespace RyForeignPictures {

constexpr char Library[] = "libryforeignpictures.so";

/// A PNG file of a picture file of any kind; empty where it cannot be decoded.
using FromPicture = QByteArray (*)(const QByteArray &picture);
constexpr char FromPictureSymbol[] = "ryPngFromPicture";

/// Four bytes each: blue, green, red, alpha; rows from above.
using FromTexels = QByteArray (*)(const uchar *texels, int width, int height);
constexpr char FromTexelsSymbol[] = "ryPngFromTexels";

} // namespace RyForeignPictures
