#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/makeDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/viewport/RyGLUtility.h"

#include <QMouseEvent>

// What the mouse does: hover, press, drag, release.

void RyJointEditorTool::setHoveredId(int id)
{
    if (m_hoveredId == id)
        return;
    m_hoveredId = id;
    drawnDataChanged();
    emit statusTextChanged();
}

void RyJointEditorTool::hideToolTip()
{
    if (m_toolTipViewport)
        m_toolTipViewport->setToolTipText(QString());
    m_toolTipViewport = nullptr;
}

void RyJointEditorTool::finishDrag()
{
    if (!m_drag)
        return;
    if (m_dragging)
        m_drag->finish(tr("Joint Edit"));
    m_drag.reset();
    m_dragging = false;
    m_frame.pressViewport = nullptr;
    hideToolTip();
    setHoveredId(HandleId::None);
}

void RyJointEditorTool::cancelDrag()
{
    if (m_dragging)
        dropDrag();
}

void RyJointEditorTool::dropDrag()
{
    if (m_drag)
        m_drag->cancel();
    m_drag.reset();
    m_dragging = false;
    hideToolTip();
    setHoveredId(HandleId::None);
}

RyLine3 RyJointEditorTool::pressViewportRay(const QPoint &point) const
{
    if (m_frame.pressViewport)
        m_frame.pressViewport->makeCurrent();
    return RyGLUtility::pixelToRay(point);
}

void RyJointEditorTool::mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    // No button is held, so the release was lost, as to a window that came up in the middle of the drag.
    finishDrag();
    const int id = viewport->pickOnGizmo(event->pos());
    if (id == HandleId::None) {
        if (m_hoveredId != HandleId::None)
            viewport->setToolTipText(QString());
        setHoveredId(HandleId::None);
        viewport->setCursor(Qt::ArrowCursor);
        RyPickTool::mouseOver(viewport, event, modifier);
        return;
    }
    if (id == m_hoveredId)
        return;
    setHighlightNode(nullptr);
    if (const RyHandle *handle = RyHandleTable::find(id)) {
        viewport->setToolTipText(RyHandleTable::toolTip(*handle));
        m_toolTipViewport = viewport;
        viewport->setCursor(RyHandleTable::cursor(*handle, m_display.restrictRotationAxes));
    } else if (HandleId::isBone(id) && RyHandleTable::find(m_hoveredId)) {
        viewport->setToolTipText(QString());
    }
    setHoveredId(id);
}

void RyJointEditorTool::mouseLeave(Ry3DViewport *viewport)
{
    if (!m_drag && m_hoveredId != HandleId::None) {
        viewport->setToolTipText(QString());
        setHoveredId(HandleId::None);
    }
    RyPickTool::mouseLeave(viewport);
}

bool RyJointEditorTool::mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    const int id = viewport->pickOnGizmo(event->pos());
    if (event->button() == Qt::RightButton) {
        if (m_dragging) {
            dropDrag();
            event->accept();
        }
        return false;
    }
    // Pressed again before it was released: the release was lost.
    if (event->button() == Qt::LeftButton)
        finishDrag();
    if (m_dragging) {
        // One step is open, and the button that began it ends it.
        event->accept();
        return true;
    }
    m_drag.reset();
    m_frame.pressCameraRotation = viewport->getCamera() ? viewport->getCamera()->getWSRot() : RyQuat();
    m_frame.pressViewport = viewport;

    if (createsBones() && modifier == RyViewMouseModifier::Control) {
        // The handle that happens to be under the mouse must not be dragged by what follows.
        setHoveredId(HandleId::None);
        if (viewport->getCamera())
            createBoneAtClick(m_node, pressViewportRay(event->pos()), m_frame.pressCameraRotation);
        event->accept();
        return true;
    }

    if (!m_node || !HandleId::isBone(id)) {
        setHoveredId(id);
        if (!m_node || id == HandleId::None)
            return RyPickTool::mousePress(viewport, event, modifier);
        m_drag = makeDrag(RyHandleTable::find(id), m_node, m_frame);
        m_frame.pressVector = m_frame.currentVector = m_drag->dragVector(pressViewportRay(event->pos()));
        event->accept();
        return true;
    }

    // A slip of the mouse on a bone must not become a drag.
    setHoveredId(HandleId::None);
    RyBone *bone = m_bones.boneAt(HandleId::toBoneIndex(id), m_node->getSkeleton());
    if (bone && bone != m_node) {
        if (modifier != RyViewMouseModifier::Control)
            ryScene()->selectAllNodes(false);
        bone->select(true);
    }
    event->accept();
    return true;
}

bool RyJointEditorTool::mouseMove(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    if (m_hoveredId == HandleId::None)
        return RyPickTool::mouseMove(viewport, event, modifier);
    if (!m_drag)
        m_drag = makeDrag(nullptr, m_node, m_frame);
    if (!m_dragging) {
        m_dragging = true;
        emit statusTextChanged();
    }
    m_drag->open();
    m_frame.currentVector = m_drag->dragVector(pressViewportRay(event->pos()));
    RyHandleDrag::Options options;
    options.keepLength = event->modifiers().testFlag(Qt::ControlModifier);
    options.propagate = m_propagateTranslation;
    m_drag->apply(m_frame.pressVector, m_frame.currentVector, options);
    drawnDataChanged();
    event->accept();
    return true;
}

bool RyJointEditorTool::mouseRelease(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    m_frame.pressViewport = nullptr;
    if (!m_drag && m_hoveredId == HandleId::None)
        return RyPickTool::mouseRelease(viewport, event, modifier);
    finishDrag();
    hideToolTip();
    setHoveredId(HandleId::None);
    return true;
}
