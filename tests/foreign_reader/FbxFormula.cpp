#include "foreign_reader/FbxFormula.h"

#include <cmath>

namespace {

using Vector = FbxFormula::Vector;

Eigen::Matrix3d turn(const Vector &degrees, int order)
{
    constexpr int axes[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 2, 0}, {1, 0, 2}, {2, 0, 1}, {2, 1, 0}};
    Eigen::Matrix3d all = Eigen::Matrix3d::Identity();
    for (const int axis : axes[order])
        all = Eigen::AngleAxisd(degrees[axis] * M_PI / 180.0, Vector::Unit(axis)).toRotationMatrix() * all;
    return all;
}

} // namespace

FbxSketch::Properties FbxFormula::properties() const
{
    FbxSketch::Properties all;
    const auto add = [&all](const char *name, const Vector &v, const Vector &usual) {
        if (v != usual)
            all.push_back(FbxSketch::vector(name, v.x(), v.y(), v.z()));
    };
    const Vector zero = Vector::Zero(), one = Vector::Ones();
    all.push_back(FbxSketch::wholeNumber("RotationActive", isActive ? 1 : 0, "bool"));
    all.push_back(FbxSketch::wholeNumber("InheritType", 1, "enum"));
    all.push_back(FbxSketch::wholeNumber("RotationOrder", order, "enum"));
    add("Lcl Translation", translation, zero);
    add("Lcl Rotation", rotation, zero);
    add("Lcl Scaling", scaling, one);
    add("RotationOffset", rotationOffset, zero);
    add("RotationPivot", rotationPivot, zero);
    add("PreRotation", preRotation, zero);
    add("PostRotation", postRotation, zero);
    add("ScalingOffset", scalingOffset, zero);
    add("ScalingPivot", scalingPivot, zero);
    add("GeometricTranslation", geometricTranslation, zero);
    add("GeometricRotation", geometricRotation, zero);
    add("GeometricScaling", geometricScaling, one);
    return all;
}

Eigen::Affine3d FbxFormula::local() const
{
    using Move = Eigen::Translation3d;
    Eigen::Matrix3d turned = turn(rotation, isActive ? order : 0);
    if (isActive)
        turned = turn(preRotation, 0) * turned * turn(postRotation, 0).transpose();
    return Move(translation) * Move(rotationOffset) * Move(rotationPivot) * Eigen::Affine3d(turned) *
           Move(-rotationPivot) * Move(scalingOffset) * Move(scalingPivot) * Eigen::Scaling(scaling) *
           Move(-scalingPivot);
}

Eigen::Affine3d FbxFormula::geometric() const
{
    return Eigen::Translation3d(geometricTranslation) * Eigen::Affine3d(turn(geometricRotation, 0)) *
           Eigen::Scaling(geometricScaling);
}
