#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

void RyGltfOrigin::recordTree()
{
    RyGltfNodeIndex nodeOf;
    for (RyGltfNodeSource &source : nodes) {
        nodeOf.add(source.sceneNode, source.node);
        source.sceneParent = source.sceneNode->getNodeParent();
        source.parent = nodeOf.of(source.sceneParent);
        if (source.parent < 0 && source.sceneParent)
            source.figureToWorld = source.sceneParent->worldMap();
        if (source.isBone && source.sceneParent == figures[size_t(source.figure)].sceneNode &&
            figures[size_t(source.figure)].firstRoot < 0)
            figures[size_t(source.figure)].firstRoot = source.node;
    }
    for (const QPointer<RyNode> &top : tops) {
        std::vector<RyNode *> below;
        top->getNodeChildren(below, true);
        order.emplace_back(top, top->getNodeParent());
        for (const RyNode *node : below)
            order.emplace_back(node, node->getNodeParent());
    }
}

const RyGltfNodeSource *RyGltfOrigin::findSource(const RyNode *node) const
{
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [node](const RyGltfNodeSource &source) { return source.sceneNode == node; });
    return found == nodes.end() ? nullptr : &*found;
}

const RyGltfFigureSource *RyGltfOrigin::findFigureSource(const RyNode *figure) const
{
    const auto found = std::find_if(figures.begin(), figures.end(),
                                    [figure](const RyGltfFigureSource &source) { return source.sceneNode == figure; });
    return found == figures.end() ? nullptr : &*found;
}
