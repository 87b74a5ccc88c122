#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
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
    layout->addWidget(makeHeader());
    layout->addWidget(makeNumbers());
    layout->addStretch(1);

    updateNode(tool->currentNode());
    connect(tool, SIGNAL(nodeChanged(RyNode *)), this, SLOT(updateNode(RyNode *)));
}

QSize RyJointEditorToolFrame::minimumSizeHint() const
{
    return QSize(paneWidth, paneHeight);
}

QWidget *RyJointEditorToolFrame::makeHeader()
{
    auto *header = new QWidget(this);
    header->setObjectName(QStringLiteral("JointEditorTopWgt"));
    auto *grid = new QGridLayout(header);
    grid->setContentsMargins(spacing, spacing, spacing, spacing);
    grid->setSpacing(spacing);

    auto *nodeLabel = new QLabel(tr("Node :"), header);
    nodeLabel->setObjectName(QStringLiteral("JointEditorNodeLbl"));
    m_nodeName = new QLabel(header);
    m_nodeName->setObjectName(QStringLiteral("JointEditorNodeNameLbl"));
    m_nodeName->setTextFormat(Qt::PlainText);
    grid->addWidget(nodeLabel, 0, 0);
    grid->addWidget(m_nodeName, 0, 1);

    auto *orderLabel = new QLabel(tr("Rotation Order :"), header);
    orderLabel->setObjectName(QStringLiteral("JointEditorRotationOrderLbl"));
    m_rotationOrder = new QComboBox(header);
    m_rotationOrder->setObjectName(QStringLiteral("JointEditorRotationOrderCmb"));
    m_rotationOrder->setAccessibleName(tr("Rotation Order"));
    for (int code = RyRotationOrder::XYZ; code <= RyRotationOrder::ZYX; ++code)
        m_rotationOrder->addItem(RyRotationOrder(code).name());
    orderLabel->setBuddy(m_rotationOrder);
    connect(m_rotationOrder, SIGNAL(activated(int)), this, SLOT(setRotation(int)));
    grid->addWidget(orderLabel, 1, 0);
    grid->addWidget(m_rotationOrder, 1, 1);
    grid->setColumnStretch(1, 1);
    return header;
}

QWidget *RyJointEditorToolFrame::makeNumbers()
{
    auto *numbers = new QWidget(this);
    numbers->setObjectName(QStringLiteral("JointEditorNumbersWgt"));
    auto *grid = new QGridLayout(numbers);
    grid->setContentsMargins(spacing, spacing, spacing, spacing);
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
    return numbers;
}

void RyJointEditorToolFrame::updateHeader()
{
    m_nodeName->setText(m_node ? m_node->getLabel() : QString());
    if (m_node) {
        const QSignalBlocker blocker(m_rotationOrder);
        m_rotationOrder->setCurrentIndex(m_node->getRotationOrder().order());
    }
}

void RyJointEditorToolFrame::updateNode(RyNode *node)
{
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    m_node = node;
    if (m_node) {
        connect(m_node, SIGNAL(nameChanged(QString)), this, SLOT(updateHeader()));
        connect(m_node, SIGNAL(labelChanged(QString)), this, SLOT(updateHeader()));
        connect(m_node, SIGNAL(rotationOrderChanged()), this, SLOT(updateHeader()));
    }
    setEnabled(node != nullptr);
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
