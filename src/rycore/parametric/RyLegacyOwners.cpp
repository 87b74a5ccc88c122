#include "rycore/parametric/RyLegacyOwners.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <QHash>

#include <algorithm>
#include <map>

namespace {

bool isAbove(const std::vector<RyLegacyRig::Bone> &bones, int bone, int below)
{
    while (below > bone)
        below = bones[size_t(below)].parent;
    return below == bone;
}

} // namespace

int RyLegacyOwners::common(const std::vector<RyLegacyRig::Bone> &bones, const std::vector<int> &candidates, int first)
{
    std::vector<int> lowest;
    for (const int bone : candidates) {
        const bool hasLower = std::any_of(candidates.begin(), candidates.end(),
                                          [&](int other) { return other != bone && isAbove(bones, bone, other); });
        if (!hasLower)
            lowest.push_back(bone);
    }
    int owner = lowest.empty() ? -1 : lowest.front();
    for (const int bone : lowest) {
        while (owner >= 0 && owner != bone && !isAbove(bones, owner, bone))
            owner = bones[size_t(owner)].parent;
    }
    // No bone above all of them, or no candidate at all.
    return owner >= 0 || bones.empty() ? owner : first;
}

void RyLegacyOwners::fill(const RySkeleton &skeleton, const std::vector<RyNode *> &bones, int firstBone,
                          RyLegacyRig &rig)
{
    const RyObject *object = skeleton.getObject();
    const RyShape *shape = object ? object->getCurrentShape() : nullptr;
    const RyVertexMesh *vertices = shape ? shape->getGeometry() : nullptr;
    const auto *mesh = qobject_cast<const RyFacetMesh *>(vertices);
    const RySelectionMap *map = skeleton.getSelectionMap();
    rig.owners.assign(vertices ? size_t(vertices->getNumVertices()) : 0, bones.empty() ? -1 : firstBone);
    if (!mesh || !map || bones.empty())
        return;
    std::vector<int> boneOfGroup(size_t(mesh->getNumFaceGroups()), -1);
    for (int i = 0; i < map->getNumPairs(); ++i) {
        const int group = mesh->findFaceGroupIndex(map->getPairGroup(i));
        const auto bone = std::find(bones.begin(), bones.end(), map->getPairNode(i));
        if (group < 0 || bone == bones.end() || boneOfGroup[size_t(group)] >= 0)
            continue;
        boneOfGroup[size_t(group)] = int(bone - bones.begin());
        rig.bones[size_t(bone - bones.begin())].hasGroup = true;
    }
    // One bone for most vertices; the few others list theirs.
    std::vector<int> first(rig.owners.size(), -1);
    std::map<int, std::vector<int>> others;
    for (const RyFacet &facet : mesh->getFacets()) {
        const int bone = facet.group < 0 ? -1 : boneOfGroup[size_t(facet.group)];
        for (int corner = 0; bone >= 0 && corner < facet.count(); ++corner) {
            const int vertex = facet.vertices[corner];
            int &its = first[size_t(vertex)];
            if (its < 0) {
                its = bone;
            } else if (its != bone) {
                std::vector<int> &list = others[vertex];
                if (std::find(list.begin(), list.end(), bone) == list.end())
                    list.push_back(bone);
            }
        }
    }
    for (size_t v = 0; v < first.size(); ++v) {
        if (first[v] >= 0)
            rig.owners[v] = first[v];
    }
    for (auto &[vertex, list] : others) {
        list.push_back(first[size_t(vertex)]);
        rig.owners[size_t(vertex)] = common(rig.bones, list, firstBone);
    }
}
