#include "rycore/scene/node/RyNodeMaps.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

namespace {

RyAffine linearPart(const RyAffine &map)
{
    RyAffine linear = map;
    linear.m[3][0] = linear.m[3][1] = linear.m[3][2] = 0.0;
    return linear;
}

/// X of a child whose local map is `local`; a child that does not inherit scale keeps its parent's rotation alone,
/// while its origin still goes through the parent's full map.
RyAffine composed(const RyAffine &local, const RyAffine &parentMap, const RyQuat &parentRotation, bool inheritsScale,
                  const RyVec3 &origin)
{
    if (inheritsScale)
        return local * parentMap;
    const double from[3] = {origin.x, origin.y, origin.z};
    double inParent[3];
    double target[3];
    local.mapPoint(from, inParent);
    parentMap.mapPoint(inParent, target);
    return RyAffine::fromTranslation(-origin) * linearPart(local) * RyAffine::fromRotation(parentRotation) *
           RyAffine::fromTranslation(target[0], target[1], target[2]);
}

} // namespace

void RyNodeMaps::update(const RyNode &node)
{
    std::vector<const RyNode *> stale;
    for (const RyNode *each = &node; each && !each->m_maps.m_valid; each = each->getNodeParent())
        stale.push_back(each);
    for (; !stale.empty(); stale.pop_back())
        stale.back()->m_maps.follow(*stale.back());
}

void RyNodeMaps::follow(const RyNode &node)
{
    m_valid = true;
    if (m_played) {
        followPlayed(node);
        return;
    }
    const RyNodeMaps *parent = node.getNodeParent() ? &node.getNodeParent()->m_maps : nullptr;
    const RyVec3 origin = node.getOrigin();
    const RyAffine local = node.getLocalMap();
    const RyQuat rotation = node.getLocalRot();
    const bool inherits = node.inheritsScale() || (parent && parent->m_played);
    if (parent) {
        m_world = composed(local, parent->m_world, parent->m_worldRotation, inherits, origin);
        m_worldRotation = (rotation * parent->m_worldRotation).normalized();
    } else {
        m_world = local;
        m_worldRotation = rotation.normalized();
    }
    if (qobject_cast<const RySkeleton *>(&node)) {
        m_figure = RyAffine();
        m_figureRotation = RyQuat();
    } else if (parent) {
        m_figure = composed(local, parent->m_figure, parent->m_figureRotation, inherits, origin);
        m_figureRotation = (rotation * parent->m_figureRotation).normalized();
    } else {
        m_figure = local;
        m_figureRotation = rotation.normalized();
    }
}

/// A clip says all of the map, so that what a node inherits does not count.
void RyNodeMaps::followPlayed(const RyNode &node)
{
    RyAffine stretch;
    RyQuat turn;
    m_played->decomposePolar(stretch, turn);
    const RyNode *figure = qobject_cast<const RyBone *>(&node) ? node.getSkeleton() : nullptr;
    const RyNode *above = figure ? figure : node.getNodeParent();
    m_world = above ? *m_played * above->m_maps.m_world : *m_played;
    m_worldRotation = (above ? turn * above->m_maps.m_worldRotation : turn).normalized();
    if (qobject_cast<const RySkeleton *>(&node)) {
        m_figure = RyAffine();
        m_figureRotation = RyQuat();
    } else {
        m_figure = above ? *m_played * above->m_maps.m_figure : *m_played;
        m_figureRotation = (above ? turn * above->m_maps.m_figureRotation : turn).normalized();
    }
}

void RyNodeMaps::play(RyNode &node, const RyAffine *map)
{
    std::unique_ptr<RyAffine> &played = node.m_maps.m_played;
    if (!map && !played)
        return;
    if (!map)
        played.reset();
    else if (played)
        *played = *map;
    else
        played = std::make_unique<RyAffine>(*map);
    invalidate(node);
}

void RyNodeMaps::invalidate(RyNode &node)
{
    std::vector<RyNode *> pending{&node};
    while (!pending.empty()) {
        RyNode *each = pending.back();
        pending.pop_back();
        if (!each->m_maps.m_valid && each != &node)
            continue;
        each->m_maps.m_valid = false;
        ++each->m_maps.m_revision;
        const std::vector<RyNode *> &children = each->m_tree.children();
        pending.insert(pending.end(), children.begin(), children.end());
    }
}

RyNodeMaps::Default RyNodeMaps::Default::of(const RyNode *node)
{
    std::vector<const RyNode *> chain;
    for (; node && !qobject_cast<const RySkeleton *>(node); node = node->getNodeParent())
        chain.push_back(node);
    Default maps;
    if (node)
        maps = {node->worldMap(), node->getWSRot()};
    for (; !chain.empty(); chain.pop_back())
        maps = maps.below(*chain.back());
    return maps;
}

RyNodeMaps::Default RyNodeMaps::Default::below(const RyNode &child) const
{
    if (qobject_cast<const RySkeleton *>(&child))
        return {child.worldMap(), child.getWSRot()};
    const RyVec3 origin = child.getOrigin(true);
    const RyQuat orientation = child.getOrientation(true);
    return {
        composed(child.m_pose.localMap(origin, orientation, true), world, worldRotation, child.inheritsScale(), origin),
        (child.m_pose.localRotation(orientation, true) * worldRotation).normalized()};
}

RyMatrix4 RyNodeMaps::Default::transform(const RyNode &node) const
{
    return (RyAffine::fromTranslation(node.getOrigin(true)) * world).toMatrix4();
}
