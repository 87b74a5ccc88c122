#include "pluginsource/RyJointTools/dialogs/RyJESelectedNodesAttributesEditDlg.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/scene/RyScene.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

struct RowDescription
{
    const char *text;
    const char *checkName;
    const char *valueName;
    RyFloatProperty *(RyNode::*control)() const;
};

struct GroupDescription
{
    const char *title;
    const char *name;
    RowDescription rows[3];
};

const char *const xPosition = QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "X Position");
const char *const yPosition = QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "Y Position");
const char *const zPosition = QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "Z Position");

// The first two boxes of the orientation have the names of those of the end point; scripts that look for a name find
// the end point's.
const GroupDescription groups[3] = {
    {QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "Center Point : "),
     "NodeAttributesEditDlgCenterGrp",
     {{xPosition, "NodeAttributesEditCenterXCbx", "NodeAttributesEditCenterXSBox", &RyNode::getOriginXControl},
      {yPosition, "NodeAttributesEditCenterYCbx", "NodeAttributesEditCenterYSBox", &RyNode::getOriginYControl},
      {zPosition, "NodeAttributesEditCenterZCbx", "NodeAttributesEditCenterZSBox", &RyNode::getOriginZControl}}},
    {QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "End Point : "),
     "NodeAttributesEditDlgEndGrp",
     {{xPosition, "NodeAttributesEditEndXCbx", "NodeAttributesEditEndXSBox", &RyNode::getEndXControl},
      {yPosition, "NodeAttributesEditEndYCbx", "NodeAttributesEditEndYSBox", &RyNode::getEndYControl},
      {zPosition, "NodeAttributesEditEndZCbx", "NodeAttributesEditEndZSBox", &RyNode::getEndZControl}}},
    {QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "Orientation : "),
     "NodeAttributesEditDlgOrientGrp",
     {{QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "X Rotation"), "NodeAttributesEditEndXCbx",
       "NodeAttributesEditOrientXSBox", &RyNode::getOrientXControl},
      {QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "Y Rotation"), "NodeAttributesEditEndYCbx",
       "NodeAttributesEditOrientYSBox", &RyNode::getOrientYControl},
      {QT_TRANSLATE_NOOP("RyJESelectedNodesAttributesEditDlg", "Z Rotation"), "NodeAttributesEditOrientZCbx",
       "NodeAttributesEditOrientZSBox", &RyNode::getOrientZControl}}},
};

} // namespace

RyJESelectedNodesAttributesEditDlg::RyJESelectedNodesAttributesEditDlg() : RyBasicDialog(RyApp::getInterface())
{
    setObjectName(QStringLiteral("RySelectedNodesAttributesEditDlg"));
    setWindowTitle(tr("Joint Attributes"));
    auto *layout = new QVBoxLayout;
    layout->addLayout(makeModes());
    for (int group = 0; group < 3; ++group)
        layout->addWidget(makeGroup(group));
    setContentLayout(layout);
    validateSpinBoxStates();
}

QLayout *RyJESelectedNodesAttributesEditDlg::makeModes()
{
    m_setMode = new QRadioButton(tr("Set To Value"), this);
    m_setMode->setObjectName(QStringLiteral("NodeAttributesSetValueBtn"));
    m_setMode->setChecked(true);
    m_adjustMode = new QRadioButton(tr("Adjust By Value"), this);
    m_adjustMode->setObjectName(QStringLiteral("NodeAttributesAdjustValueBtn"));
    auto *layout = new QHBoxLayout;
    layout->addWidget(m_setMode);
    layout->addWidget(m_adjustMode);
    return layout;
}

QWidget *RyJESelectedNodesAttributesEditDlg::makeGroup(int group)
{
    auto *box = new QGroupBox(tr(groups[group].title), this);
    box->setObjectName(QLatin1String(groups[group].name));
    auto *grid = new QGridLayout(box);
    grid->setColumnStretch(1, 1);
    for (int row = 0; row < 3; ++row) {
        const RowDescription &description = groups[group].rows[row];
        auto *check = new QCheckBox(tr(description.text), box);
        check->setObjectName(QLatin1String(description.checkName));
        auto *value = new QDoubleSpinBox(box);
        value->setObjectName(QLatin1String(description.valueName));
        value->setAccessibleName(tr("%1%2").arg(box->title(), check->text()));
        grid->addWidget(check, row, 0);
        grid->addWidget(value, row, 1);
        connect(check, SIGNAL(clicked()), this, SLOT(validateSpinBoxStates()));
        m_rows.push_back({check, value});
    }
    return box;
}

void RyJESelectedNodesAttributesEditDlg::validateSpinBoxStates()
{
    for (const Row &row : m_rows)
        row.value->setEnabled(row.check->isChecked());
}

void RyJESelectedNodesAttributesEditDlg::accept()
{
    writeValues();
    RyBasicDialog::accept();
}

void RyJESelectedNodesAttributesEditDlg::writeValues() const
{
    // No step is opened here: who wants one opens it around.
    const RySymmetricEditing::WithoutSteps followed; // outlives the rig edit, at whose end others are followed
    const RyRiggingEdit edit;
    const bool setMode = m_setMode->isChecked();
    for (const RyNode *node : ryScene()->selectedNodeListIterator()) {
        for (size_t i = 0; i < m_rows.size(); ++i) {
            RyFloatProperty *control = (node->*groups[i / 3].rows[i % 3].control)();
            if (!control || !m_rows[i].check->isChecked())
                continue;
            const double value = m_rows[i].value->value();
            control->setValue(float(setMode ? value : value + double(control->getValue())));
        }
    }
}
