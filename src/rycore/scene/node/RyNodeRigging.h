#pragma once

#include "rycore/math/RyQuat.h"

#include <array>

class RyElement;
class RyFloatProperty;
class RyPropertyGroup;

/// The rigging values of a node, three triples of controls: origin and end point in figure space (cm), orientation in
/// degrees, fixed XYZ. Before `make` all triples read as (0,0,0) and writing does nothing.
class RyNodeRigging
{
public:
    /// Index of a triple's first control.
    enum Triple { Origin = 0, End = 3, Orientation = 6 };
    enum class Write { Current, DefaultAndCurrent, Adjust };
    /// Whether the value of a control changes its sign on the other side of a plane at right angles to axis 0 to 2.
    /// Points do along the axis. A turn (a, angle) becomes (a M, -angle): angles of fixed XYZ order do about the
    /// others.
    static bool isReversedByMirror(int control, int axis) { return (control % 3 == axis) != (control >= Orientation); }
    static Write setting(bool asDefault) { return asDefault ? Write::DefaultAndCurrent : Write::Current; }

    /// Adds the controls of `owner` below `root`.
    void make(RyElement *owner, RyPropertyGroup *root);
    bool exists() const { return m_controls[0]; }
    using Controls = std::array<RyFloatProperty *, 9>;
    const Controls &controls() const { return m_controls; }
    RyFloatProperty *control(int index) const { return m_controls[size_t(index)]; }
    RyFloatProperty *const *begin() const { return m_controls.data(); }
    RyFloatProperty *const *end() const { return begin() + (exists() ? m_controls.size() : 0); }
    bool contains(const RyFloatProperty *property) const;
    /// For a control of the rigging: no map depends on the end point.
    bool isInMaps(const RyFloatProperty *property) const;

    RyVec3 read(Triple triple, bool byDefault) const;
    /// From bone axes to figure axes.
    RyQuat orientation(bool byDefault) const;
    void write(Triple triple, const RyVec3 &v, Write how);

private:
    Controls m_controls = {};
};
