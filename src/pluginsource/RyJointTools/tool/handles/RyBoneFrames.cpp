#include "pluginsource/RyJointTools/tool/handles/RyBoneFrames.h"

#include "rycore/math/RyMatrix4.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

void RyBoneFrames::add(const RyBone &bone, const RyNodeMaps::Default &defaultMaps)
{
    const RyNode *parent = bone.getNodeParent();
    Entry entry{&bone, RyBoneFrame::ofBone(bone), {}, parent && !qobject_cast<const RySkeleton *>(parent)};
    if (entry.hasLink)
        entry.parentTip = parent->getWSEndPoint();
    m_entries.push_back(entry);
    if (m_withGhosts)
        m_ghosts.push_back(RyBoneFrame::ofDefault(bone, defaultMaps.transform(bone)));
}

RyNodeMaps::Default RyBoneFrames::defaultMaps(const RyNode *node) const
{
    return m_withGhosts ? RyNodeMaps::Default::of(node) : RyNodeMaps::Default();
}

bool RyBoneFrames::addBelow(const RyNode &child, RyNodeMaps::Default &maps)
{
    const auto *bone = qobject_cast<const RyBone *>(&child);
    if (!bone || bone->isHidden())
        return false;
    if (m_withGhosts)
        maps = maps.below(child);
    add(*bone, maps);
    return true;
}

void RyBoneFrames::addIfBone(const RyNode *node)
{
    const auto *bone = qobject_cast<const RyBone *>(node);
    if (bone && bone->isVisible())
        add(*bone, defaultMaps(bone));
}

void RyBoneFrames::addFamily(const RyNode *node)
{
    if (!qobject_cast<const RyBone *>(node))
        return;
    addIfBone(node);
    addIfBone(node->getNodeParent());
    if (!node->isVisible())
        return;
    const RyNodeMaps::Default maps = defaultMaps(node);
    for (int i = 0; i < node->getNumNodeChildren(); ++i) {
        RyNodeMaps::Default childMaps = maps;
        addBelow(*node->getNodeChild(i), childMaps);
    }
}

void RyBoneFrames::addBranches(const RyNode *node)
{
    if (!node || !node->isVisible())
        return;
    struct Step
    {
        const RyNode *node;
        RyNodeMaps::Default maps; // of the parent, then of the node
    };
    std::vector<Step> pending{{node, defaultMaps(node)}};
    while (!pending.empty()) {
        Step step = pending.back();
        pending.pop_back();
        if (step.node != node && !addBelow(*step.node, step.maps))
            continue;
        for (int i = step.node->getNumNodeChildren() - 1; i >= 0; --i)
            pending.push_back({step.node->getNodeChild(i), step.maps});
    }
}
