#include "ryhost/look/WheelGuard.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QScrollBar>

/// Null for what the wheel does not change.
static QWidget *fieldOf(QObject *object)
{
    const bool isField = qobject_cast<QComboBox *>(object) || qobject_cast<QAbstractSpinBox *>(object) ||
                         (qobject_cast<QAbstractSlider *>(object) && !qobject_cast<QScrollBar *>(object));
    return isField ? static_cast<QWidget *>(object) : nullptr;
}

bool WheelGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Polish) {
        // The wheel alone would give it the focus.
        QWidget *field = fieldOf(watched);
        if (field && field->focusPolicy() == Qt::WheelFocus)
            field->setFocusPolicy(Qt::StrongFocus);
    } else if (event->type() == QEvent::Wheel) {
        const QWidget *field = fieldOf(watched);
        if (field && !field->hasFocus()) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
