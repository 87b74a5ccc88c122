#include "rycore/viewport/RyViewportInput.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyPressRestorePoint.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
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

RyViewportInput::RyViewportInput(Ry3DViewport &viewport) : m_viewport(viewport) {}

RyViewportInput::~RyViewportInput() = default;

RyViewTool *RyViewportInput::tool() const
{
    const RyViewportMgr *manager = m_viewport.getViewportMgr();
    return manager ? manager->getActiveTool() : nullptr;
}

RyScene *RyViewportInput::scene() const
{
    const RyViewportMgr *manager = m_viewport.getViewportMgr();
    return manager ? manager->getScene() : nullptr;
}

RyViewportInput::ViewDrag RyViewportInput::viewDragOf(const QMouseEvent &event)
{
    const bool alt = event.modifiers() & Qt::AltModifier;
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    if (event.button() == Qt::MiddleButton)
        return alt || shift ? ViewDrag::Pan : ViewDrag::Orbit;
    if (alt && event.button() == Qt::LeftButton)
        return ViewDrag::Orbit;
    if (alt && event.button() == Qt::RightButton)
        return ViewDrag::Zoom;
    return ViewDrag::None;
}

bool RyViewportInput::beginViewDrag(QMouseEvent *event)
{
    const ViewDrag drag = viewDragOf(*event);
    if (drag == ViewDrag::None)
        return false;
    if (m_toolDrag)
        return event->button() == Qt::MiddleButton;
    m_viewDrag = drag;
    m_viewDragButton = event->button();
    return true;
}

void RyViewportInput::press(QMouseEvent *event)
{
    if (RyViewportMgr *manager = m_viewport.getViewportMgr())
        manager->setActiveViewport(&m_viewport);
    m_lastPlace = m_pressPlace = event->pos();
    m_menuPending = false;
    if (m_viewDrag != ViewDrag::None || beginViewDrag(event))
        return;
    if (event->button() == Qt::RightButton)
        pressRight(event);
    else if (event->button() == Qt::LeftButton && tool())
        pressTool(event);
}

void RyViewportInput::pressRight(QMouseEvent *event)
{
    // The tool comes first: in the middle of a drag it cancels, and says so by accepting the event.
    event->ignore();
    if (RyViewTool *tool = this->tool()) {
        m_viewport.makeCurrent();
        tool->mousePress(&m_viewport, event, ryViewMouseModifier(event->modifiers()));
    }
    m_menuPending = !event->isAccepted() && !m_toolDrag;
    event->accept();
}

void RyViewportInput::pressTool(QMouseEvent *event)
{
    RyViewTool *tool = this->tool();
    endLostDrag();
    m_toolDrag = true;
    m_restorePoint.reset();
    m_restorePoint = std::make_unique<RyPressRestorePoint>(scene(), tool->objectName());
    m_viewport.makeCurrent();
    tool->mousePress(&m_viewport, event, ryViewMouseModifier(event->modifiers()));
    if (m_restorePoint) // a message box of the tool may have let the release through
        m_restorePoint->pressed();
    event->accept();
}

void RyViewportInput::move(QMouseEvent *event)
{
    if (m_menuPending && (event->pos() - m_pressPlace).manhattanLength() >= QApplication::startDragDistance())
        m_menuPending = false;
    if (m_viewDrag != ViewDrag::None) {
        moveView(event);
        m_lastPlace = event->pos();
        return;
    }
    if (!(event->buttons() & Qt::LeftButton))
        endLostDrag();
    m_lastPlace = event->pos();
    if (event->buttons() == Qt::NoButton) {
        deliverHover(event);
    } else if (RyViewTool *tool = this->tool(); tool && m_toolDrag) {
        m_viewport.makeCurrent();
        tool->mouseMove(&m_viewport, event, ryViewMouseModifier(event->modifiers()));
    }
    event->accept();
}

void RyViewportInput::deliverHover(QMouseEvent *event)
{
    RyViewTool *tool = this->tool();
    if (!tool)
        return;
    m_isUnderCursor = true;
    m_viewport.getViewportMgr()->beginHover();
    tool->mouseOver(&m_viewport, event, ryViewMouseModifier(event->modifiers()));
    if (RyViewportMgr *manager = m_viewport.getViewportMgr())
        manager->endHover();
}

void RyViewportInput::hoverAgain()
{
    if (!m_isUnderCursor || m_toolDrag || m_viewDrag != ViewDrag::None)
        return;
    QMouseEvent event(QEvent::MouseMove, m_lastPlace, m_viewport.mapToGlobal(m_lastPlace), Qt::NoButton, Qt::NoButton,
                      QApplication::keyboardModifiers());
    deliverHover(&event);
}

void RyViewportInput::moveView(QMouseEvent *event)
{
    const QPointF delta = event->pos() - m_lastPlace;
    RyCameraController controller = m_viewport.cameraController();
    switch (m_viewDrag) {
    case ViewDrag::Orbit:
        controller.orbit(delta);
        break;
    case ViewDrag::Pan:
        controller.pan(delta, m_viewport.size());
        break;
    case ViewDrag::Zoom:
        controller.zoom(std::pow(0.99, delta.x() - delta.y()), m_pressPlace, m_viewport.size());
        break;
    case ViewDrag::None:
        break;
    }
}

void RyViewportInput::release(QMouseEvent *event)
{
    m_lastPlace = event->pos();
    if (m_viewDrag != ViewDrag::None) {
        if (event->button() == m_viewDragButton)
            m_viewDrag = ViewDrag::None;
        return;
    }
    if (event->button() == Qt::RightButton) {
        if (m_menuPending)
            emit m_viewport.contextMenuRequested(event->globalPos());
        m_menuPending = false;
        return;
    }
    if (event->button() != Qt::LeftButton || !m_toolDrag)
        return;
    m_toolDrag = false;
    if (RyViewTool *tool = this->tool()) {
        m_viewport.makeCurrent();
        tool->mouseRelease(&m_viewport, event, ryViewMouseModifier(event->modifiers()));
    }
    m_restorePoint.reset();
    event->accept();
}

void RyViewportInput::endLostDrag()
{
    if (!m_toolDrag)
        return;
    m_toolDrag = false;
    if (RyViewTool *tool = this->tool()) {
        m_viewport.makeCurrent();
        tool->finishDrag();
    }
    m_restorePoint.reset();
}

void RyViewportInput::wheel(QWheelEvent *event)
{
    double steps = event->angleDelta().y() / 120.0;
    if (steps == 0.0 && !event->pixelDelta().isNull())
        steps = event->pixelDelta().y() / 60.0;
    if (steps != 0.0)
        m_viewport.cameraController().zoom(std::pow(0.88, steps), event->position(), m_viewport.size());
    event->accept();
}

void RyViewportInput::leave()
{
    m_viewport.setToolTipText(QString());
    m_isUnderCursor = false;
    if (RyViewTool *tool = this->tool(); tool && !m_toolDrag) {
        m_viewport.getViewportMgr()->beginHover();
        tool->mouseLeave(&m_viewport);
        m_viewport.getViewportMgr()->endHover();
    }
}

void RyViewportInput::hide()
{
    endLostDrag();
    m_isUnderCursor = false;
}

bool RyViewportInput::key(QKeyEvent *event)
{
    if ((event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    switch (event->key()) {
    case Qt::Key_F:
        m_viewport.frameNodes(true);
        return true;
    case Qt::Key_A:
        m_viewport.frameNodes(false);
        return true;
    case Qt::Key_Escape:
        if (RyViewTool *tool = this->tool(); tool && m_toolDrag)
            tool->cancelDrag();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
        walkSelection(event->key());
        return true;
    default:
        return event->modifiers().testFlag(Qt::KeypadModifier) && keypadKey(event->key());
    }
}

void RyViewportInput::walkSelection(int key)
{
    RyScene *scene = this->scene();
    if (!scene || m_toolDrag || !scene->getPrimarySelection())
        return;
    RyNode *next = neighbourNode(scene->getPrimarySelection(), key);
    if (next && next->isSelectable())
        scene->setSelection({next});
}

bool RyViewportInput::keypadKey(int key)
{
    switch (key) {
    case Qt::Key_1:
        m_viewport.setStandardView(Ry3DViewport::StandardView::Front);
        return true;
    case Qt::Key_3:
        m_viewport.setStandardView(Ry3DViewport::StandardView::Side);
        return true;
    case Qt::Key_7:
        m_viewport.setStandardView(Ry3DViewport::StandardView::Top);
        return true;
    case Qt::Key_5:
        m_viewport.cameraController().setOrthographic(!m_viewport.getCamera()->isOrthographic());
        return true;
    default:
        return false;
    }
}
