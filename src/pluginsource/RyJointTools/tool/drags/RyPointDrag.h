#pragma once

#include "pluginsource/RyJointTools/operations/RyBranchPlacement.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

#include "rycore/math/RyAffine.h"

struct RyDragContext;

/// Moves the origin or the end point of a node, in the plane of the view or along one axis of the handle's frame. The
/// posed end point follows the cursor in any pose; the origin does while the node's own local rotation is none.
class RyPointDrag : public RyHandleDrag
{
public:
    enum Point { Origin, EndPoint };

    /// `axis` is 0 to 2, or -1 for the plane of the view. The context has a node.
    RyPointDrag(const RyDragContext &context, Point point, int axis);

    RyVec3 dragVector(const RyLine3 &ray) const override;
    /// The new value of the point, in figure space, for a way of the handle in the world. With `keepLength` it has the
    /// distance to the bone's other end that it had at the press; a zero direction leaves it where the way leads.
    RyVec3 propose(const RyVec3 &way, bool keepLength) const;
    bool pointsAtEye() const override { return m_pointsAtEye; }
    bool propagateOrigin(RyNode *node, const RyVec3 &newOrigin) override;

protected:
    void apply(const Options &options) override;

private:
    /// A value at the distance to the bone's other end that the point had at the press.
    RyVec3 atStartLength(const RyVec3 &moved) const;
    void place(const RyVec3 &wanted, bool propagate);
    RyVec3 wayTo(const RyVec3 &value) const;
    /// Brings the point to a place in the world when the first value, asked of the map of the press, has not done so.
    void followTurnedPose(const RyVec3 &target, const Options &options);

    QPointer<RyNode> m_node;
    Point m_point;
    int m_axis;
    RyHandleFrame m_frame;
    bool m_pointsAtEye = false; // asked at the press: rays that leave the axis later would meet it at the eye
    RyVec3 m_start;
    RyVec3 m_startOther;
    RyAffine m_worldToNode;
    RyBranchPlacement m_branch;
};
