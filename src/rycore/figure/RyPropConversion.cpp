#include "rycore/figure/RyPropConversion.h"

#include "rycore/figure/RyBoneRelease.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/node/RyNodeReplacement.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <algorithm>

/// Where the prop has a bone of its own, there; else from its origin up to the top of the geometry.
static void placeRootBone(RyBone *bone, const RyNode &prop, const RyBox3 &box)
{
    const RyVec3 origin = prop.getOrigin();
    RyVec3 end = prop.getEndPoint();
    if (end == origin) {
        const float height = box.getMax().y - origin.y;
        end = origin + RyVec3(0, height > 0.0f ? height : std::max(box.getSize(), 1.0f), 0);
        bone->setRotationOrder(RyRotationOrder(2)); // YXZ: the first axis along the bone
    } else {
        bone->setRotationOrder(prop.getRotationOrder());
        bone->setOrientation(prop.getOrientation(), true);
    }
    bone->setOrigin(origin, true);
    bone->setEndPoint(end, true);
}

/// The bones of a skeleton that hang below a node of it.
static std::vector<RyBone *> bonesBelow(const RyNode *node, const RySkeleton *skeleton)
{
    std::vector<RyBone *> bones;
    for (RyBone *bone : skeleton->ownBones()) {
        if (bone->isDescendantOf(node))
            bones.push_back(bone);
    }
    return bones;
}

/// Bones below a prop will be bones of the figure that it becomes, and no longer of the one that it hangs on.
static void leaveOuterFigure(const RyNode *prop)
{
    const RySkeleton *outer = RyPropConversion::outerSkeleton(prop);
    const std::vector<RyBone *> leaving = outer ? bonesBelow(prop, outer) : std::vector<RyBone *>();
    if (leaving.empty())
        return;
    // The nearest above it takes over, or the first of the others.
    RyNode *above = prop->getNodeParent();
    while (above != outer && !qobject_cast<RyBone *>(above))
        above = above->getNodeParent();
    auto *receiver = qobject_cast<RyBone *>(above);
    const std::vector<RyBone *> all = outer->ownBones();
    const auto stays = [prop](const RyBone *bone) { return !bone->isDescendantOf(prop); };
    const auto first = std::find_if(all.begin(), all.end(), stays);
    if (!receiver && first != all.end())
        receiver = *first;
    for (const RySkeleton *figure : prop->getScene() ? prop->getScene()->getSkeletons() : std::vector<RySkeleton *>{}) {
        if (!figure->isDescendantOf(prop))
            RyBoneRelease::release(*figure, leaving, receiver);
    }
}

RySkeleton *RyPropConversion::outerSkeleton(const RyNode *prop)
{
    return prop && prop->getNodeParent() ? prop->getNodeParent()->getSkeleton() : nullptr;
}

bool RyPropConversion::run(RyNode *node, RySkeleton *figure, const QString &rootName, bool inherit, const Rig &rig)
{
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh || mesh->getNumVertices() == 0 || qobject_cast<RySkeleton *>(node) || qobject_cast<RyBone *>(node))
        return false;
    RyScene *scene = node->getScene();
    if (!scene && !node->getNodeParent())
        return false;
    const RyRef<RyNode> guard(node);
    RyUndoStackHold hold;
    const std::vector<RyNode *> selection = RyNodeReplacement::rememberSelection(scene);
    RySkeleton *outer = inherit ? outerSkeleton(node) : nullptr;

    const RyRef<RyBone> bone(new RyBone);
    const QString name = rootName.isEmpty() ? QStringLiteral("Bone") : rootName;
    figure->setName(node->getName());
    figure->setSelectionMap(new RySelectionMap);
    if (outer) {
        // The bone goes where the prop was, and moves the geometry as the prop did; the figure stands where the
        // skeleton stands.
        bone->setName(outer->getUniqueBoneName(name));
        RyNodeReplacement::takePlace(node, bone.get());
        bone->setLabel(QString());
        if (node->hasOwnLabel())
            figure->setLabel(node->getLabel());
        outer->addNodeChild(figure);
        figure->setFollowTarget(outer);
    } else {
        leaveOuterFigure(node);
        bone->setName(name);
        RyNodeReplacement::takePlace(node, figure);
        placeRootBone(bone.get(), *node, mesh->getBoundingBox());
        figure->addNodeChild(bone.get());
    }
    if (scene) {
        scene->addNode(figure);
        scene->addNode(bone.get());
    }
    for (RyNode *child : node->nodeChildrenIterator())
        bone->addNodeChild(child);
    const RyRef<RyObject> object(node->getObject());
    RyNodeReplacement::moveObject(node, figure);
    rig(bone.get(), object.get(), *mesh);
    RyNodeReplacement::removeNode(node, figure, selection);
    hold.accept(RyFigure::tr("Convert Prop to Figure"));
    return true;
}
