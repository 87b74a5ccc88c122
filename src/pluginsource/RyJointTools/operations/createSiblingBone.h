#pragma once

class RyBone;

/// Makes a bone beside the given one, in its place and in its pose, with a copy of its weights, half of which it takes
/// over: the two move alike, and no vertex moves. Limits of the pose controls are not copied. Opens no undo hold and
/// leaves the selection alone.
///
/// Returns the new bone; null, with nothing changed, for null and for a bone whose skeleton has no skin.
RyBone *createSiblingBone(RyBone *source);
