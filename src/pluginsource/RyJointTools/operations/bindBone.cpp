#include "pluginsource/RyJointTools/operations/bindBone.h"

#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

static int vertexCountOf(const RySkeleton *skeleton)
{
    const RyShape *shape = RyShape::getCurrentShapeForNode(skeleton);
    const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr;
    return mesh ? mesh->getNumVertices() : 0;
}

static RyWeightMap *makeEmptyMap(int vertexCount)
{
    auto *map = new RyWeightMap;
    map->setNumWeights(vertexCount);
    return map;
}

static RyWeightMap *copyOf(const RyWeightMap *map)
{
    return map ? map->copy() : nullptr;
}

RyBoneBinding *addEmptyBoneBinding(RyBone *bone, const RyNode *parent)
{
    RySkinBinding *skin = bone ? RySkinBinding::findSkinFromNode(parent) : nullptr;
    if (!skin)
        return nullptr;
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    const int vertexCount = vertexCountOf(parent->getSkeleton());
    if (vertexCount > 0 && skin->hasLocalMaps()) {
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(makeEmptyMap(vertexCount), axis);
        binding->setScaleWeights(makeEmptyMap(vertexCount));
    }
    if (vertexCount > 0 && skin->hasGeneralMaps())
        binding->setWeights(makeEmptyMap(vertexCount));
    skin->addBoneBinding(binding);
    normalizeWeights(skin);
    return binding;
}

/// Halves all weights of two equal maps; what cannot be halved stays with the first.
static void shareWeights(RyWeightMap *first, RyWeightMap *second)
{
    if (!first)
        return;
    const int affected = first->getNumAffected();
    const std::vector<int> indices(first->getAffectedIndices(), first->getAffectedIndices() + affected);
    std::vector<quint16> kept(first->getAffectedWeights(), first->getAffectedWeights() + affected);
    std::vector<quint16> given(kept);
    for (quint16 &weight : given)
        weight = quint16(weight / 2);
    for (size_t i = 0; i < kept.size(); ++i)
        kept[i] = quint16(kept[i] - given[i]);
    second->setAffected(first->getNumWeights(), indices, std::move(given));
    first->setAffected(first->getNumWeights(), indices, std::move(kept));
}

RyBoneBinding *copyBoneBinding(RySkinBinding *skin, RyBone *bone, const RyBone *source)
{
    const RyBoneBinding *original = skin && bone ? skin->findBoneBinding(source) : nullptr;
    if (!original)
        return nullptr;
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    binding->setWeights(copyOf(original->getWeights()));
    binding->setScaleWeights(copyOf(original->getScaleWeights()));
    for (int axis = 0; axis < 3; ++axis)
        binding->setLocalWeights(copyOf(original->getLocalWeights(axis)), axis);
    skin->addBoneBinding(binding);
    return binding;
}

RyBoneBinding *bindWithHalfOf(RySkinBinding *skin, RyBone *bone, const RyBone *source)
{
    RyBoneBinding *binding = copyBoneBinding(skin, bone, source);
    if (!binding)
        return nullptr;
    // Two full copies would outweigh the other bones of a vertex, and normalizing would make that last.
    const RyBoneBinding *original = skin->findBoneBinding(source);
    shareWeights(original->getWeights(), binding->getWeights());
    shareWeights(original->getScaleWeights(), binding->getScaleWeights());
    for (int axis = 0; axis < 3; ++axis)
        shareWeights(original->getLocalWeights(axis), binding->getLocalWeights(axis));
    normalizeWeights(skin);
    return binding;
}

void normalizeWeights(RySkinBinding *skin)
{
    skin->normalize(0, RySkinBinding::AllWeights, false);
}
