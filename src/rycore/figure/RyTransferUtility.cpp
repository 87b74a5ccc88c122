#include "rycore/figure/RyTransferUtility.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/node/RyNodeLookup.h"
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

/// A figure's own skin, and those of the figures that hang on it: a bone may move the mesh of a figure below.
std::vector<RySkinBinding *> skinsOf(const RyFigure &figure, const std::vector<RyNode *> &below)
{
    std::vector<RySkinBinding *> skins;
    const auto add = [&skins](const RyNode *node) {
        RySkinBinding *skin = RySkinBinding::findSkin(qobject_cast<const RySkeleton *>(node));
        if (skin)
            skins.push_back(skin);
    };
    add(&figure);
    std::for_each(below.begin(), below.end(), add);
    return skins;
}

/// Whether a node moves, by a link, anything but nodes that may go.
bool movesWhatStays(const RyNode &node, const std::unordered_set<const RyNode *> &mayGo)
{
    for (const RyFloatProperty *value : RyNodeLookup::values(node)) {
        for (const RyERCLink *link : value->getControlledLinks()) {
            const auto *moved = qobject_cast<const RyNode *>(link->getControlled()->getOwner());
            if (!moved || !mayGo.count(moved))
                return true;
        }
    }
    return false;
}

/// The nodes of the figure's tree that stay: everything that is no bone, bones with weights, bones that move what
/// stays, and all above these.
std::unordered_set<const RyNode *> usedNodes(const RyFigure &figure, const std::vector<RyNode *> &below,
                                             const std::vector<RySkinBinding *> &skins)
{
    std::unordered_set<const RyNode *> used{&figure};
    const auto keep = [&used](const RyNode *node) {
        for (; node && used.insert(node).second; node = node->getNodeParent()) {
        }
    };
    for (const RySkinBinding *skin : skins) {
        for (const RyBoneBinding *binding : skin->bindings()) {
            if (hasWeights(*binding))
                keep(binding->getBone());
        }
    }
    for (const RyNode *node : below) {
        if (!qobject_cast<const RyBone *>(node))
            keep(node);
    }
    std::unordered_set<const RyNode *> mayGo;
    for (const RyNode *node : below) {
        if (!used.count(node) && node->getSkeleton() == &figure)
            mayGo.insert(node);
    }
    // Each that stays for what it moves may be moved by others.
    const auto isMover = [&mayGo](const RyNode *node) { return movesWhatStays(*node, mayGo); };
    for (auto mover = std::find_if(mayGo.begin(), mayGo.end(), isMover); mover != mayGo.end();
         mover = std::find_if(mayGo.begin(), mayGo.end(), isMover)) {
        keep(*mover);
        std::erase_if(mayGo, [&used](const RyNode *node) { return used.count(node) > 0; });
    }
    return used;
}

} // namespace

int RyTransferUtility::removeUnusedBones(RyFigure *figure)
{
    if (!figure || !figure->getSkinBinding())
        return 0;
    std::vector<RyNode *> below;
    figure->getNodeChildren(below, true);
    const std::vector<RySkinBinding *> skins = skinsOf(*figure, below);
    const std::unordered_set<const RyNode *> used = usedNodes(*figure, below, skins);
    std::unordered_set<const RyNode *> unused;
    std::vector<RyNode *> tops;
    for (RyNode *node : below) {
        // Bones of a figure below are that figure's.
        if (used.count(node) || node->getSkeleton() != figure)
            continue;
        unused.insert(node);
        if (used.count(node->getNodeParent()))
            tops.push_back(node);
    }
    if (unused.empty())
        return 0;

    const RyUndoStackLock lock;
    for (RySkinBinding *skin : skins) {
        skin->beginEdit();
        for (RyBoneBinding *binding : skin->boneBindingIterator()) {
            if (unused.count(binding->getBone()))
                skin->removeBoneBinding(binding);
        }
        skin->finishEdit();
    }
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
