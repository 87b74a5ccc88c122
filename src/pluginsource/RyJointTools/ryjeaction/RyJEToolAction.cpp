#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEActionTable.h"
#include "pluginsource/RyJointTools/ryjeaction/RySelectionRule.h"

#include "rycore/scene/RyScene.h"

RyJEToolAction::RyJEToolAction(const QString &text, const QString &description) : RyAction(text, description)
{
    setObjectName(QStringLiteral("JointEditorToolAction"));
}

RyJEToolAction::RyJEToolAction(const RyJEActionRow &row) : RyJEToolAction(tr(row.text), tr(row.description))
{
    m_rule = &row.rule;
    setObjectName(QString::fromLatin1(row.className));
    setCheckable(row.checkable);
    setSearchWords(tr(row.searchWords));
    setUnavailableReason(m_rule->reason ? tr(m_rule->reason) : QString());
    followRule();
    if (m_rule->looksAtSelection)
        connect(ryScene(), &RyScene::nodeSelectionListChanged, this, &RyJEToolAction::followRule);
}

RyJEToolAction::RyJEToolAction(const QMetaObject &actionClass) : RyJEToolAction(ryJEActionRow(actionClass.className()))
{}

void RyJEToolAction::followRule()
{
    if (m_rule)
        setEnabled(m_rule->holds(ryScene()->getPrimarySelection()));
}

QString RyJEToolAction::getActionGroup() const
{
    return tr("Ostra Joint Editor");
}
