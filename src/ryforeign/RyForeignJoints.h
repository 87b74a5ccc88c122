#pragma once

#include "ryforeign/RyForeignInput.h"
#include "ryforeign/RyForeignTree.h"

#include <vector>

/// Finds out which nodes are joints. A foreign file names as bones only what has a share in a mesh, some not even that;
/// the others are told by where they stand: above, between and below.
class RyForeignJoints
{
public:
    RyForeignJoints(const RyForeignInput &input, RyForeignTree &tree);

    void mark();

private:
    bool isNamed(size_t node) const { return m_isNamed[node]; }
    void findNamed();
    void findEnds();
    void markBelow();
    void markAbove();
    void markUnbound();
    bool isCameraOrLight(const RyForeignTree::Node &node) const;
    bool isDeclared(const RyForeignTree::Node &node) const;
    bool isLimb(const RyForeignTree::Node &node) const;
    bool mayBeJoint(const RyForeignTree::Node &node) const;

    const RyForeignInput &m_input;
    RyForeignTree &m_tree;
    std::vector<bool> m_isNamed; // by a bone of a mesh
    std::vector<bool> m_isLeaf;
    bool m_hasNamed = false;
};
