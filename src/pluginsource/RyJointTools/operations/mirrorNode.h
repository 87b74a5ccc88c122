#pragma once

class RyNode;

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
