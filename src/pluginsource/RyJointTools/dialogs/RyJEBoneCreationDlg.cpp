#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"

#include "pluginsource/RyJointTools/dialogs/RyCreateBoneValidator.h"
#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/createChildBone.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyNodeLabelValidator.h"
#include "rycore/ui/RyNodeNameValidator.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

RyJEBoneCreationDlg::RyJEBoneCreationDlg(RyJointEditorTool *tool)
    : RyBasicDialog(RyApp::getInterface()), m_tool(tool),
      m_name(makeField(QStringLiteral("JointEditorCreateBoneNameLEdit"), tr("Enter the internal name..."))),
      m_label(makeField(QStringLiteral("JointEditorCreateBoneLabelLEdit"), tr("Enter the label displayed to users..."))),
      m_order(new QComboBox(this))
{
    setObjectName(QStringLiteral("JointEditorCreateBoneDlg"));
    setWindowTitle(tr("Create Child Bone"));
    m_name->setValidator(new RyNodeNameValidator(m_name));
    m_label->setValidator(new RyNodeLabelValidator(m_label));
    m_order->setObjectName(QStringLiteral("JointEditorCreateBoneRotationOrderCmb"));
    for (int order = 0; order < 6; ++order)
        m_order->addItem(QIcon(), RyRotationOrder(order).name(), order);

    auto *grid = new QGridLayout;
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
    grid->setColumnStretch(0, 0);
    grid->setColumnStretch(1, 1);
    addRow(grid, m_name, tr("Bone Name :"), QStringLiteral("JointEditorCreateBoneNameLbl"));
    addRow(grid, m_label, tr("Bone Label :"), QStringLiteral("JointEditorCreateBoneLabelLbl"));
    addRow(grid, m_order, tr("Rotation Order :"), QStringLiteral("JointEditorCreateBoneRotationOrderLbl"));
    setContentLayout(grid);
    setMinimumWidth(310);
    setFixedHeight(minimumSizeHint().height());

    connect(m_name, SIGNAL(editingFinished()), this, SLOT(nameEditChanged()));
    connect(m_name, SIGNAL(textChanged(QString)), this, SLOT(updateAcceptState()));
    connect(m_label, SIGNAL(textChanged(QString)), this, SLOT(updateAcceptState()));
    updateAcceptState();
    setValidator(new RyCreateBoneValidator);
}

QLineEdit *RyJEBoneCreationDlg::makeField(const QString &objectName, const QString &placeholder)
{
    auto *field = new QLineEdit(this);
    field->setObjectName(objectName);
    field->setPlaceholderText(placeholder);
    return field;
}

void RyJEBoneCreationDlg::addRow(QGridLayout *grid, QWidget *field, const QString &text, const QString &labelName)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(labelName);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setBuddy(field);
    const int row = grid->count() / 2;
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
}

QString RyJEBoneCreationDlg::getBoneName() const
{
    return m_name->text();
}

QString RyJEBoneCreationDlg::getBoneLabel() const
{
    return m_label->text();
}

void RyJEBoneCreationDlg::setBoneName(const QString &name, bool makeUnique)
{
    if (name.isEmpty())
        return;
    const QString unique = RyScene::getUniqueTopLevelName(name);
    m_name->setText(makeUnique ? unique : name);
}

void RyJEBoneCreationDlg::setBoneLabel(const QString &label, bool makeUnique)
{
    if (label.isEmpty())
        return;
    const QString unique = RyScene::getUniqueTopLevelLabel(label);
    m_label->setText(makeUnique ? unique : label);
}

void RyJEBoneCreationDlg::nameEditChanged()
{
    if (m_label->text().isEmpty())
        m_label->setText(m_name->text());
}

void RyJEBoneCreationDlg::updateAcceptState()
{
    const auto isFilled = [](const QLineEdit *field) { return !field->text().isEmpty() && field->hasAcceptableInput(); };
    enableAccept(isFilled(m_name) && isFilled(m_label));
}

void RyJEBoneCreationDlg::apply()
{
    RyNode *parent = ryScene()->getPrimarySelection();
    const RyUndoStackLock lock;
    ryUndoStack()->clearAll();
    RyBone *bone =
        createChildBone(parent, m_name->text(), m_label->text(), RyRotationOrder(m_order->currentData().toInt()));
    if (!bone)
        return;
    if (m_tool)
        alignNode(bone);
    ryScene()->selectAllNodes(false);
    bone->select(true);
}
