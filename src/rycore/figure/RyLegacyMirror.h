#pragma once

class RyLegacyJoint;

/// Copies what joint parameters say to the other side of a figure. Reflecting twice gives what was there.
namespace RyLegacyMirror {

/// From the joint of a bone to that of its counterpart, reflected along a figure axis, 0 to 2; rotation orders and
/// rigging of the two bones agree already. What a bone drives itself is copied to the parameter of the same name, with
/// the copies on the parents' joints; smooth-scales of whoever drives them to that of the same name, or of the name
/// with the other of `l` and `r` at its beginning. Values (current and default) and flags; names, axes and drivers
/// stay. Opens no undo hold; nothing for null.
void mirrorJoint(const RyLegacyJoint *source, RyLegacyJoint *target, int axis);

} // namespace RyLegacyMirror
