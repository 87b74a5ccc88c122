#pragma once

#include "rycore/viewport/RyOffscreenContext.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

/// What a benchmark that draws without a window begins with. Arguments: --short, or a number.
class RyOffscreenProgram
{
public:
    RyOffscreenProgram(int &argc, char **argv)
        : isShort(argc > 1 && qstrcmp(argv[1], "--short") == 0), m_number(argc > 1 && !isShort ? argv[1] : nullptr),
          m_application(withPlatform(argc), argv)
    {}

    /// False, and says so, where there is no OpenGL.
    bool canDraw() const
    {
        const bool isCurrent = RyOffscreenContext::instance().makeCurrent();
        if (!isCurrent)
            std::puts("no OpenGL here");
        return isCurrent;
    }
    /// The number that was given, or else one of these.
    int number(int few, int usual) const { return isShort ? few : m_number ? std::atoi(m_number) : usual; }

    const bool isShort;

private:
    static int &withPlatform(int &argc)
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return argc;
    }

    const char *m_number;
    QApplication m_application;
};
