#include "demo_session/boneAxis.h"

#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"

#include <cmath>

bool isAxisAlong(const RyBone &bone)
{
    const RyVec3 direction = (bone.getEndPoint() - bone.getOrigin()).normalized();
    const RyVec3 axis = bone.getOrientation().multVec(RyVec3::axis(bone.getRotationOrder()[0]));
    return std::abs(direction.dot(axis)) > 0.9999f;
}
