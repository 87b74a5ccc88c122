#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/math/RyMatrix3.h"
#include "rycore/math/RyRotationOrder.h"

#include <array>

class RyElement;
class RyFloatProperty;
class RyPropertyGroup;

/// The pose controls of a node: translation along figure axes (cm), rotation about and scale along bone axes (degrees,
/// factors), and the order in which it turns. Orientations map bone axes to figure axes, as the node's rigging says.
class RyNodePose
{
public:
    /// Index of a control, of a triple the first one.
    enum Control { Translation = 0, Rotation = 3, GeneralScale = 6, Scale = 7 };

    /// Adds the controls of `owner` below `root`.
    void make(RyElement *owner, RyPropertyGroup *root);
    using Controls = std::array<RyFloatProperty *, 10>;
    const Controls &controls() const { return m_controls; }
    RyFloatProperty *control(int index) const { return m_controls[size_t(index)]; }
    RyFloatProperty *const *begin() const { return m_controls.data(); }
    RyFloatProperty *const *end() const { return begin() + m_controls.size(); }
    bool contains(const RyFloatProperty *property) const;
    const RyRotationOrder &order() const { return m_order; }
    void setOrder(const RyRotationOrder &order) { m_order = order; }

    /// All controls at their defaults.
    void clear();
    bool isPosed() const;

    /// The rotation about figure axes: orientation^-1 * pose * orientation. Exactly the identity where nothing turns.
    RyQuat localRotation(const RyQuat &orientation, bool byDefault) const;
    /// The scale times `factor`, along figure axes.
    RyMatrix3 localScale(const RyQuat &orientation, float factor) const;
    float generalScale() const;
    /// T(-origin) * linear * T(origin + translation): from figure space to figure space, relative to the parent.
    /// Exactly the translation where nothing turns or scales.
    RyAffine localMap(const RyVec3 &origin, const RyQuat &orientation, bool byDefault) const;

    /// In figure axes; `scale` is without the general scale.
    void getTransform(const RyQuat &orientation, RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale,
                      float &generalScale) const;
    /// Writes the controls with `setValue` or `adjustValue`: their own share, or what links add included.
    using Write = void (RyFloatProperty::*)(float);
    void writeTransform(const RyQuat &orientation, const RyVec3 &position, const RyQuat &rotation,
                        const RyMatrix3 &scale, float generalScale, Write write);
    /// Adjusts the controls so that the local map becomes `local`, as far as they can say it.
    void takeFrom(const RyAffine &local, const RyVec3 &origin, const RyQuat &orientation);

private:
    RyVec3 read(Control triple, bool byDefault) const;
    RyQuat rotation(bool byDefault) const;

    Controls m_controls = {};
    RyRotationOrder m_order;
};
