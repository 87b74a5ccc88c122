#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <vector>

/// Node indices in pre-order, roots of the scene first, then whatever hangs elsewhere.
std::vector<int> ryGltfPreOrder(const RyGltfModel &model);
/// Every node's world map (node space to world) in file units.
std::vector<RyAffine> ryGltfWorldMaps(const RyGltfModel &model, const std::vector<int> &preOrder);
/// Whether a node's name says that it marks the end of the bone above it.
bool ryGltfMarksEnd(const QString &name);
