#include "rycore/io/gltf/save/RyGltfNodePatch.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

RyGltfTransform ryGltfTransformOf(const RyAffine &local, bool asMatrix, bool *exact)
{
    RyGltfTransform transform;
    if (asMatrix) {
        transform.hasMatrix = true;
        for (size_t row = 0; row < 4; ++row) {
            for (size_t column = 0; column < 3; ++column)
                transform.matrix[4 * row + column] = local.m[row][column];
            transform.matrix[4 * row + 3] = row == 3 ? 1.0 : 0.0;
        }
        if (exact)
            *exact = true;
        return transform;
    }
    RyAffine stretch;
    RyQuat rotation;
    local.decomposePolar(stretch, rotation);
    transform.translation = {local.m[3][0], local.m[3][1], local.m[3][2]};
    // The file's quaternion turns right-handed, ours by minus its angle.
    transform.rotation = {-double(rotation.x), -double(rotation.y), -double(rotation.z), double(rotation.w)};
    transform.scale = {stretch.m[0][0], stretch.m[1][1], stretch.m[2][2]};
    double size = 0.0;
    double shear = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            (i == j ? size : shear) = std::max(i == j ? size : shear, std::abs(stretch.m[i][j]));
        if (std::abs(transform.scale[size_t(i)] - 1.0) < 1e-6)
            transform.scale[size_t(i)] = 1.0;
    }
    if (exact)
        *exact = shear <= 1e-5 * size;
    return transform;
}

void RyGltfNodePatch::apply()
{
    m_isAnimated.assign(m_patch.document.model().nodes.size(), false);
    for (const std::vector<int> &nodes : m_patch.document.model().animatedNodes) {
        for (const int node : nodes)
            m_isAnimated[size_t(node)] = true;
    }
    compare();
    for (const int index : ryGltfPreOrder(m_patch.document.model())) { // what stands above is written first
        const auto found = m_patch.edits.find(index);
        if (found == m_patch.edits.end())
            continue;
        const Edit &edit = found->second;
        writeNode(index, edit);
        if (!edit.source)
            continue;
        const RyNodeValues now = RyNodeValues::of(*edit.node);
        if (now.name != edit.source->loaded.name)
            m_patch.document.setNodeName(index, now.name);
        if (edit.restChanged || now.rigging != edit.source->loaded.rigging)
            writeUnlistedChildren(index, edit);
    }
}

void RyGltfNodePatch::compare()
{
    for (auto &[index, edit] : m_patch.edits) {
        const RyNode &node = *edit.node;
        if (!edit.source) {
            edit.bind = RyAffine::fromScale(scaleOfNew(node)) * RyAffine::fromRotation(node.getOrientation()) *
                        RyAffine::fromTranslation(node.getOrigin());
            continue;
        }
        const RyNodeValues now = RyNodeValues::of(node);
        if (edit.source->isBone) {
            const bool turned = !now.sameOrientation(edit.source->loaded);
            const bool moved = !now.sameOrigin(edit.source->loaded);
            if (turned) {
                edit.bind = edit.source->stretch * RyAffine::fromRotation(node.getOrientation());
                for (int axis = 0; axis < 3; ++axis)
                    edit.bind.m[3][axis] = edit.source->bind.m[3][axis];
            }
            const RyVec3 origin = node.getOrigin();
            for (int axis = 0; axis < 3 && moved; ++axis)
                edit.bind.m[3][axis] = double(origin[axis]);
            edit.restChanged = turned || moved;
        }
        edit.poseChanged = !now.samePose(edit.source->loaded) || (edit.moved && !node.inheritsScale()) || isApart(node);
    }
    // A node that does not inherit scale holds its parent's against it: it changes with every pose above it.
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

/// What is no bone stands where the scene has it in the world, although the file scales its parent with the figure.
bool RyGltfNodePatch::isApart(const RyNode &node)
{
    return !qobject_cast<const RyBone *>(&node) && node.getNodeParent() && node.getNodeParent()->getSkeleton() &&
           (!node.inheritsScale() || ryDropsScale(*node.getNodeParent()));
}

/// From rest to the world, as the file shows it.
RyAffine RyGltfNodePatch::shownMap(const RyNode &node)
{
    return qobject_cast<const RyBone *>(&node) && node.getSkeleton() ? node.figureMap() * node.getSkeleton()->worldMap()
                                                                     : node.worldMap();
}

double RyGltfNodePatch::scaleOfNew(const RyNode &node) const
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
    const double scale = std::cbrt(std::abs(stretch.determinant()));
    return std::abs(scale - unit) <= 1e-5 * unit || !(scale > 0.0) ? unit : scale;
}

bool RyGltfNodePatch::isKnownBone(const RyNode &node) const
{
    const auto edit = m_patch.edits.find(m_patch.nodeOf.of(&node));
    return edit != m_patch.edits.end() && edit->second.source && edit->second.source->isBone;
}

RyAffine RyGltfNodePatch::localPoseNow(const Edit &edit) const
{
    const RyNode &node = *edit.node;
    if (!edit.poseChanged)
        return edit.source->localPose;
    if (isApart(node))
        return node.worldMap() * shownMap(*node.getNodeParent()).inverse();
    if (node.inheritsScale() || !node.getNodeParent())
        return node.getLocalMap();
    return node.figureMap() * node.getNodeParent()->figureMap().inverse();
}

void RyGltfNodePatch::writeNode(int index, const Edit &edit)
{
    const RyNode &node = *edit.node;
    const RyGltfModel &model = m_patch.document.model();
    const int fileParent = model.nodes[size_t(index)].parent;
    // The nearest node above that stands in the scene, and the plain ones between.
    int near = fileParent;
    RyAffine parentToNear;
    bool betweenWasWritten = false;
    for (; near >= 0 && !m_patch.edits.count(near); near = model.nodes[size_t(near)].parent) {
        parentToNear = parentToNear * model.nodes[size_t(near)].transform.toAffine();
        betweenWasWritten = betweenWasWritten || m_patch.rewritten.count(near) > 0;
    }
    const auto above = m_patch.edits.find(near);
    if (above != m_patch.edits.end() && above->second.node == node.getNodeParent()) {
        if (!edit.restChanged && !edit.poseChanged && !edit.moved && !above->second.restChanged && !betweenWasWritten)
            return;
        RyAffine figureToParent;
        if ((parentToNear * above->second.bind).invert(figureToParent))
            setLocal(index, edit.bind * localPoseNow(edit) * figureToParent);
        else
            keepSingular(node);
        return;
    }
    // A topmost node of the scene, or one below a figure: it is put where the scene has it in the world, the figure's
    // own transform included.
    const RyNode *parent = node.getNodeParent();
    const RyAffine figureToWorld = parent ? parent->worldMap() : RyAffine();
    RyAffine parentToWorld;
    bool parentWasWritten = false;
    for (int at = fileParent; at >= 0; at = model.nodes[size_t(at)].parent) {
        parentToWorld = parentToWorld * model.nodes[size_t(at)].transform.toAffine();
        parentWasWritten = parentWasWritten || m_patch.rewritten.count(at) > 0;
    }
    const bool figureMoved = !edit.source || !(figureToWorld == edit.source->figureToWorld);
    if (!edit.restChanged && !edit.poseChanged && !edit.moved && !parentWasWritten && !figureMoved)
        return;
    RyAffine worldToParent;
    if (parentToWorld.invert(worldToParent))
        setLocal(index, edit.bind * localPoseNow(edit) * figureToWorld *
                            RyAffine::fromScale(1.0 / m_patch.source.unit) * worldToParent);
    else
        keepSingular(node);
}

void RyGltfNodePatch::keepSingular(const RyNode &node) const
{
    m_patch.say(
        QStringLiteral("\"%1\" hangs in the file on a node that is scaled to nothing; its place there stays as it was")
            .arg(node.getName()));
}

void RyGltfNodePatch::writeUnlistedChildren(int index, const Edit &edit)
{
    // Nodes of the file below a joint that do not stand in the scene keep their place; a node that marks the bone's end
    // follows it.
    const RyGltfModel &model = m_patch.source.document->model();
    for (const int child : model.nodes[size_t(index)].children) {
        if (m_patch.edits.count(child) || model.nodes[size_t(child)].skin >= 0)
            continue;
        RyAffine local = model.nodes[size_t(child)].transform.toAffine() * edit.source->bind * edit.bind.inverse();
        if (ryGltfMarksEnd(model.nodes[size_t(child)].name)) {
            const RyVec3 end = edit.node->getEndPoint();
            const double at[3] = {end.x, end.y, end.z};
            edit.bind.inverse().mapPoint(at, local.m[3]);
        } else if (!edit.restChanged) {
            continue;
        }
        setLocal(child, local);
    }
}

void RyGltfNodePatch::setLocal(int node, const RyAffine &local)
{
    const RyGltfTransform &before = m_patch.document.model().nodes[size_t(node)].transform;
    m_patch.rewritten.insert(node);
    bool exact = true;
    RyGltfTransform transform = ryGltfTransformOf(local, before.hasMatrix, &exact);
    if (!exact && !m_isAnimated[size_t(node)]) {
        transform = ryGltfTransformOf(local, true);
    } else if (!exact) {
        m_patch.say(QStringLiteral("\"%1\" is animated and cannot hold the shear that its new place needs; the nearest "
                                   "translation, rotation and scale were written")
                        .arg(m_patch.document.model().nodes[size_t(node)].name));
    }
    m_patch.document.setNodeTransform(node, transform);
}

void RyGltfNodePatch::reportClips() const
{
    const RyGltfModel &model = m_patch.document.model();
    QStringList names;
    for (size_t clip = 0; clip < model.animatedNodes.size(); ++clip) {
        const std::vector<int> &driven = model.animatedNodes[clip];
        if (std::any_of(driven.begin(), driven.end(), [this](int node) { return m_patch.rewritten.count(node) > 0; }))
            names.append(RyGltfScenePatch::clipName(model, clip));
    }
    m_patch.sayOf(QStringLiteral("Clips are kept as they were and still say the old rest of edited joints: %1"), names);
}
