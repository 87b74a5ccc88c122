#pragma once

class RyBone;
class RyNode;
class RySkinBinding;
class RyWeightMap;

/// Takes a bone out of the scene: its children go to the end of its parent's, its weights to a neighbour, its pairs of
/// the selection map and its joint parameters go, and those of its children follow them. The bone that a control bone
/// poses gets its face group back where it has none of its own. Children of a bone without a parent become top-level
/// nodes. Leaves undo holds and the selection of other nodes alone. Nothing for null.
void deleteBone(RyBone *bone);

/// Adds the weights of `source` to those of `target`, up to full weight, within an edit of it. Nothing unless both are
/// there and have the same number of weights; works on the affected vertices alone.
void mergeWeightMap(const RyWeightMap *source, RyWeightMap *target);
/// Gives all weights that a bone, which left `parent`, has in a skin to the nearest bound bone from there upwards; when
/// there is none up to the skeleton, to its first child that is a bound bone; to nobody when the chain ends without a
/// skeleton. Then the bone's binding goes and the skin is normalized. Nothing without a skin that binds the bone.
void moveWeightsOfDeletedBone(RySkinBinding *skin, const RyBone *deleted, const RyNode *parent);
