#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/math/RyBox3.h"

class RyNode;
class RyObject;

/// What a node shows: its object, and the box around it.
class RyNodeGeometry
{
public:
    explicit RyNodeGeometry(RyNode &node);
    ~RyNodeGeometry();
    RyNodeGeometry(const RyNodeGeometry &) = delete;
    RyNodeGeometry &operator=(const RyNodeGeometry &) = delete;

    RyObject *object() const { return m_object.get(); }
    void setObject(RyObject *object);
    /// Lets go of the object without undo, at the node's end.
    void release() { apply(nullptr); }
    /// In figure space, pose not applied: the vertices of the face group that the skeleton's selection map pairs with
    /// the node, otherwise those of the whole object; empty without geometry.
    RyBox3 box() const;
    /// The same in parameter space of the node: its bone axes about its origin, `orientation^-1 (p - origin) + origin`.
    RyBox3 boxInParameterSpace() const;

private:
    struct ObjectValue;

    void apply(RyObject *object);
    template<typename Map>
    RyBox3 boxOf(const Map &map) const;

    RyNode &m_node;
    RyRef<RyObject> m_object;
};
