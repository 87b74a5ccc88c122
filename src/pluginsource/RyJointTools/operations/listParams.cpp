#include "pluginsource/RyJointTools/operations/listParams.h"

#include "rycore/parametric/RyLegacyJoint.h"

std::vector<RyLegacyJointParam *> listParams(const RyNode *node)
{
    const RyLegacyJoint *joint = RyLegacyJoint::findJoint(node);
    if (!joint)
        return {};
    std::vector<RyLegacyJointParam *> list = joint->jointParamsIterator();
    std::erase_if(list, [node](const RyLegacyJointParam *param) {
        return param->getDriver() != node && param->type() != RyLegacyJointParam::SmoothScale;
    });
    return list;
}
