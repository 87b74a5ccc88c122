#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/parametric/RyLegacyReach.h"

/// What the controls of one bone, the driver, do to a point that follows it by fractions:
///
///     W(p) = o + (p - o) L + translation fraction * translation
///     L    = M(Q^-1) * (1 + scale fraction * (diag(scale) - 1)) * turn A * turn B * turn C * M(Q)
///
/// with origin o and orientation Q, each turn right-handed by its control times its fraction, in the rotation order.
/// All fractions 1 give the bone's local map, all 0 the identity.
struct RyLegacyMotion
{
    RyLegacyMotion() = default;
    RyLegacyMotion(const RyLegacyRig::Bone &bone, const RyLegacyControls &itsControls);

    /// What carries normals: the same turns, and the scale's inverse to a like size.
    enum class Scale { None, Points, Normals };
    void mapLinear(const RyLegacyFractions &by, Scale scale, const double in[3], double out[3]) const;
    void mapPoint(const RyLegacyFractions &by, const double in[3], double out[3]) const;
    /// The local map of points that follow wholly, and the linear one of their normals.
    RyAffine wholeMap() const;
    RyAffine wholeNormalMap() const;

    /// By a turn about a bone axis.
    static void appendTurn(double matrix[3][3], int axis, double angle);
    /// Turns factors along the axes into those that normals take.
    static void carryNormals(double factors[3]);

    double origin[3] = {};
    double toAxes[3][3] = {}; // M(Q^-1); its rows are the columns of M(Q)
    int order[3] = {0, 1, 2};
    RyLegacyControls controls;
    bool isTurned = false;
    bool isScaled = false;
    bool isMoved = false;
    bool isAtRest() const { return !isTurned && !isScaled && !isMoved; }

private:
    RyAffine wholeLinear(Scale scale) const;
};
