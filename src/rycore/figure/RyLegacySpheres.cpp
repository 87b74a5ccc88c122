#include "rycore/figure/RyLegacySpheres.h"

#include "rycore/figure/RyLegacyBoneShape.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

static constexpr float DynamicShare = 0.5f;
static constexpr float StaticShare = 0.75f;

static const RyObject *objectOf(const RyLegacyJointParam &param)
{
    const RyLegacyBinding *binding = param.getJoint() ? param.getJoint()->getBinding() : nullptr;
    return binding ? binding->getObject() : nullptr;
}

void RyLegacySpheres::place(RyLegacyJointParam &param, const RyVec3 &center, float size)
{
    const RyBone *driver = param.getDriver();
    const RyVec3 x = driver ? RyLegacyBoneShape(*driver, nullptr).toParameterSpace(center) : center;
    const auto sphere = [&](float share) {
        RyMatrix4 matrix(true);
        matrix.scale(size * share);
        matrix.translate(x);
        return matrix;
    };
    param.setMatrices(sphere(DynamicShare), sphere(StaticShare), false);
}

void RyLegacySpheres::reset(RyLegacyJointParam &param, const RyBone &bone)
{
    const RyObject *object = objectOf(param);
    const RyLegacyBoneShape shape(bone, object);
    const RySkeleton *skeleton = bone.getSkeleton();
    const RyOrientedBox3 oriented = bone.getOrientedBoundingBox();
    // The box of a bone that joined another skeleton is that of the mesh there.
    const bool isOfFigure = skeleton && skeleton->getObject() == object && !oriented.box.isEmpty();
    const RyVec3 center = isOfFigure ? oriented.transform.multVec(oriented.box.getCenter()) : shape.sphereCenter;
    place(param, shape.toFigureSpace(center), isOfFigure ? oriented.box.getSize() : shape.sphereSize);
}

void RyLegacySpheres::resetBoth(RyLegacyJointParam &param, const RyBone &bone)
{
    param.beginEdit();
    reset(param, bone);
    if (RyLegacyJointParam *partner = param.findPartner())
        reset(*partner, bone);
    param.finishEdit();
}
