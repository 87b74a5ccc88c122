#pragma once

#include "ryforeign/RyForeignReader.h"

/// Reads an FBX, Collada or BVH file, which its ending tells.
bool ryReadForeign(const RyForeignRequest &request, RyForeignResult &result);
