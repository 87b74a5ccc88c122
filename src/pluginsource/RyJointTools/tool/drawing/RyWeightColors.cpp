#include "pluginsource/RyJointTools/tool/drawing/RyWeightColors.h"

#include "rycore/math/RyColorGradient.h"
#include "rycore/mesh/RyWeightMap.h"

#include <algorithm>

static quint8 byteOf(int channel)
{
    return quint8(std::clamp(channel, 0, 255));
}

void RyWeightColors::set(const QColor &staticColor, const QColor &dynamicColor, int opacity)
{
    if (m_revision > 0 && staticColor == m_static && dynamicColor == m_dynamic && opacity == m_opacity)
        return;
    m_static = staticColor;
    m_dynamic = dynamicColor;
    m_opacity = opacity;
    ++m_revision;
    for (std::vector<Bytes> &ramp : m_ramps)
        ramp.clear();
}

const std::vector<RyWeightColors::Bytes> &RyWeightColors::ramp(bool isReversed)
{
    std::vector<Bytes> &ramp = m_ramps[isReversed];
    if (!ramp.empty())
        return ramp;
    RyColorGradient gradient;
    gradient.addGradientColor(isReversed ? 1.0f : 0.0f, m_static);
    gradient.addGradientColor(isReversed ? 0.0f : 1.0f, m_dynamic);
    ramp.reserve(size_t(RyWeightMap::FullWeight) + 1);
    for (int weight = 0; weight <= RyWeightMap::FullWeight; ++weight) {
        const QColor color = gradient.getColor(float(weight) / RyWeightMap::FullWeight);
        ramp.push_back({byteOf(color.red()), byteOf(color.green()), byteOf(color.blue()), byteOf(m_opacity)});
    }
    return ramp;
}
