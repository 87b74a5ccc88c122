#include "rycore/io/gltf/RyGltfInfluences.h"

#include <cmath>
#include <cstring>

namespace {

/// readFloats gives 0 for what is not finite; to tell that anything was dropped the bytes themselves are looked at.
std::size_t countNotFinite(const RyGltfDocument &document, int accessor)
{
    const RyGltfAccessor &a = document.model().accessors[std::size_t(accessor)];
    const std::span<const unsigned char> bytes = document.packedBytes(accessor);
    if (a.componentType != 5126)
        return 0;
    std::size_t result = 0;
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        float value;
        std::memcpy(&value, bytes.data() + at, 4);
        if (!std::isfinite(value))
            ++result;
    }
    return result;
}

} // namespace

RyGltfInfluences RyGltfInfluences::read(const RyGltfDocument &document, const RyGltfPrimitive &primitive,
                                        int jointCount)
{
    RyGltfInfluences result;
    if (primitive.positions < 0 || primitive.joints.empty())
        return result;
    const std::size_t vertexCount = std::size_t(document.model().accessors[std::size_t(primitive.positions)].count);
    const std::size_t setCount = primitive.joints.size();
    const std::size_t places = 4 * setCount;
    result.perVertex = int(places);
    result.joints.assign(vertexCount * places, 0);
    result.weights.assign(vertexCount * places, 0.0f);
    for (std::size_t set = 0; set < setCount; ++set) {
        const std::vector<std::uint32_t> joints = document.readUints(primitive.joints[set]);
        const std::vector<float> weights = document.readFloats(primitive.weights[set]);
        result.droppedWeights += countNotFinite(document, primitive.weights[set]);
        for (std::size_t vertex = 0; vertex < vertexCount; ++vertex) {
            std::uint32_t *vertexJoints = result.joints.data() + vertex * places;
            float *vertexWeights = result.weights.data() + vertex * places;
            for (std::size_t k = 0; k < 4; ++k) {
                const std::uint32_t joint = joints[4 * vertex + k];
                const float weight = weights[4 * vertex + k];
                if (weight == 0.0f)
                    continue;
                if (weight < 0.0f) {
                    ++result.droppedWeights;
                    continue;
                }
                if (joint >= std::uint32_t(jointCount)) {
                    ++result.droppedJoints;
                    continue;
                }
                const std::size_t place = 4 * set + k;
                std::size_t earlier = 0;
                while (earlier < place && (vertexJoints[earlier] != joint || vertexWeights[earlier] == 0.0f))
                    ++earlier;
                if (earlier < place) {
                    vertexWeights[earlier] += weight;
                    ++result.mergedJoints;
                    continue;
                }
                vertexJoints[place] = joint;
                vertexWeights[place] = weight;
            }
        }
    }
    for (std::size_t vertex = 0; vertex < vertexCount; ++vertex) {
        bool any = false;
        for (std::size_t place = 0; place < places; ++place)
            any = any || result.weights[vertex * places + place] > 0.0f;
        if (!any)
            ++result.unweightedVertices;
    }
    return result;
}

QStringList RyGltfInfluences::warnings(const QString &where) const
{
    QStringList result;
    const auto add = [&result, &where](std::size_t count, const char *text) {
        if (count > 0)
            result.append(QStringLiteral("%1: %2 %3").arg(where).arg(count).arg(QString::fromUtf8(text)));
    };
    add(droppedJoints, "influences of joints that do not exist were dropped");
    add(droppedWeights, "weights that are negative or not finite were dropped");
    add(mergedJoints, "influences of a joint that stands twice on a vertex were added up");
    add(unweightedVertices, "vertices have no influence");
    return result;
}
