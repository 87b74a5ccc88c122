#include "rycore/script/prototypes/RyLegacyJointPrototype.h"

QString RyLegacyJointPrototype::getName() const
{
    const auto *joint = self<RyLegacyJoint>();
    return joint ? joint->getName() : QString();
}

RyBone *RyLegacyJointPrototype::getBone() const
{
    const auto *joint = self<RyLegacyJoint>();
    return joint ? joint->getBone() : nullptr;
}

QString RyLegacyJointPrototype::getGroupName() const
{
    const auto *joint = self<RyLegacyJoint>();
    return joint ? joint->getGroupName() : QString();
}

int RyLegacyJointPrototype::getNumParams() const
{
    const auto *joint = self<RyLegacyJoint>();
    return joint ? int(joint->params().size()) : 0;
}

QScriptValue RyLegacyJointPrototype::getParams() const
{
    const auto *joint = self<RyLegacyJoint>();
    return toArray(joint ? joint->params() : std::vector<RyLegacyJointParam *>());
}

RyLegacyJointParam *RyLegacyJointPrototype::findParam(const QString &name) const
{
    const auto *joint = self<RyLegacyJoint>();
    return joint ? joint->findParam(name) : nullptr;
}
