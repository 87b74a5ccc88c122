#include "ryforeign/RyForeignLooks.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfUri.h"
#include "rycore/io/gltf/open/RyImageDecoder.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <QBuffer>
#include <QFileInfo>

#include <cmath>

namespace {

QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return !image.isNull() && image.save(&buffer, "PNG") ? bytes : QByteArray();
}

} // namespace

std::vector<int> RyForeignLooks::write()
{
    const aiScene &scene = *m_input.scene;
    std::vector<bool> isUsed(scene.mNumMaterials, false);
    for (unsigned m = 0; m < scene.mNumMeshes; ++m) {
        if (scene.mMeshes[m]->mMaterialIndex < scene.mNumMaterials)
            isUsed[scene.mMeshes[m]->mMaterialIndex] = true;
    }
    std::vector<int> materials;
    for (unsigned i = 0; i < scene.mNumMaterials; ++i)
        materials.push_back(isUsed[i] ? writeMaterial(*scene.mMaterials[i]) : -1);
    if (!m_otherMaps.isEmpty()) {
        m_otherMaps.removeDuplicates();
        m_input.say(QStringLiteral("Of materials, only colour, opacity and the picture of the colour come along; left "
                                   "out: %1")
                        .arg(m_otherMaps.join(QLatin1String(", "))));
    }
    return materials;
}

int RyForeignLooks::writeMaterial(const aiMaterial &source)
{
    RyGltfMaterial material;
    aiString text;
    if (source.Get(AI_MATKEY_NAME, text) == aiReturn_SUCCESS)
        material.name = ryForeignText(text);
    if (source.GetTexture(aiTextureType_DIFFUSE, 0, &text) == aiReturn_SUCCESS ||
        source.GetTexture(aiTextureType_BASE_COLOR, 0, &text) == aiReturn_SUCCESS) {
        material.baseColorTexture = imageOf(ryForeignText(text));
    }
    // A picture takes the place of the colour in these formats; in the other one they are multiplied.
    aiColor4D color(1, 1, 1, 1);
    if (material.baseColorTexture < 0 && source.Get(AI_MATKEY_COLOR_DIFFUSE, color) == aiReturn_SUCCESS) {
        for (size_t i = 0; i < 3; ++i)
            material.baseColor[i] = std::isfinite(color[unsigned(i)]) ? float(color[unsigned(i)]) : 1.0f;
    }
    ai_real opacity = 1;
    if (source.Get(AI_MATKEY_OPACITY, opacity) == aiReturn_SUCCESS && std::isfinite(opacity) && opacity > 0)
        material.baseColor[3] = std::min(1.0f, float(opacity));
    int sides = 0;
    material.doubleSided = source.Get(AI_MATKEY_TWOSIDED, sides) == aiReturn_SUCCESS && sides != 0;
    noteOtherMaps(source);
    return m_document.addMaterial(material);
}

void RyForeignLooks::noteOtherMaps(const aiMaterial &source)
{
    const struct
    {
        aiTextureType type;
        QString name;
    } maps[] = {{aiTextureType_NORMALS, QStringLiteral("normal maps")},
                {aiTextureType_HEIGHT, QStringLiteral("bump maps")},
                {aiTextureType_SPECULAR, QStringLiteral("specular maps")},
                {aiTextureType_EMISSIVE, QStringLiteral("emissive maps")},
                {aiTextureType_OPACITY, QStringLiteral("opacity maps")},
                {aiTextureType_SHININESS, QStringLiteral("gloss maps")}};
    for (const auto &map : maps) {
        if (source.GetTextureCount(map.type) > 0)
            m_otherMaps.append(map.name);
    }
}

int RyForeignLooks::imageOf(const QString &name)
{
    const auto known = m_images.constFind(name);
    if (known != m_images.constEnd())
        return *known;
    const aiTexture *texture = m_input.scene->GetEmbeddedTexture(name.toUtf8().constData());
    const int image = addPicture(name, texture ? embedded(*texture, name) : beside(name));
    m_images.insert(name, image);
    return image;
}

int RyForeignLooks::addPicture(const QString &name, QByteArray bytes)
{
    if (bytes.isEmpty())
        return -1;
    QString type = RyGltfUri::imageMimeType(bytes);
    if (type != QLatin1String("image/png") && type != QLatin1String("image/jpeg")) {
        QStringList words;
        bytes = pngOf(RyImageDecoder::decode(bytes, &words));
        type = QStringLiteral("image/png");
    }
    if (bytes.isEmpty()) {
        m_input.say(QStringLiteral("The picture \"%1\" is of a kind that cannot be read and is left out").arg(name));
        return -1;
    }
    const QString plain = QString(name).replace(QLatin1Char('\\'), QLatin1Char('/')).section(QLatin1Char('/'), -1);
    return m_document.addImage(plain.startsWith(QLatin1Char('*')) ? QString() : QFileInfo(plain).completeBaseName(),
                               bytes, type);
}

/// The bytes of a picture file, or texels.
QByteArray RyForeignLooks::embedded(const aiTexture &texture, const QString &name) const
{
    if (!texture.pcData)
        return {};
    if (texture.mHeight == 0)
        return QByteArray(reinterpret_cast<const char *>(texture.pcData), int(texture.mWidth));
    const QImage texels(reinterpret_cast<const uchar *>(texture.pcData), int(texture.mWidth), int(texture.mHeight),
                        int(4 * texture.mWidth), QImage::Format_ARGB32);
    const QByteArray bytes = pngOf(texels);
    if (bytes.isEmpty())
        m_input.say(QStringLiteral("The picture \"%1\" cannot be read and is left out").arg(name));
    return bytes;
}

/// By its path where that leads to or below the folder of the file, otherwise by its name alone: paths are those of
/// the machine that wrote them.
QByteArray RyForeignLooks::beside(const QString &name) const
{
    const QString folder = QFileInfo(m_input.path).absolutePath();
    QString path = QString(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
    QString reason;
    for (const QString &way : {path, path.section(QLatin1Char('/'), -1)}) {
        try {
            const QString escaped = QString(way).replace(QLatin1Char('%'), QLatin1String("%25"));
            return RyGltfUri::readFile(RyGltfUri::filePath(escaped.toStdString(), folder));
        } catch (const RyGltfError &refusal) {
            reason = refusal.message;
        }
    }
    m_input.say(QStringLiteral("The picture \"%1\" is left out: %2").arg(path.section(QLatin1Char('/'), -1), reason));
    return {};
}
