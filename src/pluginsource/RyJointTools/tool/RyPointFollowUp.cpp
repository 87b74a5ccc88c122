#include "pluginsource/RyJointTools/tool/RyPointFollowUp.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/propagateEdits.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/joint/RyToolOptions.h"
#include "pluginsource/RyJointTools/tool/pointer/RyToolPointer.h"

#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

static bool isInRiggingEdit()
{
    return ryScene()->isInRiggingEdit();
}

void RyPointFollowUp::centerPointChanged()
{
    if (!m_joint.node)
        return;
    if (isInRiggingEdit()) {
        m_joint.cachedOrigin = m_joint.node->getOrigin();
        m_isPlaced = true;
        return;
    }
    const RyVec3 oldOrigin = m_joint.cachedOrigin; // links to what is aligned may move the node further
    snapAndAlign();
    const RyVec3 origin = m_joint.node->getOrigin();
    const RyUndoStack *stack = ryUndoStack();
    if (stack && !stack->isInUndoRedo() && m_options.propagateTranslation)
        propagateOrigin(m_joint.node, oldOrigin, origin);
    m_joint.cachedOrigin = origin;
}

void RyPointFollowUp::endPointChanged()
{
    if (isInRiggingEdit())
        m_isPlaced = true;
    else
        snapAndAlign();
}

void RyPointFollowUp::oppositePlaced(const RyNode *node) const
{
    if (m_joint.node && m_joint.node != node && m_joint.node->getNodeParent() == node->getNodeParent())
        snapAndAlign();
}

void RyPointFollowUp::propagateOrigin(RyNode *node, const RyVec3 &origin, const RyVec3 &newOrigin)
{
    if (!node)
        return;
    // What hangs below must not go where this node may not.
    const RyVec3 way = RySymmetricEditing::of(*ryScene()).held(*node, newOrigin - origin);
    placePoints([&] {
        if (!m_pointer.propagateOrigin(node, newOrigin))
            propagateTranslation(node, way);
    });
}

void RyPointFollowUp::placePoints(const std::function<void()> &edit)
{
    if (isInRiggingEdit()) {
        edit();
        return;
    }
    m_isPlaced = false;
    bool isPlaced = false; // who hears of the end may place points too
    {
        const RyRiggingEdit riggingEdit;
        edit();
        isPlaced = m_isPlaced;
    }
    if (isPlaced)
        snapAndAlign();
}

void RyPointFollowUp::snapAndAlign() const
{
    RyNode *node = m_joint.node;
    RyNode *parent = node ? node->getNodeParent() : nullptr;
    if (!parent)
        return;
    // What moves the node by a link to what is written here must not be followed in turn, without end.
    const RyRiggingEdit edit;
    if (m_options.autoSnapEndPoints)
        snapEndPoint(parent);
    if (!m_options.autoAlign)
        return;
    for (RyNode *aligned : {parent, node}) {
        aligned->beginEdit();
        alignNode(aligned);
        aligned->finishEdit();
    }
}
