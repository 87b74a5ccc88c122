#include "rycore/parametric/RyLegacyBendParam.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"

#include <cmath>

static float toRadians(float degrees)
{
    return float(degrees * RyFastMath::RadiansPerDegree);
}

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
    return toRadians(controllers()[size_t(index)]->getValue());
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

RyBendAngles::Values RyLegacyBendParam::angleValues() const
{
    RyBendAngles::Values degrees{};
    for (size_t i = 0; i < degrees.size(); ++i)
        degrees[i] = controllers()[i]->getValue();
    return degrees;
}

void RyLegacyBendParam::setAngleValue(int index, float degrees)
{
    RyFloatProperty *controller = controllers()[size_t(index)];
    if (controller->getValue() != degrees)
        controller->adjustValue(degrees);
}

void RyLegacyBendParam::setAngleValues(const RyBendAngles::Values &degrees)
{
    for (int i = 0; i < int(degrees.size()); ++i)
        setAngleValue(i, degrees[size_t(i)]);
}

void RyLegacyBendParam::setAnglePushing(int index, float radians, bool push, const RyBendAngles::Values &start)
{
    if (index < 0 || index > 3)
        return;
    const float before = start[size_t(index)];
    const bool isBack = radians == toRadians(before);
    setAngleValuePushing(index, isBack ? before : float(radians * RyFastMath::DegreesPerRadian), push, start);
}

void RyLegacyBendParam::setAngleValuePushing(int index, float degrees, bool push, const RyBendAngles::Values &start)
{
    if (index < 0 || index > 3 || !std::isfinite(degrees))
        return;
    RyBendAngles::Values values = start;
    if (push && degrees != start[size_t(index)]) {
        RyBendAngles angles(start);
        angles.push(index, double(degrees));
        values = angles.values();
    } else {
        values[size_t(index)] = degrees;
    }
    beginEdit();
    setAngleValues(values);
    auto *partner = qobject_cast<RyLegacyBendParam *>(findPartner());
    if (partner && push)
        partner->setAngleValues(values);
    else if (partner)
        partner->setAngleValue(index, degrees);
    finishEdit();
}

void RyLegacyBendParam::setAnglePushing(int index, float radians, bool push)
{
    setAnglePushing(index, radians, push, angleValues());
}

RyLegacyJointParam *RyLegacyBendParam::copy() const
{
    return copyInto(new RyLegacyBendParam(QString(), getAxis(), getDriver()));
}
