#include "pluginsource/RyJointTools/operations/findSelectableBindings.h"

#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"

#include <QHash>

namespace {

/// Remembers where walks ended, so that a long chain is walked once.
class SelectableNodes
{
public:
    const RyNode *reach(const RyNode *node)
    {
        std::vector<const RyNode *> way;
        for (const RyNode *next = node; next; next = parentToAsk(node)) {
            node = m_reached.value(next, next);
            way.push_back(next);
            if (node != next)
                break;
        }
        for (const RyNode *passed : way)
            m_reached.insert(passed, node);
        return node;
    }

private:
    /// Where to go on from a node that cannot be selected; null at the end of the way, which never is the skeleton
    /// unless it began there.
    static const RyNode *parentToAsk(const RyNode *node)
    {
        if (node->isSelectable() || qobject_cast<const RySkeleton *>(node))
            return nullptr;
        const RyNode *parent = node->getNodeParent();
        return qobject_cast<const RySkeleton *>(parent) ? nullptr : parent;
    }

    QHash<const RyNode *, const RyNode *> m_reached;
};

} // namespace

std::vector<int> findSelectableBindings(const std::vector<RyBoneBinding *> &bindings)
{
    QHash<const RyNode *, int> places;
    for (size_t i = 0; i < bindings.size(); ++i) {
        if (const RyNode *bone = bindings[i]->getBone())
            places.insert(bone, int(i));
    }
    SelectableNodes nodes;
    std::vector<int> found(bindings.size());
    for (size_t i = 0; i < bindings.size(); ++i) {
        const RyNode *bone = bindings[i]->getBone();
        found[i] = bone ? places.value(nodes.reach(bone), int(i)) : int(i);
    }
    return found;
}
