#pragma once

#include <memory>

class RyShader;

/// Covers the viewport of the bound frame buffer with a texture.
class RyPictureDrawing
{
public:
    RyPictureDrawing();
    /// Makes no GL call: `release` with the context current comes first, or `abandon`.
    ~RyPictureDrawing();

    /// Through the blending that is set and without depth.
    void draw(unsigned texture);
    void release();
    void abandon();

private:
    std::unique_ptr<RyShader> m_shader; // made when first needed
};
