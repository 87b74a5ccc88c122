#include "rycore/ui/RyPopUpWidget.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>

static constexpr int ClickTime = 100; // milliseconds until the press that took the keyboard away is known

RyPopUpWidget::RyPopUpWidget(QWidget *parent) : QFrame(parent, Qt::Tool | Qt::FramelessWindowHint)
{
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Plain);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &RyPopUpWidget::followFocus);
}

void RyPopUpWidget::positionPopUp(const QRect &anchor)
{
    m_anchor = anchor;
    adjustSize();
    const QScreen *screen = QGuiApplication::screenAt(anchor.center());
    const QRect room = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    const QSize size = this->size().boundedTo(room.size());
    QRect place(anchor.bottomLeft() + QPoint(0, 1), size);
    const bool fitsAbove = anchor.top() - size.height() >= room.top();
    if (place.bottom() > room.bottom() && fitsAbove)
        place.moveBottom(anchor.top() - 1);
    place.moveRight(qMin(place.right(), room.right()));
    place.moveBottom(qMin(place.bottom(), room.bottom()));
    place.moveLeft(qMax(place.left(), room.left()));
    place.moveTop(qMax(place.top(), room.top()));
    setGeometry(place);
}

void RyPopUpWidget::open(QWidget *focus)
{
    show();
    raise();
    activateWindow();
    focus->setFocus(Qt::PopupFocusReason);
}

bool RyPopUpWidget::isMouseOver() const
{
    return isVisible() && frameGeometry().contains(QCursor::pos());
}

void RyPopUpWidget::followFocus(const QWindow *focus)
{
    // A tool window counts as active while its parent is: only the keyboard tells that the user went elsewhere.
    const bool hadKeyboard = m_hasKeyboard;
    if (isHidden())
        return;
    m_hasKeyboard = focus && focus == windowHandle();
    if (!hadKeyboard || m_hasKeyboard)
        return;
    if (m_anchor.contains(QCursor::pos()))
        QTimer::singleShot(ClickTime, this, &RyPopUpWidget::hideWithoutFocus);
    else
        hide();
}

void RyPopUpWidget::hideWithoutFocus()
{
    if (QGuiApplication::mouseButtons() != Qt::NoButton)
        QTimer::singleShot(ClickTime, this, &RyPopUpWidget::hideWithoutFocus);
    else if (!m_hasKeyboard)
        hide();
}

void RyPopUpWidget::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        hide();
    else
        QFrame::keyPressEvent(event);
}

void RyPopUpWidget::leaveEvent(QEvent *event)
{
    QFrame::leaveEvent(event);
    emit mouseLeave();
}

void RyPopUpWidget::hideEvent(QHideEvent *event)
{
    // Window managers give the keyboard to whatever window they like best.
    if (m_hasKeyboard && parentWidget())
        parentWidget()->activateWindow();
    m_hasKeyboard = false;
    QFrame::hideEvent(event);
    emit closed();
}
