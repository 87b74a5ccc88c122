#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"

#include "pluginsource/RyJointTools/pane/RyJointParamCombo.h"
#include "pluginsource/RyJointTools/pane/RyJointParamPanel.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

static constexpr int paneWidth = 350;
static constexpr int paneHeight = 600;
static constexpr int spacing = 5;

namespace {

/// One of the three groups of numbers in the pane.
struct Triple
{
    const char *title; // source text of the context RyJointEditorToolFrame
    const char *objectName;
    const char *unit;
};

constexpr Triple triples[3] = {
    {QT_TRANSLATE_NOOP("RyJointEditorToolFrame", "Center Point :"), "CenterPoint", " cm"},
    {QT_TRANSLATE_NOOP("RyJointEditorToolFrame", "End Point :"), "EndPoint", " cm"},
    {QT_TRANSLATE_NOOP("RyJointEditorToolFrame", "Orientation :"), "Orientation", "\u00b0"},
};

} // namespace

RyJointEditorToolFrame::RyJointEditorToolFrame(QWidget *parent, RyJointEditorTool *tool)
    : QFrame(parent), m_tool(tool), m_dividerBar(new QWidget(this))
{
    setObjectName(QStringLiteral("Joint Editor Tool Settings"));
    m_dividerBar->setObjectName(QStringLiteral("JointEditorDividerBarWgt"));
    m_dividerBar->hide();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeTop());

    updateNode(tool->currentNode());
    updateParam(tool->currentParam());
    connect(tool, SIGNAL(nodeChanged(RyNode *)), this, SLOT(updateNode(RyNode *)));
    connect(tool, SIGNAL(paramChanged(RyLegacyJointParam *)), this, SLOT(updateParam(RyLegacyJointParam *)));
}

QSize RyJointEditorToolFrame::minimumSizeHint() const
{
    return QSize(paneWidth, paneHeight);
}

QWidget *RyJointEditorToolFrame::makeTop()
{
    auto *top = new QWidget(this);
    top->setObjectName(QStringLiteral("JointEditorTopWgt"));
    auto *grid = new QGridLayout(top);
    grid->setContentsMargins(spacing, spacing, spacing, spacing);
    grid->setSpacing(spacing);

    m_nodeName = new QLabel(top);
    m_nodeName->setObjectName(QStringLiteral("JointEditorNodeNameLbl"));
    m_nodeName->setTextFormat(Qt::PlainText);
    addRow(grid, tr("Node :"), "JointEditorNodeLbl", m_nodeName);

    m_params = new RyJointParamCombo(m_tool, top);
    m_params->setObjectName(QStringLiteral("JointEditorParameterCmb"));
    m_params->setAccessibleName(tr("Parameter"));
    m_params->setFixedHeight(RyStandardMetrics::DropDownHeight);
    connect(m_params, SIGNAL(activated(int)), this, SLOT(setParam(int)));
    addRow(grid, tr("Parameter :"), "JointEditorParameterLbl", m_params);

    m_rotationOrder = new QComboBox(top);
    m_rotationOrder->setObjectName(QStringLiteral("JointEditorRotationOrderCmb"));
    m_rotationOrder->setAccessibleName(tr("Rotation Order"));
    m_rotationOrder->setFixedHeight(RyStandardMetrics::DropDownHeight);
    for (int code = RyRotationOrder::XYZ; code <= RyRotationOrder::ZYX; ++code)
        m_rotationOrder->addItem(RyRotationOrder(code).name());
    connect(m_rotationOrder, SIGNAL(activated(int)), this, SLOT(setRotation(int)));
    addRow(grid, tr("Rotation Order :"), "JointEditorRotationOrderLbl", m_rotationOrder);

    m_points = makeNumbers();
    m_paramPanel = new RyJointParamPanel(m_tool, top);
    m_paramPanel->setObjectName(QStringLiteral("JointEditorParamPanel"));
    auto *pages = new QVBoxLayout; // one of them shows
    pages->addWidget(m_points);
    pages->addWidget(m_paramPanel);
    const int row = grid->rowCount();
    grid->addLayout(pages, row, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(row, 1);
    return top;
}

void RyJointEditorToolFrame::addRow(QGridLayout *grid, const QString &label, const char *labelName, QWidget *field)
{
    auto *title = new QLabel(label, field->parentWidget());
    title->setObjectName(QLatin1String(labelName));
    title->setBuddy(field);
    const int row = grid->isEmpty() ? 0 : grid->rowCount();
    grid->addWidget(title, row, 0);
    grid->addWidget(field, row, 1);
}

QWidget *RyJointEditorToolFrame::makeNumbers()
{
    auto *area = new QScrollArea(this);
    area->setObjectName(QStringLiteral("JointEditorNumbersScrollArea"));
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    auto *numbers = new QWidget(area);
    numbers->setObjectName(QStringLiteral("JointEditorNumbersWgt"));
    area->setWidget(numbers);
    auto *grid = new QGridLayout(numbers);
    grid->setContentsMargins(0, spacing, 0, spacing);
    grid->setSpacing(spacing);
    int row = 0;
    for (int triple = 0; triple < 3; ++triple) {
        auto *title = new QLabel(tr(triples[triple].title), numbers);
        title->setObjectName(QLatin1String("JointEditor") + QLatin1String(triples[triple].objectName) +
                             QLatin1String("Lbl"));
        grid->addWidget(title, row++, 0);
        for (int axis = 0; axis < 3; ++axis) {
            const QString axisName(QLatin1Char("XYZ"[axis]));
            auto *number = new RyFloatPropertyWgt(numbers);
            number->setObjectName(QLatin1String("JointEditor") + QLatin1String(triples[triple].objectName) + axisName +
                                  QLatin1String("Wgt"));
            number->setLabelText(axisName);
            number->setSuffix(QString::fromUtf8(triples[triple].unit));
            number->setFullLengthTextEdit(true);
            m_numbers[3 * triple + axis] = number;
            grid->addWidget(number, row++, 0);
        }
    }
    grid->setRowStretch(row, 1);
    return area;
}

void RyJointEditorToolFrame::updateHeader()
{
    m_nodeName->setText(m_node ? m_node->getLabel() : QString());
    if (m_node) {
        const QSignalBlocker blocker(m_rotationOrder);
        m_rotationOrder->setCurrentIndex(m_node->getRotationOrder().order());
    }
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
    m_points->setVisible(!param);
    m_paramPanel->setVisible(param && !isCurve);
    m_params->choose(param);
}

void RyJointEditorToolFrame::updateNode(RyNode *node)
{
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    m_node = node;
    if (m_node) {
        connect(m_node, &RyBase::nameChanged, this, &RyJointEditorToolFrame::updateHeader);
        connect(m_node, &RyElement::labelChanged, this, &RyJointEditorToolFrame::updateHeader);
        connect(m_node, &RyNode::rotationOrderChanged, this, &RyJointEditorToolFrame::updateHeader);
    }
    setEnabled(node != nullptr);
    m_params->fill();
    updateHeader();
    RyFloatProperty *properties[9] = {};
    if (node) {
        RyFloatProperty *const controls[9] = {
            node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(),
            node->getEndXControl(),    node->getEndYControl(),    node->getEndZControl(),
            node->getOrientXControl(), node->getOrientYControl(), node->getOrientZControl()};
        std::copy(std::begin(controls), std::end(controls), properties);
    }
    for (int i = 0; i < 9; ++i) {
        m_numbers[i]->clearProperties();
        if (properties[i])
            m_numbers[i]->addProperty(properties[i]);
    }
    if (!node)
        updateParam(m_tool->currentParam());
}

void RyJointEditorToolFrame::setRotation(int selection)
{
    RyNode *node = m_tool->currentNode();
    if (!node)
        return;
    RyUndoStackHold hold;
    m_tool->changeRotationOrder(node, RyRotationOrder(selection));
    hold.accept(tr("Rotation Order Change"));
}
