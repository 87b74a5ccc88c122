#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderAction.h"

#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackHold.h"

RyJERotationOrderAction::RyJERotationOrderAction(const QMetaObject &actionClass, RyRotationOrder::Code order,
                                                 const char *caption)
    : RyJEToolAction(actionClass), m_order(order), m_caption(caption)
{}

void RyJERotationOrderAction::setOrderOfPrimarySelection() const
{
    RyUndoStackHold hold;
    RyNode *node = ryScene()->getPrimarySelection();
    if (RyJointEditorTool *tool = findJointEditorTool())
        tool->changeRotationOrder(node, m_order);
    else if (node)
        node->setRotationOrder(m_order);
    hold.accept(RyJEToolAction::tr(m_caption));
}
