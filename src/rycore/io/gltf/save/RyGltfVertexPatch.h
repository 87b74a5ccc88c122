#pragma once

#include "rycore/math/RyAffine.h"

#include <map>
#include <vector>

class RyFacetMesh;
class RyGltfDocument;
struct RyMeshPart;

/// Writes vertices of the scene that are not where the file has them, and the normals around them, into primitives of a
/// document. All others stay as they are.
class RyGltfVertexPatch
{
public:
    /// `toFigure`: from the mesh space of the primitives to figure space in centimetres.
    RyGltfVertexPatch(RyGltfDocument &document, const RyFacetMesh &mesh, const RyAffine &toFigure);

    void write(int mesh, int primitive, const RyMeshPart &part);

private:
    std::vector<float> normalsNow(const std::vector<float> &before, const std::vector<float> &points,
                                  const std::vector<bool> &isOther, const RyMeshPart &part) const;

    RyGltfDocument &m_document;
    const RyFacetMesh &m_mesh;
    RyAffine m_toFigure;
    RyAffine m_toMesh;
    std::map<int, int> m_written; // accessors that primitives share
};
