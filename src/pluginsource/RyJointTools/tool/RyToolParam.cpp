#include "pluginsource/RyJointTools/tool/RyToolParam.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/RyParamFollowUp.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/pointer/RyToolPointer.h"

#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

using Param = RyLegacyJointParam;

static RyGuardedPointer<Param> guarded(Param *param)
{
    return {param, param};
}

bool RyToolParam::isOwn(const Param *param) const
{
    const RyLegacyJoint *joint = RyLegacyJoint::findJoint(m_joint.node);
    return joint && std::find(joint->params().begin(), joint->params().end(), param) != joint->params().end();
}

void RyToolParam::set(Param *param)
{
    // Other handles are there then, and the mouse has not moved.
    if ((param ? param != m_joint.param.get() : m_isSet) && changeWithStatus(param))
        m_tool.hoverAgain();
}

bool RyToolParam::changeWithStatus(Param *param)
{
    const QString textBefore = m_tool.getStatusText();
    if (!change(param))
        return false;
    if (m_tool.getStatusText() != textBefore)
        emit m_tool.statusTextChanged();
    return true;
}

void RyToolParam::drop()
{
    // What the mouse is over is drawn to find it, and the scene is in the middle of a change.
    if (changeWithStatus(nullptr))
        QMetaObject::invokeMethod(
            &m_tool, [this] { m_tool.hoverAgain(); }, Qt::QueuedConnection);
}

bool RyToolParam::change(Param *param)
{
    Param *wanted = param && isOwn(param) ? param : nullptr;
    const auto isCurrent = [&] { return wanted ? wanted == m_joint.param.get() : !m_isSet; };
    if (isCurrent())
        return false;
    // What was dragged so far is a step of its own. Who hears of its end may have changed the parameter as well.
    m_pointer.finish();
    if (isCurrent())
        return false;
    if (wanted)
        take(*wanted);
    else
        clear();
    return true;
}

void RyToolParam::clear()
{
    m_values.disconnectValues();
    if (const Param *old = m_joint.param.get())
        QObject::disconnect(old, nullptr, &m_tool, nullptr);
    m_joint.param = {};
    setPartners({});
    m_isSet = false;
    if (m_joint.node) {
        m_joint.rememberedAxis = -1;
        m_joint.rememberedType = 0;
        m_joint.paramDrivenByParent = false;
    }
    emit m_tool.paramChanged(nullptr);
    m_tool.drawnDataChanged();
}

void RyToolParam::take(Param &param)
{
    m_values.disconnectValues();
    if (const Param *old = m_joint.param.get())
        QObject::disconnect(old, nullptr, &m_tool, nullptr);
    m_joint.param = guarded(&param);
    m_isSet = true;
    m_values.connectValues();
    setPartners(findPartners(param));
    QObject::connect(&param, &Param::aboutToBeRemoved, &m_tool, [this] { drop(); });
    QObject::connect(&param, &Param::paramChanged, &m_tool, [this, &param] {
        m_joint.rememberedAxis = param.getAxis();
        m_tool.drawnDataChanged();
    });
    if (param.type() == Param::SmoothScale)
        m_joint.paramDrivenByParent = isDrivenByParent(param);
    m_joint.rememberedAxis = param.getAxis();
    m_joint.rememberedType = param.type();
    m_announced = partners();
    emit m_tool.paramChanged(&param);
    m_tool.drawnDataChanged();
}

// --- Partners

Param *RyToolParam::findPartner(const Param &param) const
{
    const RyLegacyJoint *above = RyLegacyJoint::findJoint(m_joint.parent);
    if (!above)
        return nullptr;
    for (Param *other : above->params()) {
        if (other->getDriver() == m_joint.node && other->getAxis() == param.getAxis())
            return other;
    }
    return nullptr;
}

Param *RyToolParam::findBendPartner(const Param &param) const
{
    const RyLegacyJoint *joint =
        param.type() == Param::SmoothScale ? RyLegacyJoint::findJoint(param.getDriver()) : nullptr;
    return joint ? joint->findParam(Param::SmoothScale, qobject_cast<RyBone *>(m_joint.node), -1) : nullptr;
}

RyToolParam::Partners RyToolParam::findPartners(const Param &param) const
{
    return {findPartner(param), findBendPartner(param), m_joint.editedPartner()};
}

RyToolParam::Partners RyToolParam::partners() const
{
    return {m_joint.partner.get(), m_joint.bendPartner.get(), m_editedPartner.get()};
}

void RyToolParam::setPartners(const Partners &partners)
{
    const Partners before = this->partners();
    for (const Param *old : {before.ofParent, before.ofBend, before.edited}) {
        if (old)
            QObject::disconnect(old, nullptr, &m_tool, nullptr);
    }
    m_joint.partner = guarded(partners.ofParent);
    m_joint.bendPartner = guarded(partners.ofBend);
    m_editedPartner = guarded(partners.edited);
    for (const Param *present : {partners.ofParent, partners.ofBend, partners.edited}) {
        if (present)
            QObject::connect(present, &Param::aboutToBeRemoved, &m_tool, [this, present] { dropPartner(present); });
    }
}

void RyToolParam::changePartners(const Partners &partners)
{
    if (partners == this->partners())
        return;
    m_pointer.finish();
    setPartners(partners);
    m_tool.drawnDataChanged();
    QMetaObject::invokeMethod(
        &m_tool, [this] { announcePartners(); }, Qt::QueuedConnection);
}

/// Once a change has come to its end: many of them lead through other partners and back.
void RyToolParam::announcePartners()
{
    Param *param = m_joint.param.get();
    if (!param || m_announced == partners())
        return;
    m_announced = partners();
    emit m_tool.paramChanged(param);
}

void RyToolParam::dropPartner(const Param *param)
{
    const auto rest = [param](Param *held) { return held == param ? nullptr : held; };
    const Partners held = partners();
    changePartners({rest(held.ofParent), rest(held.ofBend), rest(held.edited)});
}

void RyToolParam::check()
{
    // What comes instead of a node that is gone is told by the selection.
    if (!m_joint.node)
        return;
    m_joint.parent = m_joint.node->getNodeParent();
    if (!m_isSet)
        return;
    const Param *param = m_joint.param.get();
    if (!param || !isOwn(param)) {
        drop();
        return;
    }
    if (param->type() == Param::SmoothScale)
        m_joint.paramDrivenByParent = isDrivenByParent(*param);
    changePartners(findPartners(*param));
}

// --- The parameter of another node

bool RyToolParam::isDrivenByParent(const Param &param) const
{
    return param.getDriver() && param.getDriver() == m_joint.parent;
}

Param *RyToolParam::findLikeLast() const
{
    const RyNode *node = m_joint.node;
    if (m_joint.rememberedAxis < 0 || RySkinBinding::findSkinFromNode(m_joint.node))
        return nullptr;
    const RyLegacyJoint *joint = RyLegacyJoint::findJoint(node);
    if (!joint || joint->params().empty())
        return nullptr;
    const auto isLikeIt = [&](const Param *param) {
        if (m_joint.rememberedType != Param::SmoothScale)
            return param->getAxis() == m_joint.rememberedAxis && param->getDriver() == node;
        return param->type() == Param::SmoothScale && isDrivenByParent(*param) == m_joint.paramDrivenByParent;
    };
    const auto found = std::find_if(joint->params().begin(), joint->params().end(), isLikeIt);
    return found != joint->params().end() ? *found : joint->params().back();
}

void RyToolParam::choose()
{
    Param *current = m_joint.param.get();
    const bool stays = current && isOwn(current) && !RySkinBinding::findSkinFromNode(m_joint.node);
    change(stays ? current : findLikeLast());
    check();
}
