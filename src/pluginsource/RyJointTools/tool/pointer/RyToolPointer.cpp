#include "pluginsource/RyJointTools/tool/pointer/RyToolPointer.h"

#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"
#include "pluginsource/RyJointTools/tool/display/RyJointToolDisplay.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/makeDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyBoneIndex.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/joint/RyToolOptions.h"

#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyGLUtility.h"
#include "rycore/viewport/RyPickTool.h"

#include <QMouseEvent>

RyToolPointer::RyToolPointer(const Surroundings &surroundings) : m_in(surroundings) {}

RyToolPointer::~RyToolPointer() = default;

Ry3DViewport *RyToolPointer::pressViewport() const
{
    return m_pressViewport;
}

void RyToolPointer::setHoveredId(int id)
{
    if (m_hoveredId == id)
        return;
    m_hoveredId = id;
    m_in.tool.drawnDataChanged();
    emit m_in.tool.statusTextChanged();
}

void RyToolPointer::hideToolTip()
{
    if (m_toolTipViewport)
        m_toolTipViewport->setToolTipText(QString());
    m_toolTipViewport = nullptr;
}

void RyToolPointer::finish()
{
    // Who hears of the end of the edit may end the drag as well.
    const std::unique_ptr<RyHandleDrag> drag = std::move(m_drag);
    if (!drag)
        return;
    if (m_dragging)
        drag->finish(tr("Joint Edit"));
    m_dragging = false;
    m_pressViewport = nullptr;
    hideToolTip();
    setHoveredId(HandleId::None);
}

void RyToolPointer::cancel()
{
    if (m_dragging)
        drop();
}

void RyToolPointer::drop()
{
    if (const std::unique_ptr<RyHandleDrag> drag = std::move(m_drag))
        drag->cancel();
    m_dragging = false;
    hideToolTip();
    setHoveredId(HandleId::None);
}

void RyToolPointer::abandon()
{
    m_drag.reset();
}

bool RyToolPointer::propagateOrigin(RyNode *node, const RyVec3 &newOrigin) const
{
    return m_drag && m_drag->propagateOrigin(node, newOrigin);
}

bool RyToolPointer::createsBones() const
{
    return !m_in.joint.param.get() && m_in.joint.node && m_in.options.boneCreation;
}

RyDragContext RyToolPointer::dragContext() const
{
    const RyJointState &joint = m_in.joint;
    const RyCamera *camera = m_pressViewport ? m_pressViewport->getCamera() : nullptr;
    return {joint.node, joint.param.get(), joint.editedPartner(), camera, m_in.setAngle};
}

RyLine3 RyToolPointer::pressViewportRay(const QPoint &point) const
{
    if (m_pressViewport)
        m_pressViewport->makeCurrent();
    return RyGLUtility::pixelToRay(point);
}

void RyToolPointer::hover(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    const int id = viewport->pickOnGizmo(event->pos());
    if (id == HandleId::None) {
        if (m_hoveredId != HandleId::None)
            viewport->setToolTipText(QString());
        setHoveredId(HandleId::None);
        viewport->setCursor(Qt::ArrowCursor);
        m_in.tool.RyPickTool::mouseOver(viewport, event, modifier);
        return;
    }
    if (id == m_hoveredId)
        return;
    m_in.tool.setHighlightNode(nullptr);
    if (const RyHandle *handle = RyHandleTable::find(id)) {
        viewport->setToolTipText(RyHandleTable::toolTip(*handle));
        m_toolTipViewport = viewport;
        viewport->setCursor(RyHandleTable::cursor(*handle, m_in.display.restrictRotationAxes));
    } else if (HandleId::isBone(id) && RyHandleTable::find(m_hoveredId)) {
        viewport->setToolTipText(QString());
    }
    setHoveredId(id);
}

void RyToolPointer::leave(Ry3DViewport *viewport)
{
    if (!m_drag && m_hoveredId != HandleId::None) {
        viewport->setToolTipText(QString());
        setHoveredId(HandleId::None);
    }
    m_in.tool.RyPickTool::mouseLeave(viewport);
}

bool RyToolPointer::pressRight(QMouseEvent *event)
{
    if (m_dragging) {
        drop();
        event->accept();
    }
    return false;
}

bool RyToolPointer::press(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    const int id = viewport->pickOnGizmo(event->pos());
    if (event->button() == Qt::RightButton)
        return pressRight(event);
    if (m_dragging) {
        // One step is open, and the button that began it ends it.
        event->accept();
        return true;
    }
    m_drag.reset();
    m_pressCameraRotation = viewport->getCamera() ? viewport->getCamera()->getWSRot() : RyQuat();
    m_pressViewport = viewport;

    RyNode *node = m_in.joint.node;
    if (createsBones() && modifier == RyViewMouseModifier::Control) {
        if (!putClipAway())
            createBone(event->pos());
    } else if (node && HandleId::isBone(id)) {
        selectBone(id, modifier);
    } else {
        setHoveredId(id);
        if (!node || id == HandleId::None)
            return m_in.tool.RyPickTool::mousePress(viewport, event, modifier);
        if (!putClipAway())
            startDrag(id, event->pos());
    }
    event->accept();
    return true;
}

/// What stands elsewhere in the pose must not be dragged from where a clip showed it: the press is used up.
bool RyToolPointer::putClipAway()
{
    RyClipPlayer &player = *ryScene()->getClipPlayer();
    if (!player.isShowing())
        return false;
    player.stop();
    setHoveredId(HandleId::None);
    return true;
}

void RyToolPointer::createBone(const QPoint &point)
{
    // The handle that happens to be under the mouse must not be dragged by what follows.
    setHoveredId(HandleId::None);
    if (m_pressViewport->getCamera())
        createBoneAtClick(m_in.joint.node, pressViewportRay(point), m_pressCameraRotation);
}

void RyToolPointer::startDrag(int id, const QPoint &point)
{
    m_drag = makeDrag(RyHandleTable::find(id), dragContext());
    m_drag->press(pressViewportRay(point));
    if (m_drag->pointsAtEye() || isRestricted(RyHandleTable::find(id)))
        emit m_in.tool.statusTextChanged();
}

void RyToolPointer::selectBone(int id, RyViewMouseModifier modifier)
{
    // A slip of the mouse on a bone must not become a drag.
    setHoveredId(HandleId::None);
    const RyNode *node = m_in.joint.node;
    RyBone *bone = m_in.bones.boneAt(HandleId::toBoneIndex(id), node->getSkeleton());
    if (!bone || bone == node)
        return;
    if (modifier != RyViewMouseModifier::Control)
        ryScene()->selectAllNodes(false);
    bone->select(true);
}

bool RyToolPointer::move(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    if (m_hoveredId == HandleId::None)
        return m_in.tool.RyPickTool::mouseMove(viewport, event, modifier);
    if (!m_drag)
        m_drag = makeDrag(nullptr, dragContext());
    if (!m_dragging) {
        m_dragging = true;
        emit m_in.tool.statusTextChanged();
    }
    RyHandleDrag::Options options;
    options.keepLength = event->modifiers().testFlag(Qt::ControlModifier);
    options.propagate = m_in.options.propagateTranslation && !ryScene()->isInRiggingEdit();
    options.isAligned = m_in.options.autoAlign;
    options.restrictAxes = m_in.display.restrictRotationAxes;
    m_drag->move(pressViewportRay(event->pos()), options);
    m_in.tool.drawnDataChanged();
    event->accept();
    return true;
}

bool RyToolPointer::release(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    if (!m_drag && m_hoveredId == HandleId::None) {
        m_pressViewport = nullptr;
        return m_in.tool.RyPickTool::mouseRelease(viewport, event, modifier);
    }
    endPress();
    return true;
}

void RyToolPointer::endPress()
{
    m_pressViewport = nullptr;
    finish();
    hideToolTip();
    setHoveredId(HandleId::None);
}

bool RyToolPointer::isRestricted(const RyHandle *handle) const
{
    return handle && handle->kind == RyHandle::Ring && m_in.display.restrictRotationAxes;
}

/// Why a handle does not move.
QString RyToolPointer::stillText(const RyHandle *handle) const
{
    if (isRestricted(handle))
        return tr("This handle turns nothing while rotation axes are restricted; type the angle instead");
    const bool isInPlane = handle && (handle->kind == RyHandle::Ring || handle->kind == RyHandle::AngleRay);
    return isInPlane ? tr("This handle turns in a plane seen from its edge and moves nothing; turn the view")
                     : tr("This axis points at the eye and moves nothing; turn the view");
}

QString RyToolPointer::statusText() const
{
    const RyNode *node = m_in.joint.node;
    const RyHandle *handle = node ? RyHandleTable::find(m_hoveredId) : nullptr;
    const QString handleText = handle ? RyHandleTable::statusText(*handle, node->getLabel()) : QString();
    const QString pressedText =
        m_drag && (isRestricted(handle) || m_drag->pointsAtEye()) ? stillText(handle) : handleText;
    if (m_dragging && node)
        return handle ? tr("%1; right click or Esc cancels").arg(pressedText) : QString();
    QStringList hints;
    if (handle) {
        hints.append(pressedText);
    } else {
        const RyNode *under = node && HandleId::isBone(m_hoveredId)
                                  ? m_in.bones.boneAt(HandleId::toBoneIndex(m_hoveredId), node->getSkeleton())
                                  : m_in.tool.getHighlightNode();
        if (under && under != node)
            hints.append(RyHandleTable::boneStatusText(under->getLabel(), createsBones()));
    }
    if (createsBones())
        hints.append(tr("Ctrl+click creates a child bone of %1").arg(node->getLabel()));
    return hints.join(QStringLiteral("; "));
}
