#include "rycore/io/gltf/extras/RyGltfFigureSource.h"

#include "rycore/io/RyUnitFactor.h"
#include "rycore/math/RyBox3.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <bit>
#include <cstring>

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

std::vector<RyBone *> ryOwnBones(const RyNode &figure)
{
    const auto *skeleton = qobject_cast<const RySkeleton *>(&figure);
    return skeleton ? skeleton->ownBones() : std::vector<RyBone *>();
}

RyBone *ryFirstOwnBone(const RyNode &figure)
{
    if (!qobject_cast<const RySkeleton *>(&figure))
        return nullptr;
    const auto reversed = [](const RyNode &node) {
        std::vector<RyNode *> children = node.nodeChildrenIterator();
        std::reverse(children.begin(), children.end());
        return children;
    };
    std::vector<RyNode *> pending = reversed(figure);
    while (!pending.empty()) {
        RyNode *node = pending.back();
        pending.pop_back();
        if (auto *bone = qobject_cast<RyBone *>(node); bone && bone->getSkeleton() == &figure)
            return bone;
        const std::vector<RyNode *> below = reversed(*node);
        pending.insert(pending.end(), below.begin(), below.end());
    }
    return nullptr;
}

double ryMeshHeight(const std::vector<RyVec3> &positions)
{
    RyBox3 box;
    for (const RyVec3 &position : positions)
        box.include(position);
    const RyVec3 extents = box.getExtents();
    return ryFigureHeight(double(extents.x), double(extents.y), double(extents.z));
}

quint64 ryPositionsHash(const RyNode &node)
{
    Hash hash;
    const RyShape *shape = RyShape::getCurrentShapeForNode(&node);
    if (const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr)
        hash.add(mesh->getPositions().data(), mesh->getPositions().size() * sizeof(RyVec3));
    return hash.value();
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

std::vector<const RyMorph *> RyGltfFigureSource::newMorphs(const RyShape &shape) const
{
    std::vector<const RyMorph *> result;
    for (const RyMorph *morph : shape.getMorphs()) {
        if (std::none_of(morphs.begin(), morphs.end(),
                         [morph](const RyGltfMorphSource &known) { return known.morph == morph; }))
            result.push_back(morph);
    }
    return result;
}

bool RyGltfFigureSource::hasMorphsOf(int node) const
{
    return std::any_of(morphs.begin(), morphs.end(), [node](const RyGltfMorphSource &each) {
        const RyNode *shown = each.morph ? each.morph->getNode() : nullptr;
        return shown && shown->getScene() &&
               std::any_of(each.targets.begin(), each.targets.end(),
                           [node](const RyGltfMorphSource::Target &target) { return target.node == node; });
    });
}
