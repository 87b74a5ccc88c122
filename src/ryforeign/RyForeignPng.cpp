#include "ryforeign/RyForeignPng.h"

#include "rycore/base/RyFileSystem.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "ryforeign/pictures/RyForeignPictures.h"

#include <QFileInfo>
#include <QLibrary>

namespace {

/// The library stays to the end.
template<typename Function>
Function resolve(const char *symbol)
{
    const QString path =
        QStringLiteral("%1/%2").arg(RyFileSystem::ownFolder(), QLatin1String(RyForeignPictures::Library));
    QLibrary library(path);
    const auto function = reinterpret_cast<Function>(library.resolve(symbol));
    if (function)
        return function;
    if (!QFileInfo(path).isFile())
        throw RyGltfError{QStringLiteral("the library that reads its pictures, %1, is missing; installing the program "
                                         "anew brings it back")
                              .arg(path)};
    throw RyGltfError{QStringLiteral("the library that reads its pictures cannot be used (%1); installing the program "
                                     "anew may help")
                          .arg(library.errorString())};
}

} // namespace

QByteArray RyForeignPng::fromPicture(const QByteArray &picture)
{
    return resolve<RyForeignPictures::FromPicture>(RyForeignPictures::FromPictureSymbol)(picture);
}

QByteArray RyForeignPng::fromTexels(const uchar *texels, int width, int height)
{
    return resolve<RyForeignPictures::FromTexels>(RyForeignPictures::FromTexelsSymbol)(texels, width, height);
}
