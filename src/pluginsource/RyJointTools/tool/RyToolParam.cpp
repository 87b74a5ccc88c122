#include "pluginsource/RyJointTools/tool/RyToolParam.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/joint/RyToolOptions.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <array>

using Param = RyLegacyJointParam;

/// The controls of a sphere that turn it about X and Y, which exclude each other while axes are restricted.
static std::array<RyFloatProperty *, 2> turns(const RyLegacyJointSphere *sphere)
{
    return {sphere->getXRotControl(), sphere->getYRotControl()};
}

static std::array<RyFloatProperty *, 4> angleControllers(const RyLegacyBendParam &bend)
{
    return {bend.getStaticAngleAController(), bend.getDynamicAngleBController(), bend.getDynamicAngleCController(),
            bend.getStaticAngleDController()};
}

static RyGuardedPointer<Param> guarded(Param *param)
{
    return {param, param};
}

RyToolParam::RyToolParam(RyJointEditorTool &tool, RyJointState &joint, const RyToolOptions &options)
    : m_tool(tool), m_joint(joint), m_options(options)
{}

bool RyToolParam::isOwn(const Param *param) const
{
    const RyLegacyJoint *joint = RyLegacyJoint::findJoint(m_joint.node);
    return joint && std::find(joint->params().begin(), joint->params().end(), param) != joint->params().end();
}

void RyToolParam::set(Param *param)
{
    if (param && !isOwn(param))
        param = nullptr;
    if (param == m_joint.param.get())
        return;
    if (param)
        take(*param);
    else
        clear();
}

void RyToolParam::clear()
{
    disconnectValues();
    QObject::disconnect(m_joint.param.get(), nullptr, &m_tool, nullptr);
    m_joint.param = m_joint.partner = m_joint.bendPartner = {};
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
    disconnectValues();
    if (Param *old = m_joint.param.get())
        QObject::disconnect(old, nullptr, &m_tool, nullptr);
    m_joint.param = guarded(&param);
    connectValues();
    m_joint.partner = guarded(findPartner(param));
    m_joint.bendPartner = guarded(findBendPartner(param));
    if (param.type() == Param::SmoothScale)
        m_joint.paramDrivenByParent = param.getDriver() && param.getDriver() == m_joint.node->getNodeParent();
    m_joint.rememberedAxis = param.getAxis();
    m_joint.rememberedType = param.type();
    emit m_tool.paramChanged(&param);
    m_tool.drawnDataChanged();
}

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

Param *RyToolParam::choose() const
{
    RyNode *node = m_joint.node;
    if (m_joint.rememberedAxis < 0 || RySkinBinding::findSkinFromNode(node))
        return nullptr;
    const RyLegacyJoint *joint = RyLegacyJoint::findJoint(node);
    if (!joint || joint->params().empty())
        return nullptr;
    const auto isLikeIt = [&](const Param *param) {
        if (m_joint.rememberedType != Param::SmoothScale)
            return param->getAxis() == m_joint.rememberedAxis && param->getDriver() == node;
        return param->type() == Param::SmoothScale &&
               (param->getDriver() == m_joint.parent) == m_joint.paramDrivenByParent;
    };
    const auto found = std::find_if(joint->params().begin(), joint->params().end(), isLikeIt);
    return found != joint->params().end() ? *found : joint->params().back();
}

void RyToolParam::connectValues()
{
    Param *param = m_joint.param.get();
    if (!param)
        return;
    for (const RyFloatProperty *control : turns(param->getDynamicSphere()))
        QObject::connect(control, SIGNAL(currentValueChanged()), &m_tool, SLOT(dynamicMatrixChange()));
    for (const RyFloatProperty *control : turns(param->getStaticSphere()))
        QObject::connect(control, SIGNAL(currentValueChanged()), &m_tool, SLOT(staticMatrixChange()));
    QObject::connect(param, &Param::aboutToBeRemoved, &m_tool, [this] { set(nullptr); });
    QObject::connect(param, &Param::paramChanged, &m_tool, [this] { m_tool.drawnDataChanged(); });
    if (const RyLegacyBendParam *bend = this->bend()) {
        cacheAngles(*bend);
        for (const RyFloatProperty *controller : angleControllers(*bend))
            QObject::connect(controller, SIGNAL(currentValueChanged()), &m_tool, SLOT(validateAngleChange()));
    }
}

void RyToolParam::disconnectValues()
{
    const Param *param = m_joint.param.get();
    if (!param)
        return;
    for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
        for (const RyFloatProperty *control : turns(sphere))
            QObject::disconnect(control, nullptr, &m_tool, nullptr);
    }
    if (const RyLegacyBendParam *bend = this->bend()) {
        for (const RyFloatProperty *controller : angleControllers(*bend))
            QObject::disconnect(controller, nullptr, &m_tool, nullptr);
    }
    m_joint.forgetAngles();
}

RyLegacyBendParam *RyToolParam::bend() const
{
    return qobject_cast<RyLegacyBendParam *>(m_joint.param.get());
}

void RyToolParam::cacheAngles(const RyLegacyBendParam &bend)
{
    bend.getAngles(m_joint.angleA, m_joint.angleB, m_joint.angleC, m_joint.angleD);
}

void RyToolParam::setAngle(int index, float radians)
{
    if (const RyLegacyBendParam *bend = this->bend())
        setAngle(index, radians, bend->angleValues());
}

void RyToolParam::setAngle(int index, float radians, const RyBendAngles::Values &start)
{
    RyLegacyBendParam *bend = this->bend();
    if (!bend)
        return;
    const QScopedValueRollback<bool> guard(m_isSettingAngle, true);
    bend->setAnglePushing(index, radians, m_options.pushNeighborAngles, start);
    cacheAngles(*bend);
}

void RyToolParam::angleChanged(const QObject *controller)
{
    const RyLegacyBendParam *bend = this->bend();
    if (!bend || m_isSettingAngle)
        return;
    const RyUndoStack *stack = ryUndoStack();
    if (stack && stack->isInUndoRedo()) {
        cacheAngles(*bend);
        return;
    }
    const float cached[4] = {m_joint.angleA, m_joint.angleB, m_joint.angleC, m_joint.angleD};
    const std::array<RyFloatProperty *, 4> controllers = angleControllers(*bend);
    for (size_t i = 0; i < controllers.size(); ++i) {
        const float radians = float(double(controllers[i]->getValue()) * RyFastMath::RadiansPerDegree);
        if (controllers[i] != controller || radians == cached[i])
            continue;
        // Neighbours are pushed from where the ray was, or they would be taken for ones that it has passed.
        RyBendAngles::Values start = bend->angleValues();
        start[i] = float(double(cached[i]) / RyFastMath::RadiansPerDegree);
        setAngle(int(i), radians, start);
    }
}
