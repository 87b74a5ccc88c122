#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEActionTable.h"
#include "pluginsource/RyJointTools/ryjeaction/RySelectionRule.h"

#include "rycore/scene/RyScene.h"

RyJEToolAction::RyJEToolAction(const QString &text, const QString &description) : RyAction(text, description)
{
    setObjectName(QStringLiteral("JointEditorToolAction"));
}

RyJEToolAction::RyJEToolAction(const RyJEActionText &row) : RyJEToolAction(tr(row.text), tr(row.description))
{
    setCheckable(row.checkable);
    setSearchWords(tr(row.searchWords));
}

RyJEToolAction::RyJEToolAction(const QMetaObject &actionClass) : RyJEToolAction(ryJEActionText(actionClass.className()))
{
    setObjectName(QString::fromLatin1(actionClass.className()));
    setEnabled(false);
    setUnavailableReason(tr("Not available yet in this version."));
}

void RyJEToolAction::followSelection()
{
    QMetaObject::invokeMethod(this, "selectionChanged", Qt::DirectConnection);
    connect(ryScene(), SIGNAL(nodeSelectionListChanged()), this, SLOT(selectionChanged()));
}

void RyJEToolAction::enableBy(const RySelectionRule &rule)
{
    setUnavailableReason(tr(rule.reason));
    setEnabled(rule(ryScene()->getPrimarySelection()));
}

QString RyJEToolAction::getActionGroup() const
{
    return tr("Ostra Joint Editor");
}
