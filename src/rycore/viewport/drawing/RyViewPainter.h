#pragma once

#include "rycore/viewport/drawing/RyScenePicture.h"

#include <functional>
#include <memory>

/// Paints frames of a view: the kept picture of the scene and over it whatever a tool draws anew each time.
class RyViewPainter
{
public:
    static constexpr int MostSamples = 4;
    /// What is drawn over the scene finds a cleared depth, or one of anything.
    enum class Depth { Cleared, Undefined };

    RyViewPainter();
    /// Makes no GL call: `release` with the context current comes first, or `abandon`.
    ~RyViewPainter();

    RyScenePicture &scene() { return m_scene; }
    const RyScenePicture &scene() const { return m_scene; }
    /// Paints into the frame buffer that is bound, which has no samples of its own. `drawOver` finds the scene's
    /// colors, the depth that it asks for and the viewport of the whole view.
    void paint(const RySceneView &view, int samples, Depth depth, const std::function<void()> &drawOver);
    void release();
    void abandon();

private:
    RyScenePicture m_scene;
    std::unique_ptr<RyFramebuffer> m_frame; // with samples, made when first needed
};
