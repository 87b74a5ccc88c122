#include "rycore/io/gltf/save/RyGltfNewLooks.h"

#include "rycore/io/RyPictureBytes.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/scene/RyMeshPart.h"

int RyGltfNewLooks::imageOf(const RyMaterialLook &look)
{
    QString type;
    const QByteArray bytes = ryPictureBytes(look, &type);
    if (bytes.isEmpty())
        return -1;
    const auto known = m_images.constFind(bytes);
    if (known != m_images.constEnd())
        return *known;
    const int image = m_document.addImage(look.pictureName, bytes, type);
    m_images.insert(bytes, image);
    return image;
}

int RyGltfNewLooks::materialOf(const RyMaterialLook &look)
{
    auto &ofName = m_materials[look.name.toUtf8()];
    for (const auto &[known, index] : ofName) {
        if (known->baseColor == look.baseColor && known->doubleSided == look.doubleSided &&
            known->picture == look.picture && known->texture == look.texture) {
            return index;
        }
    }
    RyGltfMaterial material;
    material.name = look.name;
    material.baseColor = look.baseColor;
    material.baseColorTexture = imageOf(look);
    material.doubleSided = look.doubleSided;
    ofName.emplace_back(&look, m_document.addMaterial(material));
    return ofName.back().second;
}
