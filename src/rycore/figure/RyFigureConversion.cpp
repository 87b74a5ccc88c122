#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/node/RyNodeReplacement.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <algorithm>
#include <numeric>

namespace {

RyWeightMap *makeFullMap(const QString &name, int count)
{
    std::vector<int> indices(static_cast<size_t>(count));
    std::iota(indices.begin(), indices.end(), 0);
    auto *map = new RyWeightMap(name);
    map->setAffected(count, std::move(indices), std::vector<quint16>(size_t(count), RyWeightMap::FullWeight));
    return map;
}

/// A skin by which one bone moves all vertices. Nothing of it is recorded: it is new.
RySkinBinding *makeSkin(RyBone *bone, int vertexCount, bool localMaps)
{
    const RyUndoStackLock lock;
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    if (localMaps) {
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(makeFullMap(bone->getName(), vertexCount), axis);
        binding->setScaleWeights(makeFullMap(bone->getName(), vertexCount));
    } else {
        binding->setWeights(makeFullMap(bone->getName(), vertexCount));
    }
    auto *skin = new RySkinBinding;
    skin->setMapKinds(localMaps, !localMaps);
    skin->addBoneBinding(binding);
    return skin;
}

/// Where the prop has a bone of its own, there; else from its origin up to the top of the geometry.
void placeRootBone(RyBone *bone, const RyNode &prop, const RyBox3 &box)
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

} // namespace

RyFigure *RyFigure::convertPropToFigure(RyNode *node, const QString &rootName, bool localMaps, bool inherit)
{
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh || mesh->getNumVertices() == 0 || qobject_cast<RySkeleton *>(node) || qobject_cast<RyBone *>(node))
        return nullptr;
    RyScene *scene = node->getScene();
    if (!scene && !node->getNodeParent())
        return nullptr;
    const RyRef<RyNode> guard(node);
    RyUndoStackHold hold;
    const std::vector<RyNode *> selection = RyNodeReplacement::rememberSelection(scene);
    RySkeleton *outer = inherit && node->getNodeParent() ? node->getNodeParent()->getSkeleton() : nullptr;

    const RyRef<RyFigure> figure(new RyFigure);
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
        outer->addNodeChild(figure.get());
        figure->setFollowTarget(outer);
    } else {
        bone->setName(name);
        RyNodeReplacement::takePlace(node, figure.get());
        placeRootBone(bone.get(), *node, mesh->getBoundingBox());
        figure->addNodeChild(bone.get());
    }
    if (scene) {
        scene->addNode(figure.get());
        scene->addNode(bone.get());
    }
    for (RyNode *child : node->nodeChildrenIterator())
        bone->addNodeChild(child);
    const RyRef<RyObject> object(node->getObject());
    RyNodeReplacement::moveObject(node, figure.get());
    object->addModifier(makeSkin(bone.get(), mesh->getNumVertices(), localMaps));
    RyNodeReplacement::removeNode(node, figure.get(), selection);
    hold.accept(tr("Convert Prop to Figure"));
    return figure.get();
}
