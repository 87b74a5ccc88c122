#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"

#include "pluginsource/RyJointTools/operations/bindBone.h"
#include "pluginsource/RyJointTools/operations/createLegacyJoint.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/math/RyLine3.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

#include <QCoreApplication>

static void nameAfter(RyBone *bone, const RyNode *node, const RySkeleton *skeleton)
{
    // Files and scripts know bones by their names: these are of no language.
    QString name = QStringLiteral("Bone");
    QString label = QCoreApplication::translate("RyJointEditorTool", "Bone");
    if (node != skeleton) {
        name = RyScene::stripNameNumber(node->objectName());
        label = RyScene::stripNameNumber(node->getLabel());
    }
    bone->setName(skeleton->getUniqueBoneName(name));
    bone->setLabel(skeleton->getUniqueBoneLabel(label));
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
    if (qobject_cast<const RyFigure *>(skeleton))
        addEmptyBoneBinding(bone, node);
    else
        createLegacyJoint(bone, node, true, false);
    return bone;
}
