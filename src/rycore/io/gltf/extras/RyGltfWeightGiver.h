#pragma once

struct RyGltfNodeSource;
class RyGltfOrigin;
class RyNode;

/// The bone of the file with which a new one moves in clips, although it does not hang on that: the one that the bone
/// has its weights from (RyBone::getWeightGivers), which may be gone since; where nobody said so, the one of its figure
/// that lost most to it and stands beside it, or below such. Null for none: what is above a new bone moves it anyway.
const RyGltfNodeSource *ryGltfWeightGiver(const RyGltfOrigin &origin, const RyNode &bone);

/// The bone of the file with which a bone moves in clips: itself, its giver, or that of the nearest one above. Null for
/// null, and where there is none.
const RyGltfNodeSource *ryGltfMovingBone(const RyGltfOrigin &origin, const RyNode *bone);
