#pragma once

#include "rycore/viewport/RyRenderOptions.h"

#include <memory>
#include <unordered_map>

class RyObject;
class RyObjectDrawing;
class RyScene;
class RyShader;
class RyViewMatrices;

/// Draws a scene into the frame buffer that is bound in the current GL context: background, ground grid, shaded
/// objects. Keeps buffers and textures of one context; meeting another one it starts over.
class RySceneRenderer
{
public:
    RySceneRenderer();
    /// Makes no GL call: call `release` with the context current first, or let the names go with their context.
    ~RySceneRenderer();

    /// Objects are looked at again only when `dataRevision` differs from the last call's. The size is in device pixels.
    void render(const RyScene &scene, const RyViewMatrices &matrices, const RyRenderOptions &options, int width,
                int height, quint64 dataRevision);
    /// Deletes all GL names; their context is current.
    void release();
    /// How often positions of some object went to the graphics memory.
    int uploads() const;

private:
    void checkContext();
    void abandon();
    void updateObjects(const RyScene &scene, quint64 dataRevision);
    void drawBackground(const RyRenderOptions &options);
    void drawGrid(const RyViewMatrices &matrices, const RyRenderOptions &options);
    void drawAxes(const RyViewMatrices &matrices, const RyRenderOptions &options);
    void drawObjects(const RyScene &scene, const RyViewMatrices &matrices, const RyRenderOptions &options);

    quintptr m_context = 0;
    quint64 m_dataRevision = 0;
    int m_droppedUploads = 0;
    std::unique_ptr<RyShader> m_background;
    std::unique_ptr<RyShader> m_grid;
    std::unique_ptr<RyShader> m_surface;
    std::unordered_map<const RyObject *, std::unique_ptr<RyObjectDrawing>> m_objects;
};
