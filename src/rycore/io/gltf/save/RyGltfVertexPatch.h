#pragma once

#include "rycore/math/RyAffine.h"

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

    struct Part
    {
        int mesh = -1;
        int primitive = -1;
        const RyMeshPart *source = nullptr;
    };
    /// Each primitive once. Those that share accessors go on doing so where they say the same of the vertices.
    void write(const std::vector<Part> &parts);

private:
    /// Primitives with the same accessor whose split vertices are the same vertices of the scene.
    struct Sharers
    {
        int accessor = -1;
        std::vector<Part> parts;
    };
    std::vector<Sharers> sharersOf(const std::vector<Part> &parts, const char *attribute) const;
    void writePositions(const Sharers &sharers);
    void writeNormals(const Sharers &sharers, const std::vector<float> &points, const std::vector<bool> &isOther);
    void replace(const Sharers &sharers, const char *attribute, const std::vector<float> &values);

    RyGltfDocument &m_document;
    const RyFacetMesh &m_mesh;
    RyAffine m_toFigure;
    RyAffine m_toMesh;
};
