#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"

#include <vector>

class RyObject;
struct RyShapePoints;

/// What deforms an object's shape: a slot that skins and parametric joints fill.
class RyModifier : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyModifier() = default;

    RyObject *getObject() const { return m_object; }
    /// Deforms points in the present pose: replaces the arrays by its own, which stay until its next call, normals too
    /// where there are some. False on failure (the points are then as they were).
    virtual bool deform(RyShapePoints &points) = 0;
    /// What belongs to it and has properties of its own.
    virtual std::vector<const RyElement *> parts() const { return {}; }

signals:
    /// What it does to a shape changed.
    void modifierChanged();

private:
    friend class RyObject;
    RyObject *m_object = nullptr;
};
