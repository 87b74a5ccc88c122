#include "ryhost/window/WindowFit.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>

WindowFit::WindowFit(QWidget *window) : QObject(window), m_window(window)
{
    window->installEventFilter(this);
}

QRect WindowFit::fitted(const QRect &wanted, const QMargins &frame, const QRect &available)
{
    QRect outer = wanted.marginsAdded(frame);
    outer.setSize(outer.size().boundedTo(available.size()));
    outer.moveLeft(std::clamp(outer.left(), available.left(), available.right() + 1 - outer.width()));
    outer.moveTop(std::clamp(outer.top(), available.top(), available.bottom() + 1 - outer.height()));
    return outer.marginsRemoved(frame);
}

void WindowFit::fit()
{
    const QWindow *handle = m_window->windowHandle();
    if (!handle || !handle->screen() || (m_window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)))
        return;
    const QRect wanted = m_window->geometry();
    const QRect place = fitted(wanted, handle->frameMargins(), handle->screen()->availableGeometry());
    if (place != wanted)
        m_window->setGeometry(place);
}

bool WindowFit::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::Show) {
        fit();
        m_window->windowHandle()->installEventFilter(this);
    } else if (watched != m_window && event->type() == QEvent::Expose) {
        // By then a window manager has put the frame about it.
        watched->removeEventFilter(this);
        fit();
    }
    return QObject::eventFilter(watched, event);
}
