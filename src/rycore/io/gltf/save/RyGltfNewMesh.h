#pragma once

#include "rycore/io/RyPartNormals.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/math/RyAffine.h"
#include "rycore/scene/RyMeshPart.h"

#include <QString>

#include <optional>

class RyFacetMesh;
class RyFacetShape;
class RyGltfDocument;
class RyGltfNewLooks;

/// Writes a mesh of the scene as a new mesh of a document: a primitive for each of its parts, with texture coordinates,
/// normals, material and influences. Polygons can be told from the triangles, and vertices come back as they are in
/// the scene: in their order, and apart where they lie at one place.
class RyGltfNewMesh
{
public:
    /// `toMesh`: figure space in centimetres to the mesh space of the file.
    RyGltfNewMesh(RyGltfDocument &document, RyGltfNewLooks &looks, const RyFacetShape &shape, const RyAffine &toMesh);

    /// `places`: of the influences' bones in the list of joints. The index of the mesh.
    int write(const QString &name, const RyGltfInfluences *influences = nullptr, const std::vector<int> &places = {});

private:
    /// One part of the whole mesh, for a shape that has none.
    void makePart();
    std::vector<RyVec3> normalsOf(const RyMeshPart &part) const;
    using Attributes = std::vector<std::pair<std::string, int>>;
    Attributes addAttributes(const RyMeshPart &part, const std::vector<RyVec3> &normals) const;
    void tagByPlace();
    void storeTags(int mesh, int primitive, const RyMeshPart &part, const RyGltfInfluences *influences) const;

    RyGltfDocument &m_document;
    RyGltfNewLooks &m_looks;
    const RyFacetShape &m_shape;
    RyAffine m_toMesh;
    std::optional<RyPartNormals> m_normals; // without parts of the shape's own: none
    std::shared_ptr<const RyMeshParts> m_parts;
    std::vector<RyVec3> m_points; // per vertex, in mesh space
    std::vector<int> m_tags;      // per vertex, how many before it lie at its place
};
