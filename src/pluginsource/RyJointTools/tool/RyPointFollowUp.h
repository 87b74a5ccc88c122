#pragma once

#include <functional>

class RyNode;
class RyToolPointer;
class RyVec3;
struct RyJointState;
struct RyToolOptions;

/// What follows when the current node's centre or end point has moved, by whatever hand: neighbours are snapped and
/// aligned, and the move is carried on to what hangs below, as the options say. In a rig edit nothing follows.
class RyPointFollowUp
{
public:
    RyPointFollowUp(RyJointState &joint, const RyToolOptions &options, const RyToolPointer &pointer)
        : m_joint(joint), m_options(options), m_pointer(pointer)
    {}

    void centerPointChanged();
    void endPointChanged();
    /// Symmetric editing has placed a node on the other side of an edited one: what was snapped before is no mean of
    /// it.
    void oppositePlaced(const RyNode *node) const;
    /// Carries a change of a node's origin on. A drag that makes the change does it itself, from where all was placed
    /// at the press.
    void propagateOrigin(RyNode *node, const RyVec3 &origin, const RyVec3 &newOrigin);
    /// Runs an edit of points as a rig edit. When it has moved points of the current node, neighbours are snapped and
    /// aligned once after it, unless it is part of a larger rig edit.
    void placePoints(const std::function<void()> &edit);

private:
    void snapAndAlign() const;

    RyJointState &m_joint;
    const RyToolOptions &m_options;
    const RyToolPointer &m_pointer;
    bool m_isPlaced = false; // points of the current node have moved in a rig edit
};
