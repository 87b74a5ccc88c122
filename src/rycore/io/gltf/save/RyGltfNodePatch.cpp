#include "rycore/io/gltf/save/RyGltfNodePatch.h"

#include "rycore/io/gltf/clips/RyGltfTransforms.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/save/RyGltfFrameChanges.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

void RyGltfNodePatch::apply()
{
    m_isAnimated.assign(m_patch.document.model().nodes.size(), false);
    for (const std::vector<int> &nodes : m_patch.document.model().animatedNodes) {
        for (const int node : nodes)
            m_isAnimated[size_t(node)] = true;
    }
    for (const int index : ryGltfPreOrder(m_patch.document.model())) { // what stands above is written first
        const auto found = m_patch.edits.find(index);
        if (found == m_patch.edits.end())
            continue;
        const Edit &edit = found->second;
        writeNode(index, edit);
        if (!edit.source)
            continue;
        const RyNodeValues &now = edit.now;
        if (now.name != edit.source->loaded.name)
            m_patch.document.setNodeName(index, now.name);
        if (edit.restChanged || now.rigging != edit.source->loaded.rigging)
            writeUnlistedChildren(index, edit);
    }
}

/// From rest to the world, as the file shows it.
RyAffine RyGltfNodePatch::shownMap(const RyNode &node)
{
    return qobject_cast<const RyBone *>(&node) && node.getSkeleton() ? node.figureMap() * node.getSkeleton()->worldMap()
                                                                     : node.worldMap();
}

/// The pose of the file about the node's own origin. Its numbers may hold shear that no pose control can.
RyAffine RyGltfNodePatch::aboutOrigin(RyAffine pose, const RyNodeValues &loaded, const RyNode &node)
{
    const RyVec3 origin = node.getOrigin();
    const double before[3] = {loaded.rigging[0], loaded.rigging[1], loaded.rigging[2]};
    const double now[3] = {origin.x, origin.y, origin.z};
    double beforePosed[3], nowPosed[3];
    pose.mapPoint(before, beforePosed);
    pose.mapPoint(now, nowPosed);
    for (int axis = 0; axis < 3; ++axis)
        pose.m[3][axis] += (beforePosed[axis] - before[axis]) - (nowPosed[axis] - now[axis]);
    return pose;
}

RyAffine RyGltfNodePatch::localPoseNow(const Edit &edit) const
{
    const RyNode &node = *edit.node;
    if (!edit.poseChanged)
        return edit.source->localPose;
    const RyNodeValues &now = edit.now;
    if (edit.source && !edit.moved && !edit.isCarried() && now.samePoseButForOrigin(edit.source->loaded) &&
        node.inheritsScale() && !ryGltfIsApart(node))
        return aboutOrigin(edit.source->localPose, edit.source->loaded, node);
    if (ryGltfIsApart(node))
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
    const double unit = m_patch.source.unit;
    if (edit.source && edit.source->parent < 0 && figureMoved)
        m_patch.carried[index] = RyAffine::fromScale(unit) * edit.source->figureToWorld.inverse() * figureToWorld *
                                 RyAffine::fromScale(1.0 / unit);
    RyAffine worldToParent;
    if (parentToWorld.invert(worldToParent))
        setLocal(index,
                 edit.bind * localPoseNow(edit) * figureToWorld * RyAffine::fromScale(1.0 / unit) * worldToParent);
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
    const RyAffine bind = edit.uncarriedBind();
    for (const int child : model.nodes[size_t(index)].children) {
        if (m_patch.edits.count(child) || model.nodes[size_t(child)].skin >= 0)
            continue;
        RyAffine local = model.nodes[size_t(child)].transform.toAffine() * edit.source->bind * bind.inverse();
        if (ryGltfMarksEnd(model.nodes[size_t(child)].name)) {
            const RyVec3 end = edit.node->getEndPoint();
            const double at[3] = {end.x, end.y, end.z};
            edit.bind.inverse().mapPoint(at, local.m[3]);
            m_patch.frames[child] =
                local * bind * edit.source->bind.inverse() * model.nodes[size_t(child)].transform.toAffine().inverse();
        } else if (!m_patch.frames.count(index)) {
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
    RyGltfTransform transform =
        before.hasMatrix ? ryGltfMatrixOf(local) : ryGltfTransformOf(local, before.scale, &exact);
    if (!exact && !m_isAnimated[size_t(node)]) {
        transform = ryGltfMatrixOf(local);
    } else if (!exact) {
        m_patch.say(QStringLiteral("\"%1\" is animated and cannot hold the shear that its new place needs; the nearest "
                                   "translation, rotation and scale were written")
                        .arg(m_patch.document.model().nodes[size_t(node)].name));
    }
    m_patch.document.setNodeTransform(node, transform);
}
