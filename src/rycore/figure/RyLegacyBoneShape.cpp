#include "rycore/figure/RyLegacyBoneShape.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

/// In parameter space; empty where no face group of that object is paired with the bone.
static RyBox3 boxOfGroup(const RyLegacyBoneShape &bone, const QString &name, const RyObject &object)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(object.getCurrentShape());
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    const RyFaceGroup *group = mesh ? mesh->findFaceGroup(name) : nullptr;
    RyBox3 box;
    for (int i = 0; group && i < group->getFacets().count(); ++i) {
        const RyFacet &facet = mesh->getFacet(group->getFacets().getIndex(i));
        for (int corner = 0; corner < facet.count(); ++corner)
            box.include(bone.toParameterSpace(shape->getCurrentPositions()[size_t(facet.vertices[corner])]));
    }
    return box;
}

static RyBox3 boxOfGroup(const RyLegacyBoneShape &shape, const RyBone &bone, const RyObject *object)
{
    const auto *figure = object ? qobject_cast<const RySkeleton *>(object->getNode()) : nullptr;
    const RySelectionMap *map = figure ? figure->getSelectionMap() : nullptr;
    if (!map || map->findPair(&bone) < 0)
        return {};
    return bone.getSkeleton() == figure ? bone.getOrientedBoundingBox().box
                                        : boxOfGroup(shape, map->findGroupForNode(&bone), *object);
}

RyLegacyBoneShape::RyLegacyBoneShape(const RyBone &bone, const RyObject *object)
    : origin(bone.getOrigin()), orientation(bone.getOrientation()),
      way(orientation.inverse().multVec(bone.getEndPoint() - origin)), sphereCenter(origin), sphereSize(way.length()),
      radius(sphereSize / 4.0f)
{
    const RyBox3 box = boxOfGroup(*this, bone, object);
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
