#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

class RyLegacyBinding;

/// Makes the joint of a bone of a parametric figure: a twist about the first axis of its rotation order, bends about
/// the others, a smooth-scale that its parent drives; and on the parent's joint copies of twist and bends for that
/// side, and the smooth-scale that the bone drives. Opens no undo hold.
class RyLegacyJointMaker
{
public:
    /// Which way along its first axis the bone is taken to go: by the sign of its end point's coordinate in figure
    /// space, so that new bones of the left and the right side differ; or by where its end point lies from its origin
    /// in its own axes, as it is drawn.
    enum class Side { ByEndPoint, ByDirection };
    static bool goesForward(const RyBone &bone, int axis, Side side);

    RyLegacyJointMaker(RyBone *bone, Side side) : m_bone(bone), m_side(side) {}

    /// In the binding that has the parent's joint, else that of the bone's figure. A new joint, after which the
    /// rotation controls of the bone are labelled, or the bone's own (`newJoint` false), gets the parameters. Null, and
    /// nothing done, without a binding and without the joint.
    RyLegacyJoint *make(RyNode *parent, bool newJoint) const;
    /// The joint of a bone that moves the whole object of a binding: vertices follow whichever way they lie. No
    /// smooth-scale, nothing on another joint.
    RyLegacyJoint *makeRoot(RyLegacyBinding &binding) const;

private:
    void addOwn(RyLegacyJoint &joint, bool applyAngles) const;
    void addCopies(const RyLegacyJoint &own, RyLegacyJoint &parentJoint) const;
    void addSmoothScale(RyLegacyJoint &joint, RyBone *driver, bool high) const;
    void setSpheres(RyLegacyJointParam &param, const RyLegacyJoint &joint) const;
    RyLegacyJoint *makeEmpty(RyLegacyBinding &binding) const;

    RyBone *m_bone;
    Side m_side;
};
