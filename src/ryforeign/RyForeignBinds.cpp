#include "ryforeign/RyForeignBinds.h"

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
    : m_input(input), m_tree(tree), m_binds(tree.nodes.size()), m_isSaid(tree.nodes.size(), false)
{
    for (const RyForeignTree::Node &node : tree.nodes) {
        for (int axis = 0; axis < 3; ++axis)
            m_reach = std::max(m_reach, std::abs(node.world.m[3][axis] - tree.nodes.front().world.m[3][axis]));
    }
    readBones();
    // Parents stand before their children. Numbers that differ from how the node stands by nothing but noise are no
    // pose: all bones of a figure would be posed by next to nothing.
    for (size_t i = 0; i < m_binds.size(); ++i) {
        const RyForeignTree::Node &node = m_tree.nodes[i];
        const RyAffine standing = node.parent < 0 ? node.world : node.local * m_binds[size_t(node.parent)];
        if (!m_isSaid[i] || isNear(m_binds[i], standing, noise))
            m_binds[i] = standing;
    }
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

void RyForeignBinds::readBones()
{
    for (const RyForeignTree::Node &node : m_tree.nodes) {
        for (unsigned m = 0; m < node.source->mNumMeshes; ++m) {
            const aiMesh &mesh = *m_input.scene->mMeshes[node.source->mMeshes[m]];
            for (unsigned b = 0; b < mesh.mNumBones; ++b) {
                const int joint = m_tree.find(mesh.mBones[b]->mName);
                RyAffine bind;
                if (joint < 0 || m_isSaid[size_t(joint)] || !m_tree.nodes[size_t(joint)].isJoint ||
                    !ryForeignMap(mesh.mBones[b]->mOffsetMatrix).invert(bind)) {
                    continue;
                }
                m_binds[size_t(joint)] = bind * node.world;
                m_isSaid[size_t(joint)] = true;
            }
        }
    }
}

RyAffine RyForeignBinds::inverseBind(int meshNode, int joint, const aiBone *bone) const
{
    const RyAffine &meshToWorld = m_tree.nodes[size_t(meshNode)].world;
    RyAffine own;
    if (bone && ryForeignMap(bone->mOffsetMatrix).invert(own) &&
        !isNear(own * meshToWorld, m_binds[size_t(joint)], samePlace)) {
        return ryForeignMap(bone->mOffsetMatrix);
    }
    return meshToWorld * m_binds[size_t(joint)].inverse();
}
