#include "pluginsource/RyJointTools/tool/drawing/RyWeightSide.h"

#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"

#include "rycore/parametric/RyLegacyJointParam.h"

std::array<RyWeightSide, 2> RyWeightSide::of(const RyJointState &joint)
{
    RyLegacyJointParam *param = joint.param.get();
    if (!param)
        return {};
    // The shares of two smooth-scales make one whole: what is more of one is less of the other.
    const bool isScale = param->type() == RyLegacyJointParam::SmoothScale;
    RyLegacyJointParam *partner = joint.editedPartner();
    return {RyWeightSide{param, partner, isScale, false}, RyWeightSide{partner, param, false, isScale}};
}
