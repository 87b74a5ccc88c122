#include "RigEdits.h"

#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

namespace {

RyBone *makeBone(RyScene &scene, const RyBone &like, RyNode *parent, const RyVec3 &origin, const RyVec3 &end)
{
    auto *bone = new RyBone;
    const RySkeleton *skeleton = like.getSkeleton();
    bone->setName(skeleton->getUniqueBoneName(like.getName()));
    bone->setLabel(skeleton->getUniqueBoneLabel(like.getLabel()));
    bone->setOrigin(origin, true);
    bone->setEndPoint(end, true);
    bone->setOrientation(like.getOrientation(), true);
    bone->setRotationOrder(like.getRotationOrder());
    scene.addNode(bone);
    parent->addNodeChild(bone);
    return bone;
}

void copyBinding(RyBone *bone, RyBone &from, bool withWeights)
{
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
    const RyBoneBinding *source = skin->findBoneBinding(&from);
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    auto *map = new RyWeightMap(bone->getName());
    map->setNumWeights(skin->bindings().empty() ? 0 : skin->bindings().front()->getWeights()->getNumWeights());
    if (withWeights && source && source->getWeights()) {
        map->beginEdit();
        for (int i = 0; i < source->getWeights()->getNumAffected(); ++i)
            map->getWeights()[source->getWeights()->getAffectedIndices()[i]] =
                source->getWeights()->getAffectedWeights()[i];
        map->finishEdit();
        if (map->getNumAffected() > 0)
            bone->setWeightGiver(&from);
    }
    binding->setWeights(map);
    skin->addBoneBinding(binding);
    skin->normalize(0, RySkinBinding::AllWeights, false);
}

RyVec3 halfway(const RyBone &bone)
{
    return (bone.getOrigin() + bone.getEndPoint()) * 0.5f;
}

} // namespace

void RigEdits::deleteBone(RyScene &scene, RyBone *bone)
{
    RyNode *parent = bone->getNodeParent();
    const std::vector<RyNode *> children = bone->nodeChildrenIterator();
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
    if (RySelectionMap *map = bone->getSkeleton()->getSelectionMap(); map && map->findPair(bone) >= 0)
        map->removePair(map->findPair(bone));
    RyBoneBinding *binding = skin->findBoneBinding(bone);
    RyBoneBinding *receiver = nullptr;
    for (RyNode *above = parent; above && above != bone->getSkeleton() && !receiver; above = above->getNodeParent())
        receiver = skin->findBoneBinding(above);
    for (size_t i = 0; i < children.size() && !receiver; ++i)
        receiver = skin->findBoneBinding(children[i]);
    const RyRef<RyBone> guard(bone);
    parent->removeNodeChild(bone);
    if (binding && receiver) {
        const RyWeightMap &from = *binding->getWeights();
        RyWeightMap *to = receiver->getWeights();
        to->beginEdit();
        for (int i = 0; i < from.getNumAffected(); ++i) {
            quint16 &weight = to->getWeights()[from.getAffectedIndices()[i]];
            weight = quint16(std::min(65535, int(weight) + int(from.getAffectedWeights()[i])));
        }
        to->finishEdit();
    }
    if (binding)
        skin->removeBoneBinding(binding);
    skin->normalize(0, RySkinBinding::AllWeights, false);
    for (RyNode *child : children) {
        bone->removeNodeChild(child);
        parent->addNodeChild(child);
    }
    scene.removeNode(bone);
}

RyBone *RigEdits::splitBone(RyScene &scene, RyBone *bone)
{
    const RyVec3 middle = halfway(*bone);
    RyBone *lower = makeBone(scene, *bone, bone, middle, bone->getEndPoint());
    bone->setEndPoint(middle, true);
    lower->setInheritScale(false);
    copyBinding(lower, *bone, true);
    const std::vector<RyNode *> children = bone->nodeChildrenIterator();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (qobject_cast<RyBone *>(*child) && *child != lower)
            lower->addNodeChild(*child);
    }
    return lower;
}

RyBone *RigEdits::addSibling(RyScene &scene, RyBone *bone)
{
    RyBone *sibling = makeBone(scene, *bone, bone->getNodeParent(), bone->getOrigin(), halfway(*bone));
    copyBinding(sibling, *bone, true);
    return sibling;
}

RyBone *RigEdits::addChild(RyScene &scene, RyBone *bone)
{
    RyBone *child = makeBone(scene, *bone, bone, bone->getEndPoint(), bone->getEndPoint() * 2.0f - halfway(*bone));
    copyBinding(child, *bone, false);
    return child;
}

RyBone *RigEdits::duplicateChain(RyScene &scene, RyBone *bone)
{
    RyBone *first = nullptr;
    RyNode *parent = bone->getNodeParent();
    RyBone *next = bone;
    for (int links = 0; next && links < 3; ++links) {
        RyBone *copy = makeBone(scene, *next, parent, next->getOrigin(), next->getEndPoint());
        RyVec3 position;
        RyQuat rotation;
        RyMatrix3 scale;
        float general = 1.0f;
        next->getLocalTransform(position, rotation, scale, general);
        copy->setLocalTransform(position, rotation, scale, general);
        copyBinding(copy, *next, false);
        first = first ? first : copy;
        parent = copy;
        RyBone *below = nullptr;
        for (RyNode *child : next->nodeChildrenIterator()) {
            if (!below)
                below = qobject_cast<RyBone *>(child);
        }
        next = below;
    }
    return first;
}

void RigEdits::reparent(RyBone *bone, RyNode *parent, bool keepWorld)
{
    parent->addNodeChild(bone, keepWorld);
}

namespace {

/// A bone of the same figure that does not hang below it.
RyNode *otherParent(RyBone *bone, std::mt19937 &random)
{
    std::vector<RyBone *> bones = bone->getSkeleton()->getAllBones();
    std::erase_if(bones, [bone](RyBone *other) {
        return other == bone || other->isDescendantOf(bone) || other->getSkeleton() != bone->getSkeleton();
    });
    return bones.empty() ? static_cast<RyNode *>(bone->getSkeleton()) : RigEdits::pick(bones, random);
}

} // namespace

const std::vector<RigEdits::Kind> &RigEdits::kinds()
{
    static const std::vector<Kind> list{
        {"delete",
         [](RyScene &scene, RyBone *bone, std::mt19937 &) {
             // Where no other bone takes its weights, vertices would follow none; a test of its own sees to that.
             const bool hasReceiver = qobject_cast<RyBone *>(bone->getNodeParent()) || bone->getNumNodeChildren() > 0;
             if (hasReceiver && bone->getSkeleton()->getAllBones().size() > 1)
                 RigEdits::deleteBone(scene, bone);
         }},
        {"split", [](RyScene &scene, RyBone *bone, std::mt19937 &) { RigEdits::splitBone(scene, bone); }},
        {"sibling", [](RyScene &scene, RyBone *bone, std::mt19937 &) { RigEdits::addSibling(scene, bone); }},
        {"child", [](RyScene &scene, RyBone *bone, std::mt19937 &) { RigEdits::addChild(scene, bone); }},
        {"duplicate", [](RyScene &scene, RyBone *bone, std::mt19937 &) { RigEdits::duplicateChain(scene, bone); }},
        {"reparent", [](RyScene &, RyBone *bone,
                        std::mt19937 &random) { RigEdits::reparent(bone, otherParent(bone, random), true); }},
        {"hang elsewhere", [](RyScene &, RyBone *bone,
                              std::mt19937 &random) { RigEdits::reparent(bone, otherParent(bone, random), false); }},
        {"rename",
         [](RyScene &, RyBone *bone, std::mt19937 &) {
             bone->setName(bone->getSkeleton()->getUniqueBoneName(bone->getName() + QStringLiteral(" again")));
             bone->setLabel(bone->getName().toUpper());
         }},
    };
    return list;
}

RyBone *RigEdits::pick(const std::vector<RyBone *> &bones, std::mt19937 &random)
{
    return bones[std::uniform_int_distribution<size_t>(0, bones.size() - 1)(random)];
}

void RigEdits::editAtRandom(RyScene &scene, const std::vector<RyBone *> &bones, std::mt19937 &random)
{
    const Kind &kind = kinds()[std::uniform_int_distribution<size_t>(0, kinds().size() - 1)(random)];
    kind.edit(scene, pick(bones, random), random);
}

void RigEdits::shiftWeights(RyScene &scene, int amount)
{
    for (RySkeleton *skeleton : scene.getSkeletons()) {
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(skeleton);
        std::vector<RyWeightMap *> maps;
        for (RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
            if (binding->getWeights() && (binding->getWeights()->getNumAffected() > 0 || !maps.empty()))
                maps.push_back(binding->getWeights());
        }
        if (maps.size() < 2)
            continue;
        maps[0]->beginEdit();
        maps[1]->beginEdit();
        for (int vertex = 0; vertex < maps[0]->getNumWeights(); ++vertex) {
            const int moved = std::min(amount, int(maps[0]->getWeights()[vertex]));
            maps[0]->getWeights()[vertex] = quint16(maps[0]->getWeights()[vertex] - moved);
            maps[1]->getWeights()[vertex] = quint16(std::min(65535, maps[1]->getWeights()[vertex] + moved));
        }
        maps[0]->finishEdit();
        maps[1]->finishEdit();
    }
}
