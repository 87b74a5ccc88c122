#include "rycore/automation/RyFocusEvents.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

void RyFocusEvents::enter(QWidget *widget)
{
    QFocusEvent event(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(widget, &event);
}

void RyFocusEvents::leave(QWidget *widget)
{
    QFocusEvent event(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(widget, &event);
}
