#include "rycore/figure/RyLegacyJointMaker.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyBendRays.h"
#include "rycore/figure/RyLegacyBoneShape.h"
#include "rycore/figure/RyLegacyParamNames.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/scene/RySkeleton.h"

static void setBoth(RyFloatProperty *property, float value)
{
    property->setDefaultValue(value);
    property->setValue(value);
}

bool RyLegacyJointMaker::goesForward(const RyBone &bone, int axis, Side side)
{
    const RyVec3 end = bone.getEndPoint();
    if (side == Side::ByEndPoint)
        return end[axis] >= 0.0f;
    return bone.getOrientation().inverse().multVec(end - bone.getOrigin())[axis] >= 0.0f;
}

RyLegacyJoint *RyLegacyJointMaker::make(RyNode *parent, bool newJoint) const
{
    if (!m_bone)
        return nullptr;
    RyLegacyBinding *binding = RyLegacyBinding::bindingForChildOf(newJoint && parent ? parent : m_bone);
    if (!binding)
        return nullptr;
    binding->beginEdit();
    RyLegacyJoint *joint = newJoint ? makeEmpty(*binding) : binding->findJoint(m_bone);
    if (joint) {
        const bool forward = goesForward(*m_bone, m_bone->getRotationOrder()[0], m_side);
        auto *parentBone = qobject_cast<RyBone *>(parent);
        addOwn(*joint, true);
        if (parentBone)
            addSmoothScale(*joint, parentBone, forward);
        if (RyLegacyJoint *parentJoint = binding->findJoint(parentBone)) {
            addCopies(*joint, *parentJoint);
            addSmoothScale(*parentJoint, m_bone, !forward);
        }
    }
    binding->finishEdit();
    return joint;
}

RyLegacyJoint *RyLegacyJointMaker::makeRoot(RyLegacyBinding &binding) const
{
    binding.beginEdit();
    RyLegacyJoint *joint = makeEmpty(binding);
    addOwn(*joint, false);
    binding.finishEdit();
    return joint;
}

RyLegacyJoint *RyLegacyJointMaker::makeEmpty(RyLegacyBinding &binding) const
{
    auto *joint = new RyLegacyJoint;
    joint->setBone(m_bone, true);
    binding.addJoint(joint);
    m_bone->getXRotControl()->setLabel(QStringLiteral("XRot"));
    m_bone->getYRotControl()->setLabel(QStringLiteral("YRot"));
    m_bone->getZRotControl()->setLabel(QStringLiteral("ZRot"));
    return joint;
}

void RyLegacyJointMaker::setSpheres(RyLegacyJointParam &param, const RyLegacyJoint &joint) const
{
    const RyMatrix4 sphere = RyLegacyBoneShape(*m_bone, joint.getBinding()->getObject()).sphere(0.5f);
    param.setMatrices(sphere, sphere, true);
}

void RyLegacyJointMaker::addOwn(RyLegacyJoint &joint, bool applyAngles) const
{
    const int first = m_bone->getRotationOrder()[0];
    const bool forward = goesForward(*m_bone, first, m_side);
    auto *twist = new RyLegacyTwistParam(RyLegacyParamNames::ofOwn(RyLegacyJointParam::Twist, first), first, m_bone);
    const float farthest = forward ? RyLegacyTwistParam::Farthest : -RyLegacyTwistParam::Farthest;
    setBoth(twist->getBlendStartPostionController(), -farthest);
    setBoth(twist->getBlendEndPostionController(), farthest);
    setSpheres(*twist, joint);
    joint.addJointParam(twist);
    for (int axis = 0; axis < 3; ++axis) {
        if (axis == first)
            continue;
        auto *bend = new RyLegacyBendParam(RyLegacyParamNames::ofOwn(RyLegacyJointParam::Bend, axis), axis, m_bone);
        bend->setApplyAngles(applyAngles);
        RyLegacyBendRays::ofNewBone(first, axis, forward).writeTo(*bend, true);
        setSpheres(*bend, joint);
        joint.addJointParam(bend);
    }
}

void RyLegacyJointMaker::addCopies(const RyLegacyJoint &own, RyLegacyJoint &parentJoint) const
{
    for (const RyLegacyJointParam *param : own.jointParamsIterator()) {
        if (param->getDriver() != m_bone || param->type() == RyLegacyJointParam::SmoothScale)
            continue;
        RyLegacyJointParam *copy = param->copy();
        copy->setName(RyLegacyParamNames::ofDriven(param->type(), param->getAxis(), m_bone));
        copy->setFlipped(true);
        parentJoint.addJointParam(copy);
    }
}

void RyLegacyJointMaker::addSmoothScale(RyLegacyJoint &joint, RyBone *driver, bool high) const
{
    const int axis = driver->getRotationOrder()[0];
    auto *scale = new RyLegacySmoothScale(RyLegacyParamNames::ofDriven(RyLegacyJointParam::SmoothScale, axis, driver),
                                          axis, driver);
    scale->setHiValid(high);
    scale->setLoValid(!high);
    setSpheres(*scale, joint);
    joint.addJointParam(scale);
}
