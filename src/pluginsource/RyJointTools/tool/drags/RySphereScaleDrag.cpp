#include "pluginsource/RyJointTools/tool/drags/RySphereScaleDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyMatrix4Utilities.h"
#include "rycore/parametric/RyLegacyJointSphere.h"

#include <algorithm>
#include <cmath>

static std::array<RyFloatProperty *, 3> controls(const RyLegacyJointSphere &sphere)
{
    return {sphere.getXScaleControl(), sphere.getYScaleControl(), sphere.getZScaleControl()};
}

RySphereScaleDrag::RySphereScaleDrag(const RyDragContext &context, Sphere sphere, int axis)
    : RySphereDrag(context, sphere), m_axis(axis), m_frame(RyHandleFrame::ofSphere(space(), start())),
      m_direction(axis < 0 ? m_frame.diagonal() : m_frame.axes[axis]),
      m_radius((m_frame.lengths[0] + m_frame.lengths[1] + m_frame.lengths[2]) / 3.0f)
{
    const std::array<RyFloatProperty *, 3> own = controls(sphereOf(*context.param));
    std::transform(own.begin(), own.end(), m_startValues.begin(),
                   [](const auto *control) { return control->getValue(); });
    setPointsAtEye(isAlongView(RyLine3(m_frame.anchor, m_frame.anchor + m_direction), context.camera));
}

// Where a ray runs along the line, the anchor that stands for a missing place would shrink the sphere to nothing.
RyVec3 RySphereScaleDrag::dragVector(const RyLine3 &ray) const
{
    const bool isAlong = ray.isParallelTo(RyLine3(m_frame.anchor, m_frame.anchor + m_direction));
    return isAlong ? pressVector() : m_frame.wayAlong(m_direction, ray);
}

float RySphereScaleDrag::factor() const
{
    constexpr float nothing = 1e-6f;
    constexpr float least = 0.001f;
    const float now = currentVector().dot(m_direction);
    const float atPress = pressVector().dot(m_direction);
    const float reference = m_axis < 0 ? m_radius : atPress;
    if (std::abs(reference) < nothing)
        return 1.0f;
    return std::max(least, m_axis < 0 ? 1.0f + (now - atPress) / reference : now / reference);
}

void RySphereScaleDrag::change(const Options &)
{
    const float size = factor();
    if (size == 1.0f) {
        changeBack();
        return;
    }
    RyVec3 factors(1.0f, 1.0f, 1.0f);
    for (int k = 0; k < 3; ++k) {
        if (m_axis < 0 || m_axis == k)
            factors[k] = size;
    }
    RyVec3 translation;
    RyVec3 scale;
    RyQuat rotation;
    RyMatrix4Utilities::decomposeMatrix(RyMatrix4(RyMatrix3::diagonal(factors)) * start(), translation, scale,
                                        rotation);
    const float general = sphereOf(*param()).getScaleControl()->getValue();
    for (int k = 0; k < 3; ++k) {
        if (m_axis >= 0 && m_axis != k)
            continue;
        // A mirrored sphere can be split in several ways; its axes stay the ones that they were.
        const float value = std::copysign((scale / general)[k], m_startValues[size_t(k)]);
        for (const RyLegacyJointParam *side : sides())
            controls(sphereOf(*side))[size_t(k)]->adjustValue(value);
    }
}
