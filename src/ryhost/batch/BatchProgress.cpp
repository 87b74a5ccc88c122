#include "ryhost/batch/BatchProgress.h"

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

/// A longer line would wrap, and only its last row could be written over.
int columns()
{
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

BatchProgress::BatchProgress()
    : m_isTerminal(::isatty(STDERR_FILENO) && qgetenv("TERM") != "dumb" && !qgetenv("TERM").isEmpty())
{}

BatchProgress::~BatchProgress()
{
    clear();
}

void BatchProgress::show(const QString &text)
{
    if (!m_isTerminal)
        return;
    QString line = text.simplified();
    if (line.size() >= columns())
        line = line.left(columns() - 2) + QChar(0x2026);
    std::fprintf(stderr, "\r\033[K%s", line.toLocal8Bit().constData());
    std::fflush(stderr);
    m_isShown = true;
}

void BatchProgress::clear()
{
    if (!m_isShown)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    m_isShown = false;
}
