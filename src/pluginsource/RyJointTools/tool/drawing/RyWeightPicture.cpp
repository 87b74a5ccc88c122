#include "rycore/viewport/RyGL.h"

#include "pluginsource/RyJointTools/tool/drawing/RyWeightPicture.h"

RyWeightPicture::RyWeightPicture() = default;

RyWeightPicture::~RyWeightPicture()
{
    for (const auto &buffer : {m_picture.get(), m_canvas.get()}) {
        if (buffer)
            buffer->abandon();
    }
}

void RyWeightPicture::release()
{
    m_stamp = {};
    m_canvas.reset();
    m_picture.reset();
}

RyWeightPicture::Stamp RyWeightPicture::stampOfContext(quint64 content)
{
    Stamp stamp;
    stamp.content = content;
    glGetFloatv(GL_MODELVIEW_MATRIX, stamp.matrices.data());
    glGetFloatv(GL_PROJECTION_MATRIX, stamp.matrices.data() + 16);
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    stamp.size = {viewport[2], viewport[3]};
    glGetIntegerv(GL_SAMPLES, &stamp.samples);
    return stamp;
}

void RyWeightPicture::fitTo(const Stamp &stamp)
{
    if (m_picture && stamp.size == m_stamp.size && stamp.samples == m_stamp.samples)
        return;
    const auto [width, height] = stamp.size;
    const bool hasSamples = stamp.samples > 1;
    m_canvas = hasSamples ? RyFramebuffer::withSamples(width, height, stamp.samples) : nullptr;
    m_picture = std::make_unique<RyFramebuffer>(width, height, 0,
                                                hasSamples ? RyFramebuffer::ColorsOnly : RyFramebuffer::WithDepth);
}

void RyWeightPicture::paint(const std::function<void()> &draw)
{
    (m_canvas ? m_canvas : m_picture)->bind();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (GLenum capability : {GL_LIGHTING, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_TEXTURE_2D})
        glDisable(capability);
    glViewport(0, 0, m_picture->width(), m_picture->height());
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDisable(GL_BLEND);
    if (m_canvas) {
        // Where edges are smoothed, colours are multiplied by their alpha first, or they would get a dark fringe.
        glEnable(GL_BLEND);
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ZERO, GL_ONE, GL_ZERO);
    }
    draw();
    glPopAttrib();
    if (m_canvas)
        m_canvas->resolveInto(*m_picture);
    ++m_paints;
}

void RyWeightPicture::show(quint64 content, const std::function<void()> &draw)
{
    const Stamp stamp = stampOfContext(content);
    if (stamp != m_stamp) {
        GLint target = 0;
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &target);
        fitTo(stamp);
        paint(draw);
        glBindFramebuffer(GL_FRAMEBUFFER, GLuint(target));
        m_stamp = stamp;
    }
    glPushAttrib(GL_COLOR_BUFFER_BIT);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(m_canvas ? GL_ONE : GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    m_laying.draw(m_picture->texture());
    glPopAttrib();
}
