#pragma once

#include "rycore/math/RyMatrix4.h"

#include <memory>
#include <unordered_map>
#include <vector>

class RyObject;
class RyObjectDrawing;
class RyScene;
class RyShader;
struct RySceneView;

/// Draws the objects of a scene into the frame buffer that is bound. Keeps buffers and textures of one GL context.
class RySceneRenderer
{
public:
    RySceneRenderer();
    /// Makes no GL call: `release` with the context current comes first, or `abandon`.
    ~RySceneRenderer();

    /// Brings what is drawn up to date. The number that comes back is another one whenever objects look different from
    /// last time: which are shown and where, their shapes, materials and deformed positions. Nothing is looked at while
    /// `dataRevision` stays.
    quint64 update(const RyScene &scene, quint64 dataRevision);

    /// How far the drawing of surfaces has come.
    struct Progress
    {
        size_t object = 0;
        int triangle = 0;
    };
    /// Draws the next surfaces, about `mostTriangles` of them, over what lies in color and depth; to alpha goes how
    /// much of what is behind shows through. True when all are drawn.
    bool drawSurfaces(const RySceneView &view, Progress &progress, int mostTriangles);
    /// The edges of all facets.
    void drawEdges(const RySceneView &view) const;

    void release();
    /// Forgets the GL names without deleting them: their context is gone.
    void abandon();
    /// How often positions of some object went to the graphics memory.
    int uploads() const;

private:
    struct Drawn
    {
        RyMatrix4 map; // to the world
        RyObjectDrawing *drawing = nullptr;
        bool operator==(const Drawn &) const = default;
    };
    void forget();
    RyObjectDrawing &drawingOf(RyObject *object);

    quint64 m_dataRevision = 0;
    quint64 m_content = 0;
    int m_droppedUploads = 0;
    std::unique_ptr<RyShader> m_surface;
    std::unordered_map<const RyObject *, std::unique_ptr<RyObjectDrawing>> m_objects;
    std::vector<Drawn> m_drawn;
};
