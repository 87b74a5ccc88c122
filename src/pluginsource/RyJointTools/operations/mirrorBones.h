#pragma once

#include "rycore/figure/pairing/RyBonePairing.h"

#include <functional>

/// Which bones are mirrored, and how.
struct MirrorOptions
{
    enum Nodes { SelectedOnly, SelectedRecursive, RootRecursive };
    enum Direction { SelectedToOpposite, OppositeToSelected, LeftToRight, RightToLeft };

    Nodes nodes = SelectedOnly;
    Direction direction = SelectedToOpposite;
    int axis = 0; // at right angles to the plane
    RySidePrefixes prefixes;
};

/// What a run did.
struct MirrorReport
{
    struct Copied
    {
        RyNode *source;
        RyNode *target;
        RyBonePairing::Stage stage;
        bool withoutBulges;
    };
    std::vector<Copied> copied;    // a pair whose second bone gave back what it got stands here once
    std::vector<RyNode *> skipped; // bones of the run without an opposite
    float offset = 0.0f;           // of the middle of the pairs from the plane, as a share of the size of the rig
};

/// Which nodes a run goes through, in its order, and of which side they must be; None leaves that to each.
struct MirrorPlan
{
    std::vector<RyNode *> nodes;
    RySide side = RySide::None;
};

/// `primary` has a skeleton, which the pairing is of.
MirrorPlan planMirror(RyNode *primary, const RyBonePairing &pairing, const MirrorOptions &options);
/// Mirrors the opposites of what the options mean, in one rig edit. `copy` copies from a node to its opposite along the
/// axis and returns false where bulges were left out. Opens no undo hold.
MirrorReport mirrorBones(RyNode *primary, const MirrorOptions &options,
                         const std::function<bool(RyNode *source, RyNode *target, int axis)> &copy);
