#include "ryhost/window/DialogPlaces.h"

#include "rycore/ui/RyBasicDialog.h"
#include "ryhost/window/WindowFit.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>

DialogPlaces::DialogPlaces(QWidget *window, const QWidget *view) : QObject(window), m_window(window), m_view(view)
{
    qApp->installEventFilter(this);
}

std::optional<QPoint> DialogPlaces::beside(const QSize &dialog, const QRect &view, const QRect &available)
{
    const int top =
        std::clamp(view.top(), available.top(), std::max(available.top(), available.bottom() + 1 - dialog.height()));
    if (view.right() + dialog.width() <= available.right())
        return QPoint(view.right() + 1, top);
    if (view.left() - dialog.width() >= available.left())
        return QPoint(view.left() - dialog.width(), top);
    return {};
}

void DialogPlaces::place(RyBasicDialog &dialog)
{
    const QScreen *screen = m_window->windowHandle() ? m_window->windowHandle()->screen() : nullptr;
    if (!screen || dialog.objectName().isEmpty())
        return;
    const QRect available = screen->availableGeometry();
    dialog.adjustSize();
    // It has no frame yet, and will have the one of the window.
    const QMargins frame = m_window->windowHandle()->frameMargins();
    const QSize size = QRect(QPoint(), dialog.size()).marginsAdded(frame).size();
    if (const auto chosen = m_chosen.constFind(dialog.objectName()); chosen != m_chosen.constEnd()) {
        const QRect wanted = QRect(*chosen, size).marginsRemoved(frame);
        dialog.move(WindowFit::fitted(wanted, frame, available).marginsAdded(frame).topLeft());
    } else if (const auto place = beside(size, QRect(m_view->mapToGlobal(QPoint()), m_view->size()), available)) {
        dialog.move(*place);
    }
    m_given[dialog.objectName()] = dialog.pos();
}

void DialogPlaces::remember(const RyBasicDialog &dialog)
{
    if (m_given.contains(dialog.objectName()) && m_given.value(dialog.objectName()) != dialog.pos())
        m_chosen[dialog.objectName()] = dialog.pos();
}

bool DialogPlaces::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
        auto *dialog = qobject_cast<RyBasicDialog *>(watched);
        if (dialog && dialog->parentWidget() && dialog->parentWidget()->window() == m_window && !event->spontaneous())
            event->type() == QEvent::Show ? place(*dialog) : remember(*dialog);
    }
    return QObject::eventFilter(watched, event);
}
