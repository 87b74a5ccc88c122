#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <cstdint>
#include <vector>

class RyGltfDocument;

/// Split vertices of a primitive's triangles, three by three: strips and fans become plain triangles; points and lines
/// have none. What names no vertex below `vertexCount` is left out.
std::vector<std::uint32_t> ryGltfReadTriangles(const RyGltfDocument &document, const RyGltfPrimitive &primitive,
                                               size_t vertexCount);
