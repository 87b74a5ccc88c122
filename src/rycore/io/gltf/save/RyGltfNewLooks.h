#pragma once

#include <QByteArray>
#include <QHash>

#include <vector>

class RyGltfDocument;
struct RyMaterialLook;

/// Materials and images of a document for looks of the scene; looks that are the same share one.
class RyGltfNewLooks
{
public:
    explicit RyGltfNewLooks(RyGltfDocument &document) : m_document(document) {}

    /// The material's index.
    int materialOf(const RyMaterialLook &look);

private:
    int imageOf(const RyMaterialLook &look);

    RyGltfDocument &m_document;
    QHash<QByteArray, int> m_images;                                                    // by their bytes
    QHash<QByteArray, std::vector<std::pair<const RyMaterialLook *, int>>> m_materials; // by name
};
