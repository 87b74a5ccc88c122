#include "pluginsource/RyJointTools/pane/RyJointEditorDisplayOptionsPanel.h"

#include "rycore/ui/RyStandardMetrics.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

using Display = RyJointToolDisplay;

/// A check box, two in each row of the grid.
struct Box
{
    const char *text; // source text of the context RyJointEditorDisplayOptionsPanel
    const char *name;
    const char *slot;
    bool Display::*flag;
    bool ofParam; // drawn for the current parameter alone
};

#define RY_TEXT(text) QT_TRANSLATE_NOOP("RyJointEditorDisplayOptionsPanel", text)
const Box boxes[] = {
    {RY_TEXT("Vertex Weights"), "JointEditorVertexWeightsCbx", SLOT(setWeightVis(bool)), &Display::weightVis, true},
    {RY_TEXT("Joint Angles"), "JointEditorJointAnglesCbx", SLOT(setAngleVis(bool)), &Display::angleVis, true},
    {RY_TEXT("Static Sphere"), "JointEditorStaticSphereCbx", SLOT(setMatBVis(bool)), &Display::matBVis, true},
    {RY_TEXT("Twist Blend Zone"), "JointEditorTwistBlendZoneCbx", SLOT(setTwistVis(bool)), &Display::twistVis, true},
    {RY_TEXT("Dynamic Sphere"), "JointEditorDynamicSphereCbx", SLOT(setMatAVis(bool)), &Display::matAVis, true},
    {RY_TEXT("Smooth Zones"), "JointEditorSmoothZonesCbx", SLOT(setSmoothVis(bool)), &Display::smoothVis, true},
    {RY_TEXT("Mesh Boundaries"), "JointEditorMeshBoundariesCbx", SLOT(setDrawMeshBoundaries(bool)),
     &Display::drawMeshBoundaries, false},
    {RY_TEXT("Relationships"), "JointEditorRelationshipsCbx", SLOT(setShowBoneHierarchy(bool)),
     &Display::showBoneHierarchy, false},
    {RY_TEXT("Bone Ghosting"), "JointEditorBoneGhostingCbx", SLOT(setGhostBones(bool)), &Display::ghostBones, false},
    {RY_TEXT("Manipulators"), "JointEditorManipulatorsCbx", SLOT(setShowManipulators(bool)), &Display::showManipulators,
     false},
};
#undef RY_TEXT

} // namespace

RyJointEditorDisplayOptionsPanel::RyJointEditorDisplayOptionsPanel(RyJointEditorTool *tool, QWidget *parent)
    : QWidget(parent), m_tool(tool)
{
    auto *group = new QGroupBox(tr("Display :"), this);
    group->setObjectName(QStringLiteral("JointEditorDisplayGrpBox"));
    auto *around = new QVBoxLayout(this);
    around->setContentsMargins(RyStandardMetrics::Margin, RyStandardMetrics::Margin, RyStandardMetrics::Margin,
                               RyStandardMetrics::Margin);
    around->addWidget(group);
    auto *layout = new QVBoxLayout(group);
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(RyStandardMetrics::Spacing);
    layout->addLayout(grid);
    addBones(grid);
    addBoxes(grid);
    updateBoneMode(m_tool->boneDrawMode());
    updateParam(m_tool->currentParam());
    connect(m_tool, SIGNAL(boneDrawModeChanged(RyJointEditorTool::BoneDrawMode)), this,
            SLOT(updateBoneMode(RyJointEditorTool::BoneDrawMode)));
    connect(m_tool, SIGNAL(paramChanged(RyLegacyJointParam *)), this, SLOT(updateParam(RyLegacyJointParam *)));
}

void RyJointEditorDisplayOptionsPanel::addBones(QGridLayout *grid)
{
    auto *label = new QLabel(tr("Visible Bones :"));
    label->setObjectName(QStringLiteral("JointEditorVisibleBonesLbl"));
    m_bones = new QComboBox;
    m_bones->setObjectName(QStringLiteral("JointEditorVisibleBonesCmb"));
    m_bones->setAccessibleName(tr("Visible Bones"));
    m_bones->view()->setAccessibleName(m_bones->accessibleName());
    m_bones->setFixedHeight(RyStandardMetrics::DropDownHeight);
    m_bones->addItems({tr("Entire Figure"), tr("Selected, Children, and Parent"), tr("Selected Only"), tr("None")});
    // The longest entry may be cut rather than widen the pane.
    m_bones->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_bones->setMinimumContentsLength(8);
    label->setBuddy(m_bones);
    auto *row = new QHBoxLayout;
    row->setSpacing(RyStandardMetrics::Margin);
    row->addWidget(label);
    row->addWidget(m_bones, 1);
    grid->addLayout(row, 0, 0, 1, 2);
    connect(m_bones, SIGNAL(activated(int)), m_tool, SLOT(setBoneMode(int)));
}

void RyJointEditorDisplayOptionsPanel::addBoxes(QGridLayout *grid)
{
    for (const Box &box : boxes) {
        auto *widget = new QCheckBox(tr(box.text));
        widget->setObjectName(QLatin1String(box.name));
        widget->setChecked(m_tool->display().*box.flag);
        connect(widget, SIGNAL(toggled(bool)), m_tool, box.slot);
        const int place = int(m_boxes.size());
        grid->addWidget(widget, 1 + place / 2, place % 2);
        m_boxes.push_back(widget);
    }
    connect(m_tool, &RyViewTool::optionsChanged, this, &RyJointEditorDisplayOptionsPanel::updateBoxes);
}

void RyJointEditorDisplayOptionsPanel::updateBoxes()
{
    for (size_t i = 0; m_tool && i < m_boxes.size(); ++i) {
        const QSignalBlocker blocker(m_boxes[i]);
        m_boxes[i]->setChecked(m_tool->display().*boxes[i].flag);
    }
}

void RyJointEditorDisplayOptionsPanel::updateBoneMode(RyJointEditorTool::BoneDrawMode mode)
{
    const QSignalBlocker blocker(m_bones);
    m_bones->setCurrentIndex(RyJointEditorTool::EntireFigure - mode);
}

void RyJointEditorDisplayOptionsPanel::updateParam(RyLegacyJointParam *param)
{
    for (size_t i = 0; i < m_boxes.size(); ++i)
        m_boxes[i]->setEnabled(param || !boxes[i].ofParam);
}

void RyJointEditorDisplayOptionsPanel::showEvent(QShowEvent *event)
{
    updateBoxes();
    QWidget::showEvent(event);
}
