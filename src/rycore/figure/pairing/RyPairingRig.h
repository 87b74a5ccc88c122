#pragma once

#include "rycore/figure/pairing/RySidePrefixes.h"
#include "rycore/math/RyVec3.h"

#include <vector>

class RySkeleton;

/// What the stages of pairing know of the nodes of a skeleton and write into them. Nodes are told by their place in
/// pre-order, so that parents come before their children.
struct RyPairingRig
{
    RyPairingRig(const RySkeleton &skeleton, int axis);

    /// Which stage found a pair.
    enum class Stage { None, Prefix, Marks, Place };
    struct Member
    {
        RyNode *node;
        bool isBone;              // of this skeleton
        const RySkeleton *figure; // that the node is a part of: this one, or one that hangs below
        int parent;               // -1 where that is no member
        int lastBelow;            // the last node of its branch
        RyVec3 origin;            // default
        int partner = -1;
        Stage stage = Stage::None; // while the node has no partner
        RySide side = RySide::None;
    };

    bool isFree(int i) const { return members[size_t(i)].isBone && members[size_t(i)].stage == Stage::None; }
    RyVec3 mirrored(const RyVec3 &point) const;
    /// Of a node's origin on the other side, to the origin of the other.
    float gap(int i, int j) const;
    bool isOffMiddle(const RyVec3 &point) const;
    bool isOneAbove(int i, int j) const;
    void join(int i, int j, Stage stage, RySide sideOfFirst);

    std::vector<Member> members;
    int axis;
    float size = 0.0f; // the longest side of the box around the origins and end points of the bones
};

/// Second stage: by marks in the names. "arm_L" belongs to "arm_R", "hand_L_07" to "hand_R_12" where their parents say
/// the same or nothing else can be meant.
void pairByMarks(RyPairingRig &rig);
/// Third stage: bones without marks by where they stand, unless most of them have nobody on the other side.
void pairByPlace(RyPairingRig &rig);
