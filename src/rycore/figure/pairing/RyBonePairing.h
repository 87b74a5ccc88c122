#pragma once

#include "rycore/figure/pairing/RyPairingRig.h"

/// Which bone of a skeleton is whose opposite through the plane of figure space's origin at right angles to an axis
/// (0 to 2). Three stages, of which each looks only at bones that the earlier ones left: prefixes of the names, marks
/// within them, places at rest. Nodes that are no bones have opposites by prefixes alone, and so have those of a figure
/// that hangs below: among its own.
///
/// A picture of the moment at which it was made: it knows the nodes by address and follows no later change.
class RyBonePairing
{
public:
    using Stage = RyPairingRig::Stage;
    struct Pair
    {
        RyNode *first;
        RyNode *second;
        Stage stage;
    };

    RyBonePairing(const RySkeleton &skeleton, int axis, const RySidePrefixes &prefixes = {});

    /// All below the skeleton, in pre-order.
    std::vector<RyNode *> nodes() const;
    /// Those of them that are parts of the skeleton itself and not of one that hangs below.
    std::vector<RyNode *> own() const;
    /// Each once, in order of the first of the two.
    std::vector<Pair> pairs() const;
    /// The skeleton's bones that are in no pair.
    std::vector<RyNode *> alone() const;

    /// Null where there is none. With a side: also where the node is of the other side.
    RyNode *oppositeOf(const RyNode *node, RySide side = RySide::None) const;
    /// That of the pair; for a node in none what its marks say, else its prefix. None for null.
    RySide sideOf(const RyNode *node) const;
    /// None for a node in no pair.
    Stage stageOf(const RyNode *node) const;
    /// The two are each other's opposites; null where they are not.
    RyNode *mutualOf(const RyNode *node) const;
    /// A bone in no pair whose origin and end point lie in the plane.
    bool isOnPlane(const RyNode *node) const;

    int axis() const { return m_rig.axis; }
    /// The longest side of the box around the bones at rest.
    float size() const { return m_rig.size; }
    /// Where the middle between the two of a pair lies along the axis, in the mean; 0 without pairs.
    float meanOffset() const;

private:
    int placeOf(const RyNode *node) const { return m_places.value(node, -1); }
    void pairByPrefixes();

    RyPairingRig m_rig;
    const RySkeleton *m_skeleton;
    RySidePrefixes m_prefixes;
    RyPrefixLookup m_lookup;
    QHash<const RyNode *, int> m_places;
};
