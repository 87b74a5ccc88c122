#include "rycore/scene/node/RyNodePose.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyPropertyTriple.h"

#include <algorithm>

void RyNodePose::make(RyElement *owner, RyPropertyGroup *root)
{
    // The texts are shared by all nodes.
    static const struct
    {
        QString name;
        QString label;
        QString group;
        float value;
    } controls[10] = {
        {QStringLiteral("xtran"), QStringLiteral("X Translate"), QStringLiteral("Translation"), 0},
        {QStringLiteral("ytran"), QStringLiteral("Y Translate"), QStringLiteral("Translation"), 0},
        {QStringLiteral("ztran"), QStringLiteral("Z Translate"), QStringLiteral("Translation"), 0},
        {QStringLiteral("xrot"), QStringLiteral("X Rotate"), QStringLiteral("Rotation"), 0},
        {QStringLiteral("yrot"), QStringLiteral("Y Rotate"), QStringLiteral("Rotation"), 0},
        {QStringLiteral("zrot"), QStringLiteral("Z Rotate"), QStringLiteral("Rotation"), 0},
        {QStringLiteral("scale"), QStringLiteral("Scale"), QStringLiteral("Scale"), 1},
        {QStringLiteral("xscale"), QStringLiteral("X Scale"), QStringLiteral("Scale"), 1},
        {QStringLiteral("yscale"), QStringLiteral("Y Scale"), QStringLiteral("Scale"), 1},
        {QStringLiteral("zscale"), QStringLiteral("Z Scale"), QStringLiteral("Scale"), 1},
    };
    RyPropertyGroup *group = nullptr;
    for (int i = 0; i < 10; ++i) {
        if (!group || group->getName() != controls[i].group)
            group = root->addChild(controls[i].group);
        auto property = std::make_unique<RyFloatProperty>(owner, controls[i].name, controls[i].value);
        property->setLabel(controls[i].label);
        m_controls[size_t(i)] = group->addProperty(std::move(property));
    }
}

bool RyNodePose::contains(const RyFloatProperty *property) const
{
    return std::find(begin(), end(), property) != end();
}

void RyNodePose::clear()
{
    for (RyFloatProperty *control : m_controls)
        control->setValue(control->getDefaultValue());
}

bool RyNodePose::isPosed() const
{
    return std::any_of(begin(), end(), [](const RyFloatProperty *p) { return p->getValue() != p->getDefaultValue(); });
}

RyVec3 RyNodePose::read(Control triple, bool byDefault) const
{
    return RyPropertyTriple::read(begin() + triple, byDefault);
}

RyQuat RyNodePose::rotation(bool byDefault) const
{
    const int order[3] = {m_order[0], m_order[1], m_order[2]};
    return RyQuat::fromEuler(read(Rotation, byDefault), order);
}

RyQuat RyNodePose::localRotation(const RyQuat &orientation, bool byDefault) const
{
    // The identity to the bit: o^-1 * o is not.
    const RyQuat pose = rotation(byDefault);
    return pose == RyQuat() ? RyQuat() : orientation.inverse() * pose * orientation;
}

RyMatrix3 RyNodePose::localScale(const RyQuat &orientation, float factor) const
{
    const RyVec3 scale = read(Scale, false) * factor;
    return RyMatrix3(orientation.inverse()) * RyMatrix3::diagonal(scale) * RyMatrix3(orientation);
}

float RyNodePose::generalScale() const
{
    return m_controls[GeneralScale]->getValue();
}

RyAffine RyNodePose::localMap(const RyVec3 &origin, const RyQuat &orientation, bool byDefault) const
{
    const RyVec3 translation = read(Translation, byDefault);
    const RyVec3 factors = read(Scale, byDefault);
    const double general = byDefault ? m_controls[GeneralScale]->getDefaultValue() : generalScale();
    const RyAffine scale = RyAffine::fromScale(general * factors.x, general * factors.y, general * factors.z);
    const RyQuat turn = rotation(byDefault);
    // What neither turns nor scales says nothing of its origin and axes, not even by rounding: an edit of a joint at
    // rest moves no vertex.
    if (turn == RyQuat() && scale == RyAffine())
        return RyAffine::fromTranslation(translation);
    // M(o^-1) S M(o) M(o^-1 pose o) = M(o^-1) S M(pose) M(o)
    return RyAffine::fromTranslation(-origin) * RyAffine::fromRotation(orientation.inverse()) * scale *
           RyAffine::fromRotation(turn) * RyAffine::fromRotation(orientation) *
           RyAffine::fromTranslation(double(origin.x) + translation.x, double(origin.y) + translation.y,
                                     double(origin.z) + translation.z);
}

void RyNodePose::getTransform(const RyQuat &orientation, RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale,
                              float &generalScale) const
{
    position = read(Translation, false);
    rotation = localRotation(orientation, false);
    scale = localScale(orientation, 1.0f);
    generalScale = this->generalScale();
}

void RyNodePose::writeTransform(const RyQuat &orientation, const RyVec3 &position, const RyQuat &rotation,
                                const RyMatrix3 &scale, float generalScale, Write write)
{
    const RyQuat pose = orientation * rotation * orientation.inverse();
    const RyMatrix3 inBoneAxes = RyMatrix3(orientation) * scale * RyMatrix3(orientation.inverse());
    const int order[3] = {m_order[0], m_order[1], m_order[2]};
    // The identity is written as such, not as what rounding leaves of it.
    const RyVec3 degrees = rotation == RyQuat() ? RyVec3() : pose.toEuler(order);
    const bool unscaled = scale == RyMatrix3();
    const auto put = [&](int index, float value) {
        RyFloatProperty *control =
            m_controls[size_t(index)]; // g++ 12 checks a wrong index where this stands before ->*
        (control->*write)(value);
    };
    for (int axis = 0; axis < 3; ++axis) {
        put(Translation + axis, position[axis]);
        put(Rotation + axis, degrees[axis]);
        put(Scale + axis, unscaled ? 1.0f : inBoneAxes[axis][axis]);
    }
    put(GeneralScale, generalScale);
}

void RyNodePose::takeFrom(const RyAffine &local, const RyVec3 &origin, const RyQuat &orientation)
{
    const double from[3] = {origin.x, origin.y, origin.z};
    double to[3];
    local.mapPoint(from, to);
    RyAffine stretch;
    RyQuat rotation;
    local.decomposePolar(stretch, rotation);
    RyMatrix3 scale;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            scale[i][j] = float(stretch.m[i][j]);
    }
    writeTransform(orientation, {float(to[0] - from[0]), float(to[1] - from[1]), float(to[2] - from[2])}, rotation,
                   scale, 1.0f, &RyFloatProperty::adjustValue);
}
