#include "rycore/parametric/RyLegacyBendParam.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"

RyLegacyBendParam::RyLegacyBendParam(const QString &name, int axis, RyBone *driver)
    : RyLegacyJointParam(name, axis, driver, ApplyAngles)
{
    addController("Angles", "staticA", "Static A", 90.0f, 180.0f);
    addController("Angles", "dynamicB", "Dynamic B", 45.0f, 180.0f);
    addController("Angles", "dynamicC", "Dynamic C", -45.0f, 180.0f);
    addController("Angles", "staticD", "Static D", -90.0f, 180.0f);
    addController("Bulges", "posLeftBulge", "Positive Left", 0.0f, 10.0f);
    addController("Bulges", "posRightBulge", "Positive Right", 0.0f, 10.0f);
    addController("Bulges", "negLeftBulge", "Negative Left", 0.0f, 10.0f);
    addController("Bulges", "negRightBulge", "Negative Right", 0.0f, 10.0f);
}

float RyLegacyBendParam::angle(int index) const
{
    return float(controllers()[size_t(index)]->getValue() * RyFastMath::RadiansPerDegree);
}

void RyLegacyBendParam::setAngle(int index, float radians)
{
    controllers()[size_t(index)]->adjustValue(float(radians * RyFastMath::DegreesPerRadian));
}

void RyLegacyBendParam::getAngles(float &staticA, float &dynamicB, float &dynamicC, float &staticD) const
{
    staticA = angle(0);
    dynamicB = angle(1);
    dynamicC = angle(2);
    staticD = angle(3);
}

void RyLegacyBendParam::setAngles(float staticA, float dynamicB, float dynamicC, float staticD)
{
    beginEdit();
    setAngle(0, staticA);
    setAngle(1, dynamicB);
    setAngle(2, dynamicC);
    setAngle(3, staticD);
    finishEdit();
}

RyLegacyJointParam *RyLegacyBendParam::copy() const
{
    return copyInto(new RyLegacyBendParam(QString(), getAxis(), getDriver()));
}
