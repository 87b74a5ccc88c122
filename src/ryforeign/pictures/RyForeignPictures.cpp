#include "ryforeign/pictures/RyForeignPictures.h"

#include "rycore/io/gltf/open/RyImageDecoder.h"

#include <QBuffer>

#include <type_traits>

namespace {

QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return !image.isNull() && image.save(&buffer, "PNG") ? bytes : QByteArray();
}

} // namespace

extern "C" Q_DECL_EXPORT QByteArray ryPngFromPicture(const QByteArray &picture)
{
    QStringList words;
    return pngOf(RyImageDecoder::decode(picture, &words));
}

extern "C" Q_DECL_EXPORT QByteArray ryPngFromTexels(const uchar *texels, int width, int height)
{
    return pngOf(QImage(texels, width, height, 4 * width, QImage::Format_ARGB32));
}

static_assert(std::is_same_v<decltype(&ryPngFromPicture), RyForeignPictures::FromPicture>);
static_assert(std::is_same_v<decltype(&ryPngFromTexels), RyForeignPictures::FromTexels>);
