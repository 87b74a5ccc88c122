#pragma once

#include "ryforeign/RyForeignInput.h"

#include <string>
#include <utility>
#include <vector>

struct aiMesh;
struct aiNode;
class RyForeignCorners;
class RyForeignInfluences;
class RyForeignSkin;
class RyGltfDocument;

/// Writes the meshes of one node as one mesh of a document, each as a primitive.
class RyForeignMeshWriter
{
public:
    /// `materials`: of the document, by the numbers of the file.
    RyForeignMeshWriter(const RyForeignInput &input, RyGltfDocument &document, const std::vector<int> &materials)
        : m_input(input), m_document(document), m_materials(materials)
    {}

    /// `skin`: null for meshes that none moves. Index of the mesh; -1 where there is no triangle.
    int write(const aiNode &node, const QString &name, const RyForeignSkin *skin);

    int lines = 0; // faces of less than three corners, which are left out

private:
    using Attributes = std::vector<std::pair<std::string, int>>;

    void addTriangles(const aiMesh &mesh, RyForeignCorners &corners);
    void noteStrangeNumbers(const aiMesh &mesh, const std::vector<std::uint32_t> &firsts, const QString &name) const;
    Attributes addAttributes(const aiMesh &mesh, const std::vector<std::uint32_t> &firsts) const;
    void addInfluences(const RyForeignInfluences &influences, const std::vector<std::uint32_t> &firsts,
                       size_t jointCount, Attributes &attributes);

    const RyForeignInput &m_input;
    RyGltfDocument &m_document;
    const std::vector<int> &m_materials;
    bool m_hasPolygons = false; // in any primitive of the mesh at hand
    std::vector<unsigned> m_triangles;
    std::vector<int> m_firstCorners, m_free;
};
