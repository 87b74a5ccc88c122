#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <QCoreApplication>
#include <QEvent>

// How the tool follows the selection and the rigging of its node.

static const QEvent::Type selectionEventType = QEvent::Type(QEvent::registerEventType(-1));

void RyJointEditorTool::activated()
{
    connect(ryScene(), SIGNAL(primarySelectionChanged(RyNode *)), this, SLOT(postSelectionChangeEvent()),
            Qt::UniqueConnection);
    updateSelection(ryScene()->getPrimarySelection());
    RyPickTool::activated();
}

void RyJointEditorTool::deactivated()
{
    dropDrag();
    disconnect(ryScene(), nullptr, this, nullptr);
    // An event that is already on its way would give the inactive tool a node.
    QCoreApplication::removePostedEvents(this, selectionEventType);
    m_selectionEventPending = false;
    updateSelection(nullptr);
    RyPickTool::deactivated();
}

void RyJointEditorTool::postSelectionChangeEvent()
{
    if (m_selectionEventPending)
        return;
    m_selectionEventPending = true;
    QCoreApplication::postEvent(this, new QEvent(selectionEventType));
}

bool RyJointEditorTool::event(QEvent *event)
{
    if (event->type() != selectionEventType)
        return QObject::event(event);
    updateSelection(ryScene()->getPrimarySelection());
    m_selectionEventPending = false;
    return true;
}

void RyJointEditorTool::connectNode(RyNode *node)
{
    connect(node, SIGNAL(aboutToBeRemoved()), this, SLOT(nodeRemoved()));
    for (RyFloatProperty *control : {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl()}) {
        if (control)
            connect(control, SIGNAL(currentValueChanged()), this, SLOT(centerPointChange()));
    }
    for (RyFloatProperty *control : {node->getEndXControl(), node->getEndYControl(), node->getEndZControl()}) {
        if (control)
            connect(control, SIGNAL(currentValueChanged()), this, SLOT(endPointChange()));
    }
}

void RyJointEditorTool::disconnectNode(RyNode *node)
{
    disconnect(node, nullptr, this, nullptr);
    for (RyFloatProperty *control : {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(),
                                     node->getEndXControl(), node->getEndYControl(), node->getEndZControl()}) {
        if (control)
            disconnect(control, nullptr, this, nullptr);
    }
}

void RyJointEditorTool::updateSelection(RyNode *node)
{
    if (node != m_node)
        finishDrag();
    if (m_node)
        disconnectNode(m_node);
    m_node = node;
    m_parent = node ? node->getNodeParent() : nullptr;
    emit nodeChanged(m_node);
    if (m_boneCreationActive)
        emit statusTextChanged();
    m_cachedOrigin = RyVec3();
    if (m_node) {
        connectNode(m_node);
        m_cachedOrigin = m_node->getOrigin();
    }
    setParam(nullptr);
    drawnDataChanged();
    emit statusTextChanged();
    hoverAgain();
}

// The host has no parametric joints yet: whatever is given is none of the current node's parameters and selects none,
// and as none is current nothing changes.
void RyJointEditorTool::setParam(RyLegacyJointParam *) {}

void RyJointEditorTool::updateParamConnections() {}

void RyJointEditorTool::removeParamConnections()
{
    m_angleA = m_angleB = m_angleC = m_angleD = 0.0f;
}

void RyJointEditorTool::dynamicMatrixChange()
{
    drawnDataChanged();
}

void RyJointEditorTool::staticMatrixChange()
{
    drawnDataChanged();
}

void RyJointEditorTool::validateAngleChange() {}

void RyJointEditorTool::nodeRemoved()
{
    // What was dragged so far is a step of its own: the node may go within a hold that was opened later.
    finishDrag();
    const bool hadText = !getStatusText().isEmpty();
    if (m_node)
        disconnectNode(m_node);
    m_node = nullptr;
    if (hadText)
        emit statusTextChanged();
}

void RyJointEditorTool::centerPointChange()
{
    if (!m_node)
        return;
    if (m_placingPoints) {
        m_cachedOrigin = m_node->getOrigin();
        m_pointsPlaced = true;
        return;
    }
    followPointChange(m_node);
    const RyVec3 origin = m_node->getOrigin();
    const RyUndoStack *stack = ryUndoStack();
    if (stack && !stack->isInUndoRedo() && m_propagateTranslation)
        performTransPropagation(m_node, m_cachedOrigin, origin);
    m_cachedOrigin = origin;
}

void RyJointEditorTool::endPointChange()
{
    if (m_placingPoints)
        m_pointsPlaced = true;
    else if (m_node)
        followPointChange(m_node);
}

void RyJointEditorTool::followPointChange(RyNode *node)
{
    RyNode *parent = node->getNodeParent();
    if (!parent)
        return;
    if (m_autoSnapEndPoints)
        snapEndPoint(parent);
    if (!m_autoAlign)
        return;
    for (RyNode *aligned : {parent, node}) {
        aligned->beginEdit();
        alignNode(aligned);
        aligned->finishEdit();
    }
}
