#pragma once

#include "ryforeign/RyForeignInput.h"

#include <QHash>

#include <vector>

struct aiMaterial;
struct aiTexture;
class RyGltfDocument;

/// Writes the materials: name, colour, opacity, sides, and the picture of the colour where it is in the file or stands
/// beside it.
class RyForeignLooks
{
public:
    RyForeignLooks(const RyForeignInput &input, RyGltfDocument &document) : m_input(input), m_document(document) {}

    /// Materials of the document by the numbers of the file.
    std::vector<int> write();

private:
    int writeMaterial(const aiMaterial &source);
    int imageOf(const QString &name);
    int addPicture(const QString &name, QByteArray bytes);
    QByteArray embedded(const aiTexture &texture, const QString &name) const;
    QByteArray beside(const QString &name) const;
    void noteOtherMaps(const aiMaterial &source);

    const RyForeignInput &m_input;
    RyGltfDocument &m_document;
    QHash<QString, int> m_images; // by name
    QStringList m_otherMaps;
};
