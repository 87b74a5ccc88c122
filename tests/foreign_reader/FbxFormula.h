#pragma once

#include "foreign/FbxSketch.h"

#include <Eigen/Geometry>

/// How a node of an FBX file stands to its parent, by the formula of the format:
/// T Roff Rp Rpre R Rpost^-1 Rp^-1 Soff Sp S Sp^-1, for column vectors. Angles in degrees.
struct FbxFormula
{
    using Vector = Eigen::Vector3d;

    Vector translation = Vector::Zero();
    Vector rotation = Vector::Zero();
    Vector scaling = Vector::Ones();
    Vector rotationOffset = Vector::Zero();
    Vector rotationPivot = Vector::Zero();
    Vector preRotation = Vector::Zero();
    Vector postRotation = Vector::Zero();
    Vector scalingOffset = Vector::Zero();
    Vector scalingPivot = Vector::Zero();
    int order = 0;        // of the axes of `rotation`: XYZ, XZY, YZX, YXZ, ZXY, ZYX, the first turns first
    bool isActive = true; // otherwise the order and the turns before and after count for nothing
    /// Of what the node shows, and of nothing below it.
    Vector geometricTranslation = Vector::Zero();
    Vector geometricRotation = Vector::Zero();
    Vector geometricScaling = Vector::Ones();

    FbxSketch::Properties properties() const;
    Eigen::Affine3d local() const;
    Eigen::Affine3d geometric() const;
};
