#include "ryforeign/RyForeignBinds.h"

#include "rycore/io/gltf/clips/RyGltfTransforms.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace {

/// What single precision, in which the importers' library works, leaves of a chain of nodes.
constexpr double noise = 1e-5;
/// Two meshes that say of one joint what differs by more bind it at two places.
constexpr double samePlace = 1e-4;

} // namespace

RyForeignBinds::RyForeignBinds(const RyForeignInput &input, const RyForeignTree &tree)
    : m_input(input), m_tree(tree), m_binds(tree.nodes.size()), m_isSaid(tree.nodes.size(), false),
      m_holdsJoint(tree.nodes.size(), false)
{
    for (size_t i = 0; i < tree.nodes.size(); ++i) {
        const RyForeignTree::Node &node = tree.nodes[i];
        m_meshToWorld.push_back(tree.meshToWorld(i));
        for (int axis = 0; axis < 3; ++axis)
            m_reach = std::max(m_reach, std::abs(node.world.m[3][axis] - tree.nodes.front().world.m[3][axis]));
    }
    readBones();
    for (size_t i = m_holdsJoint.size(); i-- > 0;) {
        m_holdsJoint[i] = m_holdsJoint[i] || tree.nodes[i].isJoint;
        if (tree.nodes[i].parent >= 0 && m_holdsJoint[i])
            m_holdsJoint[size_t(tree.nodes[i].parent)] = true;
    }
    // Parents stand before their children. Numbers that differ from how the node stands by nothing but noise are no
    // pose: all bones of a figure would be posed by next to nothing.
    for (size_t i = 0; i < m_binds.size(); ++i) {
        const RyForeignTree::Node &node = m_tree.nodes[i];
        const RyAffine standing = node.parent < 0 ? node.world : node.local * m_binds[size_t(node.parent)];
        if (!m_isSaid[i] || isNear(m_binds[i], standing, noise))
            m_binds[i] = standing;
        RyAffine unused;
        if (!m_binds[i].invert(unused))
            m_binds[i] = withoutScale(i);
    }
}

/// Where a node would stand if it were not scaled to nothing: nothing can be bound there. Those above are repaired.
RyAffine RyForeignBinds::withoutScale(size_t node) const
{
    const RyForeignTree::Node &entry = m_tree.nodes[node];
    const RyAffine above = entry.parent < 0 ? RyAffine() : m_binds[size_t(entry.parent)];
    bool isExact = true;
    RyGltfTransform transform =
        ryGltfTransformOf(entry.parent < 0 ? entry.world : entry.local, {1.0, 1.0, 1.0}, &isExact);
    transform.scale = {1.0, 1.0, 1.0};
    if (!std::all_of(transform.rotation.begin(), transform.rotation.end(), [](double q) { return std::isfinite(q); }))
        transform.rotation = {0.0, 0.0, 0.0, 1.0};
    if (m_holdsJoint[node])
        m_input.say(QStringLiteral("\"%1\" is scaled to nothing; it rests without that scale").arg(entry.name));
    return transform.toAffine() * above;
}

bool RyForeignBinds::isNear(const RyAffine &a, const RyAffine &b, double tolerance) const
{
    double size = 0.0, turned = 0.0, moved = 0.0;
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row) {
            size = std::max(size, std::abs(a.m[row][column]));
            turned = std::max(turned, std::abs(a.m[row][column] - b.m[row][column]));
        }
        moved = std::max(moved, std::abs(a.m[3][column] - b.m[3][column]));
    }
    return turned <= tolerance * size && moved <= tolerance * m_reach;
}

/// The importers' library says it of the node that shows the mesh.
RyAffine RyForeignBinds::offsetOf(size_t meshNode, const aiBone &bone) const
{
    return m_tree.nodes[meshNode].pivot.geometric * ryForeignMap(bone.mOffsetMatrix);
}

template<typename Work>
void RyForeignBinds::forBonesOf(size_t node, const Work &work) const
{
    const aiNode &source = *m_tree.nodes[node].source;
    for (unsigned m = 0; m < source.mNumMeshes; ++m) {
        const aiMesh &mesh = *m_input.scene->mMeshes[source.mMeshes[m]];
        for (unsigned b = 0; b < mesh.mNumBones; ++b) {
            const int joint = m_tree.find(mesh.mBones[b]->mName);
            RyAffine bind;
            const RyAffine offset = offsetOf(node, *mesh.mBones[b]);
            if (joint >= 0 && m_tree.nodes[size_t(joint)].isJoint && offset.invert(bind))
                work(size_t(joint), offset, bind);
        }
    }
}

void RyForeignBinds::readBones()
{
    for (size_t node = 0; node < m_tree.nodes.size(); ++node) {
        // Collada binds a mesh where its skin says, not where its node stands; the other formats know no such place.
        if (m_input.kind == RyForeignInput::Collada)
            placeByAnchor(node);
        forBonesOf(node, [&](size_t joint, const RyAffine &, const RyAffine &bind) {
            if (m_isSaid[joint])
                return;
            m_binds[joint] = bind * m_meshToWorld[node];
            m_isSaid[joint] = true;
        });
    }
}

/// The mesh stands where one of its joints has it: the first whose bind is known, otherwise the topmost as it stands.
void RyForeignBinds::placeByAnchor(size_t node)
{
    size_t anchor = m_tree.nodes.size();
    RyAffine offsetOfAnchor;
    forBonesOf(node, [&](size_t joint, const RyAffine &offset, const RyAffine &) {
        const auto rank = [this](size_t of) { return std::make_pair(of >= m_isSaid.size() || !m_isSaid[of], of); };
        if (rank(joint) < rank(anchor)) {
            anchor = joint;
            offsetOfAnchor = offset;
        }
    });
    if (anchor < m_tree.nodes.size()) {
        m_meshToWorld[node] = offsetOfAnchor * (m_isSaid[anchor] ? m_binds[anchor] : m_tree.nodes[anchor].world);
    }
}

RyAffine RyForeignBinds::inverseBind(int meshNode, int joint, const aiBone *bone) const
{
    const RyAffine &toWorld = m_meshToWorld[size_t(meshNode)];
    const RyAffine offset = bone ? offsetOf(size_t(meshNode), *bone) : RyAffine();
    RyAffine own;
    if (bone && offset.invert(own) && !isNear(own * toWorld, m_binds[size_t(joint)], samePlace))
        return offset;
    return toWorld * m_binds[size_t(joint)].inverse();
}
