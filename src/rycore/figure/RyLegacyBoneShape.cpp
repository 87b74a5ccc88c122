#include "rycore/figure/RyLegacyBoneShape.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

/// Empty where no face group of that object is paired with the bone.
static RyBox3 boxOfGroup(const RyBone &bone, const RyObject *object)
{
    const RySkeleton *skeleton = bone.getSkeleton();
    const RySelectionMap *map = skeleton && skeleton->getObject() == object ? skeleton->getSelectionMap() : nullptr;
    return map && map->findPair(&bone) >= 0 ? bone.getOrientedBoundingBox().box : RyBox3();
}

RyLegacyBoneShape::RyLegacyBoneShape(const RyBone &bone, const RyObject *object)
    : origin(bone.getOrigin()), orientation(bone.getOrientation()),
      way(orientation.inverse().multVec(bone.getEndPoint() - origin)), sphereCenter(origin), sphereSize(way.length()),
      radius(sphereSize / 4.0f)
{
    const RyBox3 box = boxOfGroup(bone, object);
    if (box.isEmpty())
        return;
    sphereCenter = box.getCenter();
    sphereSize = box.getSize();
    RyVec3 across = box.getExtents();
    across[bone.getRotationOrder()[0]] = 0.0f;
    // A joint must not reach over the middle of its bone.
    radius = std::min((across.x + across.y + across.z) / 4.0f, way.length() / 2.0f);
}

RyMatrix4 RyLegacyBoneShape::sphere(float share) const
{
    RyMatrix4 matrix(true);
    matrix.scale(sphereSize * share);
    matrix.translate(sphereCenter);
    return matrix;
}
