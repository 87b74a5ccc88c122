#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <algorithm>
#include <utility>

RyFramebuffer::RyFramebuffer(int width, int height, int samples, Depth depth)
    : m_width(std::max(width, 1)), m_height(std::max(height, 1)), m_samples(samples > 1 ? samples : 0)
{
    GLint previous = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previous);
    glGenFramebuffers(1, &m_id);
    glBindFramebuffer(GL_FRAMEBUFFER, m_id);
    if (m_samples > 0) {
        glGenRenderbuffers(1, &m_colorBuffer);
        glBindRenderbuffer(GL_RENDERBUFFER, m_colorBuffer);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, m_samples, GL_RGBA8, m_width, m_height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_colorBuffer);
    } else {
        glGenTextures(1, &m_texture);
        glBindTexture(GL_TEXTURE_2D, m_texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, m_width, m_height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glBindTexture(GL_TEXTURE_2D, 0);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_texture, 0);
    }
    if (depth == WithDepth)
        addDepth();
    m_complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, GLuint(previous));
}

void RyFramebuffer::addDepth()
{
    glGenRenderbuffers(1, &m_depthBuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, m_depthBuffer);
    if (m_samples > 0)
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, m_samples, GL_DEPTH_COMPONENT24, m_width, m_height);
    else
        glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, m_width, m_height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, m_depthBuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
}

RyFramebuffer::~RyFramebuffer()
{
    if (m_id)
        glDeleteFramebuffers(1, &m_id);
    if (m_texture)
        glDeleteTextures(1, &m_texture);
    if (m_colorBuffer)
        glDeleteRenderbuffers(1, &m_colorBuffer);
    if (m_depthBuffer)
        glDeleteRenderbuffers(1, &m_depthBuffer);
}

std::unique_ptr<RyFramebuffer> RyFramebuffer::withSamples(int width, int height, int samples)
{
    auto buffer = std::make_unique<RyFramebuffer>(width, height, supportedSamples(samples));
    return buffer->isComplete() ? std::move(buffer) : std::make_unique<RyFramebuffer>(width, height, 0);
}

void RyFramebuffer::bind() const
{
    glBindFramebuffer(GL_FRAMEBUFFER, m_id);
}

void RyFramebuffer::resolveInto(const RyFramebuffer &target) const
{
    resolveInto(target.m_id);
}

void RyFramebuffer::resolveInto(unsigned target) const
{
    glBindFramebuffer(GL_READ_FRAMEBUFFER, m_id);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target);
    glBlitFramebuffer(0, 0, m_width, m_height, 0, 0, m_width, m_height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, target);
}

void RyFramebuffer::abandon()
{
    m_id = m_texture = m_colorBuffer = m_depthBuffer = 0;
}

QImage RyFramebuffer::toImage() const
{
    bind();
    QImage image(m_width, m_height, QImage::Format_RGBA8888);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, m_width, m_height, GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    return image.mirrored().convertToFormat(QImage::Format_RGB32);
}

int RyFramebuffer::supportedSamples(int wanted)
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return std::min(wanted, int(most));
}
