#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEActionTable.h"

RyJEToolAction::RyJEToolAction(const QString &text, const QString &description) : RyAction(text, description)
{
    setObjectName(QStringLiteral("JointEditorToolAction"));
}

RyJEToolAction::RyJEToolAction(const RyJEActionText &row) : RyJEToolAction(tr(row.text), tr(row.description))
{
    setCheckable(row.checkable);
}

RyJEToolAction::RyJEToolAction(const QMetaObject &actionClass) : RyJEToolAction(ryJEActionText(actionClass.className()))
{
    setObjectName(QString::fromLatin1(actionClass.className()));
    setEnabled(false);
}

QString RyJEToolAction::getActionGroup() const
{
    return tr("Ostra Joint Editor");
}
