#pragma once

class RyFigure;

/// Makes the posed shape of a figure its rest: what is drawn becomes the mesh, origins, end points and orientations of
/// the bones go to where the pose put them, as defaults and current values, and the pose is cleared. Nothing moves in
/// the world: not the vertices, with morphs and bulges as they are shown; not those of other figures that the bones
/// move as well; not what hangs on the bones; values that links let bones control stay as they result.
///
/// Limits of rotations go along, so that a joint may turn as far as before; limits that do not allow the cleared value
/// are widened to it. A figure at rest stays as it is.
///
/// False, and nothing changed, for null, without a skin or a shape with facets, where a skin refuses its mesh, and
/// where bones hang on something else that hangs on a bone.
bool bakePose(RyFigure *figure);
