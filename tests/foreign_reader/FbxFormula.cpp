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
    const std::pair<const char *, Vector FbxFormula::*> vectors[] = {
        {"Lcl Translation", &FbxFormula::translation},
        {"Lcl Rotation", &FbxFormula::rotation},
        {"Lcl Scaling", &FbxFormula::scaling},
        {"RotationOffset", &FbxFormula::rotationOffset},
        {"RotationPivot", &FbxFormula::rotationPivot},
        {"PreRotation", &FbxFormula::preRotation},
        {"PostRotation", &FbxFormula::postRotation},
        {"ScalingOffset", &FbxFormula::scalingOffset},
        {"ScalingPivot", &FbxFormula::scalingPivot},
        {"GeometricTranslation", &FbxFormula::geometricTranslation},
        {"GeometricRotation", &FbxFormula::geometricRotation},
        {"GeometricScaling", &FbxFormula::geometricScaling},
    };
    const FbxFormula usual;
    FbxSketch::Properties all{FbxSketch::wholeNumber("RotationActive", isActive ? 1 : 0, "bool"),
                              FbxSketch::wholeNumber("InheritType", 1, "enum"),
                              FbxSketch::wholeNumber("RotationOrder", order, "enum")};
    for (const auto &[name, member] : vectors) {
        const Vector &value = this->*member;
        if (value != usual.*member)
            all.push_back(FbxSketch::vector(name, value.x(), value.y(), value.z()));
    }
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
