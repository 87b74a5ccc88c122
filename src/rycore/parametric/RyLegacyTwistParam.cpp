#include "rycore/parametric/RyLegacyTwistParam.h"

#include "rycore/base/RyFloatProperty.h"

RyLegacyTwistParam::RyLegacyTwistParam(const QString &name, int axis, RyBone *driver)
    : RyLegacyJointParam(name, axis, driver, 0)
{
    addController("Twist Blend Zone", "start", "Start", -Farthest, Farthest);
    addController("Twist Blend Zone", "end", "End", Farthest, Farthest);
}

float RyLegacyTwistParam::getStart() const
{
    return getBlendStartPostionController()->getValue();
}

void RyLegacyTwistParam::setStart(float start)
{
    getBlendStartPostionController()->adjustValue(start);
}

float RyLegacyTwistParam::getEnd() const
{
    return getBlendEndPostionController()->getValue();
}

void RyLegacyTwistParam::setEnd(float end)
{
    getBlendEndPostionController()->adjustValue(end);
}

RyLegacyJointParam *RyLegacyTwistParam::copy() const
{
    return copyInto(new RyLegacyTwistParam(QString(), getAxis(), getDriver()));
}
