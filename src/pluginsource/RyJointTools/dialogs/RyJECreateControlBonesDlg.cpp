#include "pluginsource/RyJointTools/dialogs/RyJECreateControlBonesDlg.h"

#include "pluginsource/RyJointTools/dialogs/addLabeledRow.h"

#include "rycore/ui/RyNodeNameValidator.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QStyle>

RyJECreateControlBonesDlg::RyJECreateControlBonesDlg(QWidget *parent)
    : RyBasicDialog(parent), m_prefix(new QLineEdit(QStringLiteral("cb_"), this)), m_mode(new QComboBox(this))
{
    setObjectName(QStringLiteral("JECreateGhostFollowBonesDlg"));
    setWindowTitle(tr("Create Control Bone(s)"));
    m_prefix->setObjectName(QStringLiteral("JointEditorPrefixLEdit"));
    m_mode->setObjectName(QStringLiteral("JointEditorControlBoneModeCmb"));
    m_mode->addItem(tr("Selected and Children"));
    m_mode->addItem(tr("Children of Selected"));

    auto *grid = new QGridLayout;
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
    grid->setColumnStretch(0, 0);
    grid->setColumnStretch(1, 1);
    addLabeledRow(grid, tr("Prefix :"), QStringLiteral("JointEditorControlBonePrefixLbl"), m_prefix);
    addLabeledRow(grid, tr("Mode :"), QStringLiteral("JointEditorControlBoneModeLbl"), m_mode);
    setContentLayout(grid);
    setMinimumWidth(300);
    setFixedHeight(minimumSizeHint().height());

    connect(m_prefix, SIGNAL(textChanged(QString)), this, SLOT(updateAcceptState()));
    updateAcceptState();
}

/// Without a prefix a control bone would have the name of its bone. A blank at the end is fine: a name follows.
void RyJECreateControlBonesDlg::updateAcceptState()
{
    QString name = m_prefix->text() + QLatin1Char('x');
    int end = name.size();
    enableAccept(!m_prefix->text().isEmpty() && RyNodeNameValidator().validate(name, end) == QValidator::Acceptable);
}

QString RyJECreateControlBonesDlg::getPrefix() const
{
    return m_prefix->text();
}

RyControlBoneMode RyJECreateControlBonesDlg::getMode() const
{
    return m_mode->currentIndex() == 0 ? RyControlBoneMode::SelectedAndChildren : RyControlBoneMode::ChildrenOfSelected;
}
