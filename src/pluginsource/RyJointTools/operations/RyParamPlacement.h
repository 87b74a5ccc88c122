#pragma once

#include "rycore/math/RyVec3.h"

#include <QPointer>

#include <vector>

class RyFloatProperty;
class RyLegacyJointParam;

/// Where the spheres and zones of a parameter of a joint stood at one moment, in parameter space.
class RyParamPlacement
{
public:
    explicit RyParamPlacement(RyLegacyJointParam &param);

    /// Both spheres and the ends of zones stand by `way` from where they stood. Current values only.
    void move(const RyVec3 &way) const;

private:
    struct Value
    {
        RyFloatProperty *control; // the parameter's
        float start;
        int axis; // along which it counts
    };
    QPointer<RyLegacyJointParam> m_param;
    std::vector<Value> m_values;
};
