#include "rycore/figure/RyLegacyMirror.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/scene/RyBone.h"

#include <cmath>
#include <vector>

namespace {

/// Current and default value of a control.
struct Pair
{
    float current;
    float byDefault;

    static Pair of(const RyFloatProperty &property) { return {property.getValue(), property.getDefaultValue()}; }
    void writeTo(RyFloatProperty &property) const
    {
        property.setDefaultValue(byDefault);
        property.adjustValue(current);
    }
    /// Never the negative zero.
    Pair negated() const { return {0.0f - current, 0.0f - byDefault}; }
};

using Pairs = std::vector<Pair>;

template<typename Controls>
Pairs read(const Controls &controls)
{
    Pairs pairs;
    for (const RyFloatProperty *control : controls)
        pairs.push_back(Pair::of(*control));
    return pairs;
}

template<typename Controls>
void write(const Pairs &pairs, const Controls &controls)
{
    for (size_t i = 0; i < pairs.size(); ++i)
        pairs[i].writeTo(*controls[i]);
}

/// Degrees within (-180, 180].
float wrapped(float degrees)
{
    return degrees - 360.0f * std::ceil((degrees - 180.0f) / 360.0f);
}

/// The angle of the reflected ray. A ray about X starts at -Z and goes to Y, those about Y and Z start at X.
float reflected(float degrees, int bendAxis, int mirrorAxis)
{
    const int start = bendAxis == 0 ? 2 : 0;
    return wrapped(mirrorAxis == start ? 180.0f - degrees : 0.0f - degrees);
}

/// Controllers of a bend: A, B, C, D, then positive left and right, negative left and right bulges.
Pairs mirroredBend(const Pairs &from, int bendAxis, int mirrorAxis)
{
    if (bendAxis == mirrorAxis)
        return from;
    Pairs to = from;
    for (size_t i = 0; i < 4; ++i) {
        const Pair &ray = from[3 - i];
        to[i] = {reflected(ray.current, bendAxis, mirrorAxis), reflected(ray.byDefault, bendAxis, mirrorAxis)};
        to[4 + i] = from[7 - i];
    }
    return to;
}

/// Controllers of a smooth-scale: high start and end, low start and end.
Pairs mirroredZones(const Pairs &from)
{
    return {from[2].negated(), from[3].negated(), from[0].negated(), from[1].negated()};
}

Pairs mirroredValues(const RyLegacyJointParam &source, int mirrorAxis)
{
    const Pairs from = read(source.controllers());
    const bool isAlong = source.getAxis() == mirrorAxis;
    switch (source.type()) {
    case RyLegacyJointParam::Bend:
        return mirroredBend(from, source.getAxis(), mirrorAxis);
    case RyLegacyJointParam::Twist:
        return isAlong ? Pairs{from[0].negated(), from[1].negated()} : from;
    case RyLegacyJointParam::SmoothScale:
        return isAlong ? mirroredZones(from) : from;
    case RyLegacyJointParam::Curve:
        break;
    }
    return from;
}

/// The centre is reflected, the turn reversed but for that about the mirror axis; the scale stays.
void mirrorSphere(const RyLegacyJointSphere &source, const RyLegacyJointSphere &target, int mirrorAxis)
{
    Pairs values = read(source.controls());
    for (int axis = 0; axis < 3; ++axis) {
        const size_t negated = size_t(axis == mirrorAxis ? axis : 3 + axis);
        values[negated] = values[negated].negated();
    }
    write(values, target.controls());
}

/// Which side of the joint a parameter stands on is the target's own; which sides its zones are on is mirrored with
/// them.
unsigned mirroredFlags(const RyLegacyJointParam &source, const RyLegacyJointParam &target, int mirrorAxis)
{
    using Param = RyLegacyJointParam;
    unsigned flags = (source.flags() & ~unsigned(Param::Flipped)) | (target.flags() & Param::Flipped);
    if (source.type() == Param::SmoothScale && source.getAxis() == mirrorAxis) {
        flags &= ~unsigned(Param::HighSide | Param::LowSide);
        flags |= source.flags() & Param::HighSide ? Param::LowSide : 0u;
        flags |= source.flags() & Param::LowSide ? Param::HighSide : 0u;
    }
    return flags;
}

void mirrorParam(const RyLegacyJointParam *source, RyLegacyJointParam *target, int mirrorAxis)
{
    if (!source || !target || source->type() != target->type() || source->getAxis() != target->getAxis())
        return;
    const Pairs values = mirroredValues(*source, mirrorAxis);
    target->beginEdit();
    target->setFlags(mirroredFlags(*source, *target, mirrorAxis));
    write(values, target->controllers());
    mirrorSphere(*source->getDynamicSphere(), *target->getDynamicSphere(), mirrorAxis);
    mirrorSphere(*source->getStaticSphere(), *target->getStaticSphere(), mirrorAxis);
    target->finishEdit();
}

RyLegacyJointParam *counterpartOf(const RyLegacyJointParam &source, const RyLegacyJoint &target)
{
    QString name = source.getName();
    RyLegacyJointParam *found = target.findParam(name);
    if (found || source.type() != RyLegacyJointParam::SmoothScale)
        return found;
    if (name.startsWith('l', Qt::CaseInsensitive))
        name[0] = 'r';
    else if (name.startsWith('r'))
        name[0] = 'l';
    found = target.findParam(name);
    // Sides may have longer names: what the parents drive belongs together however they are called.
    const bool isParents = source.getDriver() == source.getJoint()->getBone()->getNodeParent();
    if (!found && isParents && target.getBone())
        found = target.findParam(source.type(), qobject_cast<RyBone *>(target.getBone()->getNodeParent()), -1);
    return found;
}

} // namespace

void RyLegacyMirror::mirrorJoint(const RyLegacyJoint *source, RyLegacyJoint *target, int axis)
{
    if (!source || !target)
        return;
    const RyRef<RyLegacyBinding> binding(target->getBinding());
    if (binding)
        binding->beginEdit();
    for (const RyLegacyJointParam *param : source->jointParamsIterator()) {
        RyLegacyJointParam *counterpart = counterpartOf(*param, *target);
        if (!counterpart || param->type() == RyLegacyJointParam::Curve)
            continue;
        mirrorParam(param, counterpart, axis);
        mirrorParam(param->findPartner(), counterpart->findPartner(), axis);
    }
    if (binding)
        binding->finishEdit();
}
