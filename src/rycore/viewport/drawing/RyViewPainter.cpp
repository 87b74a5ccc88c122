#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyViewPainter.h"

#include "rycore/viewport/drawing/RyFramebuffer.h"

static constexpr GLuint windowBuffer = 0;

RyViewPainter::RyViewPainter() = default;

RyViewPainter::~RyViewPainter()
{
    abandon();
}

void RyViewPainter::release()
{
    m_scene.release();
    m_frame.reset();
}

void RyViewPainter::abandon()
{
    m_scene.abandon();
    if (m_frame)
        m_frame->abandon();
    m_frame.reset();
}

void RyViewPainter::paint(const RySceneView &view, int samples, Depth depth, const std::function<void()> &drawOver)
{
    GLint target = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &target);
    const RyFramebuffer &scene = m_scene.get(view, samples);
    if (samples > 1) {
        if (!m_frame || m_frame->width() != view.width || m_frame->height() != view.height)
            m_frame = RyFramebuffer::withSamples(view.width, view.height, samples);
        m_scene.copyInto(*m_frame);
        glViewport(0, 0, view.width, view.height);
    } else if (GLuint(target) == windowBuffer) {
        // A window lies the other way up. A blit turns the rows over by a shader, which a software renderer compiles
        // anew in each run; the one that draws a texture comes out of the cache.
        glBindFramebuffer(GL_FRAMEBUFFER, windowBuffer);
        glViewport(0, 0, view.width, view.height);
        m_scene.drawCopy();
    } else {
        scene.resolveInto(GLuint(target));
        glViewport(0, 0, view.width, view.height);
    }
    if (depth == Depth::Cleared) {
        glDepthMask(GL_TRUE);
        glClear(GL_DEPTH_BUFFER_BIT);
    }
    drawOver();
    if (samples > 1)
        m_frame->resolveInto(GLuint(target));
}
