#include "pluginsource/RyJointTools/operations/createLegacyJoint.h"

#include "rycore/figure/RyLegacyJointMaker.h"

RyLegacyJoint *createLegacyJoint(RyBone *bone, RyNode *parent, bool makeJoint, bool)
{
    return RyLegacyJointMaker(bone, RyLegacyJointMaker::Side::ByEndPoint).make(parent, makeJoint);
}
