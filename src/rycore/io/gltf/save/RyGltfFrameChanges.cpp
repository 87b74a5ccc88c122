#include "rycore/io/gltf/save/RyGltfFrameChanges.h"

#include "rycore/io/gltf/clips/RyGltfParts.h"
#include "rycore/io/gltf/clips/RyGltfScaleSpread.h"
#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

RyNodeValues RyGltfScenePatch::Edit::loaded() const
{
    RyNodeValues values = source->loaded;
    if (isCarried())
        values.pose = {0, 0, 0, 0, 0, 0, 1, 1, 1, 1};
    return values;
}

RyGltfFrameChanges::RyGltfFrameChanges(RyGltfScenePatch &patch, const RyGltfClips &clips)
    : m_patch(patch), m_clips(clips), m_isDriven(patch.source.document->model().nodes.size(), false)
{
    for (const RyGltfClip &clip : clips.clips()) {
        for (const RyGltfChannel &channel : clip.channels)
            m_isDriven[size_t(channel.node)] = true;
    }
    m_isRelated = ryGltfRelatedNodes(patch.source.document->model(), m_isDriven);
}

void RyGltfFrameChanges::apply()
{
    for (auto &[index, edit] : m_patch.edits) {
        const RyNode &node = *edit.node;
        if (const auto *bone = qobject_cast<const RyBone *>(&node))
            edit.carried = bone->getCarried();
        if (!edit.source) {
            edit.bind = RyAffine::fromScale(scaleOfNew(node)) * RyAffine::fromRotation(node.getOrientation()) *
                        RyAffine::fromTranslation(node.getOrigin());
            continue;
        }
        edit.now = RyNodeValues::of(node);
        if (edit.source->isBone)
            compareRest(index, edit);
        comparePose(edit);
    }
    spreadPoses();
    m_patch.sayOf(QStringLiteral("The file keeps the old rotation of bones whose clips scale them unequally along "
                                 "their axes; the new orientation is stored beside it: %1"),
                  m_keepRotation);
}

RyGltfFrameChanges::Rest RyGltfFrameChanges::restOf(const Edit &edit)
{
    const RyNodeValues &now = edit.now;
    const RyNodeValues &loaded = edit.source->loaded;
    const RyVec3 origin = edit.node->getOrigin();
    Rest rest{{origin.x, origin.y, origin.z}, edit.node->getOrientation(), false, false};
    if (!edit.isCarried()) {
        rest.isMoved = !now.sameOrigin(loaded);
        rest.isTurned = !now.sameOrientation(loaded);
        return rest;
    }
    // What single precision leaves of the way there and back is no edit.
    const double placed[3] = {rest.origin[0], rest.origin[1], rest.origin[2]};
    edit.carried.map.inverse().mapPoint(placed, rest.origin);
    rest.orientation = rest.orientation * edit.carried.turn.inverse();
    const RyVec3 before(loaded.rigging[0], loaded.rigging[1], loaded.rigging[2]);
    double apart = 0.0;
    for (int axis = 0; axis < 3; ++axis)
        apart = std::max(apart, std::abs(rest.origin[axis] - double(before[axis])));
    rest.isMoved = apart > 2e-6 * (m_reach.heightOf(*edit.node) + double(before.length() + origin.length()));
    RyQuat turn =
        rest.orientation * RyQuat::fromEulerXYZ({loaded.rigging[6], loaded.rigging[7], loaded.rigging[8]}).inverse();
    rest.isTurned = RyVec3(turn.x, turn.y, turn.z).length() > 2e-5f;
    return rest;
}

void RyGltfFrameChanges::compareRest(int index, Edit &edit)
{
    Rest now = restOf(edit);
    if (now.isTurned && mustKeepRotation(index, edit, now.orientation)) {
        now.isTurned = false;
        edit.keepsRotation = true;
        m_keepRotation.append(edit.node->getName());
    }
    if (now.isTurned || now.isMoved)
        m_patch.frames[index] = frameOf(now, edit);
    // A clip moves what was carried on together with the vertices as it did: to it nothing is another frame.
    edit.restChanged = now.isTurned || now.isMoved || edit.isCarried();
    if (edit.isCarried())
        edit.bind = edit.bind * edit.carried.map;
}

/// Sets the rest frame of an edit, and gives it as seen from the old one.
RyAffine RyGltfFrameChanges::frameOf(const Rest &now, Edit &edit)
{
    const RyGltfNodeSource &source = *edit.source;
    RyAffine frame;
    if (now.isTurned) {
        edit.bind = source.stretch * RyAffine::fromRotation(now.orientation);
        for (int axis = 0; axis < 3; ++axis)
            edit.bind.m[3][axis] = source.bind.m[3][axis];
        RyAffine before = source.bind, linear = edit.bind;
        for (int axis = 0; axis < 3; ++axis)
            before.m[3][axis] = linear.m[3][axis] = 0.0;
        frame = linear * before.inverse();
    }
    if (now.isMoved) {
        RyAffine shift = source.bind;
        for (int axis = 0; axis < 3; ++axis) {
            edit.bind.m[3][axis] = now.origin[axis];
            shift.m[3][axis] = 0.0;
        }
        const double way[3] = {edit.bind.m[3][0] - source.bind.m[3][0], edit.bind.m[3][1] - source.bind.m[3][1],
                               edit.bind.m[3][2] - source.bind.m[3][2]};
        shift.inverse().mapPoint(way, frame.m[3]);
    }
    return frame;
}

/// Whether a turn of the node's own frame would shear what clips do to it, or to what hangs on it.
bool RyGltfFrameChanges::mustKeepRotation(int index, const Edit &edit, const RyQuat &orientation)
{
    const double reach = m_reach.of(*edit.node);
    const double slack = ryGltfShearSlack(reach, m_reach.heightOf(*edit.node));
    const std::vector<int> &children = m_patch.source.document->model().nodes[size_t(index)].children;
    const auto isDriven = [this](int node) { return bool(m_isDriven[size_t(node)]); };
    if ((isDriven(index) || std::any_of(children.begin(), children.end(), isDriven)) && isStretched(edit, slack))
        return true;
    // Clips that move it otherwise say where a posed bone stands as well.
    if (!isDriven(index) && !(m_isRelated[size_t(index)] && !(edit.node->getLocalMap() == RyAffine())))
        return false;
    const RyAffine turn =
        RyAffine::fromRotation(orientation) * (edit.source->stretch.inverse() * edit.source->bind).inverse();
    return scaleSpread(index, ryGltfColumns(turn).linear()) > slack;
}

/// Whether the rest frame holds more than a rotation, a reflection and one factor.
bool RyGltfFrameChanges::isStretched(const Edit &edit, double slack)
{
    const Eigen::Matrix3d stretch = ryGltfColumns(edit.source->stretch).linear();
    const Eigen::Matrix3d squares = stretch.transpose() * stretch;
    const double factor = squares.trace() / 3.0;
    return !((squares - factor * Eigen::Matrix3d::Identity()).norm() <= 2.0 * std::max(slack, 2e-6) * factor);
}

/// The largest difference between two factors of the scale of a node, in any key of any clip; none where a turn only
/// makes the factors change places.
double RyGltfFrameChanges::scaleSpread(int node, const Eigen::Matrix3d &turn) const
{
    if (ryGltfIsQuarterTurn(turn))
        return 0.0;
    RyGltfScaleSpread spread;
    spread.add(RyGltfParts::of(m_patch.source.document->model().nodes[size_t(node)].transform).scale);
    for (const RyGltfClip &clip : m_clips.clips()) {
        const RyGltfChannel *channel = clip.find(node, RyGltfPath::Scale);
        if (const auto curve = channel ? m_clips.curve(channel->sampler, RyGltfPath::Scale) : nullptr)
            spread.add(*curve);
    }
    return spread.largest();
}

bool ryGltfIsApart(const RyNode &node)
{
    return !qobject_cast<const RyBone *>(&node) && node.getNodeParent() && node.getNodeParent()->getSkeleton() &&
           (!node.inheritsScale() || ryDropsScale(*node.getNodeParent()));
}

void RyGltfFrameChanges::comparePose(Edit &edit) const
{
    const RyNode &node = *edit.node;
    const RyNodeValues &now = edit.now;
    // A pose turns about the origin and the axes; where there is none the file's numbers stay with their noise.
    const bool isSame = now.samePoseControls(edit.source->loaded) && node.getLocalMap() == RyAffine()
                            ? now.inheritScale == edit.source->loaded.inheritScale
                            : now.samePose(edit.source->loaded);
    edit.poseChanged = !isSame || edit.isCarried() || (edit.moved && !node.inheritsScale()) || ryGltfIsApart(node);
}

/// A node that does not inherit scale holds its parent's against it: it changes with every pose above it.
void RyGltfFrameChanges::spreadPoses()
{
    std::map<const RyNode *, bool> hasChanged{{nullptr, false}}; // it or a node above it
    for (auto &[index, edit] : m_patch.edits) {
        if (edit.poseChanged || edit.node->inheritsScale())
            continue;
        const RyNode *above = edit.node->getNodeParent();
        std::vector<const RyNode *> path;
        for (; !hasChanged.count(above); above = above->getNodeParent())
            path.push_back(above);
        bool changed = hasChanged.at(above);
        for (; !path.empty(); path.pop_back()) {
            const auto other = m_patch.edits.find(m_patch.nodeOf.of(path.back()));
            changed = changed || (other != m_patch.edits.end() && (other->second.poseChanged || other->second.moved));
            hasChanged[path.back()] = changed;
        }
        edit.poseChanged = changed;
    }
}

double RyGltfFrameChanges::scaleOfNew(const RyNode &node) const
{
    const double unit = m_patch.source.unit;
    const auto *bone = qobject_cast<const RyBone *>(&node);
    if (!bone || !m_patch.source.findFigureSource(bone->getSkeleton()))
        return unit; // what is written with a new skin has its own frames
    const RyNode *known = &node;
    while (known && !isKnownBone(*known))
        known = qobject_cast<const RyBone *>(known->getNodeParent());
    if (!known) { // all above are new as well, and take theirs from what stands below the topmost
        known = &node;
        while (qobject_cast<const RyBone *>(known->getNodeParent()))
            known = known->getNodeParent();
        while (known && !isKnownBone(*known)) {
            const RyNode *below = nullptr;
            for (const RyNode *child : known->nodeChildrenIterator())
                below = below ? below : qobject_cast<const RyBone *>(child);
            known = below;
        }
    }
    if (!known)
        return unit;
    const RyAffine &stretch = m_patch.edits.at(m_patch.nodeOf.of(known)).source->stretch;
    // Its axes are others than the other bone's: of a stretch that differs between axes it takes the mean.
    const double scale = ryGltfSize(stretch);
    return std::abs(scale - unit) <= 1e-5 * unit || !(scale > 0.0) ? unit : scale;
}

bool RyGltfFrameChanges::isKnownBone(const RyNode &node) const
{
    const auto edit = m_patch.edits.find(m_patch.nodeOf.of(&node));
    return edit != m_patch.edits.end() && edit->second.source && edit->second.source->isBone;
}
