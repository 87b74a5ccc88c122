#include "pluginsource/RyJointTools/operations/moveParams.h"

#include "pluginsource/RyJointTools/operations/RyParamPlacement.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBinding.h"

static RyFloatProperty *centerControl(const RyLegacyJointSphere &sphere, int axis)
{
    return sphere.controls()[size_t(axis)];
}

std::vector<RyLegacyJointParam *> paramsAround(const RyNode *node)
{
    std::vector<RyLegacyJointParam *> params;
    if (const RyLegacyJoint *joint = RyLegacyJoint::findJoint(node)) {
        for (RyLegacyJointParam *param : joint->params()) {
            if (!param->getDriver() || param->getDriver()->getNodeParent() != node)
                params.push_back(param);
        }
    }
    if (const RyLegacyJoint *above = RyLegacyJoint::findJoint(node ? node->getNodeParent() : nullptr)) {
        for (RyLegacyJointParam *param : above->params()) {
            if (param->getDriver() == node)
                params.push_back(param);
        }
    }
    return params;
}

std::vector<RyFloatProperty *> zoneEnds(const RyLegacyJointParam &param)
{
    const bool hasZones = param.type() == RyLegacyJointParam::Twist || param.type() == RyLegacyJointParam::SmoothScale;
    return hasZones ? param.controllers() : std::vector<RyFloatProperty *>();
}

void translateParam(RyLegacyJointParam *param, const RyVec3 &way)
{
    if (!param)
        return;
    param->beginEdit();
    RyParamPlacement(*param).move(way);
    param->finishEdit();
}

// Turning the matrix about its own centre leaves scale and centre as they are: only the turns are written, so that no
// splitting of a matrix rounds the rest.
void rotateParam(RyLegacyJointParam *param, const RyQuat &turn)
{
    if (!param || turn == RyQuat())
        return;
    param->beginEdit();
    for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
        RyFloatProperty *const turns[] = {sphere->getXRotControl(), sphere->getYRotControl(), sphere->getZRotControl()};
        const RyVec3 before(turns[0]->getValue(), turns[1]->getValue(), turns[2]->getValue());
        const RyVec3 after = (RyQuat::fromEulerXYZ(before) * turn).toEulerXYZ();
        for (int axis = 0; axis < 3; ++axis)
            turns[axis]->adjustValue(after[axis]);
    }
    param->finishEdit();
}

void scaleParam(RyLegacyJointParam *param, const RyVec3 &center, int axis, float factor)
{
    if (!param || !isAxis(axis))
        return;
    const auto scale = [&](RyFloatProperty *control) {
        control->adjustValue(center[axis] + (control->getValue() - center[axis]) * factor);
    };
    scale(centerControl(*param->getDynamicSphere(), axis));
    scale(centerControl(*param->getStaticSphere(), axis));
    if (param->getAxis() != axis)
        return;
    for (RyFloatProperty *end : zoneEnds(*param))
        scale(end);
}

/// The parameter on a child's joint that is to the child what `param` is to the node.
static RyLegacyJointParam *matchingParam(const RyNode &node, const RyNode *child, const RyLegacyJointParam &param)
{
    const RyLegacyJoint *joint = RyLegacyJoint::findJoint(qobject_cast<const RyBone *>(child));
    const RyBone *driver = param.getDriver();
    if (!joint || !driver || (driver != &node && driver != node.getNodeParent()))
        return nullptr;
    return joint->findParam(param.type(), qobject_cast<const RyBone *>(driver == &node ? child : &node),
                            param.getAxis());
}

void propagateParamTranslation(const RyNode *node, RyLegacyJointParam *param, float way, int axis)
{
    if (!param || !isAxis(axis) || way == 0.0f)
        return;
    translateParam(param, RyVec3::axis(axis) * way);
    if (!node)
        return;
    for (const RyNode *child : node->nodeChildrenIterator())
        propagateParamTranslation(child, matchingParam(*node, child, *param), way, axis);
}

void propagateSphereTranslation(RyLegacyJointSphere *sphere, float way, int axis)
{
    if (!sphere || !isAxis(axis))
        return;
    RyFloatProperty *control = centerControl(*sphere, axis);
    control->adjustValue(control->getValue() + way);
}

RyBindingEdit::RyBindingEdit(const RyNode *node) : m_binding(RyLegacyBinding::bindingForChildOf(node))
{
    if (m_binding)
        m_binding->beginEdit();
}

RyBindingEdit::~RyBindingEdit()
{
    if (m_binding)
        m_binding->finishEdit();
}
