#include "rycore/script/prototypes/RySkeletonPrototype.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

QScriptValue RySkeletonPrototype::getAllBones() const
{
    const RySkeleton *skeleton = self<RySkeleton>();
    return toArray(skeleton ? skeleton->getAllBones() : std::vector<RyBone *>());
}

RyBone *RySkeletonPrototype::findBone(const QString &name) const
{
    const RySkeleton *skeleton = self<RySkeleton>();
    return skeleton ? skeleton->findBone(name) : nullptr;
}

RyBone *RySkeletonPrototype::findBoneByLabel(const QString &label) const
{
    const RySkeleton *skeleton = self<RySkeleton>();
    return skeleton ? skeleton->findBoneByLabel(label) : nullptr;
}

QString RySkeletonPrototype::getUniqueBoneName(const QString &name) const
{
    const RySkeleton *skeleton = self<RySkeleton>();
    return skeleton ? skeleton->getUniqueBoneName(name) : QString();
}

QString RySkeletonPrototype::getUniqueBoneLabel(const QString &label) const
{
    const RySkeleton *skeleton = self<RySkeleton>();
    return skeleton ? skeleton->getUniqueBoneLabel(label) : QString();
}

QString RySkeletonPrototype::getFaceGroup(RyBone *bone) const
{
    const RySkeleton *skeleton = self<RySkeleton>();
    const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    return map && bone ? map->findGroupForNode(bone) : QString();
}

void RySkeletonPrototype::setFaceGroup(RyBone *bone, const QString &name) const
{
    RySkeleton *skeleton = self<RySkeleton>();
    if (!skeleton)
        return;
    if (!bone || bone->getSkeleton() != skeleton) {
        fail(tr("Only a bone of \"%1\" can have a face group of it.").arg(skeleton->getName()));
        return;
    }
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(skeleton));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!name.isEmpty() && (!mesh || !mesh->findFaceGroup(name))) {
        fail(tr("The mesh has no face group called \"%1\".").arg(name));
        return;
    }
    if (!skeleton->getSelectionMap())
        skeleton->setSelectionMap(new RySelectionMap);
    RySelectionMap *map = skeleton->getSelectionMap();
    if (!name.isEmpty())
        map->addPair(name, bone, true);
    else if (const int pair = map->findPair(bone); pair >= 0)
        map->removePair(pair);
}

RySkinBinding *RySkeletonPrototype::getSkinBinding() const
{
    return RySkinBinding::findSkin(self<RySkeleton>());
}

RyLegacyBinding *RySkeletonPrototype::getLegacyBinding() const
{
    return RyLegacyBinding::findBinding(self<RySkeleton>());
}
