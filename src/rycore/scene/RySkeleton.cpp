#include "rycore/scene/RySkeleton.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyBoneListSlice.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RyUniqueNames.h"
#include "rycore/undo/RyUndoStack.h"

/// Which selection map a skeleton has.
class RySelectionMapExchange : public RyUndoItem
{
public:
    explicit RySelectionMapExchange(RySkeleton *skeleton)
        : m_skeleton(skeleton), m_key(skeleton), m_map(skeleton->getSelectionMap())
    {
    }
    void swap() override
    {
        if (!m_skeleton)
            return;
        std::swap(m_skeleton->m_selectionMap, m_map);
        emit m_skeleton->selectionMapChanged();
    }
    RyUndoKey key() const override { return {m_key, 100}; }
    bool isAlive() const override { return !m_skeleton.isNull(); }

private:
    QPointer<RySkeleton> m_skeleton;
    const RySkeleton *m_key;
    RyRef<RySelectionMap> m_map;
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
    RyBoneListSlice::apply(list, start);
}

std::vector<RyBone *> RySkeleton::getAllBones() const
{
    std::vector<RyBone *> list;
    getAllBones(list);
    return list;
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
    m_followTarget = target == this ? nullptr : target;
}

void RySkeleton::setDrawGLBones(bool draw)
{
    m_drawGLBones = draw;
}

void RySkeleton::setSelectionMap(RySelectionMap *map)
{
    if (m_selectionMap.get() == map)
        return;
    ryUndoStack()->record<RySelectionMapExchange>({this, 100}, this);
    m_selectionMap = RyRef<RySelectionMap>(map);
    emit selectionMapChanged();
}
