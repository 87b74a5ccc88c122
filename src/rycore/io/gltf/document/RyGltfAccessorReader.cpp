#include "rycore/io/gltf/document/RyGltfAccessorReader.h"

#include "rycore/math/RyLargePages.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

template<typename Out, typename In>
Out converted(In value, bool normalized)
{
    if constexpr (std::is_same_v<Out, float>) {
        if constexpr (std::is_floating_point_v<In>) {
            return std::abs(value) <= std::numeric_limits<float>::max() ? value : 0.0f;
        } else {
            if (!normalized)
                return float(value);
            const double fraction = double(value) / double(std::numeric_limits<In>::max());
            return float(std::max(fraction, -1.0));
        }
    } else {
        if constexpr (std::is_floating_point_v<In>)
            return value > 0.0f && value < 4294967040.0f ? Out(value) : Out(0);
        else
            return value > 0 ? Out(value) : Out(0);
    }
}

} // namespace

int RyGltfAccessorReader::componentSize(int componentType)
{
    switch (componentType) {
    case 5120:
    case 5121:
        return 1;
    case 5122:
    case 5123:
        return 2;
    case 5125:
    case 5126:
        return 4;
    default:
        return 0;
    }
}

template<typename Out, typename In>
void RyGltfAccessorReader::readElements(const unsigned char *from, std::uint64_t stride, std::uint64_t count,
                                        Out *out) const
{
    const int components = m_accessor.componentCount;
    const bool normalized = m_accessor.normalized;
    if (!m_layout.isPadded() && stride == std::uint64_t(m_layout.elementSize)) {
        const std::uint64_t total = count * std::uint64_t(components);
        if constexpr (std::is_same_v<Out, In> && std::is_integral_v<In>) {
            std::copy_n(from, std::size_t(total) * sizeof(In), reinterpret_cast<unsigned char *>(out));
            return;
        }
        for (std::uint64_t i = 0; i < total; ++i) {
            In value;
            std::memcpy(&value, from + i * sizeof(In), sizeof(In));
            out[i] = converted<Out, In>(value, normalized);
        }
        return;
    }
    const int rows = m_layout.rows;
    for (std::uint64_t element = 0; element < count; ++element, from += stride) {
        for (int component = 0; component < components; ++component) {
            In value;
            std::memcpy(&value,
                        from + (component / rows) * m_layout.columnStride + (component % rows) * int(sizeof(In)),
                        sizeof(In));
            *out++ = converted<Out, In>(value, normalized);
        }
    }
}

template<typename Out>
void RyGltfAccessorReader::readAs(const unsigned char *from, std::uint64_t stride, std::uint64_t count, Out *out) const
{
    switch (m_accessor.componentType) {
    case 5120:
        return readElements<Out, std::int8_t>(from, stride, count, out);
    case 5121:
        return readElements<Out, std::uint8_t>(from, stride, count, out);
    case 5122:
        return readElements<Out, std::int16_t>(from, stride, count, out);
    case 5123:
        return readElements<Out, std::uint16_t>(from, stride, count, out);
    case 5125:
        return readElements<Out, std::uint32_t>(from, stride, count, out);
    default:
        return readElements<Out, float>(from, stride, count, out);
    }
}

template<typename Out>
void RyGltfAccessorReader::applySparse(std::vector<Out> &values) const
{
    const RyGltfSparse &sparse = m_layout.sparse;
    const std::size_t components = std::size_t(m_accessor.componentCount);
    std::vector<Out> replaced(std::size_t(sparse.count) * components);
    readAs(m_storage.viewBytes(sparse.valueView) + sparse.valueOffset, std::uint64_t(m_layout.elementSize),
           sparse.count, replaced.data());
    RyGltfAccessor indexAccessor;
    indexAccessor.bufferView = sparse.indexView;
    indexAccessor.byteOffset = sparse.indexOffset;
    indexAccessor.componentType = sparse.indexType;
    indexAccessor.count = sparse.count;
    RyGltfLayout layout;
    layout.componentSize = layout.elementSize = layout.columnStride = componentSize(sparse.indexType);
    layout.stride = std::uint64_t(layout.elementSize);
    const std::vector<std::uint32_t> indices = RyGltfAccessorReader(indexAccessor, layout, m_storage).readUints();
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (indices[i] >= m_accessor.count)
            continue;
        std::copy_n(replaced.begin() + std::ptrdiff_t(i * components), components,
                    values.begin() + std::ptrdiff_t(indices[i] * components));
    }
}

template<typename Out>
std::vector<Out> RyGltfAccessorReader::read() const
{
    std::vector<Out> values;
    RyLargePages::resize(values, std::size_t(m_accessor.count) * std::size_t(m_accessor.componentCount));
    if (values.empty())
        return values;
    if (m_accessor.bufferView >= 0) {
        readAs(m_storage.viewBytes(m_accessor.bufferView) + m_accessor.byteOffset, m_layout.stride, m_accessor.count,
               values.data());
    }
    if (m_accessor.sparse)
        applySparse(values);
    return values;
}

std::vector<float> RyGltfAccessorReader::readFloats() const
{
    return read<float>();
}

std::vector<std::uint32_t> RyGltfAccessorReader::readUints() const
{
    return read<std::uint32_t>();
}

std::span<const unsigned char> RyGltfAccessorReader::packedBytes() const
{
    if (m_accessor.bufferView < 0 || m_accessor.sparse || m_accessor.count == 0 || m_layout.isPadded() ||
        m_layout.stride != std::uint64_t(m_layout.elementSize))
        return {};
    return {m_storage.viewBytes(m_accessor.bufferView) + m_accessor.byteOffset,
            std::size_t(m_accessor.count) * std::size_t(m_layout.elementSize)};
}

bool RyGltfAccessorReader::isFinite() const
{
    if (m_accessor.componentType != 5126)
        return true;
    const int components = m_accessor.componentCount;
    const auto finite = [components](const unsigned char *from, std::uint64_t stride, std::uint64_t count) {
        bool result = true;
        for (std::uint64_t element = 0; element < count; ++element, from += stride) {
            for (int component = 0; component < components; ++component) {
                float value;
                std::memcpy(&value, from + component * 4, 4);
                result &= std::abs(value) <= std::numeric_limits<float>::max();
            }
        }
        return result;
    };
    const RyGltfSparse &sparse = m_layout.sparse;
    if (m_accessor.sparse && !finite(m_storage.viewBytes(sparse.valueView) + sparse.valueOffset,
                                     std::uint64_t(m_layout.elementSize), sparse.count))
        return false;
    return m_accessor.bufferView < 0 || finite(m_storage.viewBytes(m_accessor.bufferView) + m_accessor.byteOffset,
                                               m_layout.stride, m_accessor.count);
}
