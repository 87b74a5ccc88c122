#include "rycore/parametric/RyLegacyJointSphere.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/math/RyMatrix4Utilities.h"
#include "rycore/parametric/RyLegacyJointParam.h"

namespace {

struct Control
{
    const char *name;
    const char *label;
    float value;
};

constexpr Control Controls[10] = {
    {"xtran", "X Translate", 0}, {"ytran", "Y Translate", 0}, {"ztran", "Z Translate", 0}, {"xrot", "X Rotate", 0},
    {"yrot", "Y Rotate", 0},     {"zrot", "Z Rotate", 0},     {"scale", "Scale", 1},       {"xscale", "X Scale", 1},
    {"yscale", "Y Scale", 1},    {"zscale", "Z Scale", 1},
};

} // namespace

RyLegacyJointSphere::RyLegacyJointSphere(RyLegacyJointParam *param, const QString &name, float radius) : m_param(param)
{
    setObjectName(name);
    RyPropertyGroup *group = createPublicGroups(name);
    for (size_t i = 0; i < m_controls.size(); ++i) {
        const float value = i == 6 ? radius : Controls[i].value;
        auto control = std::make_unique<RyFloatProperty>(this, name + '_' + Controls[i].name, value);
        control->setLabel(Controls[i].label);
        m_controls[i] = group->addProperty(std::move(control));
    }
}

RyMatrix4 RyLegacyJointSphere::getMatrix() const
{
    const auto triple = [this](size_t first) {
        return RyVec3(m_controls[first]->getValue(), m_controls[first + 1]->getValue(),
                      m_controls[first + 2]->getValue());
    };
    RyMatrix4 matrix;
    matrix.scale(triple(7) * getScaleControl()->getValue());
    matrix.rotate(RyQuat::fromEulerXYZ(triple(3)));
    matrix.translate(triple(0));
    return matrix;
}

void RyLegacyJointSphere::setMatrix(const RyMatrix4 &matrix, bool asDefault)
{
    RyVec3 translation;
    RyVec3 scale;
    RyQuat rotation;
    RyMatrix4Utilities::decomposeMatrix(matrix, translation, scale, rotation);
    const RyVec3 degrees = rotation.toEulerXYZ();
    const float general = getScaleControl()->getValue() == 0.0f ? 1.0f : getScaleControl()->getValue();
    const float values[10] = {translation.x, translation.y, translation.z,     degrees.x,         degrees.y,
                              degrees.z,     general,       scale.x / general, scale.y / general, scale.z / general};
    for (size_t i = 0; i < m_controls.size(); ++i) {
        if (asDefault)
            m_controls[i]->setDefaultValue(values[i]);
        m_controls[i]->adjustValue(values[i]);
    }
}

void RyLegacyJointSphere::propertyChanged(RyFloatProperty *)
{
    if (m_param)
        m_param->valuesChanged();
}
