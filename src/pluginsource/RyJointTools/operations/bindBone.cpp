#include "pluginsource/RyJointTools/operations/bindBone.h"

#include "pluginsource/RyJointTools/operations/findSkinsThatBind.h"
#include "pluginsource/RyJointTools/operations/normalizeWeights.h"

#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <map>
#include <set>

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
    std::map<const RyWeightMap *, RyWeightMap *> copies;
    const auto copyOf = [&copies](const RyWeightMap *map) -> RyWeightMap * {
        if (!map)
            return nullptr;
        RyWeightMap *&copy = copies[map];
        if (!copy)
            copy = map->copy();
        return copy;
    };
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
    const RyBoneBinding *original = skin->findBoneBinding(source);
    // Two full copies would outweigh the other bones of a vertex, and normalizing would make that last.
    const std::vector<RyWeightMap *> kept = original->getAllWeightMaps();
    const std::vector<RyWeightMap *> given = binding->getAllWeightMaps();
    std::set<const RyWeightMap *> shared;
    for (size_t i = 0; i < kept.size(); ++i) {
        if (shared.insert(kept[i]).second)
            shareWeights(kept[i], given[i]);
    }
    if (std::any_of(given.begin(), given.end(), [](const RyWeightMap *map) { return map->getNumAffected() > 0; }))
        bone->setWeightGiver(original->getBone());
    normalizeWeights(skin);
    return binding;
}

void bindWithHalfOf(RyBone *bone, const RyBone *source)
{
    for (RySkinBinding *skin : findSkinsThatBind(source))
        bindWithHalfOf(skin, bone, source);
}
