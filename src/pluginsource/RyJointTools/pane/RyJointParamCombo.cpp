#include "pluginsource/RyJointTools/pane/RyJointParamCombo.h"

#include "pluginsource/RyJointTools/operations/listParams.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <QSignalBlocker>

#include <algorithm>

using Param = RyLegacyJointParam;

RyJointParamCombo::RyJointParamCombo(const RyJointEditorTool *tool, QWidget *parent) : QComboBox(parent), m_tool(tool)
{
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(4);
}

QString RyJointParamCombo::textOf(const Param &param) const
{
    const RyNode &node = *m_tool->currentNode();
    if (param.type() == Param::SmoothScale) {
        const bool isParents = param.getDriver() && param.getDriver() == node.getNodeParent();
        return param.objectName() + (isParents ? tr(" [Parent]") : tr(" [Child]"));
    }
    const int axis = param.getAxis();
    if (axis < 0 || axis > 2) // a curve may follow what is no turn
        return param.objectName();
    return param.objectName() + tr(" [%1]").arg(node.rotationControl(axis)->getLabel());
}

std::vector<RyJointParamCombo::Entry> RyJointParamCombo::wantedEntries() const
{
    std::vector<Entry> entries{{nullptr, tr("Center/EndPoint")}};
    for (Param *param : listParams(m_tool->currentNode()))
        entries.push_back({param, textOf(*param)});
    return entries;
}

void RyJointParamCombo::fill()
{
    const QSignalBlocker blocker(this);
    m_entries = wantedEntries();
    clear();
    for (const Entry &entry : m_entries)
        addItem(entry.text);
    choose(m_tool->currentParam());
    connectSources();
}

void RyJointParamCombo::choose(const Param *param)
{
    const QSignalBlocker blocker(this);
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(), [param](const Entry &entry) { return entry.param == param; });
    const int index = found != m_entries.end() ? int(found - m_entries.begin()) : 1;
    setCurrentIndex(std::min(index, count() - 1));
}

Param *RyJointParamCombo::paramAt(int index) const
{
    return index > 0 && index < int(m_entries.size()) ? m_entries[size_t(index)].param : nullptr;
}

template<typename Sender, typename Signal>
void RyJointParamCombo::followSignal(const Sender *sender, Signal signal)
{
    if (sender)
        m_sources.push_back(connect(sender, signal, this, &RyJointParamCombo::follow));
}

void RyJointParamCombo::follow()
{
    if (wantedEntries() != m_entries)
        fill();
    else if (m_binding != RyLegacyBinding::bindingForChildOf(m_tool->currentNode()))
        connectSources();
}

/// A figure has come or gone, among many bones perhaps.
void RyJointParamCombo::followScene(const RyNode *node)
{
    if (qobject_cast<const RySkeleton *>(node))
        connectSources();
}

/// A binding that goes or comes back says nothing itself, and that of another figure may have the node's joint.
void RyJointParamCombo::followFigures(const RyScene *scene)
{
    if (!scene)
        return;
    followSignal(scene, &RyScene::nodeListChanged);
    for (const auto signal : {&RyScene::nodeAdded, &RyScene::nodeRemoved})
        m_sources.push_back(connect(scene, signal, this, &RyJointParamCombo::followScene));
    for (const RySkeleton *skeleton : scene->getSkeletons()) {
        followSignal(skeleton, &RySkeleton::followTargetChanged);
        followSignal(skeleton->getObject(), &RyObject::modifiersChanged);
    }
}

void RyJointParamCombo::connectSources()
{
    for (const QMetaObject::Connection &source : m_sources)
        disconnect(source);
    m_sources.clear();
    m_binding.clear();
    const RyNode *node = m_tool->currentNode();
    if (!node)
        return;
    m_binding = RyLegacyBinding::bindingForChildOf(node);
    followSignal(m_binding.data(), &RyLegacyBinding::bindingChanged);
    followFigures(node->getScene());
    for (int axis = 0; axis < 3; ++axis)
        followSignal(node->rotationControl(axis), &RyElement::labelChanged);
    for (const Entry &entry : m_entries)
        followSignal(entry.param.data(), &RyBase::nameChanged);
}
