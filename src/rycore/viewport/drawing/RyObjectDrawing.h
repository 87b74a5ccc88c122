#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/viewport/drawing/RySplitMesh.h"

#include <QPointer>

#include <memory>
#include <vector>

class RyFacetMesh;
class RyObject;
class RyShader;
struct RyMeshParts;
struct RyShapePoints;

/// The buffers and textures of one object in one GL context. What its shape is made of is uploaded once, positions and
/// normals when the deformed points changed.
class RyObjectDrawing
{
public:
    explicit RyObjectDrawing(RyObject *object);
    ~RyObjectDrawing();
    RyObjectDrawing(const RyObjectDrawing &) = delete;
    RyObjectDrawing &operator=(const RyObjectDrawing &) = delete;

    RyObject *object() const { return m_object; }
    enum class Update {
        Nothing, // to be drawn
        Same,
        Changed
    };
    /// Looks at the object again; uploads only what differs.
    Update update();
    int triangleCount() const { return int(m_split.indices.size() / 3); }

    struct Range
    {
        int first = 0;
        int count = 0;
    };
    /// Draws some of the triangles with the surface shader in use. `clay` is the colour of what has none, in sRGB.
    void drawSurfaces(const RyShader &shader, const float clay[3], Range triangles) const;
    /// Edges of the facets with the current colour.
    void drawEdges() const;
    int uploads() const { return m_uploads; }
    void abandon();

private:
    void rebuild(RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts);
    void uploadTextures();
    void uploadPoints(const RyShapePoints &points);
    void deleteNames();
    void bindArrays() const;
    void releaseArrays() const;
    void setLook(const RyShader &shader, const float clay[3], int number) const;

    QPointer<RyObject> m_object;
    QPointer<RyFacetMesh> m_mesh;
    std::shared_ptr<const RyMeshParts> m_parts;
    quint64 m_meshRevision = 0;
    quint64 m_pointsRevision = 0;
    std::vector<RyVec3> m_positions; // as uploaded last, one per vertex
    RySplitMesh m_split;
    mutable std::vector<unsigned> m_edges; // pairs of mesh vertices, empty until they are drawn
    std::vector<unsigned> m_textures;      // one per look, 0 for none
    unsigned m_vertexBuffer = 0;
    unsigned m_uvBuffer = 0;
    unsigned m_indexBuffer = 0;
    int m_uploads = 0;
};
