#pragma once

#include "rycore/io/foreign/RyForeignReader.h"

/// The entry point of the library: reads an FBX, Collada or BVH file, which its ending tells.
extern "C" __attribute__((visibility("default"))) bool ryReadForeign(const RyForeignRequest &request,
                                                                     RyForeignResult &result);
