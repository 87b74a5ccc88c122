#include "rycore/io/gltf/save/RyGltfNodeMotions.h"

#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyGltfFigureSource.h"
#include "rycore/io/gltf/extras/RyGltfWeightGiver.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

RyGltfNodeMotions::RyGltfNodeMotions(const RyGltfScenePatch &patch)
    : m_patch(patch), m_before(patch.source.document->model()), m_now(patch.document.model())
{
    for (const auto &[node, frame] : patch.frames)
        m_frames[node] = ryGltfColumns(frame);
}

std::vector<RyGltfNodeMotion> RyGltfNodeMotions::find()
{
    for (const auto &[sceneNode, node] : m_patch.added) {
        const RyGltfNodeSource *giver =
            qobject_cast<const RyBone *>(sceneNode) ? ryGltfWeightGiver(m_patch.source, *sceneNode) : nullptr;
        if (!giver)
            continue;
        m_givers[node] = giver->node;
        m_frames[node] = ryGltfColumns(m_patch.edits.at(node).uncarriedBind() * giver->bind.inverse());
    }
    for (size_t node = 0; node < m_before.nodes.size(); ++node) {
        if (isThere(int(node)) && !isNew(int(node)))
            addKnown(int(node));
    }
    for (const auto &[node, giver] : m_givers) {
        RyGltfNodeMotion motion;
        motion.node = node;
        motion.source = giver;
        motion.change.before = m_frames.at(node);
        hangElsewhere(motion, m_before.nodes[size_t(giver)].parent, m_now.nodes[size_t(node)].parent);
        m_motions.push_back(std::move(motion));
    }
    setLimits(m_motions);
    return std::move(m_motions);
}

bool RyGltfNodeMotions::isNew(int node) const
{
    if (size_t(node) >= m_before.nodes.size())
        return true;
    const auto edit = m_patch.edits.find(node);
    return edit != m_patch.edits.end() && !edit->second.source;
}

/// Whether it still hangs in the tree.
bool RyGltfNodeMotions::isThere(int node) const
{
    while (m_now.nodes[size_t(node)].parent >= 0)
        node = m_now.nodes[size_t(node)].parent;
    return !RyTreeExtras::isRemoved(m_patch.document, "nodes", node);
}

Eigen::Affine3d RyGltfNodeMotions::localNow(int node) const
{
    return ryGltfColumns(m_now.nodes[size_t(node)].transform.toAffine());
}

void RyGltfNodeMotions::addKnown(int node)
{
    RyGltfNodeMotion motion;
    motion.node = motion.source = node;
    const auto frame = m_frames.find(node);
    if (frame != m_frames.end())
        motion.change.before = frame->second;
    const int oldParent = m_before.nodes[size_t(node)].parent;
    const int newParent = m_now.nodes[size_t(node)].parent;
    const auto edit = m_patch.edits.find(node);
    const bool isBone = edit == m_patch.edits.end() || edit->second.source->isBone;
    const auto carried = m_patch.carried.find(node);
    if (carried != m_patch.carried.end()) {
        motion.change.between = ryGltfColumns(carried->second);
        hangElsewhere(motion, oldParent, newParent);
    } else if (oldParent != newParent && (isBone || m_patch.removed.count(oldParent))) {
        hangElsewhere(motion, oldParent, newParent);
    } else if (oldParent != newParent) {
        // A prop or a figure follows what it hangs on; its own clips move it from its new place.
        motion.change.after =
            localNow(node) * ryGltfColumns(m_before.nodes[size_t(node)].transform.toAffine()).inverse();
    } else if (oldParent >= 0 && m_frames.count(oldParent)) {
        motion.change.after = m_frames.at(oldParent).inverse();
    }
    const auto isIdentity = [](const Eigen::Affine3d &map) { return map.matrix().isIdentity(0.0); };
    // A node that stands elsewhere now, although its frame is the same, must not do so in clips.
    if ((isBone && m_patch.rewritten.count(node)) || !isIdentity(motion.change.before) ||
        !isIdentity(motion.change.after) || !motion.down.empty() || !motion.up.empty() ||
        !isIdentity(motion.change.between)) {
        m_motions.push_back(std::move(motion));
    }
}

/// The way from the old parent to the new one, both as they moved in the file.
void RyGltfNodeMotions::hangElsewhere(RyGltfNodeMotion &motion, int oldParent, int newParent) const
{
    Eigen::Affine3d between = Eigen::Affine3d::Identity(); // of new nodes without a motion of their own
    while (newParent >= 0 && isNew(newParent) && !m_givers.count(newParent)) {
        between = localNow(newParent) * between;
        newParent = m_now.nodes[size_t(newParent)].parent;
    }
    motion.change.after = between.inverse();
    if (newParent >= 0 && m_frames.count(newParent))
        motion.change.after = motion.change.after * m_frames.at(newParent).inverse();
    const auto giver = m_givers.find(newParent);
    for (int at = oldParent; at >= 0; at = m_before.nodes[size_t(at)].parent)
        motion.down.push_back(at);
    for (int at = giver == m_givers.end() ? newParent : giver->second; at >= 0; at = m_before.nodes[size_t(at)].parent)
        motion.up.push_back(at);
    while (motion.change.between.matrix().isIdentity(0.0) && !motion.down.empty() && !motion.up.empty() &&
           motion.down.back() == motion.up.back()) {
        motion.down.pop_back();
        motion.up.pop_back();
    }
}

/// In the figure's space: of what is shown, or of what the file holds where that is less, since a pose that was baked
/// may reach higher.
double RyGltfNodeMotions::heightOf(const RyNode &figure)
{
    const double height = m_reach.heightOf(figure);
    const RyGltfFigureSource *source = m_patch.source.findFigureSource(&figure);
    return source && source->height > 0.0 ? std::min(height, source->height) : height;
}

void RyGltfNodeMotions::setLimits(std::vector<RyGltfNodeMotion> &motions)
{
    // Of the figure's height, over a whole limb, along which what may be off adds up: numbers that are rounded to
    // floats, places of nodes that are near enough, and what is not seen between three places of a curve leave it below
    // a hundred thousandth.
    constexpr double share = 5.8e-6;
    const std::vector<int> order = ryGltfPreOrder(m_now);
    const std::vector<RyAffine> worlds = ryGltfWorldMaps(m_now, order);
    std::vector<int> depth(m_now.nodes.size(), 0); // motions off their paths at and above a node
    std::vector<const RyNode *> shown(m_now.nodes.size(), nullptr);
    for (const RyGltfNodeMotion &motion : motions)
        depth[size_t(motion.node)] = motion.isOffPath();
    for (const int node : order) {
        const int parent = m_now.nodes[size_t(node)].parent;
        const auto edit = m_patch.edits.find(node);
        shown[size_t(node)] = edit != m_patch.edits.end() ? edit->second.node
                              : parent >= 0               ? shown[size_t(parent)]
                                                          : nullptr;
        depth[size_t(node)] += parent >= 0 ? depth[size_t(parent)] : 0;
    }
    for (auto node = order.rbegin(); node != order.rend(); ++node) { // along the longest limb through each
        const int parent = m_now.nodes[size_t(*node)].parent;
        if (parent >= 0)
            depth[size_t(parent)] = std::max(depth[size_t(parent)], depth[size_t(*node)]);
    }
    for (RyGltfNodeMotion &motion : motions) {
        const RyNode *node = shown[size_t(motion.node)];
        const RyNode *figure = node ? node->getSkeleton() : nullptr;
        const double height = figure ? heightOf(*figure) : 100.0; // centimetres
        const double reach = node && figure ? m_reach.of(*node) : height;
        motion.height = height * (figure ? ryGltfSize(figure->worldMap()) : 1.0) / m_patch.source.unit;
        motion.limit = share * motion.height;
        motion.depth = std::max(1, depth[size_t(motion.node)]);
        const auto edit = m_patch.edits.find(motion.node);
        const bool isBone = edit != m_patch.edits.end() && qobject_cast<const RyBone *>(edit->second.node);
        const double size =
            isBone ? ryGltfSize(edit->second.bind) : ryGltfSize(worlds[size_t(motion.node)]) * m_patch.source.unit;
        motion.change.reach = reach / std::max(1e-12, size);
        motion.change.slack = std::max(1e-7, ryGltfShearSlack(reach, height));
    }
}
