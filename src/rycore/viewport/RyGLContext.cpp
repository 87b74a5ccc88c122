#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyGLContext.h"

#include "rycore/viewport/RyOffscreenContext.h"

#include <QByteArray>
#include <QOpenGLContext>
#include <QVariant>

quint64 RyGLContext::currentNumber()
{
    static constexpr char name[] = "ryContextNumber";
    static constexpr quint64 offscreen = 1;
    static quint64 last = offscreen;
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (!context)
        return RyOffscreenContext::instance().isCurrent() ? offscreen : 0;
    const QVariant known = context->property(name);
    if (known.isValid())
        return known.toULongLong();
    context->setProperty(name, ++last);
    return last;
}

bool RyGLContext::isSoftware()
{
    const QByteArray renderer(reinterpret_cast<const char *>(glGetString(GL_RENDERER)));
    for (const char *name : {"llvmpipe", "softpipe", "swrast", "Software", "SWR"}) {
        if (renderer.contains(name))
            return true;
    }
    return false;
}
