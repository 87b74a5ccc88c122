#include "rycore/scene/RySkeleton.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyBoneListOrder.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RyUniqueNames.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyValueChange.h"

/// Which selection map it has.
struct RySkeleton::SelectionMapValue : RyValueOf<RySkeleton, RyRef<RySelectionMap>>
{
    static const Value &get(const RySkeleton &skeleton) { return skeleton.m_selectionMap; }
    static void put(RySkeleton &skeleton, const Value &map) { skeleton.applySelectionMap(map); }
};

/// What it follows and whether it draws its bones.
struct RySkeleton::FlagsValue : RyValueOf<RySkeleton, Flags>
{
    static const Flags &get(const RySkeleton &skeleton) { return skeleton.m_flags; }
    static void put(RySkeleton &skeleton, const Flags &flags) { skeleton.applyFlags(flags); }
};

RySkeleton::RySkeleton() = default;
RySkeleton::~RySkeleton() = default;

void RySkeleton::getAllBones(std::vector<RyBone *> &list) const
{
    const std::size_t start = list.size();
    std::vector<RyNode *> nodes;
    getNodeChildren(nodes, true);
    for (RyNode *node : nodes) {
        if (auto *bone = qobject_cast<RyBone *>(node))
            list.push_back(bone);
    }
    RyBoneListOrder::apply(list, start);
}

std::vector<RyBone *> RySkeleton::getAllBones() const
{
    std::vector<RyBone *> list;
    getAllBones(list);
    return list;
}

std::vector<RyBone *> RySkeleton::ownBones() const
{
    std::vector<RyBone *> bones = getAllBones();
    std::erase_if(bones, [this](const RyBone *bone) { return bone->getSkeleton() != this; });
    return bones;
}

RyBone *RySkeleton::findBone(const QString &name) const
{
    for (RyBone *bone : getAllBones()) {
        if (bone->getName() == name)
            return bone;
    }
    return nullptr;
}

RyBone *RySkeleton::findBoneByLabel(const QString &label) const
{
    for (RyBone *bone : getAllBones()) {
        if (bone->getLabel() == label)
            return bone;
    }
    return nullptr;
}

QString RySkeleton::getUniqueBoneName(const QString &name, const RyNode *ignore) const
{
    RyUniqueNames names(RyUniqueNames::Names);
    for (const RyBone *bone : getAllBones()) {
        if (bone != ignore)
            names.add(bone->getName());
    }
    return names.find(name);
}

QString RySkeleton::getUniqueBoneLabel(const QString &label, const RyNode *ignore) const
{
    RyUniqueNames labels(RyUniqueNames::Labels);
    for (const RyBone *bone : getAllBones()) {
        if (bone != ignore)
            labels.add(bone->getLabel());
    }
    return labels.find(label);
}

void RySkeleton::resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context)
{
    const auto *from = qobject_cast<const RySkeleton *>(original);
    if (!from)
        return;
    setDrawGLBones(from->drawsGLBones());
    auto *target = qobject_cast<RySkeleton *>(context.findNewElement(from->getFollowTarget()));
    setFollowTarget(target ? target : from->getFollowTarget());
    const RySelectionMap *pairs = from->getSelectionMap();
    if (!pairs || !context.facetCompatible())
        return;
    const RyRef<RySelectionMap> map(new RySelectionMap);
    for (int i = 0; i < pairs->getNumPairs(); ++i) {
        if (auto *node = qobject_cast<RyNode *>(context.findNewElement(pairs->getPairNode(i))))
            map->addPair(pairs->getPairGroup(i), node, false);
    }
    setSelectionMap(map.get());
}

void RySkeleton::setFollowTarget(RySkeleton *target)
{
    Flags flags = m_flags;
    flags.followTarget = target == this ? nullptr : target;
    if (flags.followTarget == m_flags.followTarget)
        return;
    recordFlags();
    applyFlags(flags);
}

void RySkeleton::setDrawGLBones(bool draw)
{
    if (draw == m_flags.drawGLBones)
        return;
    const RyClipPlayer::Stay stay; // tools switch it
    recordFlags();
    Flags flags = m_flags;
    flags.drawGLBones = draw;
    applyFlags(flags);
}

void RySkeleton::recordFlags()
{
    RyValueChange<FlagsValue>::record(this);
}

void RySkeleton::applyFlags(const Flags &flags)
{
    const bool otherTarget = flags.followTarget != m_flags.followTarget;
    m_flags = flags;
    if (otherTarget)
        emit followTargetChanged();
    announceDrawn();
}

void RySkeleton::setSelectionMap(RySelectionMap *map)
{
    if (m_selectionMap.get() == map)
        return;
    const RyRef<RySelectionMap> guard(map);
    RyValueChange<SelectionMapValue>::record(this);
    applySelectionMap(guard);
}

void RySkeleton::applySelectionMap(const RyRef<RySelectionMap> &map)
{
    if (m_selectionMap)
        disconnect(m_selectionMap.get(), nullptr, this, nullptr);
    m_selectionMap = map;
    if (m_selectionMap)
        connect(m_selectionMap.get(), &RySelectionMap::mapChanged, this, &RySkeleton::announceDrawn);
    emit selectionMapChanged();
    announceDrawn();
}
