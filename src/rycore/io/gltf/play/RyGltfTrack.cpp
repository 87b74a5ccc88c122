#include "rycore/io/gltf/play/RyGltfTrack.h"

#include <algorithm>

void RyGltfTrack::seek(double time)
{
    constexpr float unbounded = std::numeric_limits<float>::infinity();
    const std::vector<float> &times = m_curve->times;
    const auto behind = std::upper_bound(times.begin(), times.end(), time,
                                         [](double wanted, float key) { return wanted < double(key); });
    m_from = behind == times.begin() ? -unbounded : *std::prev(behind);
    m_to = behind == times.end() ? unbounded : *behind;
    m_piece.emplace(*m_curve, m_from, m_to);
}
