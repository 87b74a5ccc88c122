#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/math/RyMatrix3.h"
#include "rycore/math/RyQuat.h"
#include "rycore/parametric/RyLegacyJointParam.h"

RyParamSpace RyParamSpace::of(const RyLegacyJointParam &param, const RyNode &node)
{
    const RyNode &driver = param.getDriver() ? *param.getDriver() : node;
    const RyQuat orientation = driver.getOrientation();
    const RyQuat rotation = driver.getWSRot();
    RyParamSpace space;
    space.origin = driver.getOrigin();
    RyMatrix3 linear;
    for (int k = 0; k < 3; ++k) {
        const RyVec3 axis = orientation.multVec(RyVec3::axis(k));
        linear.setRow(k, axis);
        space.axes[k] = rotation.multVec(axis);
    }
    space.toWorld = RyMatrix4(linear, RyVec3()) * driver.getWSTransform();
    return space;
}

RyMatrix4 RyParamSpace::sphereToWorld(const RyMatrix4 &sphere) const
{
    return sphere * RyMatrix4(RyMatrix3(), -origin) * toWorld;
}
