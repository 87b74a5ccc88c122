#pragma once

#include "rycore/math/RyVec3.h"

#include <QPointer>

#include <memory>
#include <vector>

class RyFacetMesh;
class RyObject;
class RyShader;
struct RyMeshParts;

/// The buffers and textures of one object in one GL context. What its shape is made of is uploaded once, positions and
/// normals when the deformed positions changed.
class RyObjectDrawing
{
public:
    explicit RyObjectDrawing(RyObject *object);
    ~RyObjectDrawing();
    RyObjectDrawing(const RyObjectDrawing &) = delete;
    RyObjectDrawing &operator=(const RyObjectDrawing &) = delete;

    RyObject *object() const { return m_object; }
    /// Looks at the object again; uploads only what differs. False when there is nothing to draw.
    bool update();
    /// Draws all parts with the surface shader in use.
    void drawSurfaces(const RyShader &shader, const float clay[3]) const;
    /// Positions alone, no shader state touched.
    void drawDepth() const;
    /// Edges of the facets with the current colour.
    void drawEdges() const;
    int uploads() const { return m_uploads; }
    void abandon();

private:
    struct Run
    {
        int firstIndex = 0;
        int indexCount = 0;
        int look = -1;
    };
    void rebuild(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts);
    void uploadTextures();
    void uploadPositions(const std::vector<RyVec3> &positions);
    void deleteNames();
    void bindArrays() const;
    void releaseArrays() const;

    QPointer<RyObject> m_object;
    QPointer<RyFacetMesh> m_mesh;
    std::shared_ptr<const RyMeshParts> m_parts;
    int m_facetCount = -1;
    std::vector<RyVec3> m_positions; // as uploaded last, one per vertex
    std::vector<int> m_vertexOfSplit;
    std::vector<int> m_normalOfSplit;
    int m_normalCount = 0;
    std::vector<unsigned> m_indices; // corners as split vertices
    std::vector<unsigned> m_edges;   // pairs of mesh vertices
    std::vector<Run> m_runs;
    std::vector<unsigned> m_textures; // one per look, 0 for none
    unsigned m_vertexBuffer = 0;
    unsigned m_uvBuffer = 0;
    unsigned m_indexBuffer = 0;
    bool m_hasUvs = false;
    int m_uploads = 0;
};
