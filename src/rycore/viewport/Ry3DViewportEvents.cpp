#include "rycore/viewport/RyViewportPrivate.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/RyViewTool.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <cmath>

namespace {

/// The node that an arrow key leads to, null where there is none.
RyNode *neighbourNode(const RyNode *node, int key)
{
    RyNode *parent = node->getNodeParent();
    if (key == Qt::Key_Up)
        return parent;
    if (key == Qt::Key_Down)
        return node->getNodeChild(0);
    if (!parent)
        return nullptr;
    const int count = parent->getNumNodeChildren();
    for (int i = 0; i < count; ++i) {
        if (parent->getNodeChild(i) == node)
            return parent->getNodeChild((i + (key == Qt::Key_Right ? 1 : count - 1)) % count);
    }
    return nullptr;
}

} // namespace

bool Ry3DViewport::beginViewDrag(QMouseEvent *event)
{
    const bool alt = event->modifiers() & Qt::AltModifier;
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    using Drag = Private::ViewDrag;
    Drag drag = Drag::None;
    if (event->button() == Qt::MiddleButton)
        drag = alt || shift ? Drag::Pan : Drag::Orbit;
    else if (alt && event->button() == Qt::LeftButton)
        drag = Drag::Orbit;
    else if (alt && event->button() == Qt::RightButton)
        drag = Drag::Zoom;
    if (drag == Drag::None || d->toolDrag)
        return drag != Drag::None && event->button() == Qt::MiddleButton;
    d->viewDrag = drag;
    d->viewDragButton = event->button();
    return true;
}

void Ry3DViewport::mousePressEvent(QMouseEvent *event)
{
    if (d->manager)
        d->manager->setActiveViewport(this);
    d->lastMouse = d->pressMouse = event->pos();
    d->menuPending = false;
    if (d->viewDrag != Private::ViewDrag::None || beginViewDrag(event))
        return;
    RyViewTool *tool = d->tool();
    if (event->button() == Qt::RightButton) {
        // The tool comes first: in the middle of a drag it cancels, and says so by accepting the event.
        event->ignore();
        if (tool) {
            makeCurrent();
            tool->mousePress(this, event, ryViewMouseModifier(event->modifiers()));
        }
        d->menuPending = !event->isAccepted() && !d->toolDrag;
        event->accept();
        return;
    }
    if (!tool || event->button() != Qt::LeftButton)
        return;
    endLostDrag();
    d->toolDrag = true;
    d->restorePoint.reset();
    d->restorePoint = std::make_unique<RyPressRestorePoint>(d->scene(), tool->objectName());
    makeCurrent();
    tool->mousePress(this, event, ryViewMouseModifier(event->modifiers()));
    if (d->restorePoint) // a message box of the tool may have let the release through
        d->restorePoint->pressed();
    event->accept();
}

void Ry3DViewport::mouseMoveEvent(QMouseEvent *event)
{
    if (d->menuPending && (event->pos() - d->pressMouse).manhattanLength() >= QApplication::startDragDistance())
        d->menuPending = false;
    if (d->viewDrag != Private::ViewDrag::None) {
        moveView(event);
        d->lastMouse = event->pos();
        return;
    }
    if (!(event->buttons() & Qt::LeftButton))
        endLostDrag();
    d->lastMouse = event->pos();
    if (event->buttons() == Qt::NoButton) {
        deliverHover(event);
    } else if (RyViewTool *tool = d->tool(); tool && d->toolDrag) {
        makeCurrent();
        tool->mouseMove(this, event, ryViewMouseModifier(event->modifiers()));
    }
    event->accept();
}

void Ry3DViewport::deliverHover(QMouseEvent *event)
{
    RyViewTool *tool = d->tool();
    if (!tool)
        return;
    d->isUnderCursor = true;
    d->manager->beginHover();
    tool->mouseOver(this, event, ryViewMouseModifier(event->modifiers()));
    if (d->manager)
        d->manager->endHover();
}

void Ry3DViewport::hoverAgain()
{
    if (!d->isUnderCursor || d->toolDrag || d->viewDrag != Private::ViewDrag::None)
        return;
    QMouseEvent event(QEvent::MouseMove, d->lastMouse, mapToGlobal(d->lastMouse), Qt::NoButton, Qt::NoButton,
                      QApplication::keyboardModifiers());
    deliverHover(&event);
}

void Ry3DViewport::moveView(QMouseEvent *event)
{
    const QPointF delta = event->pos() - d->lastMouse;
    RyCameraController controller(d->camera);
    switch (d->viewDrag) {
    case Private::ViewDrag::Orbit:
        controller.orbit(delta);
        break;
    case Private::ViewDrag::Pan:
        controller.pan(delta, size());
        break;
    case Private::ViewDrag::Zoom:
        controller.zoom(std::pow(0.99, delta.x() - delta.y()), d->pressMouse, size());
        break;
    case Private::ViewDrag::None:
        break;
    }
}

void Ry3DViewport::mouseReleaseEvent(QMouseEvent *event)
{
    d->lastMouse = event->pos();
    if (d->viewDrag != Private::ViewDrag::None) {
        if (event->button() == d->viewDragButton)
            d->viewDrag = Private::ViewDrag::None;
        return;
    }
    if (event->button() == Qt::RightButton) {
        if (d->menuPending)
            emit contextMenuRequested(event->globalPos());
        d->menuPending = false;
        return;
    }
    if (event->button() != Qt::LeftButton || !d->toolDrag)
        return;
    d->toolDrag = false;
    if (RyViewTool *tool = d->tool()) {
        makeCurrent();
        tool->mouseRelease(this, event, ryViewMouseModifier(event->modifiers()));
    }
    d->restorePoint.reset();
    event->accept();
}

void Ry3DViewport::wheelEvent(QWheelEvent *event)
{
    double steps = event->angleDelta().y() / 120.0;
    if (steps == 0.0 && !event->pixelDelta().isNull())
        steps = event->pixelDelta().y() / 60.0;
    if (steps != 0.0)
        RyCameraController(d->camera).zoom(std::pow(0.88, steps), event->position(), size());
    event->accept();
}

void Ry3DViewport::leaveEvent(QEvent *event)
{
    setToolTipText(QString());
    d->isUnderCursor = false;
    if (RyViewTool *tool = d->tool(); tool && !d->toolDrag) {
        d->manager->beginHover();
        tool->mouseLeave(this);
        d->manager->endHover();
    }
    QGLWidget::leaveEvent(event);
}

void Ry3DViewport::endLostDrag()
{
    if (!d->toolDrag)
        return;
    QMouseEvent release(QEvent::MouseButtonRelease, d->lastMouse, mapToGlobal(d->lastMouse), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    mouseReleaseEvent(&release);
}

void Ry3DViewport::hideEvent(QHideEvent *event)
{
    endLostDrag();
    d->isUnderCursor = false;
    QGLWidget::hideEvent(event);
}

void Ry3DViewport::keyPressEvent(QKeyEvent *event)
{
    const bool keypad = event->modifiers() & Qt::KeypadModifier;
    const Qt::KeyboardModifiers others = event->modifiers() & ~Qt::KeypadModifier;
    if (others != Qt::NoModifier) {
        QGLWidget::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_F:
        frameNodes(true);
        return;
    case Qt::Key_A:
        frameNodes(false);
        return;
    case Qt::Key_Escape:
        if (RyViewTool *tool = d->tool(); tool && d->toolDrag)
            tool->cancelDrag();
        return;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (RyScene *scene = d->scene(); scene && !d->toolDrag && scene->getPrimarySelection()) {
            RyNode *next = neighbourNode(scene->getPrimarySelection(), event->key());
            if (next && next->isSelectable())
                scene->setSelection({next});
        }
        return;
    default:
        break;
    }
    if (keypad) {
        switch (event->key()) {
        case Qt::Key_1:
            setStandardView(StandardView::Front);
            return;
        case Qt::Key_3:
            setStandardView(StandardView::Side);
            return;
        case Qt::Key_7:
            setStandardView(StandardView::Top);
            return;
        case Qt::Key_5:
            RyCameraController(d->camera).setOrthographic(!d->camera->isOrthographic());
            return;
        default:
            break;
        }
    }
    QGLWidget::keyPressEvent(event);
}
