#include "rycore/io/gltf/save/RyGltfClipRewriter.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"

#include <algorithm>
#include <cmath>
#include <set>

/// What anybody would see, in heights of the figure.
static constexpr double seen = 1e-5;

RyGltfClipRewriter::RyGltfClipRewriter(RyGltfScenePatch &patch, const RyGltfClips &clips)
    : m_patch(patch), m_clips(clips), m_before(patch.source.document->model()),
      m_motions(RyGltfNodeMotions(patch).find()), m_orderNow(ryGltfPreOrder(patch.document.model())), m_deleted(patch)
{}

std::vector<RyGltfClipChange> RyGltfClipRewriter::rewrite()
{
    if (m_motions.empty() && m_deleted.isEmpty())
        return {};
    m_sizes = sizesIn(RyGltfClip());
    findBases();
    for (size_t clip = 0; clip < m_clips.clips().size(); ++clip)
        rewriteClip(clip);
    report();
    return std::move(m_changes);
}

/// An edited pose control means what it says: clips that do not drive its property follow it.
void RyGltfClipRewriter::findBases()
{
    std::map<int, const RyGltfNodeMotion *> motions;
    for (const RyGltfNodeMotion &motion : m_motions) {
        if (motion.node == motion.source)
            motions[motion.node] = &motion;
    }
    for (const auto &[node, edit] : m_patch.edits) {
        if (!edit.source || (edit.source->loaded.samePoseControls(RyNodeValues::of(*edit.node)) &&
                             edit.source->loaded.inheritScale == edit.node->inheritsScale()))
            continue;
        const auto motion = motions.find(node);
        m_bases[node] = baseOf(node, motion == motions.end() ? nullptr : motion->second);
    }
}

RyGltfClipRewriter::Base RyGltfClipRewriter::baseOf(int node, const RyGltfNodeMotion *motion) const
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
    const RyNodeValues &loaded = edit.source->loaded;
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

RyGltfMotion RyGltfClipRewriter::restOf(int node) const
{
    RyGltfMotion motion;
    const auto base = m_bases.find(node);
    const RyGltfTransform &transform = m_before.nodes[size_t(node)].transform;
    motion.rest = base != m_bases.end() ? base->second.whole : RyGltfParts::of(transform);
    if (transform.hasMatrix && base == m_bases.end())
        motion.matrix = ryGltfColumns(transform.toAffine());
    return motion;
}

RyGltfMotion RyGltfClipRewriter::motionOf(const RyGltfClip &clip, int node) const
{
    RyGltfMotion motion = restOf(node);
    for (const RyGltfPath path : ryGltfPaths) {
        const RyGltfChannel *channel = clip.find(node, path);
        if (channel)
            motion.curves[size_t(path)] = m_clips.curve(channel->sampler, path);
    }
    if (!motion.isDriven())
        return motion;
    motion.matrix.reset();
    const auto base = m_bases.find(node);
    if (base != m_bases.end())
        motion.rest = base->second.byProperty;
    return motion;
}

RyGltfMotionChange RyGltfClipRewriter::changeOf(const RyGltfClip &clip, const RyGltfNodeMotion &motion) const
{
    RyGltfMotionChange change = motion.change;
    const int parent = m_patch.document.model().nodes[size_t(motion.node)].parent;
    change.tolerance /= parent >= 0 ? m_sizes[size_t(parent)] : 1.0;
    for (const int node : motion.down)
        change.down.push_back(motionOf(clip, node));
    for (const int node : motion.up)
        change.up.push_back(motionOf(clip, node));
    return change;
}

bool RyGltfClipRewriter::isReadable(const RyGltfClip &clip, int node, RyGltfPath path) const
{
    const RyGltfChannel *channel = clip.find(node, path);
    return !clip.unreadable.count({node, path}) && (!channel || m_clips.curve(channel->sampler, path));
}

/// Where the parent's frame alone is another, each property of a node follows from itself; otherwise all of them, of
/// all nodes that enter, must be known.
bool RyGltfClipRewriter::canRewrite(const RyGltfClip &clip, const RyGltfNodeMotion &motion) const
{
    const auto isWhole = [&](int node) {
        return std::all_of(ryGltfPaths.begin(), ryGltfPaths.end(),
                           [&](RyGltfPath path) { return isReadable(clip, node, path); });
    };
    const bool isOfParent = motion.change.before.matrix().isIdentity(0.0) && motion.node == motion.source;
    return (isOfParent || isWhole(motion.source)) && std::all_of(motion.down.begin(), motion.down.end(), isWhole) &&
           std::all_of(motion.up.begin(), motion.up.end(), isWhole) &&
           (isWhole(motion.source) || (motion.down.empty() && motion.up.empty()));
}

/// How large the space of each node of the document is at most while a clip plays.
std::vector<double> RyGltfClipRewriter::sizesIn(const RyGltfClip &clip) const
{
    const RyGltfModel &model = m_patch.document.model();
    std::vector<double> sizes(model.nodes.size(), 1.0);
    for (const int node : m_orderNow) {
        double own = std::cbrt(std::abs(model.nodes[size_t(node)].transform.toAffine().determinant()));
        const RyGltfChannel *channel = clip.find(node, RyGltfPath::Scale);
        const auto curve = channel ? m_clips.curve(channel->sampler, RyGltfPath::Scale) : nullptr;
        for (size_t key = 0; curve && key < curve->keyCount(); ++key) {
            const double largest = Eigen::Map<const Eigen::Vector3d>(curve->key(key)).cwiseAbs().maxCoeff();
            own = key == 0 ? largest : std::max(own, largest);
        }
        const int parent = model.nodes[size_t(node)].parent;
        sizes[size_t(node)] = std::max(1e-12, own * (parent >= 0 ? sizes[size_t(parent)] : 1.0));
    }
    return sizes;
}

void RyGltfClipRewriter::rewriteClip(size_t index)
{
    const RyGltfClip &clip = m_clips.clips()[index];
    if (clip.channels.empty() && clip.unreadable.empty())
        return;
    std::vector<bool> isDriven(m_before.nodes.size(), false);
    for (const RyGltfChannel &channel : clip.channels)
        isDriven[size_t(channel.node)] = true;
    const std::vector<bool> isRelated = ryGltfRelatedNodes(m_before, isDriven);
    m_sizes = sizesIn(clip);
    bool isRead = true;
    double worst = 0.0;
    for (const RyGltfNodeMotion &motion : m_motions) {
        isRead = isRead && std::all_of(ryGltfPaths.begin(), ryGltfPaths.end(),
                                       [&](RyGltfPath path) { return isReadable(clip, motion.source, path); });
        if (!canRewrite(clip, motion))
            isRead = false;
        else
            worst = std::max(worst, rewriteNode(index, motion, isRelated[size_t(motion.source)]));
    }
    if (!isRead)
        m_unreadable.append(clip.name);
    if (std::isinf(worst))
        m_vanishing.append(clip.name);
    else if (worst > seen)
        m_sheared.append(withShare(clip.name, worst));
    // A clip that drove nothing else than what is gone goes as well.
    const auto stays = [this](const RyGltfChannel &channel) { return !m_patch.removed.count(channel.node); };
    const bool isWritten = !m_changes.empty() && m_changes.back().clip == index;
    if (!m_deleted.isEmpty() && (isWritten || std::any_of(clip.channels.begin(), clip.channels.end(), stays)))
        measureDeleted(clip);
}

void RyGltfClipRewriter::measureDeleted(const RyGltfClip &clip)
{
    std::set<float> times;
    for (const RyGltfChannel &channel : clip.channels) {
        if (const auto curve = m_clips.curve(channel.sampler, channel.path))
            times.insert(curve->times.begin(), curve->times.end());
    }
    const double worst =
        m_deleted.measure({times.begin(), times.end()}, [&](int node) { return motionOf(clip, node); });
    if (worst > seen)
        m_following.append(withShare(clip.name, worst));
}

/// How far something is put off its place, in heights of the figure; infinite where it has none.
double RyGltfClipRewriter::rewriteNode(size_t index, const RyGltfNodeMotion &motion, bool isRelated)
{
    const RyGltfClip &clip = m_clips.clips()[index];
    const RyGltfMotion before = motionOf(clip, motion.source);
    const RyGltfMotionChange change = changeOf(clip, motion);
    if (!before.isDriven() && change.isConstant() && !isRelated)
        return 0.0;
    double missed = 0.0;
    const RyGltfMotion result = ryGltfChanged(before, change, &missed);
    // A place that is none at any time says nothing to write.
    if (std::isinf(missed) && change.isConstant())
        return missed;
    // A node that nothing drives holds what a matrix holds.
    const double heights = missed / std::max(1e-300, change.tolerance) * motion.change.tolerance / motion.height;
    return addKeys(index, motion, result, change.tolerance) ? heights : 0.0;
}

/// Whether anything drives the node now.
bool RyGltfClipRewriter::addKeys(size_t index, const RyGltfNodeMotion &motion, const RyGltfMotion &result,
                                 double tolerance)
{
    const RyGltfClip &clip = m_clips.clips()[index];
    const RyGltfTransform transform = m_patch.document.model().nodes[size_t(motion.node)].transform;
    const RyGltfParts still = RyGltfParts::of(transform);
    const double slack = 0.1 * tolerance;
    const Eigen::Vector4d turn = result.rest.rotation.coeffs(), turnNow = still.rotation.coeffs();
    const bool isOff[3] = {(result.rest.translation - still.translation).norm() > slack,
                           std::min((turn - turnNow).norm(), (turn + turnNow).norm()) * motion.change.reach > slack,
                           (result.rest.scale - still.scale).norm() * motion.change.reach > slack};
    const bool isSheared = transform.hasMatrix && ryGltfDistance(still.map(), ryGltfColumns(transform.toAffine()),
                                                                 motion.change.reach) > tolerance;
    if (isSheared && (result.isDriven() || isOff[0] || isOff[1] || isOff[2])) {
        m_heldByMatrix.insert(motion.node); // it holds more than keys could
        return false;
    }
    const double *numbers[3] = {result.rest.translation.data(), turn.data(), result.rest.scale.data()};
    bool isWritten = false;
    for (const RyGltfPath path : ryGltfPaths) {
        const size_t i = size_t(path);
        const RyGltfChannel *channel = motion.node == motion.source ? clip.find(motion.node, path) : nullptr;
        std::shared_ptr<const RyGltfCurve> curve = result.curves[i];
        if (!curve && isOff[i]) { // the node says something else than the clip has to
            auto key = std::make_shared<RyGltfCurve>();
            key->kind = RyGltfCurve::Step;
            key->components = path == RyGltfPath::Rotation ? 4 : 3;
            key->times = {startOf(clip)};
            key->values.assign(numbers[i], numbers[i] + key->components);
            curve = key;
        }
        if (!curve || !isReadable(clip, motion.source, path))
            continue;
        isWritten = true;
        if (channel && curve == m_clips.curve(channel->sampler, path))
            continue;
        m_changes.push_back({index, motion.node, path, channel ? channel->place : RyGltfClipChange::isNew, curve});
    }
    if (isWritten && transform.hasMatrix)
        m_patch.document.setNodeTransform(motion.node, still.transform());
    return isWritten;
}

float RyGltfClipRewriter::startOf(const RyGltfClip &clip) const
{
    float start = std::numeric_limits<float>::infinity();
    for (const RyGltfChannel &channel : clip.channels) {
        if (const auto curve = m_clips.curve(channel.sampler, channel.path))
            start = std::min(start, curve->times.front());
    }
    return std::isfinite(start) ? start : 0.0f;
}

QString RyGltfClipRewriter::withShare(const QString &name, double heights)
{
    return QStringLiteral("%1 (%2 %)").arg(name, QString::number(100.0 * heights, 'g', 2));
}

void RyGltfClipRewriter::report() const
{
    m_patch.sayOf(QStringLiteral("Clips with channels that cannot be followed (damaged, or through an extension) keep "
                                 "them as they were, for edited joints too: %1"),
                  m_unreadable);
    m_patch.sayOf(QStringLiteral("Clips need shear that no animation can hold, and put vertices off by up to this "
                                 "share of the height: %1"),
                  m_sheared);
    m_patch.sayOf(QStringLiteral("Vertices that followed deleted bones move with others in clips, by up to this share "
                                 "of the height elsewhere: %1"),
                  m_following);
    QStringList matrices;
    for (const int node : m_heldByMatrix)
        matrices.append(m_patch.document.model().nodes[size_t(node)].name);
    m_patch.sayOf(QStringLiteral("Clips cannot hold joints in their places that are sheared in the file: %1"),
                  matrices);
    m_patch.sayOf(QStringLiteral("Clips scale joints to nothing or beyond all numbers; what hangs on these, and did "
                                 "not before, cannot be held "
                                 "in its place: %1"),
                  m_vanishing);
}
