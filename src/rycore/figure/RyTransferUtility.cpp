#include "rycore/figure/RyTransferUtility.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <algorithm>
#include <unordered_set>

namespace {

bool hasWeights(const RyBoneBinding &binding)
{
    const std::vector<RyWeightMap *> maps = binding.getAllWeightMaps();
    return std::any_of(maps.begin(), maps.end(), [](const RyWeightMap *map) { return map->getNumAffected() > 0; });
}

/// The nodes of the figure's tree that stay: everything that is no bone, bones with weights, and all above either.
std::unordered_set<const RyNode *> usedNodes(const RyFigure &figure, const RySkinBinding &skin)
{
    std::unordered_set<const RyNode *> used{&figure};
    const auto keep = [&used](const RyNode *node) {
        for (; node && used.insert(node).second; node = node->getNodeParent()) {
        }
    };
    for (const RyBoneBinding *binding : skin.bindings()) {
        if (hasWeights(*binding))
            keep(binding->getBone());
    }
    std::vector<RyNode *> below;
    figure.getNodeChildren(below, true);
    for (const RyNode *node : below) {
        if (!qobject_cast<const RyBone *>(node))
            keep(node);
    }
    return used;
}

} // namespace

int RyTransferUtility::removeUnusedBones(RyFigure *figure)
{
    RySkinBinding *skin = figure ? figure->getSkinBinding() : nullptr;
    if (!skin)
        return 0;
    const std::unordered_set<const RyNode *> used = usedNodes(*figure, *skin);
    std::vector<RyNode *> below;
    figure->getNodeChildren(below, true);
    std::unordered_set<const RyNode *> unused;
    std::vector<RyNode *> tops;
    for (RyNode *node : below) {
        if (used.count(node))
            continue;
        unused.insert(node);
        if (used.count(node->getNodeParent()))
            tops.push_back(node);
    }
    if (unused.empty())
        return 0;

    const RyUndoStackLock lock;
    skin->beginEdit();
    for (RyBoneBinding *binding : skin->boneBindingIterator()) {
        if (unused.count(binding->getBone()))
            skin->removeBoneBinding(binding);
    }
    skin->finishEdit();
    if (RySelectionMap *map = figure->getSelectionMap()) {
        for (int i = map->getNumPairs() - 1; i >= 0; --i) {
            if (unused.count(map->getPairNode(i)))
                map->removePair(i);
        }
    }
    for (RyNode *top : tops) {
        if (RyScene *scene = top->getScene())
            scene->removeNode(top);
        else
            top->getNodeParent()->removeNodeChild(top);
    }
    return int(unused.size());
}
