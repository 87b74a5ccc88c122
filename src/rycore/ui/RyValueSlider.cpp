#include "rycore/ui/RyValueSlider.h"

#include "rycore/ui/RyNumberField.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

void RyValueSlider::setZeroPlace(int place)
{
    if (m_zeroPlace == place)
        return;
    m_zeroPlace = place;
    update();
}

void RyValueSlider::keyPressEvent(QKeyEvent *event)
{
    const double factor = RyNumberField::stepFactor(event->modifiers());
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        emit stepped(-factor);
        return;
    case Qt::Key_Right:
    case Qt::Key_Up:
        emit stepped(factor);
        return;
    case Qt::Key_PageDown:
        emit stepped(-10.0);
        return;
    case Qt::Key_PageUp:
        emit stepped(10.0);
        return;
    case Qt::Key_Delete:
        emit defaultAsked();
        return;
    default:
        QSlider::keyPressEvent(event);
    }
}

void RyValueSlider::wheelEvent(QWheelEvent *event)
{
    m_wheel += event->angleDelta().y();
    const int steps = m_wheel / QWheelEvent::DefaultDeltasPerStep;
    m_wheel -= steps * QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        emit stepped(steps * RyNumberField::stepFactor(event->modifiers()));
    event->accept();
}

void RyValueSlider::mousePressEvent(QMouseEvent *event)
{
    emit aboutToPress();
    QSlider::mousePressEvent(event);
}

void RyValueSlider::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
    event->accept();
}
