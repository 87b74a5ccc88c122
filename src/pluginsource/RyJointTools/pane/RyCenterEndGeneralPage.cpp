#include "pluginsource/RyJointTools/pane/RyCenterEndGeneralPage.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "pluginsource/RyJointTools/pane/layOutFields.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/scene/RyBone.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QSignalBlocker>

namespace {

/// Three numbers under a title.
struct Group
{
    const char *title; // source texts of the context RyCenterEndGeneralPage
    const char *rows;
    const char *spoken;
    const char *name; // the object names are made from it
    const char *unit;
};

#define RY_TEXT(text) QT_TRANSLATE_NOOP("RyCenterEndGeneralPage", text)
constexpr Group groups[] = {
    {RY_TEXT("Center Point :"), RY_TEXT("%1 Position"), RY_TEXT("Center Point"), "JointEditorOrigin", " cm"},
    {RY_TEXT("End Point :"), RY_TEXT("%1 Position"), RY_TEXT("End Point"), "JointEditorEndPoint", " cm"},
    {RY_TEXT("Orientation :"), RY_TEXT("%1 Rotation"), RY_TEXT("Orientation"), "JointEditorOrientation", "\u00b0"},
};
#undef RY_TEXT

/// Tells nobody.
void setChecked(QCheckBox *box, bool checked)
{
    const QSignalBlocker blocker(box);
    if (box->isChecked() != checked)
        box->setChecked(checked);
}

} // namespace

RyCenterEndGeneralPage::RyCenterEndGeneralPage(RyJointEditorTool *tool, QWidget *parent) : QWidget(parent), m_tool(tool)
{
    setObjectName(QStringLiteral("JointEditorCenterEndGeneralPage"));
    QVBoxLayout *column = makeScrollingColumn(this, QStringLiteral("JointEditorCenterEndGeneralScrollArea"),
                                              QStringLiteral("JointEditorCenterEndGeneralScrollContentsWgt"));
    for (size_t group = 0; group < std::size(groups); ++group)
        addNumbers(column, group);
    alignLabels();
    addSwitches(column);
    column->addStretch(1);
    connect(tool, SIGNAL(nodeChanged(RyNode *)), this, SLOT(updateNode(RyNode *)));
}

RyCenterEndGeneralPage::~RyCenterEndGeneralPage()
{
    finishEdits();
}

void RyCenterEndGeneralPage::addNumbers(QVBoxLayout *column, size_t group)
{
    const Group &texts = groups[group];
    const QString name = QLatin1String(texts.name);
    auto *box = new QGroupBox(tr(texts.title), column->parentWidget());
    box->setObjectName(name + QLatin1String("GrpBox"));
    auto *grid = new QGridLayout(box);
    grid->setVerticalSpacing(RyStandardMetrics::Spacing);
    grid->setColumnStretch(0, 0);
    grid->setColumnStretch(1, 1);
    for (int axis = 0; axis < 3; ++axis) {
        const QString axisName(QLatin1Char("XYZ"[axis]));
        RyFloatPropertyWgt *number = makeField(
            box, {tr(texts.rows).arg(axisName), name + axisName, tr(texts.spoken), QString::fromUtf8(texts.unit)});
        grid->addWidget(number->label(), axis, 0);
        grid->addWidget(number, axis, 1);
        connect(number, SIGNAL(editStarted()), this, SLOT(startNodeEdit()));
        connect(number, &RyFloatPropertyWgt::editFinished, this, &RyCenterEndGeneralPage::finishNodeEdit);
        m_numbers[3 * group + size_t(axis)] = number;
    }
    column->addWidget(box);
}

void RyCenterEndGeneralPage::alignLabels()
{
    constexpr int Reserve = 2; // eliding counts fractions of pixels
    const int width = widestLabel({m_numbers.begin(), m_numbers.end()}) + Reserve;
    for (RyFloatPropertyWgt *number : m_numbers) {
        number->label()->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
        number->label()->setFixedWidth(width);
    }
}

void RyCenterEndGeneralPage::addSwitches(QVBoxLayout *column)
{
    auto *group = new QGroupBox(tr("Node Attributes :"), column->parentWidget());
    group->setObjectName(QStringLiteral("JointEditorTransformGrpBox"));
    auto *grid = new QGridLayout(group);
    grid->setVerticalSpacing(RyStandardMetrics::Spacing);
    grid->setColumnStretch(0, 0);
    grid->setColumnStretch(1, 1);
    const auto addSwitch = [&](const QString &text, const char *name, const char *slot) {
        auto *box = new QCheckBox(text, group);
        box->setObjectName(QLatin1String(name));
        box->setChecked(true);
        connect(box, SIGNAL(stateChanged(int)), this, slot);
        grid->addWidget(box, grid->count(), 0, 1, 2);
        return box;
    };
    m_inheritScale =
        addSwitch(tr("Inherit Parent Scale"), "JointEditorInheritParentScaleCbx", SLOT(inheritsScaleChanged()));
    m_promoteSelection =
        addSwitch(tr("Promote Selection"), "JointEditorPromoteSelectionCbx", SLOT(promoteSelectoinChange()));
    m_hidden = addSwitch(tr("Hide in Scene View(s)"), "JointEditorHiddenCbx", SLOT(hiddenChanged()));
    column->addWidget(group);
}

void RyCenterEndGeneralPage::updateNode(RyNode *node)
{
    finishEdits();
    // Fields lose the keyboard when they have nothing to show.
    QWidget *focus = window()->focusWidget();
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    m_node = node;
    for (RyFloatPropertyWgt *number : m_numbers)
        number->clearProperties();
    if (node) {
        const RyNodeRigging::Controls &controls = node->riggingControls();
        for (size_t i = 0; i < m_numbers.size(); ++i)
            m_numbers[i]->addProperty(controls[i]);
        followNode();
        if (focus && isAncestorOf(focus) && !focus->hasFocus())
            focus->setFocus(Qt::OtherFocusReason);
    }
    updateInheritScaleFromNode();
    updatePromoteSelectionFromNode();
    updateHiddenFromNode();
    m_promoteSelection->setEnabled(node && !qobject_cast<RyBone *>(node));
    m_inheritScale->setEnabled(node);
    m_hidden->setEnabled(node);
}

void RyCenterEndGeneralPage::followNode()
{
    connect(m_node, SIGNAL(aboutToBeRemoved()), this, SLOT(nodeRemoved()));
    connect(m_node, SIGNAL(riggingChanged()), this, SLOT(refresh()));
    connect(m_node, SIGNAL(inheritScaleChanged()), this, SLOT(updateInheritScaleFromNode()));
    connect(m_node, SIGNAL(promoteSelectionChanged(bool)), this, SLOT(updatePromoteSelectionFromNode()));
    connect(m_node, SIGNAL(hiddenChanged(bool)), this, SLOT(updateHiddenFromNode()));
}

void RyCenterEndGeneralPage::refresh()
{
    for (RyFloatPropertyWgt *number : m_numbers)
        number->refresh();
    updateInheritScaleFromNode();
    updatePromoteSelectionFromNode();
    updateHiddenFromNode();
}

void RyCenterEndGeneralPage::finishEdits()
{
    for (RyFloatPropertyWgt *number : m_numbers)
        number->finishEdit();
}

void RyCenterEndGeneralPage::startNodeEdit()
{
    if (!m_node || m_editedNode)
        return;
    m_editedNode = m_node;
    m_editedNode->beginEdit();
}

void RyCenterEndGeneralPage::finishNodeEdit()
{
    // The end of the edit is announced, and who hears of it may edit.
    const QPointer<RyNode> node = m_editedNode;
    m_editedNode.clear();
    if (node)
        node->finishEdit();
}

template<typename Operation>
void RyCenterEndGeneralPage::perform(Operation operation, const QString &caption)
{
    if (!m_node)
        return;
    finishEdits();
    RyUndoStackHold hold;
    if (operation(m_node.data()))
        hold.accept(caption);
    else
        hold.cancel();
}

void RyCenterEndGeneralPage::align()
{
    perform(alignNode, tr("Align"));
}

void RyCenterEndGeneralPage::snapCenter()
{
    perform(snapCenterPoint, tr("Snap Center to End"));
}

void RyCenterEndGeneralPage::snapEnd()
{
    const auto snap = [this](RyNode *node) {
        if (!snapEndPoint(node))
            return false;
        if (m_tool->autoAlign())
            alignNode(node);
        return true;
    };
    perform(snap, tr("Snap End to Center"));
}

void RyCenterEndGeneralPage::setAutoAlign(bool onOff)
{
    m_tool->setAutoAlign(onOff);
}

void RyCenterEndGeneralPage::setAutoSnapEndPoints(bool onOff)
{
    m_tool->setAutoSnapEndPoints(onOff);
}

void RyCenterEndGeneralPage::nodeRemoved()
{
    updateNode(nullptr);
}

void RyCenterEndGeneralPage::inheritsScaleChanged()
{
    if (m_node)
        m_node->setInheritScale(m_inheritScale->isChecked());
}

void RyCenterEndGeneralPage::promoteSelectoinChange()
{
    if (m_node)
        m_node->setPromoteSelection(m_promoteSelection->isChecked());
}

void RyCenterEndGeneralPage::hiddenChanged()
{
    if (m_node)
        m_node->setHidden(m_hidden->isChecked());
}

void RyCenterEndGeneralPage::updateInheritScaleFromNode()
{
    setChecked(m_inheritScale, !m_node || m_node->inheritsScale());
}

void RyCenterEndGeneralPage::updatePromoteSelectionFromNode()
{
    setChecked(m_promoteSelection, m_node && m_node->isSelectionPromoted());
}

void RyCenterEndGeneralPage::updateHiddenFromNode()
{
    setChecked(m_hidden, m_node && m_node->isHidden());
}
