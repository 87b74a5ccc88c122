#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"

#include <vector>

class RyNode;
class RyObject;
struct RyShapePoints;

/// Of each vertex the bone that a click on it means.
struct RyVertexBones
{
    std::vector<int> bones;   // places in `RyModifier::bones`, -1 for none
    std::vector<int> weights; // how much that one counts where the corners of a facet differ
};

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

    /// The bones by which it moves vertices, null for those that are gone; none where it moves them by other means.
    virtual std::vector<RyNode *> bones() const { return {}; }
    /// Of so many vertices, as of the last `deform`.
    virtual RyVertexBones vertexBones(int vertexCount) const
    {
        return {std::vector<int>(size_t(vertexCount), -1), std::vector<int>(size_t(vertexCount), 0)};
    }
    /// Differs from an earlier one where `vertexBones` may.
    virtual std::vector<quint64> vertexBonesKey() const { return {}; }

signals:
    /// What it does to a shape changed.
    void modifierChanged();
    /// What it does changes while an edit of it is open; modifierChanged comes at the end of that.
    void modifierChanging();

private:
    friend class RyObject;
    RyObject *m_object = nullptr;
};
