#pragma once

#include "rycore/viewport/picking/RyNodePicker.h"

#include <QColor>

/// Tints parts of meshes and draws their borders, over what has been drawn so far. Loses the depths.
void ryDrawPatches(const std::vector<RyNodePicker::Patch> &patches, const QColor &tint);
