#include "rycore/io/gltf/save/RyGltfCarriedVertices.h"

#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/scene/RyBone.h"

#include <algorithm>

std::vector<RyGltfLinear> ryGltfCarriedLinear(const RyNode &figure, int vertexCount)
{
    const std::vector<RyBone *> bones = ryOwnBones(figure);
    if (std::none_of(bones.begin(), bones.end(), [](const RyBone *bone) { return bone->isCarried(); }))
        return {};
    const RyGltfLinear identity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    std::vector<RyGltfLinear> result(size_t(vertexCount), identity);
    for (const RyGltfBoneWeights &each : ryGltfBoneWeights(&figure)) {
        const auto *bone = qobject_cast<const RyBone *>(each.bone);
        if (!bone || !bone->isCarried())
            continue;
        const RyAffine &map = bone->getCarried().map;
        for (size_t i = 0; i < each.weights.vertices.size(); ++i) {
            const auto vertex = size_t(each.weights.vertices[i]);
            if (vertex >= result.size())
                break; // maps of scripts may be longer than the mesh
            const double weight = double(each.weights.weights[i]) / 65535.0;
            for (size_t row = 0; row < 3; ++row) {
                for (size_t column = 0; column < 3; ++column)
                    result[vertex][row][column] += weight * (map.m[row][column] - identity[row][column]);
            }
        }
    }
    return result;
}
