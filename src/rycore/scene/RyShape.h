#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"

class RyNode;
class RyVertexMesh;

/// Geometry of an object.
class RyShape : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyShape() = default;

    virtual RyVertexMesh *getGeometry() const = 0;
    /// The current shape of the node's object; null for null, without object and without shape.
    static RyShape *getCurrentShapeForNode(const RyNode *node);

signals:
    /// Other geometry, or the geometry's content changed; once per finished edit.
    void geometryChanged();
};
