#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"

class RyNode;
class RyShapeNormals;
class RyVertexMesh;

/// Geometry of an object.
class RyShape : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyShape() = default;

    virtual RyVertexMesh *getGeometry() const = 0;
    /// Smooth normals at rest, valid until the shape changes; null for a shape without facets.
    virtual const RyShapeNormals *getNormals() const { return nullptr; }
    /// The current shape of the node's object; null for null, without object and without shape.
    static RyShape *getCurrentShapeForNode(const RyNode *node);

signals:
    /// Other geometry, or the geometry's content changed; once per finished edit.
    void geometryChanged();
};
