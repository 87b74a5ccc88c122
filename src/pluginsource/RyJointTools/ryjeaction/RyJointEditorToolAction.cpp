#include "pluginsource/RyJointTools/ryjeaction/RyJointEditorToolAction.h"

RyJointEditorToolAction::RyJointEditorToolAction() : RyViewToolAction(QStringLiteral("RyJointEditorTool"))
{
    setSearchWords(tr("rig rigging skeleton armature edit mode joints bones"));
}

QKeySequence RyJointEditorToolAction::getDefaultAccel() const
{
    return QKeySequence(Qt::SHIFT | Qt::ALT | Qt::Key_J);
}
