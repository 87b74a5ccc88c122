#include "rycore/io/gltf/save/RyGltfClipMotions.h"

#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"

#include <algorithm>
#include <cmath>

RyGltfClipMotions::RyGltfClipMotions(const RyGltfScenePatch &patch, const RyGltfClips &clips,
                                     const std::vector<RyGltfNodeMotion> &motions)
    : m_patch(patch), m_clips(clips), m_before(patch.source.document->model()),
      m_order(ryGltfPreOrder(patch.document.model()))
{
    for (const RyGltfNode &node : patch.document.model().nodes)
        m_restSizes.push_back(ryGltfSize(node.transform.toAffine()));
    m_clips.readCurves();
    findBases(motions);
}

/// An edited pose control means what it says: clips that do not drive its property follow it.
void RyGltfClipMotions::findBases(const std::vector<RyGltfNodeMotion> &list)
{
    std::map<int, const RyGltfNodeMotion *> motions;
    for (const RyGltfNodeMotion &motion : list) {
        if (motion.node == motion.source)
            motions[motion.node] = &motion;
    }
    for (const auto &[node, edit] : m_patch.edits) {
        if (!edit.source || (edit.loaded().samePoseControls(RyNodeValues::of(*edit.node)) &&
                             edit.source->loaded.inheritScale == edit.node->inheritsScale()))
            continue;
        const auto motion = motions.find(node);
        m_bases[node] = baseOf(node, motion == motions.end() ? nullptr : motion->second);
    }
}

RyGltfClipMotions::Base RyGltfClipMotions::baseOf(int node, const RyGltfNodeMotion *motion) const
{
    const RyGltfTransform &transformNow = m_patch.document.model().nodes[size_t(node)].transform;
    Eigen::Affine3d now = ryGltfColumns(transformNow.toAffine());
    const RyGltfParts before = RyGltfParts::of(m_before.nodes[size_t(node)].transform);
    if (motion) {
        RyGltfMotionChange change = changeOf(RyGltfClip(), *motion);
        RyGltfMotion still;
        double missed = 0.0;
        change.before = Eigen::Affine3d::Identity();
        const Eigen::Affine3d behind = ryGltfChanged(still, change, &missed).rest.map();
        now = behind.inverse() * now * motion->change.before.inverse();
        if (!now.matrix().allFinite())
            return {before, before};
    }
    const RyGltfParts edited = RyGltfParts::nearest(now, before.scale);
    const RyGltfScenePatch::Edit &edit = m_patch.edits.at(node);
    const RyNodeValues loaded = edit.loaded();
    const RyNodeValues values = RyNodeValues::of(*edit.node);
    const auto isEdited = [&](size_t from, size_t to) {
        return !std::equal(values.pose.begin() + long(from), values.pose.begin() + long(to),
                           loaded.pose.begin() + long(from));
    };
    Base base{edited, before};
    if (isEdited(0, 3))
        base.byProperty.translation = edited.translation;
    if (isEdited(3, 6))
        base.byProperty.rotation = edited.rotation;
    if (isEdited(6, 10) || values.inheritScale != loaded.inheritScale)
        base.byProperty.scale = edited.scale;
    return base;
}

RyGltfMotion RyGltfClipMotions::restOf(int node) const
{
    RyGltfMotion motion;
    const auto base = m_bases.find(node);
    const RyGltfTransform &transform = m_before.nodes[size_t(node)].transform;
    motion.rest = base != m_bases.end() ? base->second.whole : RyGltfParts::of(transform);
    if (transform.hasMatrix && base == m_bases.end())
        motion.matrix = ryGltfColumns(transform.toAffine());
    return motion;
}

RyGltfMotion RyGltfClipMotions::of(const RyGltfClip &clip, int node) const
{
    RyGltfMotion motion = restOf(node);
    for (const RyGltfPath path : ryGltfPaths) {
        const RyGltfChannel *channel = clip.find(node, path);
        if (channel)
            motion.curves[size_t(path)] = m_clips.curve(*channel);
    }
    if (!motion.isDriven())
        return motion;
    motion.matrix.reset();
    const auto base = m_bases.find(node);
    if (base != m_bases.end())
        motion.rest = base->second.byProperty;
    return motion;
}

RyGltfMotionChange RyGltfClipMotions::changeOf(const RyGltfClip &clip, const RyGltfNodeMotion &motion) const
{
    RyGltfMotionChange change = motion.change;
    for (const int node : motion.down)
        change.down.push_back(of(clip, node));
    for (const int node : motion.up)
        change.up.push_back(of(clip, node));
    return change;
}

bool RyGltfClipMotions::isReadable(const RyGltfClip &clip, int node, RyGltfPath path) const
{
    const RyGltfChannel *channel = clip.find(node, path);
    return (clip.unreadable.empty() || !clip.unreadable.count({node, path})) && (!channel || m_clips.curve(*channel));
}

bool RyGltfClipMotions::isReadable(const RyGltfClip &clip, int node) const
{
    return std::all_of(ryGltfPaths.begin(), ryGltfPaths.end(),
                       [&](RyGltfPath path) { return isReadable(clip, node, path); });
}

std::vector<double> RyGltfClipMotions::sizesIn(const RyGltfClip &clip) const
{
    const RyGltfModel &model = m_patch.document.model();
    std::vector<double> sizes(model.nodes.size(), 1.0);
    for (const int node : m_order) {
        double own = m_restSizes[size_t(node)];
        const RyGltfChannel *channel = clip.find(node, RyGltfPath::Scale);
        const RyGltfCurve *curve = channel ? m_clips.curve(*channel).get() : nullptr;
        for (size_t key = 0; curve && key < curve->keyCount(); ++key) {
            const double largest = Eigen::Map<const Eigen::Vector3d>(curve->key(key)).cwiseAbs().maxCoeff();
            own = key == 0 ? largest : std::max(own, largest);
        }
        const int parent = model.nodes[size_t(node)].parent;
        sizes[size_t(node)] = std::max(1e-12, own * (parent >= 0 ? sizes[size_t(parent)] : 1.0));
    }
    return sizes;
}
