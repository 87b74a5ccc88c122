#pragma once

#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RyPictureDrawing.h"

#include <array>
#include <functional>
#include <memory>

/// A see-through picture of a surface in one GL context, laid over what is there: of what lies behind each other only
/// the nearest shows, through which the scene shines once. It is kept until it would look different.
class RyWeightPicture
{
public:
    RyWeightPicture();
    /// Makes no GL call; names are deleted with their context, not before.
    ~RyWeightPicture();

    /// With the matrices, the viewport and the samples of the bound frame buffer. `draw` is called for another picture
    /// than last time: `content` tells apart what it draws. It finds a depth of its own, and colours replace each
    /// other, whatever their alpha.
    void show(quint64 content, const std::function<void()> &draw);
    /// Gives the picture back; in its context.
    void release();
    int paints() const { return m_paints; }

private:
    struct Stamp
    {
        quint64 content = 0; // 0 for no picture
        std::array<float, 32> matrices{};
        std::array<int, 2> size{};
        int samples = 0;
        bool operator==(const Stamp &) const = default;
    };
    static Stamp stampOfContext(quint64 content);
    void fitTo(const Stamp &stamp);
    void paint(const std::function<void()> &draw);

    Stamp m_stamp;
    std::unique_ptr<RyFramebuffer> m_picture;
    std::unique_ptr<RyFramebuffer> m_canvas; // with samples, where there are some
    RyPictureDrawing m_laying;
    int m_paints = 0;
};
