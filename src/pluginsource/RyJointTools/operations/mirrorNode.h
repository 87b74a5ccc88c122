#pragma once

#include <vector>

class RyFloatProperty;
class RyNode;

/// A value of a node, and that of its opposite which it becomes.
struct MirroredControl
{
    /// Never the negative zero, which would be another value to files and dumps.
    float reflected(float value) const { return isNegated ? 0.0f - value : 0.0f + value; }

    RyFloatProperty *from;
    RyFloatProperty *to;
    bool isNegated;
};

/// Points and angles of the rigging, and bulges where the skin of a figure binds both. The axis is 0 to 2.
std::vector<MirroredControl> mirroredControls(const RyNode &source, const RyNode &target, int axis);

/// What mirroring a node did.
enum class MirrorResult {
    Done,
    WithoutBulges // of a figure whose skin does not bind both: rigging alone
};

/// Copies the rigging of a node onto its opposite, reflected through the plane of figure space's origin at right
/// angles to an axis (0 to 2): rotation order with the bookkeeping of joint parameters, origin, end point and
/// orientation (default and current), bulges or joint parameters, scale inheritance, and the labels of the pose
/// controls with their sides exchanged. Poses and their limits stay. Mirroring back gives what was there. Opens no
/// undo hold.
MirrorResult mirrorNode(const RyNode *source, RyNode *target, int axis);
