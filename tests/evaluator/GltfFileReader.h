#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <vector>

/// The JSON tree and the buffers of a .gltf or .glb file.
struct GltfFileData
{
    nlohmann::json json;
    std::vector<std::string> buffers;
};

/// Reads both kinds of file, with data URIs and files beside it. Throws std::runtime_error.
GltfFileData readGltfFile(const std::string &path);

/// One accessor decoded to double: count rows of `components` numbers, normalised integers as 0..1 or -1..1.
struct GltfTable
{
    std::size_t count = 0;
    std::size_t components = 0;
    std::vector<double> values;

    const double *row(std::size_t index) const { return values.data() + index * components; }
};

/// Throws std::runtime_error where the accessor reaches beyond its view or the view beyond its buffer.
GltfTable readGltfAccessor(const GltfFileData &file, int accessor);
std::string readGltfAccessorBytes(const GltfFileData &file, int accessor);
