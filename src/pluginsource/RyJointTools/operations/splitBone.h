#pragma once

class RyBone;

/// Ends a bone at its middle and puts a new bone from there to the old end point, with half of the weights, between the
/// bone and its children. Children that are no bones stay. Opens no undo hold and leaves the selection alone.
///
/// The new bone is not posed and turns along with the bone: as long as the bone is not scaled and its local maps agree,
/// no vertex moves. It does not inherit scale, so vertices of a scaled bone lose that part of the scale which goes over
/// to it, and so do the children.
///
/// Returns the new bone; null, with nothing changed, for null and for a bone whose skeleton has no skin.
RyBone *splitBone(RyBone *bone);
