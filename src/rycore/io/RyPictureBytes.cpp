#include "rycore/io/RyPictureBytes.h"

#include "rycore/io/gltf/file/RyGltfUri.h"
#include "rycore/scene/RyMeshPart.h"

#include <QBuffer>

QByteArray ryPictureBytes(const RyMaterialLook &look, QString *mimeType)
{
    *mimeType = RyGltfUri::imageMimeType(look.picture);
    if (*mimeType == QLatin1String("image/png") || *mimeType == QLatin1String("image/jpeg"))
        return look.picture;
    QByteArray bytes;
    if (look.texture.isNull())
        return bytes;
    *mimeType = QStringLiteral("image/png");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    look.texture.save(&buffer, "PNG");
    return bytes;
}
