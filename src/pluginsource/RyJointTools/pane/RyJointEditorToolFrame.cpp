#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"

#include "pluginsource/RyJointTools/pane/RyBoneFaceGroupSelectionDropDown.h"
#include "pluginsource/RyJointTools/pane/RyCenterEndPanel.h"
#include "pluginsource/RyJointTools/pane/RyJointEditorDisplayOptionsPanel.h"
#include "pluginsource/RyJointTools/pane/RyJointParamCombo.h"
#include "pluginsource/RyJointTools/pane/RyJointParamPanel.h"
#include "pluginsource/RyJointTools/pane/RyJointToolNodeFilter.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/ui/RyDividerBar.h"
#include "rycore/ui/RyDynamicDividerWgt.h"
#include "rycore/ui/RySceneSelectionDropDown.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

static constexpr int paneWidth = 350;
static constexpr int paneHeight = 600;

RyJointEditorToolFrame::RyJointEditorToolFrame(QWidget *parent, RyJointEditorTool *tool) : QFrame(parent), m_tool(tool)
{
    setObjectName(QStringLiteral("Joint Editor Tool Settings"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    QWidget *top = makeTop();
    auto *display = new RyJointEditorDisplayOptionsPanel(m_tool, this);
    display->setObjectName(QStringLiteral("JointEditorDisplayPanel"));
    m_divider = new RyDynamicDividerWgt(top, display, this);
    m_divider->setObjectName(QStringLiteral("JointEditorDynamicDividerWgt"));
    m_divider->setResizeType(RyDynamicDividerWgt::SecondKeeps);
    m_divider->setToggleDirection(RyDynamicDividerWgt::FoldsDown);
    m_divider->setPreferredExtent(display->minimumSizeHint().height());
    m_divider->setBarMovesEnabled(false);
    layout->addWidget(m_divider);
    orderFocus(top);

    m_centerEndPanel->showNode(tool->currentNode());
    updateNode(tool->currentNode());
    updateParam(tool->currentParam());
    connect(tool, SIGNAL(nodeChanged(RyNode *)), this, SLOT(updateNode(RyNode *)));
    connect(tool, SIGNAL(paramChanged(RyLegacyJointParam *)), this, SLOT(updateParam(RyLegacyJointParam *)));
}

QSize RyJointEditorToolFrame::minimumSizeHint() const
{
    return QSize(paneWidth, paneHeight);
}

QWidget *RyJointEditorToolFrame::getDividerBar() const
{
    return m_divider->getDividerBar();
}

static void speakAs(QComboBox *combo, const QString &name)
{
    combo->setAccessibleName(name);
    combo->view()->setAccessibleName(name);
}

QWidget *RyJointEditorToolFrame::makeTop()
{
    auto *top = new QWidget(this);
    top->setObjectName(QStringLiteral("JointEditorTopWgt"));
    auto *grid = new QGridLayout(top);
    const int margin = RyStandardMetrics::Margin;
    grid->setContentsMargins(margin, margin, margin, margin);
    grid->setHorizontalSpacing(margin);
    grid->setVerticalSpacing(RyStandardMetrics::Spacing);
    int row = 0;

    auto *nodes = new RySceneSelectionDropDown(std::make_unique<RyJointToolNodeFilter>(), top);
    nodes->setObjectName(QStringLiteral("JointEditorNodeBtn"));
    addRow(grid, row++, tr("Node :"), "JointEditorNodeLbl", nodes);
    grid->addItem(new QSpacerItem(0, RyStandardMetrics::Spacing, QSizePolicy::Minimum, QSizePolicy::Fixed), row++, 0);
    addRow(grid, row++, tr("Selection Group :"), "JointEditorSelectionGroupLbl",
           new RyBoneFaceGroupSelectionDropDown(top));

    m_params = new RyJointParamCombo(m_tool, top);
    m_params->setObjectName(QStringLiteral("JointEditorParameterCmb"));
    speakAs(m_params, tr("Parameter"));
    m_params->setFixedHeight(RyStandardMetrics::DropDownHeight);
    connect(m_params, SIGNAL(activated(int)), this, SLOT(setParam(int)));
    addRow(grid, row++, tr("Parameter :"), "JointEditorParameterLbl", m_params);

    m_rotationOrder = makeRotationOrder(top);
    addRow(grid, row++, tr("Rotation Order :"), "JointEditorRotationOrderLbl", m_rotationOrder);

    // One of the two shows.
    m_centerEndPanel = new RyCenterEndPanel(m_tool, top);
    m_paramPanel = new RyJointParamPanel(m_tool, top);
    m_paramPanel->setObjectName(QStringLiteral("JointEditorParamPanel"));
    auto *pages = new QVBoxLayout;
    pages->setContentsMargins(0, RyStandardMetrics::Spacing, 0, 0);
    pages->addWidget(m_centerEndPanel);
    pages->addWidget(m_paramPanel);
    grid->addLayout(pages, row, 0, 1, 2);
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(0, 0);
    grid->setColumnStretch(1, 1);
    return top;
}

/// From top to bottom, and only to what can be worked with keys.
void RyJointEditorToolFrame::orderFocus(QWidget *top)
{
    // The bar was made last.
    QWidget *last = getDividerBar();
    do
        last = last->previousInFocusChain();
    while (!top->isAncestorOf(last) || last->focusPolicy() == Qt::NoFocus);
    setTabOrder(last, getDividerBar());
}

QComboBox *RyJointEditorToolFrame::makeRotationOrder(QWidget *parent)
{
    auto *combo = new QComboBox(parent);
    combo->setObjectName(QStringLiteral("JointEditorRotationOrderCmb"));
    speakAs(combo, tr("Rotation Order"));
    combo->setFixedHeight(RyStandardMetrics::DropDownHeight);
    for (int code = RyRotationOrder::XYZ; code <= RyRotationOrder::ZYX; ++code)
        combo->addItem(RyRotationOrder(code).name());
    connect(combo, SIGNAL(activated(int)), this, SLOT(setRotation(int)));
    return combo;
}

void RyJointEditorToolFrame::addRow(QGridLayout *grid, int row, const QString &label, const char *labelName,
                                    QWidget *field)
{
    auto *title = new QLabel(label, field->parentWidget());
    title->setObjectName(QLatin1String(labelName));
    title->setBuddy(field);
    grid->addWidget(title, row, 0);
    grid->addWidget(field, row, 1);
}

void RyJointEditorToolFrame::updateRotationOrder()
{
    const QSignalBlocker blocker(m_rotationOrder);
    const int order = m_node ? m_node->getRotationOrder().order() : -1;
    if (order >= RyRotationOrder::XYZ && order <= RyRotationOrder::ZYX)
        m_rotationOrder->setCurrentIndex(order);
    m_rotationOrder->setEnabled(m_node);
}

void RyJointEditorToolFrame::setParam(int selection)
{
    RyLegacyJointParam *param = m_params->paramAt(selection);
    if (param || m_tool->currentParam())
        m_tool->setParam(param);
    else
        updateParam(nullptr);
}

void RyJointEditorToolFrame::updateParam(RyLegacyJointParam *param)
{
    const bool isCurve = qobject_cast<RyLegacyCurve *>(param);
    // Never both, which would ask for more room for a moment.
    if (param)
        m_centerEndPanel->hide();
    m_paramPanel->setVisible(param && !isCurve);
    if (!param)
        m_centerEndPanel->show();
    m_params->choose(param);
}

void RyJointEditorToolFrame::updateNode(RyNode *node)
{
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    m_node = node;
    if (m_node)
        connect(m_node, &RyNode::rotationOrderChanged, this, &RyJointEditorToolFrame::updateRotationOrder);
    m_params->fill();
    updateRotationOrder();
    if (!node)
        updateParam(m_tool->currentParam());
}

void RyJointEditorToolFrame::setRotation(int selection)
{
    RyNode *node = m_tool->currentNode();
    if (!node || selection < RyRotationOrder::XYZ || selection > RyRotationOrder::ZYX)
        return;
    // A step that changes nothing would take the undone ones with it.
    if (node->getRotationOrder().order() == selection)
        return;
    RyUndoStackHold hold;
    m_tool->changeRotationOrder(node, RyRotationOrder(selection));
    hold.accept(tr("Rotation Order Change"));
}
