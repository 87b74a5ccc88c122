#pragma once

#include "rycore/parametric/RyLegacyBendZone.h"
#include "rycore/parametric/RyLegacyRig.h"
#include "rycore/parametric/RyLegacySphereZone.h"

/// The zones of one parameter, ready to weigh points. A zone that is switched on but was never put in place (far away,
/// or two equal spheres) says nothing.
class RyLegacyParamZones
{
public:
    RyLegacyParamZones() = default;
    /// Without a driver there are no zones.
    RyLegacyParamZones(const RyLegacyRig &rig, const RyLegacyRig::Param &param);

    /// Whether weights come from zones: of a bend its rays or spheres, of a twist its zone or spheres, of a
    /// smooth-scale its zones. Otherwise the place of the parameter decides.
    bool decides() const { return m_decides; }
    /// The product of the zones at a point of figure space at rest, 1 without any.
    double weight(const double p[3]) const;
    bool bulges() const { return m_bulges; }
    /// The share of the bulge there, negative on the side of D.
    double bulge(const double p[3]) const;

private:
    struct Ramp
    {
        bool on = false;
        double zero = 0.0; // where it is 0
        double one = 0.0;  // where it is 1
        bool fallsFromOne = false;
        double at(double x) const;
    };
    static Ramp rampOf(double start, double end, bool wanted, bool fallsFromOne);
    void toAxes(const double p[3], double y[3]) const;

    int m_axis = 0;
    bool m_decides = false;
    bool m_bulges = false;
    bool m_hasRays = false;
    bool m_hasSpheres = false;
    double m_origin[3] = {};
    double m_toAxes[3][3] = {};
    RyLegacyBendZone m_rays;
    RyLegacySphereZone m_spheres;
    Ramp m_ramps[2];
};
