#include "ryforeign/RyForeignJoints.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <algorithm>

RyForeignJoints::RyForeignJoints(const RyForeignInput &input, RyForeignTree &tree)
    : m_input(input), m_tree(tree), m_isNamed(tree.nodes.size(), false), m_isLeaf(tree.nodes.size(), true)
{
    for (const RyForeignTree::Node &node : tree.nodes) {
        if (node.parent >= 0)
            m_isLeaf[size_t(node.parent)] = false;
    }
}

void RyForeignJoints::mark()
{
    findNamed();
    findEnds();
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        RyForeignTree::Node &node = m_tree.nodes[i];
        // Every joint of a Collada file belongs to a skeleton; a limb of an FBX file may hold anything.
        node.isJoint = isNamed(i) || (m_input.kind == RyForeignInput::Collada && isDeclared(node) && !node.isEnd);
        if (m_input.kind == RyForeignInput::Bvh)
            node.isJoint = !node.isEnd;
        else if (!m_hasNamed && m_input.kind == RyForeignInput::Fbx && m_input.scene->mNumMeshes == 0)
            node.isJoint = isLimb(node) && !node.isEnd;
    }
    markBelow();
    markAbove();
    markUnbound();
    for (RyForeignTree::Node &node : m_tree.nodes)
        node.isEnd = node.isEnd && node.parent >= 0 && m_tree.nodes[size_t(node.parent)].isJoint;
}

void RyForeignJoints::findNamed()
{
    for (unsigned m = 0; m < m_input.scene->mNumMeshes; ++m) {
        const aiMesh &mesh = *m_input.scene->mMeshes[m];
        for (unsigned b = 0; b < mesh.mNumBones; ++b) {
            const int node = m_tree.find(mesh.mBones[b]->mName);
            if (node > 0 || (node == 0 && m_input.kind == RyForeignInput::Bvh))
                m_hasNamed = m_isNamed[size_t(node)] = true;
        }
    }
}

/// A leaf that no mesh follows and whose name says so.
void RyForeignJoints::findEnds()
{
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        RyForeignTree::Node &node = m_tree.nodes[i];
        const bool isSite = m_input.kind == RyForeignInput::Bvh && node.name.startsWith(QLatin1String("EndSite_"));
        node.isEnd = m_isLeaf[i] && !isNamed(i) && !node.hasMesh && (isSite || ryGltfMarksEnd(node.name));
        if (isSite && node.isEnd)
            node.name = QStringLiteral("End Site"); // as the file has it
    }
}

bool RyForeignJoints::isCameraOrLight(const RyForeignTree::Node &node) const
{
    const aiScene &scene = *m_input.scene;
    for (unsigned i = 0; i < scene.mNumCameras; ++i) {
        if (scene.mCameras[i]->mName == node.source->mName)
            return true;
    }
    for (unsigned i = 0; i < scene.mNumLights; ++i) {
        if (scene.mLights[i]->mName == node.source->mName)
            return true;
    }
    return false;
}

bool RyForeignJoints::isDeclared(const RyForeignTree::Node &node) const
{
    return m_input.joints.contains(ryForeignText(node.source->mName));
}

/// Where the file does not say: something of its own stands at the node and it is neither a mesh nor an empty place: in
/// such a file a limb.
bool RyForeignJoints::isLimb(const RyForeignTree::Node &node) const
{
    if (m_input.kind != RyForeignInput::Fbx || node.source->mNumMeshes > 0 || !node.source->mMetaData ||
        isCameraOrLight(node)) {
        return false;
    }
    if (!m_input.joints.isEmpty())
        return isDeclared(node);
    bool isNull = true;
    int attribute = -1;
    node.source->mMetaData->Get("IsNull", isNull);
    node.source->mMetaData->Get("DefaultAttributeIndex", attribute);
    return !isNull && attribute >= 0;
}

bool RyForeignJoints::mayBeJoint(const RyForeignTree::Node &node) const
{
    if (m_input.kind != RyForeignInput::Fbx || node.source->mNumMeshes > 0)
        return false;
    if (!m_input.joints.isEmpty())
        return isLimb(node);
    bool isNull = false;
    if (node.source->mMetaData)
        node.source->mMetaData->Get("IsNull", isNull);
    return isLimb(node) || (!isNull && !node.hasMesh && !isCameraOrLight(node));
}

void RyForeignJoints::markBelow()
{
    for (RyForeignTree::Node &node : m_tree.nodes) {
        if (!node.isJoint && !node.isEnd && node.parent >= 0 && m_tree.nodes[size_t(node.parent)].isJoint)
            node.isJoint = mayBeJoint(node);
    }
}

void RyForeignJoints::markAbove()
{
    for (size_t i = m_tree.nodes.size(); i-- > 1;) {
        const size_t above = size_t(m_tree.nodes[i].parent);
        if (m_tree.nodes[i].isJoint && above > 0 && isLimb(m_tree.nodes[above]))
            m_tree.nodes[above].isJoint = true;
    }
}

/// Limbs that hang together and of which no mesh names one are a figure of their own.
void RyForeignJoints::markUnbound()
{
    if (m_input.kind != RyForeignInput::Fbx)
        return;
    std::vector<int> topOf(m_tree.nodes.size(), -1);
    std::vector<bool> hasJoint(m_tree.nodes.size(), false); // by tops
    bool hasLimb = false;
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        const RyForeignTree::Node &node = m_tree.nodes[i];
        const int above = node.parent < 0 ? -1 : topOf[size_t(node.parent)];
        const bool isPart = isLimb(node);
        if (isPart || node.isJoint)
            topOf[i] = above < 0 ? int(i) : above;
        if (node.isJoint)
            hasJoint[size_t(topOf[i])] = true;
        hasLimb = hasLimb || isPart;
    }
    if (m_input.joints.isEmpty()) {
        if (hasLimb && std::find(hasJoint.begin(), hasJoint.end(), true) == hasJoint.end())
            m_input.say(QStringLiteral("No mesh is bound to a bone, and of a file in text form nothing else says which "
                                       "nodes are bones: they are plain nodes. Binary FBX says it"));
        return;
    }
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
        if (topOf[i] >= 0 && !hasJoint[size_t(topOf[i])])
            m_tree.nodes[i].isJoint = !m_tree.nodes[i].isEnd;
    }
}
