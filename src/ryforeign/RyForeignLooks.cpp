#include "ryforeign/RyForeignLooks.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/file/RyGltfError.h"
#include "rycore/io/gltf/file/RyGltfUri.h"
#include "ryforeign/RyForeignPng.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <nlohmann/json.hpp>

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 LargestPicture = qint64(128) << 20;
constexpr qint64 MostOfPictures = qint64(256) << 20;

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
        materials.push_back(isUsed[i] ? writeMaterial(i) : -1);
    noteRest();
    return materials;
}

int RyForeignLooks::writeMaterial(unsigned number)
{
    const aiMaterial &source = *m_input.scene->mMaterials[number];
    RyGltfMaterial material;
    aiString text;
    if (source.Get(AI_MATKEY_NAME, text) == aiReturn_SUCCESS)
        material.name = ryForeignText(text);
    aiTextureType type = aiTextureType_NONE;
    for (const aiTextureType each : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE})
        type = source.GetTextureCount(each) > 0 ? each : type;
    if (type != aiTextureType_NONE && source.GetTexture(type, 0, &text) == aiReturn_SUCCESS)
        material.baseColorTexture = imageOf(ryForeignText(text));
    // A picture takes the place of the colour in these formats; in the other one they are multiplied.
    aiColor4D color(1, 1, 1, 1);
    if (material.baseColorTexture < 0 && source.Get(AI_MATKEY_COLOR_DIFFUSE, color) == aiReturn_SUCCESS) {
        for (size_t i = 0; i < 3; ++i)
            material.baseColor[i] = std::isfinite(color[unsigned(i)]) ? float(color[unsigned(i)]) : 1.0f;
    }
    ai_real opacity = 1;
    if (source.Get(AI_MATKEY_OPACITY, opacity) == aiReturn_SUCCESS && std::isfinite(opacity)) {
        if (opacity > 0)
            material.baseColor[3] = std::min(1.0f, float(opacity));
        else
            ++m_transparent;
    }
    int sides = 0;
    material.doubleSided = source.Get(AI_MATKEY_TWOSIDED, sides) == aiReturn_SUCCESS && sides != 0;
    noteOtherMaps(source, type);
    const int index = m_document.addMaterial(material);
    if (material.baseColorTexture >= 0)
        placePicture(index, number, source, type);
    return index;
}

/// Which texture coordinates it takes, how they are moved and scaled, and what lies beyond its edges.
void RyForeignLooks::placePicture(int material, unsigned number, const aiMaterial &source, int type)
{
    using Json = nlohmann::ordered_json;
    Json &tree = m_document.json();
    Json &picture = tree["materials"][size_t(material)]["pbrMetallicRoughness"]["baseColorTexture"];
    const auto kind = aiTextureType(type);
    int set = 0;
    if (source.Get(AI_MATKEY_UVWSRC(kind, 0), set) == aiReturn_SUCCESS && set > 0) {
        if (hasCoordinates(number, set))
            picture["texCoord"] = set;
        else
            ++m_withoutCoordinates;
    }
    aiUVTransform placed;
    if (source.Get(AI_MATKEY_UVTRANSFORM(kind, 0), placed) == aiReturn_SUCCESS) {
        const double scale[] = {double(placed.mScaling.x), double(placed.mScaling.y)};
        // Counted from above here, from below there.
        const double offset[] = {double(placed.mTranslation.x), 1.0 - scale[1] - double(placed.mTranslation.y)};
        m_turned += std::abs(placed.mRotation) > 1e-6f;
        bool isFinite = true;
        for (const double part : {scale[0], scale[1], offset[0], offset[1]})
            isFinite = isFinite && std::isfinite(part);
        if (isFinite && (scale[0] != 1.0 || scale[1] != 1.0 || offset[0] != 0.0 || offset[1] != 0.0)) {
            const char *const name = "KHR_texture_transform";
            picture["extensions"][name] = Json{{"offset", offset}, {"scale", scale}};
            Json &used = tree["extensionsUsed"];
            if (std::find(used.begin(), used.end(), name) == used.end())
                used.push_back(name);
        }
    }
    int u = aiTextureMapMode_Wrap, v = aiTextureMapMode_Wrap;
    source.Get(AI_MATKEY_MAPPINGMODE_U(kind, 0), u);
    source.Get(AI_MATKEY_MAPPINGMODE_V(kind, 0), v);
    const auto wrap = [](int mode) {
        return mode == aiTextureMapMode_Wrap ? 10497 : mode == aiTextureMapMode_Mirror ? 33648 : 33071;
    };
    if (u == aiTextureMapMode_Wrap && v == aiTextureMapMode_Wrap)
        return;
    Json &samplers = tree["samplers"];
    const Json sampler{{"wrapS", wrap(u)}, {"wrapT", wrap(v)}};
    auto at = std::find(samplers.begin(), samplers.end(), sampler);
    if (at == samplers.end()) {
        samplers.push_back(sampler);
        at = samplers.end() - 1;
    }
    tree["textures"][picture["index"].get<size_t>()]["sampler"] = at - samplers.begin();
}

/// Whether all meshes that show the material have texture coordinates of that number.
bool RyForeignLooks::hasCoordinates(unsigned number, int set) const
{
    for (unsigned m = 0; m < m_input.scene->mNumMeshes; ++m) {
        const aiMesh &mesh = *m_input.scene->mMeshes[m];
        if (mesh.mMaterialIndex == number && mesh.GetNumUVChannels() <= unsigned(set))
            return false;
    }
    return true;
}

/// All pictures but the first one of that kind.
void RyForeignLooks::noteOtherMaps(const aiMaterial &source, int type)
{
    const QHash<int, QString> names = {{aiTextureType_BASE_COLOR, QStringLiteral("base colour maps")},
                                       {aiTextureType_NORMALS, QStringLiteral("normal maps")},
                                       {aiTextureType_NORMAL_CAMERA, QStringLiteral("normal maps")},
                                       {aiTextureType_HEIGHT, QStringLiteral("bump maps")},
                                       {aiTextureType_DISPLACEMENT, QStringLiteral("displacement maps")},
                                       {aiTextureType_SPECULAR, QStringLiteral("specular maps")},
                                       {aiTextureType_AMBIENT, QStringLiteral("ambient maps")},
                                       {aiTextureType_EMISSIVE, QStringLiteral("emissive maps")},
                                       {aiTextureType_EMISSION_COLOR, QStringLiteral("emissive maps")},
                                       {aiTextureType_OPACITY, QStringLiteral("opacity maps")},
                                       {aiTextureType_SHININESS, QStringLiteral("gloss maps")},
                                       {aiTextureType_LIGHTMAP, QStringLiteral("light maps")},
                                       {aiTextureType_REFLECTION, QStringLiteral("reflection maps")},
                                       {aiTextureType_METALNESS, QStringLiteral("metalness maps")},
                                       {aiTextureType_DIFFUSE_ROUGHNESS, QStringLiteral("roughness maps")},
                                       {aiTextureType_AMBIENT_OCCLUSION, QStringLiteral("occlusion maps")}};
    for (int each = aiTextureType_NONE + 1; each <= AI_TEXTURE_TYPE_MAX; ++each) {
        const unsigned count = source.GetTextureCount(aiTextureType(each));
        if (each != type && count > 0)
            ++m_otherMaps[names.value(each, QStringLiteral("other maps"))];
        else if (count > 1)
            ++m_otherMaps[QStringLiteral("further layers of colour")];
    }
}

void RyForeignLooks::noteRest()
{
    QStringList maps;
    for (auto map = m_otherMaps.cbegin(); map != m_otherMaps.cend(); ++map)
        maps.append(QStringLiteral("%1 (%2)").arg(map.key()).arg(map.value()));
    if (!maps.isEmpty()) {
        m_input.say(QStringLiteral("Of materials, only colour, opacity and the picture of the colour come along; left "
                                   "out, with the number of materials: %1")
                        .arg(maps.join(QLatin1String(", "))));
    }
    if (m_transparent > 0)
        m_input.say(QStringLiteral("%1 materials are wholly transparent in the file, which most programs write by "
                                   "mistake; they were made opaque")
                        .arg(m_transparent));
    if (m_turned > 0)
        m_input.say(
            QStringLiteral("%1 pictures lie turned on their surfaces; they come along without the turn").arg(m_turned));
    if (m_withoutCoordinates > 0)
        m_input.say(QStringLiteral("%1 pictures use texture coordinates that not all their meshes have; they are shown "
                                   "with the first ones")
                        .arg(m_withoutCoordinates));
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
        bytes = RyForeignPng::fromPicture(bytes);
        type = QStringLiteral("image/png");
    }
    if (bytes.isEmpty()) {
        m_input.say(QStringLiteral("The picture \"%1\" is of a kind that cannot be read and is left out").arg(name));
        return -1;
    }
    if (!hasRoomFor(name, bytes.size()))
        return -1;
    m_bytes += bytes.size();
    const QString plain = QString(name).replace(QLatin1Char('\\'), QLatin1Char('/')).section(QLatin1Char('/'), -1);
    return m_document.addImage(plain.startsWith(QLatin1Char('*')) ? QString() : QFileInfo(plain).completeBaseName(),
                               bytes, type);
}

/// The rest of the figure has to fit into the memory as well.
bool RyForeignLooks::hasRoomFor(const QString &name, qint64 size) const
{
    if (size <= LargestPicture && m_bytes + size <= MostOfPictures)
        return true;
    m_input.say(
        QStringLiteral("The picture \"%1\" is left out: it takes %2 MB, and pictures may take %3 MB each and %4 "
                       "MB together")
            .arg(name)
            .arg(size >> 20)
            .arg(LargestPicture >> 20)
            .arg(MostOfPictures >> 20));
    return false;
}

/// The bytes of a picture file, or texels.
QByteArray RyForeignLooks::embedded(const aiTexture &texture, const QString &name) const
{
    const qint64 size = qint64(texture.mWidth) * (texture.mHeight == 0 ? 1 : 4 * qint64(texture.mHeight));
    if (!texture.pcData || size == 0) {
        m_input.say(QStringLiteral("The picture \"%1\" is left out: there is nothing in it").arg(name));
        return {};
    }
    if (!hasRoomFor(name, size))
        return {};
    if (texture.mHeight == 0)
        return QByteArray(reinterpret_cast<const char *>(texture.pcData), int(texture.mWidth));
    const QByteArray bytes = RyForeignPng::fromTexels(reinterpret_cast<const uchar *>(texture.pcData),
                                                      int(texture.mWidth), int(texture.mHeight));
    if (bytes.isEmpty())
        m_input.say(QStringLiteral("The picture \"%1\" cannot be read and is left out").arg(name));
    return bytes;
}

/// By its path where that leads to or below the folder of the file, otherwise by its name alone, there and where
/// exporters put pictures: paths are those of the machine that wrote them.
QByteArray RyForeignLooks::beside(const QString &name) const
{
    const QFileInfo file(m_input.path);
    const QString path = QString(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
    const QString plain = path.section(QLatin1Char('/'), -1);
    const QString media = file.completeBaseName() + QStringLiteral(".fbm");
    for (const QString &way : {path, plain, QStringLiteral("textures/") + plain, media + QLatin1Char('/') + plain}) {
        try {
            const QString escaped = QString(way).replace(QLatin1Char('%'), QLatin1String("%25"));
            const QString found = RyGltfUri::filePath(escaped.toStdString(), file.absolutePath());
            if (!QFileInfo::exists(found))
                continue;
            if (!hasRoomFor(plain, QFileInfo(found).size()))
                return {};
            const QByteArray bytes = RyGltfUri::readFile(found);
            if (bytes.isEmpty())
                m_input.say(QStringLiteral("The picture \"%1\" is left out: there is nothing in it").arg(plain));
            return bytes;
        } catch (const RyGltfError &refusal) {
            if (way == path)
                continue; // a path of another machine
            m_input.say(QStringLiteral("The picture \"%1\" is left out: %2").arg(plain, refusal.message()));
            return {};
        }
    }
    m_input.say(QStringLiteral("The picture \"%1\" is left out: it is neither beside the file nor in the folders "
                               "textures and %2 there")
                    .arg(plain, media));
    return {};
}
