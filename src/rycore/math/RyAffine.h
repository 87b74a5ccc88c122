#pragma once

#include "rycore/math/RyMatrix4.h"

/// An affine map of row vectors in double precision: chains of nodes and the way to and from files are composed in it,
/// so that deep hierarchies and unit factors cost no accuracy. Rows 0-2 are the linear part, row 3 the translation.
class RyAffine
{
public:
    double m[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};

    RyAffine() = default;
    explicit RyAffine(const RyMatrix4 &matrix);
    static RyAffine fromTranslation(const RyVec3 &t);
    static RyAffine fromTranslation(double x, double y, double z);
    static RyAffine fromRotation(const RyQuat &q);
    static RyAffine fromScale(double x, double y, double z);
    static RyAffine fromScale(double factor) { return fromScale(factor, factor, factor); }

    /// This map first, then `o`.
    RyAffine operator*(const RyAffine &o) const;
    bool operator==(const RyAffine &o) const;
    double determinant() const;
    /// False, and the result the identity, when the linear part cannot be inverted.
    bool invert(RyAffine &result) const;
    /// The inverse; the identity when singular.
    RyAffine inverse() const;

    RyVec3 mapPoint(const RyVec3 &p) const;
    void mapPoint(const double in[3], double out[3]) const;
    RyVec3 mapDirection(const RyVec3 &d) const;
    RyVec3 translation() const { return {float(m[3][0]), float(m[3][1]), float(m[3][2])}; }
    RyMatrix4 toMatrix4() const;

    /// Polar decomposition of the linear part: `linear = stretch * rotation` (the symmetric stretch acts first). With a
    /// negative determinant the rotation is proper and the stretch carries the reflection.
    void decomposePolar(RyAffine &stretch, RyQuat &rotation) const;
};
