#include "ryhost/panes/ParametersPane.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/panes/MorphSliders.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

/// How a pose control is shown.
struct Row
{
    RyFloatProperty *(RyNode::*control)() const;
    const char *objectName;
    const char *label;
    float min, max, step;
    const char *suffix;
};

const Row Rows[] = {
    {&RyNode::getXRotControl, "PoseXRotate", QT_TRANSLATE_NOOP("ParametersPane", "X Rotate"), -180, 180, 1, "°"},
    {&RyNode::getYRotControl, "PoseYRotate", QT_TRANSLATE_NOOP("ParametersPane", "Y Rotate"), -180, 180, 1, "°"},
    {&RyNode::getZRotControl, "PoseZRotate", QT_TRANSLATE_NOOP("ParametersPane", "Z Rotate"), -180, 180, 1, "°"},
    {&RyNode::getXTransControl, "PoseXTranslate", QT_TRANSLATE_NOOP("ParametersPane", "X Translate"), -100, 100, 1,
     " cm"},
    {&RyNode::getYTransControl, "PoseYTranslate", QT_TRANSLATE_NOOP("ParametersPane", "Y Translate"), -100, 100, 1,
     " cm"},
    {&RyNode::getZTransControl, "PoseZTranslate", QT_TRANSLATE_NOOP("ParametersPane", "Z Translate"), -100, 100, 1,
     " cm"},
    {&RyNode::getScaleControl, "PoseScale", QT_TRANSLATE_NOOP("ParametersPane", "Scale"), 0, 2, 0.01f, ""},
    {&RyNode::getXScaleControl, "PoseXScale", QT_TRANSLATE_NOOP("ParametersPane", "X Scale"), 0, 2, 0.01f, ""},
    {&RyNode::getYScaleControl, "PoseYScale", QT_TRANSLATE_NOOP("ParametersPane", "Y Scale"), 0, 2, 0.01f, ""},
    {&RyNode::getZScaleControl, "PoseZScale", QT_TRANSLATE_NOOP("ParametersPane", "Z Scale"), 0, 2, 0.01f, ""},
};

} // namespace

ParametersPane::ParametersPane(RyScene *scene, QWidget *parent)
    : QWidget(parent), m_scene(scene), m_title(new QLabel(this)), m_restore(new QPushButton(tr("Restore"), this))
{
    setObjectName(QStringLiteral("ParametersPane"));
    m_title->setObjectName(QStringLiteral("ParametersTitle"));
    // A long name must not make the window wider.
    m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_restore->setObjectName(QStringLiteral("ParametersRestore"));
    m_restore->setToolTip(tr("Puts all pose values of this node back to rest"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    auto *head = new QHBoxLayout;
    head->addWidget(m_title, 1);
    head->addWidget(m_restore);
    layout->addLayout(head);
    auto *area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    auto *content = new QWidget(area);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 4, 0);
    column->setSpacing(3);
    for (const Row &row : Rows) {
        auto *widget = new RyFloatPropertyWgt(content);
        widget->setObjectName(QString::fromLatin1(row.objectName));
        widget->setLabelText(tr(row.label));
        widget->setSliderRange(row.min, row.max);
        widget->setStep(row.step);
        widget->setSuffix(QString::fromUtf8(row.suffix));
        connect(widget, &RyFloatPropertyWgt::messagePosted, this, &ParametersPane::messagePosted);
        column->addWidget(widget);
        m_rows.push_back(widget);
    }
    m_morphs = new MorphSliders(content);
    connect(m_morphs, &MorphSliders::messagePosted, this, &ParametersPane::messagePosted);
    column->addWidget(m_morphs);
    column->addStretch();
    area->setWidget(content);
    layout->addWidget(area);

    connect(m_restore, &QPushButton::clicked, this, &ParametersPane::restoreNode);
    connect(scene, &RyScene::primarySelectionChanged, this, &ParametersPane::showNode);
    showNode(scene->getPrimarySelection());
}

void ParametersPane::showNode(RyNode *node)
{
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    m_node = node;
    const auto setTitle = [this] {
        m_title->setText(m_node ? m_node->getLabel() : tr("Nothing selected"));
        m_title->setToolTip(m_node ? m_node->getLabel() : QString());
        m_restore->setEnabled(m_node && m_node->isPosed());
    };
    m_morphs->showNode(node);
    for (size_t i = 0; i < m_rows.size(); ++i) {
        m_rows[i]->clearProperties();
        const auto control = Rows[i].control; // read apart: GCC 12's bounds checks mistake the index within ->*
        if (node)
            m_rows[i]->addProperty((node->*control)());
    }
    if (node) {
        connect(node, &RyNode::poseChanged, this, setTitle);
        connect(node, &RyElement::labelChanged, this, setTitle);
        connect(node, &QObject::destroyed, this, [this] { showNode(nullptr); });
    }
    setTitle();
}

void ParametersPane::restoreNode()
{
    if (!m_node)
        return;
    RyUndoStackHold hold;
    m_node->clearPose();
    hold.accept(tr("Restore Pose of %1").arg(m_node->getLabel()));
}
