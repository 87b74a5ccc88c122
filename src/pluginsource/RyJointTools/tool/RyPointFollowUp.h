#pragma once

#include <QScopedValueRollback>

class RyNode;
class RyToolPointer;
class RyVec3;
struct RyJointState;
struct RyToolOptions;

/// What follows when the current node's centre or end point has moved, by whatever hand: neighbours are snapped and
/// aligned, and the move is carried on to what hangs below, as the options say.
class RyPointFollowUp
{
public:
    RyPointFollowUp(RyJointState &joint, const RyToolOptions &options, const RyToolPointer &pointer)
        : m_joint(joint), m_options(options), m_pointer(pointer)
    {}

    void centerPointChanged();
    void endPointChanged();
    /// Carries a change of a node's origin on. A drag that makes the change does it itself, from where all was placed
    /// at the press.
    void propagateOrigin(RyNode *node, const RyVec3 &origin, const RyVec3 &newOrigin);
    /// Runs an edit of points during which changes of the current node's points are only noted; what follows comes
    /// once, after it.
    template<typename Edit>
    void placePoints(const Edit &edit)
    {
        if (m_placing != Placing::No) {
            edit();
            return;
        }
        bool isPlaced = false;
        {
            const QScopedValueRollback<Placing> guard(m_placing, Placing::Others);
            edit();
            isPlaced = m_placing == Placing::Current;
        }
        if (isPlaced)
            snapAndAlign();
    }

private:
    /// Whose points the tool itself has moved in the edit under way.
    enum class Placing { No, Others, Current };

    void snapAndAlign() const;

    RyJointState &m_joint;
    const RyToolOptions &m_options;
    const RyToolPointer &m_pointer;
    Placing m_placing = Placing::No;
};
