#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

/// A parameter for a plane of the driver's axes. Kept and saved; deforms nothing.
class RyLegacyCurve : public RyLegacyJointParam
{
    Q_OBJECT
public:
    explicit RyLegacyCurve(const QString &name = QString(), int plane = 3, RyBone *driver = nullptr)
        : RyLegacyJointParam(name, plane, driver, 0)
    {}
    Type type() const override { return Curve; }
    RyLegacyJointParam *copy() const override { return copyInto(new RyLegacyCurve(QString(), getAxis(), getDriver())); }
};
