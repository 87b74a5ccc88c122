#include "rycore/io/gltf/save/RyGltfRewrittenClip.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"

#include <algorithm>
#include <cmath>

RyGltfRewrittenClip::RyGltfRewrittenClip(const Source &source, size_t clip)
    : m_source(source), m_place(clip), m_clip(source.clips.clips()[clip])
{
    if (m_clip.channels.empty() && m_clip.unreadable.empty())
        return;
    const RyGltfModel &before = source.patch.source.document->model();
    std::vector<bool> isDriven(before.nodes.size(), false);
    for (const RyGltfChannel &channel : m_clip.channels)
        isDriven[size_t(channel.node)] = true;
    const std::vector<bool> isRelated = ryGltfRelatedNodes(before, isDriven);
    m_sizes = source.motions.sizesIn(m_clip);
    findDepths();
    const std::set<int> figures = drivenFigures();
    // What was carried on must not stand in the new rest where it stood in the old one.
    const auto isCarriedAlong = [&](int node) {
        const auto edit = source.patch.edits.find(node);
        return edit != source.patch.edits.end() && edit->second.isCarried() && edit->second.source &&
               figures.count(edit->second.source->figure) > 0;
    };
    for (const RyGltfNodeMotion &node : source.nodes) {
        isRead = isRead && source.motions.isReadable(m_clip, node.source);
        if (!canRewrite(node))
            isRead = false;
        else
            missed = std::max(missed, rewriteNode(node, isRelated[size_t(node.source)] || isCarriedAlong(node.source)));
    }
    // A clip that drove nothing else than what is gone goes as well.
    const auto stays = [&source](const RyGltfChannel &channel) { return !source.patch.removed.count(channel.node); };
    if (!source.deleted.isEmpty() &&
        (!changes.empty() || std::any_of(m_clip.channels.begin(), m_clip.channels.end(), stays)))
        following = measure(source.deleted);
    if (!source.carried.isEmpty() && !figures.empty())
        blended = measure(source.carried);
}

/// Places of those with bones that the clip drives.
std::set<int> RyGltfRewrittenClip::drivenFigures() const
{
    std::set<int> figures;
    for (const RyGltfChannel &channel : m_clip.channels) {
        const auto edit = m_source.patch.edits.find(channel.node);
        if (edit != m_source.patch.edits.end() && edit->second.source && edit->second.source->isBone)
            figures.insert(edit->second.source->figure);
    }
    return figures;
}

/// Whether the clip moves a node so that keys of the same number do not say where it is now.
bool RyGltfRewrittenClip::isOff(const RyGltfNodeMotion &node) const
{
    const auto varies = [&](int each, RyGltfPath path) {
        const RyGltfChannel *channel = m_clip.find(each, path);
        const RyGltfCurve *curve = channel ? m_source.clips.curve(*channel).get() : nullptr;
        return curve && !curve->isConstant();
    };
    const auto moves = [&](int each) {
        return std::any_of(ryGltfPaths.begin(), ryGltfPaths.end(), [&](RyGltfPath path) { return varies(each, path); });
    };
    return (!node.change.before.translation().isZero(0.0) &&
            (varies(node.source, RyGltfPath::Rotation) || varies(node.source, RyGltfPath::Scale))) ||
           std::any_of(node.down.begin(), node.down.end(), moves) || std::any_of(node.up.begin(), node.up.end(), moves);
}

/// What stands still or keeps its keys is nowhere off, and leaves what may be to the others.
void RyGltfRewrittenClip::findDepths()
{
    const RyGltfModel &model = m_source.patch.document.model();
    m_depths.assign(model.nodes.size(), 0);
    for (const RyGltfNodeMotion &node : m_source.nodes)
        m_depths[size_t(node.node)] = isOff(node);
    const std::vector<int> &order = m_source.motions.order();
    for (const int node : order) {
        const int parent = model.nodes[size_t(node)].parent;
        m_depths[size_t(node)] += parent >= 0 ? m_depths[size_t(parent)] : 0;
    }
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const int parent = model.nodes[size_t(*node)].parent;
        if (parent >= 0)
            m_depths[size_t(parent)] = std::max(m_depths[size_t(parent)], m_depths[size_t(*node)]);
    }
}

/// Where the parent's frame alone is another, each property of a node follows from itself; otherwise all of them, of
/// all nodes that enter, must be known.
bool RyGltfRewrittenClip::canRewrite(const RyGltfNodeMotion &node) const
{
    const auto isWhole = [this](int each) { return m_source.motions.isReadable(m_clip, each); };
    const bool isOfParent =
        node.change.before.matrix().isIdentity(0.0) && node.node == node.source && node.down.empty() && node.up.empty();
    return isOfParent || (isWhole(node.source) && std::all_of(node.down.begin(), node.down.end(), isWhole) &&
                          std::all_of(node.up.begin(), node.up.end(), isWhole));
}

RyGltfMotionChange RyGltfRewrittenClip::changeOf(const RyGltfNodeMotion &node) const
{
    RyGltfMotionChange change = m_source.motions.changeOf(m_clip, node);
    const int parent = m_source.patch.document.model().nodes[size_t(node.node)].parent;
    change.tolerance =
        node.limit / std::max(1, m_depths[size_t(node.node)]) / (parent >= 0 ? m_sizes[size_t(parent)] : 1.0);
    return change;
}

/// How far something is put off its place, in heights of the figure; infinite where it has none.
double RyGltfRewrittenClip::rewriteNode(const RyGltfNodeMotion &node, bool isRelated)
{
    const RyGltfMotion before = m_source.motions.of(m_clip, node.source);
    const RyGltfMotionChange change = changeOf(node);
    if (!before.isDriven() && change.isConstant() && !isRelated)
        return 0.0;
    double off = 0.0;
    const RyGltfMotion result = ryGltfChanged(before, change, &off);
    // A place that is none at any time says nothing to write.
    if (std::isinf(off) && change.isConstant())
        return off;
    const int parent = m_source.patch.document.model().nodes[size_t(node.node)].parent;
    const double size = parent >= 0 ? m_sizes[size_t(parent)] : 1.0;
    // A node that nothing drives holds what a matrix holds.
    return addKeys(node, result, node.limit / node.depth / size) ? off * size / node.height : 0.0;
}

/// Whether anything drives the node now.
bool RyGltfRewrittenClip::addKeys(const RyGltfNodeMotion &node, const RyGltfMotion &result, double tolerance)
{
    const RyGltfTransform &transform = m_source.patch.document.model().nodes[size_t(node.node)].transform;
    const RyGltfParts still = RyGltfParts::of(transform);
    const double slack = 0.1 * tolerance;
    const Eigen::Vector4d turn = result.rest.rotation.coeffs(), turnNow = still.rotation.coeffs();
    const bool isOff[3] = {(result.rest.translation - still.translation).norm() > slack,
                           std::min((turn - turnNow).norm(), (turn + turnNow).norm()) * node.change.reach > slack,
                           (result.rest.scale - still.scale).norm() * node.change.reach > slack};
    const bool isSheared = transform.hasMatrix && ryGltfDistance(still.map(), ryGltfColumns(transform.toAffine()),
                                                                 node.change.reach) > tolerance;
    if (isSheared && (result.isDriven() || isOff[0] || isOff[1] || isOff[2])) {
        heldByMatrix.insert(node.node); // it holds more than keys could
        return false;
    }
    const double *numbers[3] = {result.rest.translation.data(), turn.data(), result.rest.scale.data()};
    bool isWritten = false;
    for (const RyGltfPath path : ryGltfPaths) {
        const size_t i = size_t(path);
        const RyGltfChannel *channel = node.node == node.source ? m_clip.find(node.node, path) : nullptr;
        std::shared_ptr<const RyGltfCurve> curve = result.curves[i];
        if (!curve && isOff[i]) { // the node says something else than the clip has to
            auto key = std::make_shared<RyGltfCurve>();
            key->kind = RyGltfCurve::Step;
            key->components = path == RyGltfPath::Rotation ? 4 : 3;
            key->times = {start()};
            key->values.assign(numbers[i], numbers[i] + key->components);
            curve = key;
        }
        if (!curve || !m_source.motions.isReadable(m_clip, node.source, path))
            continue;
        isWritten = true;
        if (channel && curve == m_source.clips.curve(*channel))
            continue;
        changes.push_back({m_place, node.node, path, channel ? channel->place : RyGltfClipChange::isNew, curve});
    }
    if (isWritten && transform.hasMatrix)
        taken.insert(node.node);
    return isWritten;
}

float RyGltfRewrittenClip::start() const
{
    float start = std::numeric_limits<float>::infinity();
    for (const RyGltfChannel &channel : m_clip.channels) {
        if (const auto &curve = m_source.clips.curve(channel))
            start = std::min(start, curve->times.front());
    }
    return std::isfinite(start) ? start : 0.0f;
}

double RyGltfRewrittenClip::measure(const RyGltfStrayVertices &vertices) const
{
    std::set<float> times;
    for (const RyGltfChannel &channel : m_clip.channels) {
        if (const auto &curve = m_source.clips.curve(channel))
            times.insert(curve->times.begin(), curve->times.end());
    }
    return vertices.measure({times.begin(), times.end()},
                            [this](int node) { return m_source.motions.of(m_clip, node); });
}
