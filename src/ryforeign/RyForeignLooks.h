#pragma once

#include "ryforeign/RyForeignInput.h"

#include <QHash>
#include <QMap>

#include <vector>

struct aiMaterial;
struct aiTexture;
class RyGltfDocument;

/// Writes the materials: name, colour, opacity, sides, and the picture of the colour, with how it lies on the surface,
/// where it is in the file or stands beside it or in one of the folders where exporters put pictures.
class RyForeignLooks
{
public:
    RyForeignLooks(const RyForeignInput &input, RyGltfDocument &document) : m_input(input), m_document(document) {}

    /// Materials of the document by the numbers of the file.
    std::vector<int> write();

private:
    int writeMaterial(unsigned number);
    int imageOf(const QString &name);
    int addPicture(const QString &name, QByteArray bytes);
    bool hasRoomFor(const QString &name, qint64 size) const;
    QByteArray embedded(const aiTexture &texture, const QString &name) const;
    QByteArray beside(const QString &name) const;
    void placePicture(int material, unsigned number, const aiMaterial &source, int type);
    bool hasCoordinates(unsigned number, int set) const;
    void noteOtherMaps(const aiMaterial &source, int type);
    void noteRest();

    const RyForeignInput &m_input;
    RyGltfDocument &m_document;
    QHash<QString, int> m_images;   // by name
    QMap<QString, int> m_otherMaps; // how many materials have them
    int m_transparent = 0;          // materials that cannot be seen at all
    int m_turned = 0;               // pictures that lie turned on the surface
    int m_withoutCoordinates = 0;   // pictures whose coordinates a mesh lacks
    qint64 m_bytes = 0;             // of pictures so far
};
