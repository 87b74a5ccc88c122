#pragma once

#include "pluginsource/RyJointTools/operations/RyBranchPlacement.h"
#include "pluginsource/RyJointTools/tool/drags/RyDragFrame.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"

#include "rycore/math/RyAffine.h"

/// Moves the origin or the end point of a node, in the plane of the view or along one axis of the handle's frame. The
/// frame's axes are the parent's world axes for the origin and the node's own for the end point. The posed end point
/// follows the cursor in any pose; the origin does while the node's own local rotation is none.
class RyPointDrag : public RyHandleDrag
{
public:
    enum Point { Origin, EndPoint };

    /// `axis` is 0 to 2, or -1 for the plane of the view. Fills in the frame's centre and axes.
    RyPointDrag(RyNode *node, Point point, int axis, RyDragFrame &frame);

    RyVec3 dragVector(const RyLine3 &ray) const override;
    /// The new value of the point, in figure space, for a way of the handle in the world. With `keepLength` it has the
    /// distance to the bone's other end that it had at the press; a zero direction leaves it where the way leads.
    RyVec3 propose(const RyVec3 &way, bool keepLength) const;
    void apply(const RyVec3 &pressVector, const RyVec3 &currentVector, const Options &options) override;
    bool pointsAtEye() const override { return m_pointsAtEye; }
    bool propagateOrigin(RyNode *node, const RyVec3 &newOrigin) override;

private:
    QPointer<RyNode> m_node;
    Point m_point;
    RyVec3 m_anchor;      // world
    RyVec3 m_planeNormal; // world
    RyVec3 m_axis;        // world, zero for the plane
    bool m_pointsAtEye;   // asked at the press: rays that leave the axis later in the drag would meet it at the eye
    RyVec3 m_start;
    RyVec3 m_startOther;
    RyAffine m_worldToNode;
    RyBranchPlacement m_branch;
};
