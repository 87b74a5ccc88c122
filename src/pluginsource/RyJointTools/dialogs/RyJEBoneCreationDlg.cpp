#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"

#include "pluginsource/RyJointTools/dialogs/RyCreateBoneValidator.h"
#include "pluginsource/RyJointTools/dialogs/addLabeledRow.h"
#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

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
#include <QVBoxLayout>

RyJEBoneCreationDlg::RyJEBoneCreationDlg(RyJointEditorTool *tool)
    : RyBasicDialog(RyApp::getInterface()), m_tool(tool),
      m_name(makeField(QStringLiteral("JointEditorCreateBoneNameLEdit"), tr("Enter the internal name..."))),
      m_label(
          makeField(QStringLiteral("JointEditorCreateBoneLabelLEdit"), tr("Enter the label displayed to users..."))),
      m_order(new QComboBox(this)), m_content(new QVBoxLayout)
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
    addLabeledRow(grid, tr("Bone Name :"), QStringLiteral("JointEditorCreateBoneNameLbl"), m_name);
    addLabeledRow(grid, tr("Bone Label :"), QStringLiteral("JointEditorCreateBoneLabelLbl"), m_label);
    addLabeledRow(grid, tr("Rotation Order :"), QStringLiteral("JointEditorCreateBoneRotationOrderLbl"), m_order);
    m_content->addLayout(grid);
    setContentLayout(m_content);
    setMinimumWidth(310);
    setFixedHeight(minimumSizeHint().height());

    connect(m_name, SIGNAL(editingFinished()), this, SLOT(nameEditChanged()));
    connect(m_name, SIGNAL(textChanged(QString)), this, SLOT(updateAcceptState()));
    connect(m_label, SIGNAL(textChanged(QString)), this, SLOT(updateAcceptState()));
    connect(ryScene(), &RyScene::nodeSelectionListChanged, this, &RyJEBoneCreationDlg::updateHint);
    updateAcceptState();
    updateHint();
    setValidator(new RyCreateBoneValidator);
}

QLineEdit *RyJEBoneCreationDlg::makeField(const QString &objectName, const QString &placeholder)
{
    auto *field = new QLineEdit(this);
    field->setObjectName(objectName);
    field->setPlaceholderText(placeholder);
    return field;
}

void RyJEBoneCreationDlg::updateHint()
{
    const bool isNeeded = !RyCreateBoneValidator::findSkeletonOfSelectedBone();
    if (isNeeded == (m_hint != nullptr))
        return;
    if (isNeeded) {
        m_hint = new QLabel(tr("Select a bone: the new bone continues it."), this);
        m_hint->setObjectName(QStringLiteral("JointEditorCreateBoneHintLbl"));
        m_hint->setEnabled(false); // it is no more than a remark
        m_content->addWidget(m_hint);
        m_hint->setVisible(true);
    } else {
        delete m_hint;
        m_hint = nullptr;
    }
    layout()->invalidate();
    setFixedHeight(minimumSizeHint().height());
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
    const auto isFilled = [](const QLineEdit *field) {
        return !field->text().isEmpty() && field->hasAcceptableInput();
    };
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
