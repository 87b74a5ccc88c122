#include "rycore/parametric/fit/RyLegacyFitInput.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

namespace {

/// A control without limits of its own turns as far as the place of its axis in the rotation order makes likely.
constexpr double Usual[3] = {60.0, 90.0, 120.0};

RyLegacyFitInput::Limits limitsOf(const RyNode &bone)
{
    RyLegacyFitInput::Limits limits;
    for (int place = 0; place < 3; ++place) {
        const int axis = bone.getRotationOrder()[place];
        const RyFloatProperty &control = *bone.rotationControl(axis);
        const double low = control.isClamped() ? std::clamp(double(control.getMin()), -180.0, 0.0) : -Usual[place];
        const double high = control.isClamped() ? std::clamp(double(control.getMax()), 0.0, 180.0) : Usual[place];
        limits[size_t(axis)] = {low * RyFastMath::RadiansPerDegree, high * RyFastMath::RadiansPerDegree};
    }
    return limits;
}

} // namespace

RyLegacyFitInput RyLegacyFitInput::of(const RyLegacyBinding &binding, const RySkeleton &skeleton)
{
    RyLegacyFitInput input;
    input.rig = RyLegacyRig::of(binding, skeleton);
    const RyShape *shape = RyShape::getCurrentShapeForNode(&skeleton);
    if (const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr)
        input.rest = mesh->getPositions();
    for (const RyNode *bone : RyLegacyRig::bonesOf(&binding, skeleton)) {
        input.limits.push_back(limitsOf(*bone));
        input.names.push_back(bone->getName().toStdString());
    }
    return input;
}

bool RyLegacyFitInput::operator==(const RyLegacyFitInput &o) const
{
    return rig.bones == o.rig.bones && rig.params == o.rig.params && rig.owners == o.rig.owners && rest == o.rest &&
           limits == o.limits;
}
