#pragma once

class RyBone;

// Bones made of one that is there. Both need a skin, open no undo hold and leave the selection alone; null, with nothing
// changed, for null and for a bone without a skin.

/// A bone beside the given one, in its place and with a copy of its weights, half of which it takes over.
RyBone *createSiblingBone(RyBone *source);
/// Ends a bone at its middle and puts a new bone from there to the old end point, with half of the weights, between the
/// bone and its children. Children that are no bones stay. Returns the new bone.
RyBone *splitBone(RyBone *bone);
