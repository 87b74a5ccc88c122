#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/math/RyLine3.h"
#include "rycore/math/RyQuat.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RyShape.h"
#include "rycore/skin/RySkinBinding.h"

#include <QCoreApplication>

static void nameAfter(RyBone *bone, const RyNode *node, const RySkeleton *skeleton)
{
    QString name = QCoreApplication::translate("RyJointEditorTool", "Bone");
    QString label = name;
    if (node != skeleton) {
        name = RyScene::stripNameNumber(node->objectName());
        label = RyScene::stripNameNumber(node->getLabel());
    }
    bone->setName(skeleton->getUniqueBoneName(name));
    bone->setLabel(skeleton->getUniqueBoneLabel(label));
}

static RyWeightMap *makeEmptyMap(int vertexCount)
{
    auto *map = new RyWeightMap;
    map->setNumWeights(vertexCount);
    return map;
}

static void bindWithoutWeights(RyBone *bone, const RyFigure *figure)
{
    RySkinBinding *skin = figure->getSkinBinding();
    if (!skin)
        return;
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    const RyShape *shape = RyShape::getCurrentShapeForNode(figure);
    const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr;
    const int vertexCount = mesh ? mesh->getNumVertices() : 0;
    if (vertexCount > 0 && skin->hasLocalMaps()) {
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(makeEmptyMap(vertexCount), axis);
        binding->setScaleWeights(makeEmptyMap(vertexCount));
    }
    if (vertexCount > 0 && skin->hasGeneralMaps())
        binding->setWeights(makeEmptyMap(vertexCount));
    skin->addBoneBinding(binding);
    skin->normalize(0, RySkinBinding::AllWeights, false);
}

RyBone *createBoneAtClick(RyNode *node, const RyLine3 &ray, const RyQuat &cameraRotation)
{
    RySkeleton *skeleton = node ? node->getSkeleton() : nullptr;
    if (!skeleton)
        return nullptr;
    auto *bone = new RyBone;
    bone->setRotationOrder(node->getRotationOrder());
    bone->setOrientation(node->getOrientation(), true);
    bone->setOrigin(node->getEndPoint(), true);
    RyVec3 endPoint;
    ray.planeIntersect(RyVec3(), cameraRotation.multVec(RyVec3(0, 0, 1)), endPoint);
    bone->setEndPoint(endPoint, true);
    nameAfter(bone, node, skeleton);
    ryScene()->addNode(bone);
    node->addNodeChild(bone);
    if (const auto *figure = qobject_cast<const RyFigure *>(skeleton))
        bindWithoutWeights(bone, figure);
    return bone;
}
