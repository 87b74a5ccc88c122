#pragma once

class RyGltfOrigin;
class RyNode;

/// The bone of the file that gave a new one most of its weights and moves otherwise: beside it, or below such; null for
/// none. What is above a new bone moves it anyway.
const RyNode *ryGltfWeightGiver(const RyGltfOrigin &origin, const RyNode &bone);
