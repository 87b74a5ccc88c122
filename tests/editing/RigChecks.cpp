#include "RigChecks.h"

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

#include <QSet>

namespace {

constexpr int FullWeight = 65535;
const char *const kindNames[RigChecks::Kinds] = {"general", "local X", "local Y", "local Z", "scale"};

const RyWeightMap *mapOf(const RyBoneBinding &binding, int kind)
{
    switch (kind) {
    case 0:
        return binding.getWeights();
    case 4:
        return binding.getScaleWeights();
    default:
        return binding.getLocalWeights(kind - 1);
    }
}

/// Whether a bone belongs to the skeleton or to one that this hangs on: a prop that became a figure may have joined
/// that.
bool isOfOrAbove(const RySkeleton &skeleton, const RyBone &bone)
{
    const RyNode *above = &skeleton;
    while (above && above != bone.getSkeleton())
        above = above->getNodeParent();
    return above && bone.getScene();
}

} // namespace

namespace RigChecks {

WeightSums weightSums(const RySkinBinding &skin)
{
    WeightSums sums;
    for (const RyBoneBinding *binding : skin.bindings()) {
        for (int kind = 0; kind < Kinds; ++kind) {
            const RyWeightMap *map = mapOf(*binding, kind);
            if (!map)
                continue;
            std::vector<int> &of = sums[size_t(kind)];
            if (of.size() < size_t(map->getNumWeights()))
                of.resize(size_t(map->getNumWeights()), 0);
            const int *indices = map->getAffectedIndices();
            const quint16 *weights = map->getAffectedWeights();
            for (int i = 0; i < map->getNumAffected(); ++i)
                of[size_t(indices[i])] += weights[i];
        }
    }
    return sums;
}

QString weightsAreWhole(const WeightSums &before, const WeightSums &after)
{
    for (size_t kind = 0; kind < Kinds; ++kind) {
        for (size_t v = 0; v < after[kind].size(); ++v) {
            const int was = v < before[kind].size() ? before[kind][v] : 0;
            const int is = after[kind][v];
            if (is != FullWeight && !(is == 0 && was == 0)) {
                return QStringLiteral("%1 weights of vertex %2 sum to %3, before to %4")
                    .arg(QLatin1String(kindNames[kind]))
                    .arg(v)
                    .arg(is)
                    .arg(was);
            }
        }
    }
    return {};
}

QString bindingsHaveBones(const RySkeleton &skeleton)
{
    const RySkinBinding *skin = RySkinBinding::findSkin(&skeleton);
    if (!skin)
        return {};
    QSet<const RyNode *> bound;
    for (const RyBoneBinding *binding : skin->bindings()) {
        const RyBone *bone = binding->getBone();
        if (!bone)
            return QStringLiteral("the binding \"%1\" has no bone").arg(binding->getName());
        if (!isOfOrAbove(skeleton, *bone))
            return QStringLiteral("the bone \"%1\" of a binding is not in the figure").arg(bone->getName());
        if (bound.contains(bone))
            return QStringLiteral("the bone \"%1\" has two bindings").arg(bone->getName());
        bound.insert(bone);
    }
    return {};
}

QString pairsHaveNodes(const RySkeleton &skeleton)
{
    const RySelectionMap *map = skeleton.getSelectionMap();
    for (int i = 0; map && i < map->getNumPairs(); ++i) {
        const RyNode *node = map->getPairNode(i);
        if (!node)
            return QStringLiteral("the pair of the group \"%1\" has no node").arg(map->getPairGroup(i));
        if (node->getSkeleton() != &skeleton)
            return QStringLiteral("the pair of the group \"%1\" has the node \"%2\" of elsewhere")
                .arg(map->getPairGroup(i), node->getName());
    }
    return {};
}

QString namesAreUnique(const RySkeleton &skeleton)
{
    QSet<QString> names;
    for (const RyBone *bone : skeleton.getAllBones()) {
        if (bone->getSkeleton() != &skeleton)
            continue; // of a figure that hangs on this one
        if (bone->getName().isEmpty())
            return QStringLiteral("a bone has no name");
        if (names.contains(bone->getName()))
            return QStringLiteral("two bones are named \"%1\"").arg(bone->getName());
        names.insert(bone->getName());
    }
    return {};
}

QString jointsHaveBones(const RySkeleton &skeleton)
{
    const RyLegacyBinding *binding = RyLegacyBinding::findBinding(&skeleton);
    QSet<const RyNode *> jointed;
    for (RyLegacyJoint *joint : binding ? binding->joints() : std::vector<RyLegacyJoint *>()) {
        const RyBone *bone = joint->getBone();
        if (!bone || !isOfOrAbove(skeleton, *bone))
            return QStringLiteral("the joint \"%1\" has no bone of the figure").arg(joint->getName());
        if (jointed.contains(bone) || RyLegacyJoint::findJoint(bone) != joint)
            return QStringLiteral("the bone \"%1\" has another joint").arg(bone->getName());
        jointed.insert(bone);
        for (const RyLegacyJointParam *param : joint->params()) {
            if (!param->getDriver() || !isOfOrAbove(skeleton, *param->getDriver()))
                return QStringLiteral("the parameter \"%1\" of \"%2\" has no driver of the figure")
                    .arg(param->getName(), joint->getName());
        }
    }
    return {};
}

QString deformsAsNew(const RySkeleton &skeleton)
{
    RyObject *object = skeleton.getObject();
    const RyLegacyBinding *binding = RyLegacyBinding::findBinding(object);
    if (!binding)
        return {};
    const std::vector<RyVec3> shown = object->getDeformedPositions();
    const std::vector<RyVec3> rest = object->getCurrentShape()->getCurrentPositions();
    RyLegacyDeformer fresh;
    fresh.setRig(RyLegacyRig::of(*binding, skeleton), rest);
    std::vector<RyVec3> expected;
    fresh.deform(rest, RyLegacyRig::controlsOf(skeleton), expected);
    for (size_t v = 0; v < expected.size(); ++v) {
        const RyVec3 difference = shown[v] - expected[v];
        if (!(difference.length() <= 1e-3f))
            return QStringLiteral("vertex %1 is %2 from where it belongs").arg(v).arg(double(difference.length()));
    }
    return {};
}

QString treeIsSound(const RySkeleton &skeleton)
{
    for (const RyBone *bone : skeleton.getAllBones()) {
        const RyNode *parent = bone->getNodeParent();
        if (!bone->getScene() || bone->getScene() != skeleton.getScene())
            return QStringLiteral("the bone \"%1\" is not in the scene").arg(bone->getName());
        int listed = 0;
        for (int i = 0; parent && i < parent->getNumNodeChildren(); ++i)
            listed += parent->getNodeChild(i) == bone ? 1 : 0;
        if (listed != 1)
            return QStringLiteral("the bone \"%1\" is listed %2 times by its parent").arg(bone->getName()).arg(listed);
    }
    return {};
}

RyBone *receiverOf(const RyBone *deleted)
{
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(deleted);
    if (!skin)
        return nullptr;
    const auto bound = [skin](RyNode *node) {
        return skin->findBoneBinding(node) ? qobject_cast<RyBone *>(node) : nullptr;
    };
    for (RyNode *node = deleted->getNodeParent(); node && !qobject_cast<RySkeleton *>(node);
         node = node->getNodeParent()) {
        if (RyBone *bone = bound(node))
            return bone;
    }
    for (int i = 0; i < deleted->getNumNodeChildren(); ++i) {
        if (RyBone *bone = bound(deleted->getNodeChild(i)))
            return bone;
    }
    return nullptr;
}

std::map<const RySkinBinding *, WeightSums> allWeightSums(const RyScene &scene)
{
    std::map<const RySkinBinding *, WeightSums> sums;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        if (const RySkinBinding *skin = RySkinBinding::findSkin(skeleton))
            sums[skin] = weightSums(*skin);
    }
    return sums;
}

QString check(const RyScene &scene, const std::map<const RySkinBinding *, WeightSums> &before)
{
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        for (const auto &rule : {bindingsHaveBones, jointsHaveBones, pairsHaveNodes, namesAreUnique, treeIsSound}) {
            const QString wrong = rule(*skeleton);
            if (!wrong.isEmpty())
                return QStringLiteral("%1: %2").arg(skeleton->getName(), wrong);
        }
        const RySkinBinding *skin = RySkinBinding::findSkin(skeleton);
        const auto old = before.find(skin);
        if (!skin || old == before.end())
            continue;
        const QString wrong = weightsAreWhole(old->second, weightSums(*skin));
        if (!wrong.isEmpty())
            return QStringLiteral("%1: %2").arg(skeleton->getName(), wrong);
    }
    return {};
}

} // namespace RigChecks
