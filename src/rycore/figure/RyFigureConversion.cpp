#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyPropConversion.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackSilence.h"

#include <numeric>

namespace {

RyWeightMap *makeFullMap(const QString &name, int count)
{
    std::vector<int> indices(static_cast<size_t>(count));
    std::iota(indices.begin(), indices.end(), 0);
    auto *map = new RyWeightMap(name);
    map->setAffected(count, std::move(indices), std::vector<quint16>(size_t(count), RyWeightMap::FullWeight));
    return map;
}

/// A skin by which one bone moves all vertices. Nothing of it is recorded, nor is it a change that no step holds: it is
/// new, and comes and goes with the step.
RySkinBinding *makeSkin(RyBone *bone, int vertexCount, bool localMaps)
{
    const RyUndoStackSilence silence;
    auto *binding = new RyBoneBinding;
    binding->setBone(bone);
    if (localMaps) {
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(makeFullMap(bone->getName(), vertexCount), axis);
        binding->setScaleWeights(makeFullMap(bone->getName(), vertexCount));
    } else {
        binding->setWeights(makeFullMap(bone->getName(), vertexCount));
    }
    auto *skin = new RySkinBinding;
    skin->setMapKinds(localMaps, !localMaps);
    skin->addBoneBinding(binding);
    return skin;
}

} // namespace

RyFigure *RyFigure::convertPropToFigure(RyNode *node, const QString &rootName, bool localMaps, bool inherit)
{
    const RyRef<RyFigure> figure(RyPropConversion::makeNew<RyFigure>());
    const auto rig = [localMaps](RyBone *root, RyObject *object, const RyFacetMesh &mesh) {
        object->addModifier(makeSkin(root, mesh.getNumVertices(), localMaps));
    };
    return RyPropConversion::run(node, figure.get(), rootName, inherit, rig) ? figure.get() : nullptr;
}
