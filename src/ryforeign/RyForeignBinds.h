#pragma once

#include "ryforeign/RyForeignInput.h"
#include "ryforeign/RyForeignTree.h"

struct aiBone;

/// Where the joints stood when the meshes were bound: what a bone of a mesh says, and for joints that no mesh names how
/// their nodes stand to those above. The tree is placed, its joints are marked.
class RyForeignBinds
{
public:
    RyForeignBinds(const RyForeignInput &input, const RyForeignTree &tree);

    /// From joint space to the world, at rest; of a node that is no joint as it stands.
    const RyAffine &of(int node) const { return m_binds[size_t(node)]; }
    /// From the mesh space of a node to the world, as its skin holds it at rest.
    const RyAffine &meshToWorld(int meshNode) const { return m_meshToWorld[size_t(meshNode)]; }
    /// From the mesh space of a node to the space of a joint, at rest. `bone`: what that mesh says of it, or null.
    RyAffine inverseBind(int meshNode, int joint, const aiBone *bone) const;

private:
    bool isNear(const RyAffine &a, const RyAffine &b, double tolerance) const;
    template<typename Work>
    void forBonesOf(size_t node, const Work &work) const;
    RyAffine offsetOf(size_t meshNode, const aiBone &bone) const;
    void readBones();
    RyAffine withoutScale(size_t node) const;
    void placeByAnchor(size_t node);

    const RyForeignInput &m_input;
    const RyForeignTree &m_tree;
    std::vector<RyAffine> m_binds;       // per node
    std::vector<RyAffine> m_meshToWorld; // per node
    std::vector<bool> m_isSaid;
    std::vector<bool> m_holdsJoint; // itself or below it
    double m_reach = 0.0;           // how far nodes stand apart
};
