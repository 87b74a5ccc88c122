#include "rycore/io/gltf/document/RyGltfFloats.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"

#include <cstdint>

RyGltfFloats::RyGltfFloats(const RyGltfDocument &document, int accessor)
{
    constexpr int floatType = 5126;
    const RyGltfAccessor &a = document.model().accessors[size_t(accessor)];
    const std::span<const unsigned char> bytes = document.packedBytes(accessor);
    m_count = size_t(a.count);
    if (a.componentType == floatType && !bytes.empty() &&
        reinterpret_cast<std::uintptr_t>(bytes.data()) % alignof(float) == 0) {
        m_data = reinterpret_cast<const float *>(bytes.data());
        return;
    }
    m_copy = document.readFloats(accessor);
    m_data = m_copy.data();
}
