#include "pluginsource/RyJointTools/tool/RyParamFollowUp.h"

#include "pluginsource/RyJointTools/tool/display/RyJointToolDisplay.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/joint/RyToolOptions.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/RyViewTool.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <array>

using Param = RyLegacyJointParam;
using Sphere = RyLegacyJointSphere;

/// The controls of a sphere that turn it about X and Y, which exclude each other while axes are restricted.
static std::array<RyFloatProperty *, 2> turns(const Sphere *sphere)
{
    return {sphere->getXRotControl(), sphere->getYRotControl()};
}

static std::array<RyFloatProperty *, 4> angleControllers(const RyLegacyBendParam &bend)
{
    return {bend.getStaticAngleAController(), bend.getDynamicAngleBController(), bend.getDynamicAngleCController(),
            bend.getStaticAngleDController()};
}

static Sphere *dynamicSphere(const Param &param)
{
    return param.getDynamicSphere();
}

static Sphere *staticSphere(const Param &param)
{
    return param.getStaticSphere();
}

RyLegacyBendParam *RyParamFollowUp::bend() const
{
    return qobject_cast<RyLegacyBendParam *>(m_joint.param.get());
}

bool RyParamFollowUp::isEditOfOneValue(const Param &param) const
{
    const RyUndoStack *stack = ryUndoStack();
    return param.editLevel() == 0 && !(stack && (stack->isInUndoRedo() || stack->isLocked()));
}

void RyParamFollowUp::connectValues()
{
    const Param *param = m_joint.param.get();
    if (!param)
        return;
    const auto follow = [this](const RyFloatProperty *control, const char *slot) {
        QObject::connect(control, SIGNAL(currentValueChanged()), &m_tool, slot, Qt::UniqueConnection);
    };
    for (const RyFloatProperty *control : turns(param->getDynamicSphere()))
        follow(control, SLOT(dynamicMatrixChange()));
    for (const RyFloatProperty *control : turns(param->getStaticSphere()))
        follow(control, SLOT(staticMatrixChange()));
    const RyLegacyBendParam *bend = this->bend();
    if (!bend)
        return;
    cacheAngles(*bend);
    for (const RyFloatProperty *controller : angleControllers(*bend))
        follow(controller, SLOT(validateAngleChange()));
}

void RyParamFollowUp::disconnectValues()
{
    m_joint.forgetAngles();
    m_edit = Edit();
    const Param *param = m_joint.param.get();
    if (!param)
        return;
    for (const SphereOf sphereOf : {dynamicSphere, staticSphere}) {
        for (const RyFloatProperty *control : turns(sphereOf(*param)))
            QObject::disconnect(control, nullptr, &m_tool, nullptr);
    }
    if (const RyLegacyBendParam *bend = this->bend()) {
        for (const RyFloatProperty *controller : angleControllers(*bend))
            QObject::disconnect(controller, nullptr, &m_tool, nullptr);
    }
}

// --- Angles

void RyParamFollowUp::cacheAngles(const RyLegacyBendParam &bend)
{
    m_angles = bend.angleValues();
    bend.getAngles(m_joint.angleA, m_joint.angleB, m_joint.angleC, m_joint.angleD);
}

void RyParamFollowUp::setAngle(int index, float radians)
{
    if (const RyLegacyBendParam *bend = this->bend())
        setAngle(index, radians, bend->angleValues());
}

void RyParamFollowUp::setAngle(int index, float radians, const RyBendAngles::Values &start)
{
    m_edit = Edit();
    RyLegacyBendParam *bend = this->bend();
    if (!bend)
        return;
    const QScopedValueRollback<bool> guard(m_isWriting, true);
    bend->setAnglePushing(index, radians, m_options.pushNeighborAngles, start);
    cacheAngles(*bend);
}

RyBendAngles::Values RyParamFollowUp::startOf(int index)
{
    const RyUndoStack *stack = ryUndoStack();
    if (!stack || !stack->isHoldOpen())
        m_edit = Edit();
    else if (m_edit.index != index || m_edit.step != stack->index())
        m_edit = {index, stack->index(), m_angles};
    return m_edit.index == index ? m_edit.start : m_angles;
}

void RyParamFollowUp::angleChanged(const QObject *controller)
{
    RyLegacyBendParam *bend = this->bend();
    if (!bend || m_isWriting)
        return;
    const std::array<RyFloatProperty *, 4> controllers = angleControllers(*bend);
    const auto found = std::find(controllers.begin(), controllers.end(), controller);
    if (found == controllers.end())
        return;
    if (!isEditOfOneValue(*bend)) {
        m_edit = Edit();
        cacheAngles(*bend);
        return;
    }
    const auto index = size_t(found - controllers.begin());
    const float degrees = (*found)->getValue();
    if (degrees == m_angles[index])
        return;
    const QScopedValueRollback<bool> guard(m_isWriting, true);
    bend->setAngleValuePushing(int(index), degrees, m_options.pushNeighborAngles, startOf(int(index)));
    cacheAngles(*bend);
}

// --- Turns of spheres

void RyParamFollowUp::dynamicTurnChanged(const QObject *control)
{
    turnChanged(dynamicSphere, control);
}

void RyParamFollowUp::staticTurnChanged(const QObject *control)
{
    turnChanged(staticSphere, control);
}

void RyParamFollowUp::turnChanged(SphereOf sphereOf, const QObject *control)
{
    const Param *param = m_joint.param.get();
    if (m_isWriting)
        return;
    if (param && m_display.restrictRotationAxes && isEditOfOneValue(*param)) {
        const std::array<RyFloatProperty *, 2> pair = turns(sphereOf(*param));
        const auto changed = std::find(pair.begin(), pair.end(), control);
        if (changed != pair.end() && pair[0]->getValue() != 0.0f && pair[1]->getValue() != 0.0f) {
            const QScopedValueRollback<bool> guard(m_isWriting, true);
            const size_t other = changed == pair.begin() ? 1 : 0;
            pair[other]->adjustValue(0.0f);
            if (const Param *partner = m_joint.editedPartner())
                turns(sphereOf(*partner))[other]->adjustValue(0.0f);
        }
    }
    m_tool.drawnDataChanged();
}
