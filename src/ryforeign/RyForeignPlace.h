#pragma once

#include "ryforeign/RyForeignInput.h"
#include "ryforeign/RyForeignTree.h"

/// The map from the space of a foreign file to that of a glTF file, in metres and with Y up: by the axes and the unit
/// that the file states, and the unit otherwise that makes its largest figure as high as people are. The importers'
/// library has turned and measured a Collada file already, an FBX file says it aside, a BVH file nowhere.
/// The joints are marked.
RyAffine ryForeignTop(const RyForeignInput &input, const RyForeignTree &tree, double unit);
