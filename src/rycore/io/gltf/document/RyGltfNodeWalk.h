#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <vector>

/// Node indices in pre-order, roots of the scene first, then whatever hangs elsewhere.
std::vector<int> ryGltfPreOrder(const RyGltfModel &model);
/// Every node's world map (node space to world) in file units.
std::vector<RyAffine> ryGltfWorldMaps(const RyGltfModel &model, const std::vector<int> &preOrder);
/// Nodes that are marked, and those above and below them.
std::vector<bool> ryGltfRelatedNodes(const RyGltfModel &model, const std::vector<bool> &isMarked);
/// Whether a node's name says that it marks the end of the bone above it.
bool ryGltfMarksEnd(const QString &name);
