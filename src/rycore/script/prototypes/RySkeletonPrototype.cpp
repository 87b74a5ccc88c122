#include "rycore/script/prototypes/RySkeletonPrototype.h"

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

RySkinBinding *RySkeletonPrototype::getSkinBinding() const
{
    return RySkinBinding::findSkin(self<RySkeleton>());
}

RyLegacyBinding *RySkeletonPrototype::getLegacyBinding() const
{
    return RyLegacyBinding::findBinding(self<RySkeleton>());
}
