#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

/// Names of joint parameters, which say their axes. Files and scripts know parameters by them: they are of no language.
namespace RyLegacyParamNames {

/// On the driver's own joint: "twistx", "jointy". Curves have no such names: empty.
QString ofOwn(RyLegacyJointParam::Type type, int axis);
/// On the joint of another bone: the same after the driver's name, "lShin_jointy"; of smooth-scales "lShin_smoox".
QString ofDriven(RyLegacyJointParam::Type type, int axis, const RyBone *driver);

} // namespace RyLegacyParamNames
