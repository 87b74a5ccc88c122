#include "rycore/io/gltf/play/RyGltfPlayedMotion.h"

#include "rycore/io/gltf/extras/RyGltfWeightGiver.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

bool isFinite(const RyAffine &map)
{
    return std::all_of(&map.m[0][0], &map.m[0][0] + 12, [](double number) { return std::isfinite(number); });
}

/// From figure space to the world as it was read, of a figure without a node of its own in the file.
RyAffine figureToWorld(const RyGltfOrigin &origin, const RyGltfFigureSource &figure)
{
    const auto root = std::find_if(origin.nodes.begin(), origin.nodes.end(),
                                   [&](const RyGltfNodeSource &source) { return source.node == figure.firstRoot; });
    return root != origin.nodes.end() ? root->figureToWorld : RyAffine();
}

RyAffine carriedMap(const RyNode &node)
{
    const auto *bone = qobject_cast<const RyBone *>(&node);
    return bone ? bone->getCarried().map : RyAffine();
}

} // namespace

RyGltfPlayedMotion::RyGltfPlayedMotion(const RyGltfOrigin &origin, const RyGltfClips &clips, const RyGltfClip &clip,
                                       const std::vector<int> &moved, const std::vector<RyGltfDrivenMorph> &morphs,
                                       const RyScene &scene)
    : m_chains(origin.document->model(), clips, clip)
{
    for (const int place : moved) {
        const RyGltfNodeSource &source = origin.nodes[size_t(place)];
        if (!source.sceneNode || source.sceneNode->getScene() != &scene)
            continue;
        if (source.isBone)
            addBone(origin, source, *source.sceneNode);
        else
            addOther(origin, source);
    }
    addTakers(origin);
    for (Played &played : m_played) // the file speaks of where its vertices were
        played.before = carriedMap(*played.node).inverse() * played.before;
    for (const RyGltfDrivenMorph &driven : morphs) {
        const RyNode *node = driven.morph ? driven.morph->getNode() : nullptr;
        if (node && node->getScene() == &scene)
            m_morphs.emplace_back(driven.morph, RyGltfTrack(driven.curve));
    }
}

/// Relative to its figure, which may move as well.
void RyGltfPlayedMotion::addBone(const RyGltfOrigin &origin, const RyGltfNodeSource &source, RyNode &bone)
{
    const RyGltfFigureSource &figure = origin.figures[size_t(source.figure)];
    if (!figure.sceneNode || bone.getSkeleton() != figure.sceneNode)
        return;
    if (const RyGltfNodeSource *carrier = origin.findSource(figure.sceneNode)) {
        add(source, bone, carrier->node, carrier->bind);
        return;
    }
    add(source, bone, -1, RyAffine::fromScale(origin.unit) * figureToWorld(origin, figure).inverse());
}

/// A prop or a figure, relative to what it hangs on; one that hangs elsewhere follows that alone.
void RyGltfPlayedMotion::addOther(const RyGltfOrigin &origin, const RyGltfNodeSource &source)
{
    const RyNode *parent = source.sceneNode->getNodeParent();
    if (parent != source.sceneParent || (source.parent >= 0) != (parent != nullptr))
        return;
    if (!parent)
        add(source, *source.sceneNode, -1, RyAffine::fromScale(origin.unit));
    else
        add(source, *source.sceneNode, source.parent, origin.findSource(parent)->bind * carriedMap(*parent));
}

void RyGltfPlayedMotion::add(const RyGltfNodeSource &source, RyNode &node, int above, const RyAffine &behind)
{
    Played played{&node, -1, {}, behind};
    if (!source.bind.invert(played.before))
        return;
    played.chain = m_chains.add(source.node, above);
    m_played.push_back(played);
}

/// New bones that took weights over move as those that gave them do, or did while they were there.
void RyGltfPlayedMotion::addTakers(const RyGltfOrigin &origin)
{
    std::set<const RyNode *> figures;
    for (const Played &played : m_played) {
        if (qobject_cast<const RyBone *>(played.node))
            figures.insert(played.node->getSkeleton());
    }
    for (const RyNode *figure : figures) {
        for (RyBone *bone : ryOwnBones(*figure)) {
            const RyGltfNodeSource *giver = origin.findSource(bone) ? nullptr : ryGltfWeightGiver(origin, *bone);
            if (giver)
                addBone(origin, *giver, *bone);
        }
    }
}

void RyGltfPlayedMotion::evaluate(double seconds, RyClipFrame &frame)
{
    m_chains.evaluate(seconds);
    frame.maps.resize(m_played.size());
    for (size_t i = 0; i < m_played.size(); ++i) {
        const Played &played = m_played[i];
        RyAffine map = played.before * m_chains.map(played.chain) * played.behind;
        if (!isFinite(map))
            map = RyAffine();
        frame.maps[i] = {played.node, map};
    }
    frame.morphs.resize(m_morphs.size());
    for (size_t i = 0; i < m_morphs.size(); ++i)
        frame.morphs[i] = {m_morphs[i].first, float(m_morphs[i].second.vector(seconds).x())};
}
