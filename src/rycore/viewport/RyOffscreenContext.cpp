#include "rycore/viewport/RyOffscreenContext.h"

#include <QOpenGLContext>

#include <EGL/egl.h>
#include <EGL/eglext.h>

RyOffscreenContext &RyOffscreenContext::instance()
{
    static RyOffscreenContext context;
    return context;
}

RyOffscreenContext::RyOffscreenContext()
{
    EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY)
        display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    EGLint major = 0;
    EGLint minor = 0;
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, &major, &minor) || !eglBindAPI(EGL_OPENGL_API))
        return;
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint found = 0;
    if (!eglChooseConfig(display, wanted, &config, 1, &found) || found == 0)
        return;
    m_display = display;
    m_context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
}

RyOffscreenContext::~RyOffscreenContext()
{
    if (!m_context)
        return;
    doneCurrent();
    eglDestroyContext(m_display, m_context);
}

bool RyOffscreenContext::makeCurrent()
{
    if (!m_context)
        return false;
    if (isCurrent())
        return true;
    if (QOpenGLContext *other = QOpenGLContext::currentContext())
        other->doneCurrent();
    eglBindAPI(EGL_OPENGL_API);
    return eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context);
}

void RyOffscreenContext::doneCurrent()
{
    if (isCurrent())
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

bool RyOffscreenContext::isCurrent() const
{
    return m_context && eglGetCurrentContext() == m_context;
}
