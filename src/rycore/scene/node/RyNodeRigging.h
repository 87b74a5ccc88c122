#pragma once

#include "rycore/math/RyQuat.h"

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
    static Write setting(bool asDefault) { return asDefault ? Write::DefaultAndCurrent : Write::Current; }

    /// Adds the controls of `owner` below `root`.
    void make(RyElement *owner, RyPropertyGroup *root);
    bool exists() const { return m_controls[0]; }
    RyFloatProperty *control(int index) const { return m_controls[index]; }
    RyFloatProperty *const *begin() const { return m_controls; }
    RyFloatProperty *const *end() const { return m_controls + (exists() ? 9 : 0); }
    bool contains(const RyFloatProperty *property) const;
    /// For a control of the rigging: no map depends on the end point.
    bool isInMaps(const RyFloatProperty *property) const;

    RyVec3 read(Triple triple, bool byDefault) const;
    /// From bone axes to figure axes.
    RyQuat orientation(bool byDefault) const;
    void write(Triple triple, const RyVec3 &v, Write how);

private:
    RyFloatProperty *m_controls[9] = {};
};
