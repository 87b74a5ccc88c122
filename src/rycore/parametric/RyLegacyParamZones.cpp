#include "rycore/parametric/RyLegacyParamZones.h"

#include "rycore/math/RyAffine.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/RyLegacyRamps.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

using Param = RyLegacyJointParam;

RyLegacyParamZones::Ramp RyLegacyParamZones::rampOf(double start, double end, bool wanted, bool fallsFromOne)
{
    Ramp ramp;
    ramp.on = wanted && std::fabs(start) < RyLegacyTwistParam::Far && std::fabs(end) < RyLegacyTwistParam::Far;
    ramp.zero = start;
    ramp.one = end;
    ramp.fallsFromOne = fallsFromOne;
    return ramp;
}

double RyLegacyParamZones::Ramp::at(double x) const
{
    const double up = RyLegacyRamps::between(x, zero, one);
    return fallsFromOne ? 1.0 - up : up;
}

RyLegacyParamZones::RyLegacyParamZones(const RyLegacyRig &rig, const RyLegacyRig::Param &param)
{
    if (param.driver < 0 || param.axis < 0 || param.axis > 2 || param.type == Param::Curve)
        return;
    const RyLegacyRig::Bone &driver = rig.bones[size_t(param.driver)];
    // Transposed: an inverse quaternion would be rounded to floats.
    const RyAffine turn = RyAffine::fromRotation(driver.orientation);
    double line = 0.0;
    for (int i = 0; i < 3; ++i) {
        m_origin[i] = driver.origin[i];
        const double along = double(driver.end[i]) - driver.origin[i];
        line += along * along;
        for (int j = 0; j < 3; ++j)
            m_toAxes[i][j] = turn.m[j][i];
    }
    m_axis = param.axis;
    m_hasSpheres = (param.flags & Param::ApplyMatrices) && param.dynamicMatrix != param.staticMatrix;
    if (m_hasSpheres)
        m_spheres = RyLegacySphereZone(param.dynamicMatrix, param.staticMatrix);
    if (param.type == Param::Bend) {
        double angles[4];
        for (size_t i = 0; i < 4; ++i)
            angles[i] = double(param.values[i]) * RyFastMath::RadiansPerDegree;
        m_rays = RyLegacyBendZone(m_axis, angles, std::sqrt(line));
        m_hasRays = param.flags & Param::ApplyAngles;
        m_bulges = (param.flags & Param::ApplyBulges) && line > 0.0;
        m_decides = m_hasRays || m_hasSpheres;
    } else if (param.type == Param::Twist) {
        m_ramps[0] = rampOf(param.values[0], param.values[1], param.flags & Param::ApplyBlend, false);
        m_decides = m_ramps[0].on || m_hasSpheres;
    } else {
        const bool zones = param.flags & Param::ApplyZones;
        m_ramps[0] = rampOf(param.values[0], param.values[1], zones && (param.flags & Param::HighSide), true);
        m_ramps[1] = rampOf(param.values[3], param.values[2], zones && (param.flags & Param::LowSide), false);
        m_decides = m_ramps[0].on || m_ramps[1].on;
    }
}

void RyLegacyParamZones::toAxes(const double p[3], double y[3]) const
{
    const double d[3] = {p[0] - m_origin[0], p[1] - m_origin[1], p[2] - m_origin[2]};
    for (int j = 0; j < 3; ++j)
        y[j] = d[0] * m_toAxes[0][j] + d[1] * m_toAxes[1][j] + d[2] * m_toAxes[2][j];
}

double RyLegacyParamZones::weight(const double p[3]) const
{
    double y[3];
    toAxes(p, y);
    const double x[3] = {y[0] + m_origin[0], y[1] + m_origin[1], y[2] + m_origin[2]};
    double weight = 1.0;
    if (m_hasRays)
        weight *= RyLegacyBendZone::weight(m_rays.at(y));
    for (const Ramp &ramp : m_ramps) {
        if (ramp.on)
            weight *= ramp.at(x[m_axis]);
    }
    return m_hasSpheres ? weight * m_spheres.weight(x) : weight;
}

double RyLegacyParamZones::bulge(const double p[3]) const
{
    double y[3];
    toAxes(p, y);
    const RyLegacyBendZone::Ray ray = m_rays.at(y);
    const double share = RyLegacyBendZone::bulge(ray);
    return ray.sideOfA ? share : -share;
}
