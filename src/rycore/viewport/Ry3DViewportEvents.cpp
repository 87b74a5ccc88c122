#include "rycore/viewport/RyViewportPrivate.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

void Ry3DViewport::mousePressEvent(QMouseEvent *event)
{
    d->input.press(event);
}

void Ry3DViewport::mouseMoveEvent(QMouseEvent *event)
{
    d->input.move(event);
}

void Ry3DViewport::mouseReleaseEvent(QMouseEvent *event)
{
    d->input.release(event);
}

void Ry3DViewport::wheelEvent(QWheelEvent *event)
{
    d->input.wheel(event);
}

void Ry3DViewport::leaveEvent(QEvent *event)
{
    d->input.leave();
    QGLWidget::leaveEvent(event);
}

void Ry3DViewport::hideEvent(QHideEvent *event)
{
    d->input.hide();
    QGLWidget::hideEvent(event);
}

void Ry3DViewport::keyPressEvent(QKeyEvent *event)
{
    if (!d->input.key(event))
        QGLWidget::keyPressEvent(event);
}
