#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>

namespace {

class Hash
{
public:
    void add(const void *data, size_t size)
    {
        const auto *bytes = static_cast<const unsigned char *>(data);
        for (; size > 0; bytes += std::min<size_t>(size, 8), size -= std::min<size_t>(size, 8)) {
            quint64 word = size;
            std::memcpy(&word, bytes, std::min<size_t>(size, 8));
            m_value = (std::rotl(m_value, 23) ^ word) * 0xff51afd7ed558ccdull;
        }
    }
    quint64 value() const { return m_value; }

private:
    quint64 m_value = 0x9e3779b97f4a7c15ull;
};

} // namespace

quint64 ryPositionsHash(const RyNode &node)
{
    Hash hash;
    const RyShape *shape = RyShape::getCurrentShapeForNode(&node);
    if (const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr)
        hash.add(mesh->getPositions().data(), mesh->getPositions().size() * sizeof(RyVec3));
    return hash.value();
}

RyNodeValues RyNodeValues::of(const RyNode &node)
{
    RyNodeValues values;
    const RyFloatProperty *rigging[9] = {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
                                         node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
                                         node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
    const RyFloatProperty *pose[10] = {node.getXTransControl(), node.getYTransControl(), node.getZTransControl(),
                                       node.getXRotControl(),   node.getYRotControl(),   node.getZRotControl(),
                                       node.getScaleControl(),  node.getXScaleControl(), node.getYScaleControl(),
                                       node.getZScaleControl()};
    for (size_t i = 0; i < 9; ++i) {
        if (rigging[i]) {
            values.rigging[i] = rigging[i]->getValue();
            values.riggingDefaults[i] = rigging[i]->getDefaultValue();
        }
    }
    for (size_t i = 0; i < 10; ++i)
        values.pose[i] = pose[i]->getValue();
    values.rotationOrder = node.getRotationOrder().order();
    values.inheritScale = node.inheritsScale();
    values.name = node.getName();
    values.label = node.hasOwnLabel() ? node.getLabel() : QString();
    return values;
}

bool RyNodeValues::sameOrigin(const RyNodeValues &o) const
{
    return std::equal(rigging.begin(), rigging.begin() + 3, o.rigging.begin());
}

bool RyNodeValues::sameOrientation(const RyNodeValues &o) const
{
    return std::equal(rigging.begin() + 6, rigging.end(), o.rigging.begin() + 6);
}

bool RyNodeValues::samePose(const RyNodeValues &o) const
{
    return pose == o.pose && rotationOrder == o.rotationOrder && inheritScale == o.inheritScale && sameOrigin(o) &&
           sameOrientation(o);
}

bool RyGltfFigureSource::hasOtherVertices() const
{
    return sceneNode && ryPositionsHash(*sceneNode) != positionsHash;
}

bool RyGltfFigureSource::canWriteVertices() const
{
    const auto *shape =
        sceneNode ? qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(sceneNode)) : nullptr;
    return shape && shape->getFacetMesh() && shape->getFacetMesh()->getNumVertices() == vertexCount && !parts.empty() &&
           shape->getParts() == meshParts && hasOtherVertices();
}

void RyGltfOrigin::recordTree()
{
    std::map<const RyNode *, int> nodeOf;
    for (RyGltfNodeSource &source : nodes) {
        nodeOf[source.sceneNode] = source.node;
        source.sceneParent = source.sceneNode->getNodeParent();
        const auto above = nodeOf.find(source.sceneParent);
        source.parent = above == nodeOf.end() ? -1 : above->second;
        if (source.parent < 0 && source.sceneParent)
            source.ownMap = source.sceneParent->worldMap();
        if (source.isBone && source.parent < 0 && figures[size_t(source.figure)].firstRoot < 0)
            figures[size_t(source.figure)].firstRoot = source.node;
    }
    for (const QPointer<RyNode> &top : tops) {
        std::vector<RyNode *> below;
        top->getNodeChildren(below, true);
        order.emplace_back(top, top->getNodeParent());
        for (const RyNode *node : below)
            order.emplace_back(node, node->getNodeParent());
    }
}

const RyGltfNodeSource *RyGltfOrigin::findSource(const RyNode *node) const
{
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [node](const RyGltfNodeSource &source) { return source.sceneNode == node; });
    return found == nodes.end() ? nullptr : &*found;
}

const RyGltfFigureSource *RyGltfOrigin::findFigureSource(const RyNode *figure) const
{
    const auto found = std::find_if(figures.begin(), figures.end(),
                                    [figure](const RyGltfFigureSource &source) { return source.sceneNode == figure; });
    return found == figures.end() ? nullptr : &*found;
}

bool RyGltfOrigin::isKeptFigure(const RyNode &node) const
{
    return qobject_cast<const RySkeleton *>(&node) && findFigureSource(&node);
}
