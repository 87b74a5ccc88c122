#include "rycore/io/gltf/open/RyGltfTriangles.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"

#include <algorithm>
#include <numeric>

namespace {

enum Mode { Triangles = 4, Strip = 5, Fan = 6 };

std::vector<std::uint32_t> plainTriangles(const std::vector<std::uint32_t> &indices, int mode)
{
    std::vector<std::uint32_t> triangles;
    for (size_t t = 0; t + 2 < indices.size(); ++t) {
        if (mode == Fan)
            triangles.insert(triangles.end(), {indices[0], indices[t + 1], indices[t + 2]});
        else // every other triangle of a strip runs the other way round
            triangles.insert(triangles.end(), {indices[t], indices[t + 1 + t % 2], indices[t + 2 - t % 2]});
    }
    return triangles;
}

} // namespace

std::vector<std::uint32_t> ryGltfReadTriangles(const RyGltfDocument &document, const RyGltfPrimitive &primitive,
                                               size_t vertexCount)
{
    if (primitive.mode < Triangles || primitive.mode > Fan)
        return {};
    std::vector<std::uint32_t> indices;
    if (primitive.indices >= 0) {
        indices = document.readUints(primitive.indices);
    } else {
        indices.resize(vertexCount);
        std::iota(indices.begin(), indices.end(), 0u);
    }
    if (primitive.mode != Triangles)
        indices = plainTriangles(indices, primitive.mode);
    indices.resize(indices.size() / 3 * 3);
    const auto isThere = [vertexCount](std::uint32_t index) { return index < vertexCount; };
    if (std::all_of(indices.begin(), indices.end(), isThere))
        return indices;
    std::vector<std::uint32_t> valid;
    for (auto corner = indices.begin(); corner != indices.end(); corner += 3) {
        if (std::all_of(corner, corner + 3, isThere))
            valid.insert(valid.end(), corner, corner + 3);
    }
    return valid;
}
