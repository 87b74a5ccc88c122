#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/math/RyVec3.h"

#include <vector>

class RyObject;

/// What deforms an object's shape: a slot that skins and parametric joints fill.
class RyModifier : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyModifier() = default;

    RyObject *getObject() const { return m_object; }
    /// Deforms positions of figure space in the present pose, the figure's own transform left out. `out` may be what
    /// the last call left there. False on failure (`out` is then unspecified).
    virtual bool deform(const std::vector<RyVec3> &positions, std::vector<RyVec3> &out) = 0;

signals:
    /// What it does to a shape changed.
    void modifierChanged();

private:
    friend class RyObject;
    RyObject *m_object = nullptr;
};
