#pragma once

#include "rycore/viewport/drawing/RySceneView.h"

#include <memory>

class RyFramebuffer;
class RyShader;

/// What lies behind the figures: a soft gradient and the grid of the ground. Keeps its picture while the view stays.
class RyBackdrop
{
public:
    RyBackdrop();
    /// Makes no GL call: `release` with the context current comes first, or `abandon`.
    ~RyBackdrop();

    /// The picture for a view, opaque. May leave another frame buffer bound.
    const RyFramebuffer &picture(const RySceneView &view);
    void release();
    void abandon();

private:
    void draw(const RySceneView &view);
    void drawGradient(const RySceneView &view);
    void drawGrid(const RySceneView &view);

    std::unique_ptr<RyShader> m_gradient;
    std::unique_ptr<RyShader> m_grid;
    std::unique_ptr<RyFramebuffer> m_picture;
    RySceneView m_view; // of the picture
};
