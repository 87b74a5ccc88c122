#pragma once

#include <cstddef>
#include <vector>

class RyGltfDocument;

/// The numbers of an accessor as floats: the document's own bytes where they lie there packed as such, otherwise a
/// copy. Lives no longer than the document.
class RyGltfFloats
{
public:
    RyGltfFloats() = default;
    RyGltfFloats(const RyGltfDocument &document, int accessor);
    RyGltfFloats(RyGltfFloats &&) = default;
    RyGltfFloats &operator=(RyGltfFloats &&) = default;

    /// Null without an accessor.
    const float *data() const { return m_data; }
    /// Of elements, such as positions.
    size_t count() const { return m_count; }

private:
    const float *m_data = nullptr;
    size_t m_count = 0;
    std::vector<float> m_copy;
};
