#include "pluginsource/RyJointTools/ryjeaction/RyJointEditorToolAction.h"

RyJointEditorToolAction::RyJointEditorToolAction() : RyViewToolAction(QStringLiteral("RyJointEditorTool")) {}

QKeySequence RyJointEditorToolAction::getDefaultAccel() const
{
    return QKeySequence(Qt::SHIFT | Qt::ALT | Qt::Key_J);
}
