#include "rycore/figure/RyLegacyParamNames.h"

static QString stemOf(RyLegacyJointParam::Type type)
{
    switch (type) {
    case RyLegacyJointParam::Bend:
        return QStringLiteral("joint");
    case RyLegacyJointParam::SmoothScale:
        return QStringLiteral("smoo");
    case RyLegacyJointParam::Twist:
        return QStringLiteral("twist");
    case RyLegacyJointParam::Curve:
        break;
    }
    return {};
}

QString RyLegacyParamNames::ofOwn(RyLegacyJointParam::Type type, int axis)
{
    const QString stem = stemOf(type);
    return stem.isEmpty() || axis < 0 || axis > 2 ? QString() : stem + QLatin1Char("xyz"[axis]);
}

QString RyLegacyParamNames::ofDriven(RyLegacyJointParam::Type type, int axis, const RyBone *driver)
{
    const QString name = ofOwn(type, axis);
    return driver && !name.isEmpty() ? driver->getName() + '_' + name : QString();
}
