#pragma once

#include "rycore/viewport/drawing/RyBackdrop.h"
#include "rycore/viewport/drawing/RyPictureDrawing.h"
#include "rycore/viewport/drawing/RySceneRenderer.h"
#include "rycore/viewport/drawing/RySceneView.h"

#include <memory>

class RyFramebuffer;
class RyScene;

/// A picture of the scene without tools, kept until the scene would look different. Drawn with one sample it can be
/// refined later to more, a piece at a time.
class RyScenePicture
{
public:
    RyScenePicture();
    /// Makes no GL call: `release` with the context current comes first, or `abandon`.
    ~RyScenePicture();

    /// What there is to show; null for nothing but the backdrop. While `revision` stays the scene is the same.
    void setScene(const RyScene *scene, quint64 revision);
    /// The picture, with at least so many samples (0 or 1 for one). May leave another frame buffer bound.
    const RyFramebuffer &get(const RySceneView &view, int samples);
    /// Copies the picture that `get` gave into a frame buffer of its size, which is bound afterwards.
    void copyInto(const RyFramebuffer &target);
    /// Covers the viewport of the bound frame buffer with the picture that `get` gave.
    void drawCopy();
    /// Draws the next piece of a picture with more samples; true when the kept picture has them. Leaves another frame
    /// buffer bound.
    bool refine(const RySceneView &view, int samples);
    /// Whether the kept picture is of this view and the scene and has so many samples.
    bool has(const RySceneView &view, int samples) const;

    void release();
    void abandon();
    /// Pictures of a scene or view that was not kept.
    int paints() const { return m_paints; }
    /// Pictures of a kept one with more samples.
    int refinements() const { return m_refinements; }
    int uploads() const { return m_renderer.uploads(); }

private:
    /// What a picture was made from.
    struct Stamp
    {
        RySceneView view;
        quint64 content = 0; // 0 for no picture
        bool operator==(const Stamp &) const = default;
    };
    Stamp stampOf(const RySceneView &view) const { return {view, m_content}; }
    void reset();
    void begin(const RySceneView &view, const RyFramebuffer &target);
    bool drawSurfaces(const RySceneView &view, int mostTriangles);
    void finish(const RySceneView &view);
    const RyFramebuffer &draft(int samples);
    void fitTo(const RySceneView &view);

    RySceneRenderer m_renderer;
    RyBackdrop m_backdrop;
    RyPictureDrawing m_copying;
    std::unique_ptr<RyFramebuffer> m_picture; // resolved
    std::unique_ptr<RyFramebuffer> m_draft;   // with samples, made when first needed
    int m_draftSamples = 0;                   // asked for
    RySceneRenderer::Progress m_progress;
    quint64 m_content = 1;
    Stamp m_kept;
    int m_keptSamples = 0;
    Stamp m_refining; // what m_draft is becoming
    Stamp m_drafted;  // what m_draft is a whole picture of
    int m_paints = 0;
    int m_refinements = 0;
};
