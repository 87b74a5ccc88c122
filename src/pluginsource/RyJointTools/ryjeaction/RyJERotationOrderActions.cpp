#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderActions.h"

#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackHold.h"

/// Always one undo step, also when the node has that order already.
static void setRotationOrderOfPrimarySelection(const RyRotationOrder &order, const QString &caption)
{
    RyUndoStackHold hold;
    RyNode *node = ryScene()->getPrimarySelection();
    if (RyJointEditorTool *tool = findJointEditorTool())
        tool->changeRotationOrder(node, order);
    else if (node)
        node->setRotationOrder(order);
    hold.accept(caption);
}

RyJERotationOrderXYZAction::RyJERotationOrderXYZAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERotationOrderXYZAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERotationOrderXYZAction::executeAction()
{
    setRotationOrderOfPrimarySelection(RyRotationOrder(0), RyJEToolAction::tr("Rotation Order XYZ"));
}

RyJERotationOrderXZYAction::RyJERotationOrderXZYAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERotationOrderXZYAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERotationOrderXZYAction::executeAction()
{
    setRotationOrderOfPrimarySelection(RyRotationOrder(1), RyJEToolAction::tr("Rotation Order XZY"));
}

RyJERotationOrderYXZAction::RyJERotationOrderYXZAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERotationOrderYXZAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERotationOrderYXZAction::executeAction()
{
    setRotationOrderOfPrimarySelection(RyRotationOrder(2), RyJEToolAction::tr("Rotation Order YXZ"));
}

RyJERotationOrderYZXAction::RyJERotationOrderYZXAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERotationOrderYZXAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERotationOrderYZXAction::executeAction()
{
    setRotationOrderOfPrimarySelection(RyRotationOrder(3), RyJEToolAction::tr("Rotation Order YZX"));
}

RyJERotationOrderZXYAction::RyJERotationOrderZXYAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERotationOrderZXYAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERotationOrderZXYAction::executeAction()
{
    setRotationOrderOfPrimarySelection(RyRotationOrder(4), RyJEToolAction::tr("Rotation Order ZXY"));
}

RyJERotationOrderZYXAction::RyJERotationOrderZYXAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJERotationOrderZYXAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJERotationOrderZYXAction::executeAction()
{
    setRotationOrderOfPrimarySelection(RyRotationOrder(5), RyJEToolAction::tr("Rotation Order ZYX"));
}
