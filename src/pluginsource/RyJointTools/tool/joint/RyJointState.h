#pragma once

#include "pluginsource/RyJointTools/tool/joint/RyGuardedPointer.h"

#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyNode.h"

#include <QPointer>

class RyLegacyJointParam;

/// What the tool edits: the current node and, of its joint, the current parameter.
struct RyJointState
{
    QPointer<RyNode> node;
    QPointer<RyNode> parent; // of the node, null without one
    RyVec3 cachedOrigin;     // of the node when it was last seen, in figure space

    RyGuardedPointer<RyLegacyJointParam> param;
    RyGuardedPointer<RyLegacyJointParam> partner;     // on the parent's joint
    RyGuardedPointer<RyLegacyJointParam> bendPartner; // on the driver's joint
    bool paramDrivenByParent = false;
    int rememberedAxis = -1; // of the last parameter that was chosen
    int rememberedType = 0;
    float angleA = 0.0f; // of the bend parameter, in radians
    float angleB = 0.0f;
    float angleC = 0.0f;
    float angleD = 0.0f;

    /// The one whose values go with those of the current parameter: of the same kind, about the same axis, on the other
    /// side of the joint. Null without one. Neither of the two above where another kind stands before it or where
    /// another bone than the node drives the parameter.
    RyLegacyJointParam *editedPartner() const;
    void forgetAngles() { angleA = angleB = angleC = angleD = 0.0f; }
};
