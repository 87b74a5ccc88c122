#pragma once

/// Weights about one axis by four rays (see RyLegacyBendParam), in the driver's bone axes about its origin, `y`.
///
/// The angle of a vertex is that of its ray: axis X `atan2(y.y, -y.z)`, Y `atan2(y.z, y.x)`, Z `atan2(y.y, y.x)`.
/// Angles are measured from the middle of the dynamic rays, so that none of the four may matter by passing +-180
/// degrees:
///
///     half = wrapUp(B - C) / 2        mid = B - half
///     outA = min(half + max(wrap(A - B), 0), pi)      outD likewise with C - D
///     ramp = S((out - |delta|) / (out - half)),       delta = wrap(angle - mid), out by its sign
///
/// 1 between B and C, 0 beyond A and D and always on the ray opposite the middle. Rays B and C more than three quarters
/// of a turn apart have crossed: they count as one ray in their middle.
class RyLegacyBendZone
{
public:
    struct Ray
    {
        double ramp = 0.0;     // by the angle alone
        double nearAxis = 1.0; // from 0 on the axis line to 1 where the angle counts fully
        bool sideOfA = true;
    };

    RyLegacyBendZone() = default;
    /// Angles A, B, C, D in radians. `length`: of the driver; within a twentieth of it about the axis line weights go
    /// to one half, since vertices there that a twist moves off the line would jump.
    RyLegacyBendZone(int axis, const double angles[4], double length);

    Ray at(const double y[3]) const;
    /// `1/2 + (ramp - 1/2) S(r / r0)`, r the distance from the axis line.
    static double weight(const Ray &ray) { return 0.5 + (ray.ramp - 0.5) * ray.nearAxis; }
    /// `4 ramp (1 - ramp) S(r / r0)`: how much of a bulge a vertex takes; 0 on all four rays and on the axis line.
    static double bulge(const Ray &ray) { return 4.0 * ray.ramp * (1.0 - ray.ramp) * ray.nearAxis; }

private:
    int m_axis = 0;
    double m_middle = 0.0;
    double m_half = 0.0;
    double m_outA = 0.0;
    double m_outD = 0.0;
    double m_nearRadius = 0.0;
};
