#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

static RyNode *followedBy(const RyGltfFigureSource &figure)
{
    const auto *skeleton = qobject_cast<const RySkeleton *>(figure.sceneNode.data());
    return skeleton ? skeleton->getFollowTarget() : nullptr;
}

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
    links = linksNow();
    for (RyGltfFigureSource &figure : figures)
        figure.followed = followedBy(figure);
}

std::vector<RyLinkExtras::Link> RyGltfOrigin::linksNow() const
{
    std::vector<const RyNode *> all;
    for (const auto &[node, parent] : order)
        all.push_back(node);
    return RyLinkExtras::linksOf(all);
}

bool RyGltfOrigin::isLinkedOtherwise() const
{
    return linksNow() != links || std::any_of(figures.begin(), figures.end(), [](const RyGltfFigureSource &figure) {
               return figure.followed != followedBy(figure);
           });
}

void RyGltfOrigin::addNode(RyGltfNodeSource source)
{
    m_placesOfNodes.append(source.sceneNode, int(nodes.size()), nodeAt());
    nodes.push_back(std::move(source));
}

const RyGltfNodeSource *RyGltfOrigin::findSource(const RyNode *node) const
{
    const int place = m_placesOfNodes.find(node, int(nodes.size()), nodeAt());
    return place < 0 ? nullptr : &nodes[size_t(place)];
}

const RyGltfNodeSource *RyGltfOrigin::findBone(quint64 serial) const
{
    const auto found = std::find_if(nodes.begin(), nodes.end(), [serial](const RyGltfNodeSource &source) {
        return source.isBone && source.serial == serial;
    });
    return found == nodes.end() ? nullptr : &*found;
}

const RyGltfFigureSource *RyGltfOrigin::findFigureSource(const RyNode *figure) const
{
    const int place = m_placesOfFigures.find(figure, int(figures.size()),
                                             [this](int i) { return figures[size_t(i)].sceneNode.data(); });
    return place < 0 ? nullptr : &figures[size_t(place)];
}

RySceneOrigin::Clips RyGltfOrigin::clips() const
{
    const auto self = std::static_pointer_cast<const RyGltfOrigin>(weak_from_this().lock());
    if (!m_clips && self && readClips)
        m_clips = readClips(self);
    return m_clips.value_or(Clips());
}
