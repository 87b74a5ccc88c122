#include "rycore/io/gltf/document/RyGltfNodeReader.h"

#include "rycore/io/gltf/document/RyGltfMeshReader.h"

#include <algorithm>

void RyGltfNodeReader::read()
{
    const int skinCount = m_root.array("skins").size();
    m_model.nodes.clear();
    m_model.skins.clear();
    m_model.skins.reserve(std::size_t(skinCount));
    readNodes();
    readChildren();
    refuseCycles();
    readSkins();
    readSceneRoots();
    readAnimations();
}

void RyGltfNodeReader::readNodes()
{
    const RyGltfCursor list = m_root.array("nodes");
    const int skinCount = m_root.array("skins").size();
    const int cameraCount = m_root.array("cameras").size();
    std::vector<std::uint64_t> vertexCounts;
    for (const RyGltfMesh &mesh : m_model.meshes) {
        std::uint64_t count = 0;
        for (const RyGltfPrimitive &primitive : mesh.primitives)
            count += primitive.positions < 0 ? 0 : m_model.accessors[std::size_t(primitive.positions)].count;
        vertexCounts.push_back(count);
    }
    std::uint64_t shownVertices = 0;
    m_model.nodes.resize(std::size_t(list.size()));
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        RyGltfNode &node = m_model.nodes[std::size_t(i)];
        node.name = cursor.text("name");
        RyGltfTransform &transform = node.transform;
        transform.hasMatrix = cursor.numbers("matrix", transform.matrix.data(), 16);
        const bool hasTranslation = cursor.numbers("translation", transform.translation.data(), 3);
        const bool hasRotation = cursor.numbers("rotation", transform.rotation.data(), 4);
        const bool hasScale = cursor.numbers("scale", transform.scale.data(), 3);
        if (transform.hasMatrix && (hasTranslation || hasRotation || hasScale))
            m_warnings.add(cursor.path() +
                           QStringLiteral(": has a matrix and other parts of a transform; the matrix counts"));
        node.mesh = cursor.index("mesh", int(m_model.meshes.size()), "mesh");
        node.skin = cursor.index("skin", skinCount, "skin");
        shownVertices += node.mesh < 0 ? 0 : vertexCounts[std::size_t(node.mesh)];
        if (shownVertices > RyGltfMeshReader::maximumVertices)
            list.refuse(
                QStringLiteral("they show more than %1 vertices in all").arg(RyGltfMeshReader::maximumVertices));
        const RyGltfCursor camera = cursor.member("camera");
        if (camera.exists() && !camera.peekIndex(cameraCount, node.camera))
            m_warnings.add(camera.path() + QStringLiteral(": the camera does not exist"));
        const RyGltfCursor weights = cursor.array("weights");
        for (int k = 0; k < weights.size(); ++k)
            node.weights.push_back(weights.element(k).asNumber());
    }
}

void RyGltfNodeReader::readChildren()
{
    const RyGltfCursor list = m_root.array("nodes");
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor children = list.element(i).array("children");
        RyGltfNode &node = m_model.nodes[std::size_t(i)];
        node.children.reserve(std::size_t(children.size()));
        for (int k = 0; k < children.size(); ++k) {
            const RyGltfCursor cursor = children.element(k);
            const int child = cursor.asIndex(list.size(), "node");
            if (child == i)
                cursor.refuse(QStringLiteral("node %1 is its own child").arg(child));
            int &parent = m_model.nodes[std::size_t(child)].parent;
            if (parent == i) {
                m_warnings.add(cursor.path() + QStringLiteral(": node %1 stands twice").arg(child));
                continue;
            }
            if (parent >= 0)
                cursor.refuse(QStringLiteral("node %1 is already a child of node %2").arg(child).arg(parent));
            parent = i;
            node.children.push_back(child);
        }
    }
}

void RyGltfNodeReader::refuseCycles() const
{
    // Every node has one parent at most: going up ends at a root, at a node known to end there, or comes round.
    const int count = int(m_model.nodes.size());
    std::vector<int> visitedFrom(std::size_t(count), -1);
    for (int start = 0; start < count; ++start) {
        int node = start;
        while (node >= 0 && visitedFrom[std::size_t(node)] < 0) {
            visitedFrom[std::size_t(node)] = start;
            node = m_model.nodes[std::size_t(node)].parent;
        }
        if (node >= 0 && visitedFrom[std::size_t(node)] == start)
            m_root.array("nodes").element(node).refuse(QStringLiteral("the node is below itself"));
    }
}

void RyGltfNodeReader::readSkins()
{
    const RyGltfCursor list = m_root.array("skins");
    const int nodeCount = int(m_model.nodes.size());
    std::vector<int> seenIn(m_model.nodes.size(), -1);
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        RyGltfSkin skin;
        skin.name = cursor.text("name");
        const RyGltfCursor joints = cursor.array("joints");
        if (joints.size() == 0)
            cursor.refuse(QStringLiteral("has no joints"));
        skin.joints.reserve(std::size_t(joints.size()));
        for (int k = 0; k < joints.size(); ++k) {
            const RyGltfCursor jointCursor = joints.element(k);
            const int joint = jointCursor.asIndex(nodeCount, "node");
            if (seenIn[std::size_t(joint)] == i)
                m_warnings.add(jointCursor.path() +
                               QStringLiteral(": node %1 is already a joint of this skin").arg(joint));
            seenIn[std::size_t(joint)] = i;
            skin.joints.push_back(joint);
        }
        skin.inverseBindMatrices = cursor.index("inverseBindMatrices", int(m_model.accessors.size()), "accessor");
        if (skin.inverseBindMatrices >= 0) {
            const RyGltfAccessor &accessor = m_model.accessors[std::size_t(skin.inverseBindMatrices)];
            const RyGltfCursor where = cursor.member("inverseBindMatrices");
            if (accessor.componentCount != 16 || accessor.componentType != 5126)
                where.refuse(QStringLiteral("accessor %1 does not hold matrices").arg(skin.inverseBindMatrices));
            if (accessor.count < skin.joints.size()) {
                where.refuse(QStringLiteral("accessor %1 holds %2 matrices for %3 joints")
                                 .arg(skin.inverseBindMatrices)
                                 .arg(accessor.count)
                                 .arg(skin.joints.size()));
            }
        }
        const RyGltfCursor skeleton = cursor.member("skeleton");
        if (skeleton.exists() && !skeleton.peekIndex(nodeCount, skin.skeleton))
            m_warnings.add(skeleton.path() + QStringLiteral(": the node does not exist"));
        m_model.skins.push_back(std::move(skin));
    }
}

std::vector<int> RyGltfNodeReader::topmostNodes() const
{
    std::vector<int> result(m_model.nodes.size(), -1);
    std::vector<int> waiting;
    for (int root = 0; root < int(m_model.nodes.size()); ++root) {
        if (m_model.nodes[std::size_t(root)].parent >= 0)
            continue;
        waiting.push_back(root);
        while (!waiting.empty()) {
            const int node = waiting.back();
            waiting.pop_back();
            result[std::size_t(node)] = root;
            const std::vector<int> &children = m_model.nodes[std::size_t(node)].children;
            waiting.insert(waiting.end(), children.begin(), children.end());
        }
    }
    return result;
}

void RyGltfNodeReader::readSceneRoots()
{
    m_model.sceneRoots.clear();
    const RyGltfCursor scenes = m_root.array("scenes");
    const int nodeCount = int(m_model.nodes.size());
    if (scenes.size() == 0) {
        for (int i = 0; i < nodeCount; ++i) {
            if (m_model.nodes[std::size_t(i)].parent < 0)
                m_model.sceneRoots.push_back(i);
        }
        return;
    }
    int scene = 0;
    const RyGltfCursor chosen = m_root.member("scene");
    if (chosen.exists() && !chosen.peekIndex(scenes.size(), scene))
        m_warnings.add(chosen.path() + QStringLiteral(": the scene does not exist; the first one is shown"));
    const RyGltfCursor roots = scenes.objectAt(scene).array("nodes");
    const std::vector<int> topmost = topmostNodes();
    std::vector<bool> taken(m_model.nodes.size(), false);
    for (int i = 0; i < roots.size(); ++i) {
        const RyGltfCursor cursor = roots.element(i);
        int node = cursor.asIndex(nodeCount, "node");
        if (m_model.nodes[std::size_t(node)].parent >= 0) {
            m_warnings.add(cursor.path() + QStringLiteral(": node %1 is no root").arg(node));
            node = topmost[std::size_t(node)];
        }
        if (taken[std::size_t(node)])
            continue;
        taken[std::size_t(node)] = true;
        m_model.sceneRoots.push_back(node);
    }
}

void RyGltfNodeReader::readAnimations()
{
    m_model.animationNames.clear();
    m_model.animatedNodes.clear();
    const RyGltfCursor list = m_root.array("animations");
    for (int i = 0; i < list.size(); ++i) {
        const RyGltfCursor cursor = list.objectAt(i);
        m_model.animationNames.push_back(cursor.text("name"));
        std::vector<int> nodes;
        const RyGltfCursor channels = cursor.array("channels");
        for (int k = 0; k < channels.size(); ++k) {
            const RyGltfCursor target = channels.objectAt(k).object("target").member("node");
            int node = -1;
            if (target.peekIndex(int(m_model.nodes.size()), node))
                nodes.push_back(node);
            else if (target.exists())
                m_warnings.add(target.path() + QStringLiteral(": the node does not exist"));
        }
        std::sort(nodes.begin(), nodes.end());
        nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
        m_model.animatedNodes.push_back(std::move(nodes));
    }
}
