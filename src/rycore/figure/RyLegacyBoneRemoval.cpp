#include "rycore/figure/RyLegacyBoneRemoval.h"

#include "rycore/figure/RyLegacyParamNames.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

/// For the side of `parent`: the other one than that of the child's own.
static RyLegacyJointParam *makeSmoothScale(const RyLegacyJoint &own, const RyBone *parent)
{
    RyBone *child = own.getBone();
    const int axis = child->getRotationOrder()[0];
    const RyLegacyJointParam *other = own.findParam(RyLegacyJointParam::SmoothScale, parent, -1);
    auto *scale = new RyLegacySmoothScale(RyLegacyParamNames::ofDriven(RyLegacyJointParam::SmoothScale, axis, child),
                                          axis, child);
    const bool high = other && other->flags() & RyLegacyJointParam::LowSide;
    scale->setHiValid(high);
    scale->setLoValid(!high);
    return scale;
}

static bool isDriver(const RyBone *bone, const RyLegacyBinding &binding)
{
    return std::any_of(binding.joints().begin(), binding.joints().end(), [bone](const RyLegacyJoint *joint) {
        return std::any_of(joint->params().begin(), joint->params().end(),
                           [bone](const RyLegacyJointParam *param) { return param->getDriver() == bone; });
    });
}

RyLegacyBoneRemoval::RyLegacyBoneRemoval(RyBone *bone) : m_bone(bone)
{
    for (RyNode *child : bone->nodeChildrenIterator())
        m_children.emplace_back(child);
    std::vector<RySkeleton *> skeletons{bone->getSkeleton()};
    // It may have joined another skeleton or drive parameters of other figures.
    if (const RyScene *scene = bone->getScene())
        skeletons = scene->getSkeletons();
    for (const RySkeleton *skeleton : skeletons) {
        RyLegacyBinding *binding = RyLegacyBinding::findBinding(skeleton);
        RyLegacyJoint *joint = binding ? binding->findJoint(bone) : nullptr;
        if (joint || (binding && isDriver(bone, *binding)))
            m_places.push_back({RyRef<RyLegacyBinding>(binding), RyRef<RyLegacyJoint>(joint)});
    }
}

void RyLegacyBoneRemoval::removeLegacyJoint()
{
    for (const Place &place : m_places) {
        place.binding->beginEdit();
        if (place.joint)
            place.binding->removeJoint(place.joint.get());
        for (RyLegacyJoint *joint : place.binding->joints()) {
            const bool isChild = std::any_of(m_children.begin(), m_children.end(), [joint](const RyRef<RyNode> &child) {
                return child.get() == joint->getBone();
            });
            for (RyLegacyJointParam *param : joint->jointParamsIterator()) {
                const bool waits = isChild && param->type() == RyLegacyJointParam::SmoothScale;
                if (param->getDriver() == m_bone.get() && !waits)
                    joint->removeJointParam(param);
            }
        }
        place.binding->finishEdit();
    }
}

void RyLegacyBoneRemoval::rebuildLegacyJoint(RyNode *child, RyNode *parent)
{
    auto *parentBone = qobject_cast<RyBone *>(parent);
    for (const Place &place : m_places) {
        RyLegacyJoint *joint = place.binding->findJoint(child);
        if (!joint)
            continue;
        place.binding->beginEdit();
        driveByParent(*joint, parentBone);
        if (RyLegacyJoint *parentJoint = place.binding->findJoint(parentBone))
            makeCopies(*joint, place.joint.get(), *parentJoint);
        place.binding->finishEdit();
    }
}

void RyLegacyBoneRemoval::driveByParent(RyLegacyJoint &joint, RyBone *parent) const
{
    for (RyLegacyJointParam *param : joint.jointParamsIterator()) {
        if (param->getDriver() != m_bone.get())
            continue;
        if (!parent) {
            joint.removeJointParam(param);
            continue;
        }
        const int axis = parent->getRotationOrder()[0];
        param->setDriver(parent);
        param->setAxis(axis);
        param->setName(RyLegacyParamNames::ofDriven(param->type(), axis, parent));
    }
}

void RyLegacyBoneRemoval::makeCopies(const RyLegacyJoint &own, const RyLegacyJoint *old, RyLegacyJoint &parentJoint)
{
    RyBone *child = own.getBone();
    for (const RyLegacyJointParam *param : own.params()) {
        const bool turns = param->type() == RyLegacyJointParam::Bend || param->type() == RyLegacyJointParam::Twist;
        if (param->getDriver() != child || !turns)
            continue;
        RyLegacyJointParam *copy = param->copy();
        copy->setName(RyLegacyParamNames::ofDriven(param->type(), param->getAxis(), child));
        copy->setFlipped(true);
        parentJoint.addJointParam(copy);
    }
    // The driver stays, and with it the space of the zones.
    const RyLegacyJointParam *scale = old ? old->findParam(RyLegacyJointParam::SmoothScale, child, -1) : nullptr;
    parentJoint.addJointParam(scale ? scale->copy() : makeSmoothScale(own, parentJoint.getBone()));
}
