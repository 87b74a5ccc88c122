#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"

#include "rycore/parametric/RyLegacyJointParam.h"

RyLegacyJointParam *RyJointState::editedPartner() const
{
    const RyLegacyJointParam *edited = param.get();
    return edited ? edited->findPartner() : nullptr;
}
