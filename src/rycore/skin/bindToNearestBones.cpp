#include "rycore/skin/bindToNearestBones.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyNearestBoneWeights.h"
#include "rycore/skin/RySkinBinding.h"

#include <unordered_map>

namespace {

/// The bindings that have a bone, each bone after the bones above it, and their segments.
std::vector<RyBoneBinding *> inTreeOrder(const RySkinBinding &skin,
                                         std::vector<RyNearestBoneWeights::Segment> &segments)
{
    std::vector<RyBoneBinding *> ordered;
    std::unordered_map<const RyNode *, int> places;
    std::unordered_map<const RyNode *, RyBoneBinding *> left;
    for (RyBoneBinding *binding : skin.bindings()) {
        if (binding->getBone())
            left.emplace(binding->getBone(), binding);
    }
    const auto append = [&](RyBoneBinding *binding, int parent) {
        const RyBone *bone = binding->getBone();
        places.emplace(bone, int(ordered.size()));
        ordered.push_back(binding);
        segments.push_back({bone->getOrigin(), bone->getEndPoint(), parent});
    };
    for (RyBoneBinding *binding : skin.bindings()) {
        std::vector<RyBoneBinding *> chain; // this bone and those above it that are not placed yet
        int parent = -1;
        for (const RyNode *node = binding->getBone(); node; node = node->getNodeParent()) {
            if (const auto placed = places.find(node); placed != places.end()) {
                parent = placed->second;
                break;
            }
            if (const auto found = left.find(node); found != left.end())
                chain.push_back(found->second);
        }
        for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
            append(*it, parent);
            parent = int(ordered.size()) - 1;
        }
    }
    return ordered;
}

std::vector<RyWeightMap *> mapsOf(RyBoneBinding *binding, bool local)
{
    if (binding->getAllWeightMaps().empty()) {
        if (local) {
            for (int axis = 0; axis < 3; ++axis)
                binding->setLocalWeights(new RyWeightMap, axis);
            binding->setScaleWeights(new RyWeightMap);
        } else {
            binding->setWeights(new RyWeightMap);
        }
    }
    return binding->getAllWeightMaps();
}

} // namespace

bool bindToNearestBones(RySkinBinding &skin)
{
    const RyObject *object = skin.getObject();
    const auto *shape = object ? qobject_cast<const RyFacetShape *>(object->getCurrentShape()) : nullptr;
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    std::vector<RyNearestBoneWeights::Segment> segments;
    const std::vector<RyBoneBinding *> bindings = inTreeOrder(skin, segments);
    if (!mesh || mesh->getNumVertices() == 0 || bindings.empty())
        return false;
    const auto weights = RyNearestBoneWeights(*mesh, segments).weights();
    std::vector<std::vector<int>> indices(bindings.size());
    std::vector<std::vector<quint16>> values(bindings.size());
    for (size_t v = 0; v < weights.size(); ++v) {
        for (const auto &[segment, weight] : weights[v]) {
            indices[size_t(segment)].push_back(int(v));
            values[size_t(segment)].push_back(weight);
        }
    }
    const bool local = skin.hasLocalMaps();
    for (size_t i = 0; i < bindings.size(); ++i) {
        bindings[i]->getBone()->setWeightGiver(nullptr);
        for (RyWeightMap *map : mapsOf(bindings[i], local))
            map->setAffected(mesh->getNumVertices(), indices[i], values[i]);
    }
    return true;
}
