#include "pluginsource/RyJointTools/tool/RyToolSelection.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/RyPointFollowUp.h"
#include "pluginsource/RyJointTools/tool/RyToolParam.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/pointer/RyToolPointer.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/scene/RyScene.h"

#include <QCoreApplication>
#include <QEvent>

#include <array>

static const QEvent::Type selectionEventType = QEvent::Type(QEvent::registerEventType(-1));

static std::array<RyFloatProperty *, 3> centerPointControls(const RyNode &node)
{
    return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl()};
}

static std::array<RyFloatProperty *, 3> endPointControls(const RyNode &node)
{
    return {node.getEndXControl(), node.getEndYControl(), node.getEndZControl()};
}

RyToolSelection::RyToolSelection(RyJointEditorTool &tool, RyJointState &joint, RyToolParam &param,
                                 RyPointFollowUp &points, RyToolPointer &pointer)
    : m_tool(tool), m_joint(joint), m_param(param), m_points(points), m_pointer(pointer)
{}

void RyToolSelection::start()
{
    QObject::disconnect(ryScene(), nullptr, &m_tool, nullptr);
    QObject::disconnect(&RySymmetricEditing::of(*ryScene()), nullptr, &m_tool, nullptr);
    const auto check = [this] { m_param.check(); };
    QObject::connect(ryScene(), &RyScene::nodeListChanged, &m_tool, check);
    QObject::connect(ryScene(), &RyScene::drawnDataChanged, &m_tool, check);
    QObject::connect(ryScene(), SIGNAL(primarySelectionChanged(RyNode *)), &m_tool, SLOT(postSelectionChangeEvent()));
    QObject::connect(&RySymmetricEditing::of(*ryScene()), &RySymmetricEditing::followed, &m_tool,
                     [this](const RyNode *node) { m_points.oppositePlaced(node); });
    update(ryScene()->getPrimarySelection());
}

void RyToolSelection::stop()
{
    m_pointer.drop();
    QObject::disconnect(ryScene(), nullptr, &m_tool, nullptr);
    QObject::disconnect(&RySymmetricEditing::of(*ryScene()), nullptr, &m_tool, nullptr);
    // An event that is already on its way would give the inactive tool a node.
    QCoreApplication::removePostedEvents(&m_tool, selectionEventType);
    m_pending = false;
    update(nullptr);
}

void RyToolSelection::followLater()
{
    if (m_pending)
        return;
    m_pending = true;
    QCoreApplication::postEvent(&m_tool, new QEvent(selectionEventType));
}

bool RyToolSelection::takeEvent(const QEvent &event)
{
    if (event.type() != selectionEventType)
        return false;
    update(ryScene()->getPrimarySelection());
    m_pending = false;
    return true;
}

void RyToolSelection::connectNode() const
{
    const RyNode &node = *m_joint.node;
    QObject::connect(&node, SIGNAL(aboutToBeRemoved()), &m_tool, SLOT(nodeRemoved()));
    for (const RyFloatProperty *control : centerPointControls(node)) {
        if (control)
            QObject::connect(control, SIGNAL(currentValueChanged()), &m_tool, SLOT(centerPointChange()));
    }
    for (const RyFloatProperty *control : endPointControls(node)) {
        if (control)
            QObject::connect(control, SIGNAL(currentValueChanged()), &m_tool, SLOT(endPointChange()));
    }
}

void RyToolSelection::disconnectNode() const
{
    const RyNode &node = *m_joint.node;
    QObject::disconnect(&node, nullptr, &m_tool, nullptr);
    for (const auto &controls : {centerPointControls(node), endPointControls(node)}) {
        for (const RyFloatProperty *control : controls) {
            if (control)
                QObject::disconnect(control, nullptr, &m_tool, nullptr);
        }
    }
}

void RyToolSelection::update(RyNode *node)
{
    if (node != m_joint.node)
        m_pointer.finish();
    if (m_joint.node)
        disconnectNode();
    m_joint.node = node;
    m_joint.parent = node ? node->getNodeParent() : nullptr;
    emit m_tool.nodeChanged(m_joint.node);
    if (m_tool.boneCreationActive())
        emit m_tool.statusTextChanged();
    m_joint.cachedOrigin = RyVec3();
    if (m_joint.node) {
        connectNode();
        m_joint.cachedOrigin = m_joint.node->getOrigin();
    }
    m_param.choose();
    m_tool.drawnDataChanged();
    emit m_tool.statusTextChanged();
    m_tool.hoverAgain();
}

void RyToolSelection::forgetNode()
{
    // What was dragged so far is a step of its own: the node may go within a hold that was opened later.
    m_pointer.finish();
    const bool hadText = !m_tool.getStatusText().isEmpty();
    if (m_joint.node)
        disconnectNode();
    m_joint.node = nullptr;
    if (hadText)
        emit m_tool.statusTextChanged();
}
