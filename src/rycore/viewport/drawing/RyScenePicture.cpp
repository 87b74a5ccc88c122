#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyScenePicture.h"

#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/ryDrawAxisCross.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int allTriangles = std::numeric_limits<int>::max();
/// What a software renderer draws in some 50 ms.
constexpr int trianglesOfAPiece = 60000;

} // namespace

RyScenePicture::RyScenePicture() = default;

RyScenePicture::~RyScenePicture()
{
    abandon();
}

void RyScenePicture::reset()
{
    m_picture.reset();
    m_draft.reset();
    m_kept = m_refining = m_drafted = Stamp();
    m_keptSamples = 0;
}

void RyScenePicture::release()
{
    m_renderer.release();
    m_backdrop.release();
    m_copying.release();
    reset();
}

void RyScenePicture::abandon()
{
    m_renderer.abandon();
    m_backdrop.abandon();
    m_copying.abandon();
    for (auto *buffer : {&m_picture, &m_draft}) {
        if (*buffer)
            (*buffer)->abandon();
    }
    reset();
}

void RyScenePicture::setScene(const RyScene *scene, quint64 revision)
{
    m_content = scene ? 1 + m_renderer.update(*scene, revision) : 1;
}

bool RyScenePicture::has(const RySceneView &view, int samples) const
{
    return m_kept == stampOf(view) && m_keptSamples >= std::max(samples, 1);
}

const RyFramebuffer &RyScenePicture::get(const RySceneView &view, int samples)
{
    if (has(view, samples))
        return *m_picture;
    ++(m_kept == stampOf(view) ? m_refinements : m_paints);
    fitTo(view);
    const RyFramebuffer &target = samples > 1 ? draft(samples) : *m_picture;
    m_kept = m_refining = Stamp();
    begin(view, target);
    drawSurfaces(view, allTriangles);
    finish(view);
    m_kept = stampOf(view);
    if (&target != m_picture.get()) {
        target.resolveInto(*m_picture);
        m_drafted = m_kept;
    }
    m_keptSamples = std::max(samples, 1);
    return *m_picture;
}

bool RyScenePicture::refine(const RySceneView &view, int samples)
{
    if (has(view, samples))
        return true;
    fitTo(view);
    const RyFramebuffer &target = draft(samples);
    if (m_refining != stampOf(view)) {
        begin(view, target);
        m_refining = stampOf(view);
    }
    target.bind();
    const bool isWhole = drawSurfaces(view, trianglesOfAPiece);
    if (!isWhole) {
        // Here and not with the last piece the time is to be spent.
        glFinish();
        return false;
    }
    finish(view);
    target.resolveInto(*m_picture);
    ++(m_kept == m_refining ? m_refinements : m_paints);
    m_kept = m_drafted = m_refining;
    m_keptSamples = samples;
    m_refining = Stamp();
    return true;
}

void RyScenePicture::copyInto(const RyFramebuffer &target)
{
    // Sample by sample where there are as many: that is a plain copy of memory.
    if (m_draft && m_drafted == m_kept && m_draft->samples() == target.samples()) {
        m_draft->resolveInto(target);
        return;
    }
    target.bind();
    glViewport(0, 0, target.width(), target.height());
    drawCopy();
}

void RyScenePicture::drawCopy()
{
    glDisable(GL_BLEND);
    m_copying.draw(m_picture->texture());
}

void RyScenePicture::fitTo(const RySceneView &view)
{
    if (m_picture && m_picture->width() == view.width && m_picture->height() == view.height)
        return;
    reset();
    m_picture = std::make_unique<RyFramebuffer>(view.width, view.height, 0);
}

const RyFramebuffer &RyScenePicture::draft(int samples)
{
    if (!m_draft || m_draftSamples != samples) {
        m_draftSamples = samples;
        m_draft = RyFramebuffer::withSamples(m_picture->width(), m_picture->height(), samples);
        m_refining = m_drafted = Stamp();
    }
    return *m_draft;
}

void RyScenePicture::begin(const RySceneView &view, const RyFramebuffer &target)
{
    const RyFramebuffer &backdrop = m_backdrop.picture(view);
    glViewport(0, 0, view.width, view.height);
    if (&target == m_draft.get())
        m_drafted = Stamp();
    if (target.samples() > 1) {
        target.bind();
        glDisable(GL_BLEND);
        m_copying.draw(backdrop.texture());
    } else {
        backdrop.resolveInto(target);
    }
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);
    m_progress = {};
}

bool RyScenePicture::drawSurfaces(const RySceneView &view, int mostTriangles)
{
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glViewport(0, 0, view.width, view.height);
    for (GLenum capability : {GL_SCISSOR_TEST, GL_CULL_FACE, GL_LIGHTING})
        glDisable(capability);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDepthMask(GL_TRUE);
    view.matrices.load();
    const bool isWhole = m_renderer.drawSurfaces(view, m_progress, mostTriangles);
    glPopAttrib();
    return isWhole;
}

void RyScenePicture::finish(const RySceneView &view)
{
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glViewport(0, 0, view.width, view.height);
    glDisable(GL_SCISSOR_TEST);
    if (view.options.seeThrough) {
        // Over each pixel of a surface as much of the backdrop as its alpha leaves. The picture is opaque after that.
        glEnable(GL_BLEND);
        glBlendFuncSeparate(GL_ONE_MINUS_DST_ALPHA, GL_DST_ALPHA, GL_ONE, GL_ZERO);
        m_copying.draw(m_backdrop.picture(view).texture());
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    view.matrices.load();
    if (view.options.wireframe)
        m_renderer.drawEdges(view);
    if (view.options.showAxes)
        ryDrawAxisCross(view.matrices, view.options.pixelRatio);
    glPopAttrib();
}
