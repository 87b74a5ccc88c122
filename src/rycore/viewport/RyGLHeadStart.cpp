#include "rycore/viewport/RyGLHeadStart.h"

#include <QGuiApplication>
#include <QOpenGLContext>

#include <thread>

namespace {

std::jthread loading;
bool hasBegun = false;

} // namespace

void RyGLHeadStart::begin()
{
    // Other platforms make part of the first context with the thread of the window.
    if (hasBegun || QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    hasBegun = true;
    loading = std::jthread([] { QOpenGLContext().create(); });
}

void RyGLHeadStart::finish()
{
    if (isLoading())
        loading.join();
}

bool RyGLHeadStart::isLoading()
{
    return loading.joinable();
}
