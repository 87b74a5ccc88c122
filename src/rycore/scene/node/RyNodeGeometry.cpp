#include "rycore/scene/node/RyNodeGeometry.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyValueChange.h"

struct RyNodeGeometry::ObjectValue : RyValueOf<RyNode, RyRef<RyObject>>
{
    static const Value &get(const RyNode &node) { return node.m_geometry.m_object; }
    static void put(RyNode &node, const Value &object) { node.m_geometry.apply(object.get()); }
};

RyNodeGeometry::RyNodeGeometry(RyNode &node) : m_node(node) {}

RyNodeGeometry::~RyNodeGeometry() = default;

void RyNodeGeometry::setObject(RyObject *object)
{
    if (m_object.get() == object)
        return;
    RyValueChange<ObjectValue>::record(&m_node);
    apply(object);
}

void RyNodeGeometry::apply(RyObject *object)
{
    if (RyObject *old = m_object.get()) {
        QObject::disconnect(old, nullptr, &m_node, nullptr);
        if (old->m_node == &m_node) {
            old->m_node = nullptr;
            old->placeMorphControls();
        }
    }
    m_object = RyRef<RyObject>(object);
    if (object) {
        object->m_node = &m_node;
        QObject::connect(object, &RyObject::contentChanged, &m_node, &RyNode::announceDrawn);
        object->placeMorphControls();
    } else {
        emit m_node.morphsChanged();
    }
    m_node.announceDrawn();
}

RyBox3 RyNodeGeometry::box() const
{
    return boxOf([](const RyVec3 &point) { return point; });
}

RyBox3 RyNodeGeometry::boxInParameterSpace() const
{
    const RyVec3 origin = m_node.getOrigin();
    const RyQuat toBone = m_node.getOrientation().inverse();
    return boxOf([&](const RyVec3 &point) { return toBone.multVec(point - origin) + origin; });
}

template<typename Map>
RyBox3 RyNodeGeometry::boxOf(const Map &map) const
{
    const RySkeleton *skeleton = m_node.getSkeleton();
    const RyObject *object = m_object || !skeleton ? m_object.get() : skeleton->getObject();
    const auto *shape = object ? qobject_cast<RyFacetShape *>(object->getCurrentShape()) : nullptr;
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh)
        return {};
    const RySelectionMap *pairs = skeleton ? skeleton->getSelectionMap() : nullptr;
    const RyFaceGroup *group = pairs ? mesh->findFaceGroup(pairs->findGroupForNode(&m_node)) : nullptr;
    const std::vector<RyVec3> &positions = shape->getCurrentPositions();
    RyBox3 box;
    if (!group) {
        for (const RyVec3 &position : positions)
            box.include(map(position));
        return box;
    }
    for (int i = 0; i < group->getFacets().count(); ++i) {
        const RyFacet &facet = mesh->getFacet(group->getFacets().getIndex(i));
        for (int corner = 0; corner < facet.count(); ++corner)
            box.include(map(positions[size_t(facet.vertices[corner])]));
    }
    return box;
}
