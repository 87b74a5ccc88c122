#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"
#include "rycore/io/gltf/file/RyGltfStorage.h"

#include <span>

/// Numbers out of accessors that have been checked. What has no buffer reads as zeros, numbers that are not finite as
/// 0.
class RyGltfAccessorReader
{
public:
    RyGltfAccessorReader(const RyGltfAccessor &accessor, const RyGltfLayout &layout, const RyGltfStorage &storage)
        : m_accessor(accessor), m_layout(layout), m_storage(storage)
    {}

    std::vector<float> readFloats() const;
    std::vector<std::uint32_t> readUints() const;
    std::span<const unsigned char> packedBytes() const;
    /// Whether every number of a float accessor is finite.
    bool isFinite() const;

    static int componentSize(int componentType); // 0 for an unknown one

private:
    template<typename Out>
    std::vector<Out> read() const;
    template<typename Out, typename In>
    void readElements(const unsigned char *from, std::uint64_t stride, std::uint64_t count, Out *out) const;
    template<typename Out>
    void readAs(const unsigned char *from, std::uint64_t stride, std::uint64_t count, Out *out) const;
    template<typename Out>
    void applySparse(std::vector<Out> &values) const;

    const RyGltfAccessor &m_accessor;
    const RyGltfLayout &m_layout;
    const RyGltfStorage &m_storage;
};
