#include "rycore/scene/RyNode.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

// The way from figure space to the world. Row vectors: for node N with parent P,
//   X(N) = T(-origin) * linear(N) * T(origin + translation) * X(P)
// maps points of figure space to the world; the world transform T(origin) * X(N) maps `p - origin`.

namespace {

RyAffine linearPart(const RyAffine &map)
{
    RyAffine linear = map;
    linear.m[3][0] = linear.m[3][1] = linear.m[3][2] = 0.0;
    return linear;
}

} // namespace

RyAffine RyNode::localMap(bool byDefault) const
{
    const auto value = [byDefault](const RyFloatProperty *p) {
        return byDefault ? p->getDefaultValue() : p->getValue();
    };
    const RyVec3 origin = getOrigin(byDefault);
    const RyVec3 translation(value(m_pose[0]), value(m_pose[1]), value(m_pose[2]));
    const RyQuat orientation = getOrientation(byDefault);
    const double general = value(m_pose[6]);
    const RyAffine scale =
        RyAffine::fromScale(general * value(m_pose[7]), general * value(m_pose[8]), general * value(m_pose[9]));
    // M(o^-1) S M(o) M(o^-1 pose o) = M(o^-1) S M(pose) M(o)
    return RyAffine::fromTranslation(-origin) * RyAffine::fromRotation(orientation.inverse()) * scale *
           RyAffine::fromRotation(poseRotation(byDefault)) * RyAffine::fromRotation(orientation) *
           RyAffine::fromTranslation(double(origin.x) + translation.x, double(origin.y) + translation.y,
                                     double(origin.z) + translation.z);
}

namespace {

/// X of a child whose local map is `local`; a child that does not inherit scale keeps its parent's rotation alone,
/// while its origin still goes through the parent's full map.
RyAffine composed(const RyAffine &local, const RyAffine &parentMap, const RyQuat &parentRotation, bool inheritsScale,
                  const RyVec3 &origin)
{
    if (inheritsScale)
        return local * parentMap;
    const double from[3] = {origin.x, origin.y, origin.z};
    double inParent[3];
    double target[3];
    local.mapPoint(from, inParent);
    parentMap.mapPoint(inParent, target);
    return RyAffine::fromTranslation(-origin) * linearPart(local) * RyAffine::fromRotation(parentRotation) *
           RyAffine::fromTranslation(target[0], target[1], target[2]);
}

} // namespace

void RyNode::updateMaps() const
{
    std::vector<const RyNode *> stale;
    for (const RyNode *node = this; node && !node->m_mapsValid; node = node->m_parent)
        stale.push_back(node);
    while (!stale.empty()) {
        const RyNode *node = stale.back();
        stale.pop_back();
        const RyNode *parent = node->m_parent;
        const RyAffine local = node->localMap(false);
        const RyQuat rotation = node->getLocalRot();
        const RyVec3 origin = node->getOrigin();
        const bool inherits = node->m_inheritScale;
        if (parent) {
            node->m_worldMap = composed(local, parent->m_worldMap, parent->m_worldRotation, inherits, origin);
            node->m_worldRotation = (rotation * parent->m_worldRotation).normalized();
        } else {
            node->m_worldMap = local;
            node->m_worldRotation = rotation.normalized();
        }
        if (qobject_cast<const RySkeleton *>(node)) {
            node->m_figureMap = RyAffine();
            node->m_figureRotation = RyQuat();
        } else if (parent) {
            node->m_figureMap = composed(local, parent->m_figureMap, parent->m_figureRotation, inherits, origin);
            node->m_figureRotation = (rotation * parent->m_figureRotation).normalized();
        } else {
            node->m_figureMap = local;
            node->m_figureRotation = rotation.normalized();
        }
        node->m_mapsValid = true;
    }
}

void RyNode::invalidateMaps()
{
    std::vector<RyNode *> pending{this};
    while (!pending.empty()) {
        RyNode *node = pending.back();
        pending.pop_back();
        if (!node->m_mapsValid && node != this)
            continue;
        node->m_mapsValid = false;
        ++node->m_mapRevision;
        pending.insert(pending.end(), node->m_children.begin(), node->m_children.end());
    }
}

const RyAffine &RyNode::worldMap() const
{
    if (!m_mapsValid)
        updateMaps();
    return m_worldMap;
}

const RyAffine &RyNode::figureMap() const
{
    if (!m_mapsValid)
        updateMaps();
    return m_figureMap;
}

RyMatrix4 RyNode::getWSTransform() const
{
    return (RyAffine::fromTranslation(getOrigin()) * worldMap()).toMatrix4();
}

void RyNode::getWSTransform(RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale) const
{
    const RyMatrix4 transform = getWSTransform();
    position = transform.translation();
    rotation = getWSRot();
    scale = transform.linear() * RyMatrix3(rotation.inverse());
}

RyMatrix4 RyNode::getWSTransform(const RyTime &, bool defaultPose) const
{
    if (!defaultPose)
        return getWSTransform();
    std::vector<const RyNode *> chain;
    const RyNode *above = this;
    for (; above && !qobject_cast<const RySkeleton *>(above); above = above->m_parent)
        chain.push_back(above);
    RyAffine map = above ? above->worldMap() : RyAffine();
    RyQuat rotation = above ? above->getWSRot() : RyQuat();
    for (; !chain.empty(); chain.pop_back()) {
        const RyNode *node = chain.back();
        const RyQuat orientation = node->getOrientation(true);
        map = composed(node->localMap(true), map, rotation, node->m_inheritScale, node->getOrigin(true));
        rotation = (orientation.inverse() * node->poseRotation(true) * orientation * rotation).normalized();
    }
    return (RyAffine::fromTranslation(getOrigin(true)) * map).toMatrix4();
}

RyVec3 RyNode::getWSPos() const
{
    return worldMap().mapPoint(getOrigin());
}

RyQuat RyNode::getWSRot() const
{
    if (!m_mapsValid)
        updateMaps();
    return m_worldRotation;
}

RyVec3 RyNode::getWSEndPoint() const
{
    return worldMap().mapPoint(getEndPoint());
}

void RyNode::takePoseFrom(const RyAffine &local)
{
    // local = T(-origin) * linear * T(origin + translation)
    const RyVec3 origin = getOrigin();
    const double from[3] = {origin.x, origin.y, origin.z};
    double to[3];
    local.mapPoint(from, to);
    RyAffine stretch;
    RyQuat rotation;
    linearPart(local).decomposePolar(stretch, rotation);
    RyMatrix3 scale;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            scale[i][j] = float(stretch.m[i][j]);
    }
    setLocalTransform({float(to[0] - from[0]), float(to[1] - from[1]), float(to[2] - from[2])}, rotation, scale, 1.0f);
}

RyBox3 RyNode::getBoundingBox() const
{
    const RySkeleton *skeleton = getSkeleton();
    const RyNode *holder = m_object || !skeleton ? this : skeleton;
    RyObject *object = holder->getObject();
    const auto *shape = object ? qobject_cast<RyFacetShape *>(object->getCurrentShape()) : nullptr;
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh)
        return {};
    const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    const RyFaceGroup *group = map ? mesh->findFaceGroup(map->findGroupForNode(this)) : nullptr;
    if (!group)
        return mesh->getBoundingBox();
    RyBox3 box;
    for (int i = 0; i < group->getFacets().count(); ++i) {
        const RyFacet &facet = mesh->getFacet(group->getFacets().getIndex(i));
        for (int corner = 0; corner < facet.count(); ++corner)
            box.include(mesh->getVertex(facet.vertices[corner]));
    }
    return box;
}
