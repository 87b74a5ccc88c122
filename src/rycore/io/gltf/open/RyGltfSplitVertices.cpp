#include "rycore/io/gltf/open/RyGltfSplitVertices.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include <algorithm>
#include <cmath>
#include <limits>

RyGltfSplitVertices::RyGltfSplitVertices(const RyGltfDocument &document, int meshIndex, int primitiveIndex,
                                         std::vector<int> bonesOfJoints)
    : m_bonesOfJoints(std::move(bonesOfJoints))
{
    const RyGltfModel &model = document.model();
    const RyGltfPrimitive &primitive = model.meshes[size_t(meshIndex)].primitives[size_t(primitiveIndex)];
    m_count = size_t(model.accessors[size_t(primitive.positions)].count);
    m_positionFloats = RyGltfFloats(document, primitive.positions);
    m_positions = m_positionFloats.data();
    if (primitive.normals >= 0)
        m_normalFloats = RyGltfFloats(document, primitive.normals);
    m_normals = m_normalFloats.data();
    for (const int morph : primitive.morphPositions) {
        if (morph < 0)
            continue;
        std::vector<float> deltas = document.readFloats(morph);
        // One that moves nothing is only there because other primitives of the mesh have it.
        if (std::all_of(deltas.begin(), deltas.end(), [](float number) { return number == 0.0f; }))
            continue;
        deltas.resize(m_count * 3, 0.0f);
        m_morphs.push_back(std::move(deltas));
    }
    if (!m_bonesOfJoints.empty())
        m_sets.resize(std::min(primitive.joints.size(), primitive.weights.size()));
    for (size_t s = 0; s < m_sets.size(); ++s) {
        readJoints(document, primitive.joints[s], m_sets[s]);
        m_sets[s].weightFloats = RyGltfFloats(document, primitive.weights[s]);
        m_sets[s].weights = m_sets[s].weightFloats.data();
    }
    const std::vector<int> apart = RyTreeExtras::findApart(document, meshIndex, primitiveIndex);
    for (size_t i = 0; i + 1 < apart.size(); i += 2)
        m_apart[apart[i]] = apart[i + 1];
    for (const int split : RyTreeExtras::findFree(document, meshIndex, primitiveIndex))
        m_free.insert(split);
}

void RyGltfSplitVertices::readJoints(const RyGltfDocument &document, int accessor, InfluenceSet &set) const
{
    const RyGltfAccessor &a = document.model().accessors[size_t(accessor)];
    const std::span<const unsigned char> bytes = document.packedBytes(accessor);
    if (!bytes.empty() && (a.componentType == 5121 || a.componentType == 5123)) {
        set.joints = bytes.data();
        set.jointSize = a.componentType == 5121 ? 1 : 2;
        return;
    }
    constexpr std::uint32_t largest = std::numeric_limits<std::uint16_t>::max();
    for (const std::uint32_t joint : document.readUints(accessor))
        set.jointCopy.push_back(std::uint16_t(std::min(joint, largest)));
    set.jointCopy.resize(m_count * 4, 0);
    set.joints = reinterpret_cast<const unsigned char *>(set.jointCopy.data());
    set.jointSize = 2;
}

/// The file has such a vertex held by one joint alone; otherwise somebody gave it weights since.
bool RyGltfSplitVertices::isFree(size_t split) const
{
    if (m_free.empty() || m_sets.empty() || !m_free.count(int(split)))
        return false;
    double sum = 0.0;
    for (const InfluenceSet &set : m_sets)
        sum += double(set.weights[4 * split] + set.weights[4 * split + 1] + set.weights[4 * split + 2] +
                      set.weights[4 * split + 3]);
    return double(m_sets.front().weights[4 * split]) == sum;
}

const float *RyGltfSplitVertices::plainInfluencesOf(size_t split, std::uint16_t *bones) const
{
    if (m_sets.size() != 1 || !m_free.empty())
        return nullptr;
    const InfluenceSet &set = m_sets.front();
    const float *weights = set.weights + 4 * split;
    // Without branches: which vertices are plain is hard to tell beforehand.
    bool isPlain = true;
    bool isMoved[4];
    size_t joints[4];
    for (size_t k = 0; k < 4; ++k) {
        joints[k] = size_t(set.joint(4 * split + k));
        isPlain &= weights[k] >= 0.0f;
        isPlain &= weights[k] <= std::numeric_limits<float>::max();
        isPlain &= joints[k] < m_bonesOfJoints.size();
        isMoved[k] = weights[k] > 0.0f;
    }
    if (!isPlain)
        return nullptr;
    for (size_t k = 0; k < 4; ++k)
        bones[k] = std::uint16_t(m_bonesOfJoints[joints[k]]);
    bool isTwice = false;
    for (size_t k = 0; k < 4; ++k) {
        for (size_t other = 0; other < k; ++other)
            isTwice |= (bones[k] == bones[other]) & isMoved[k] & isMoved[other];
    }
    return !isTwice && (isMoved[0] | isMoved[1] | isMoved[2] | isMoved[3]) ? weights : nullptr;
}

RyGltfSplitVertices::Influences RyGltfSplitVertices::influencesOf(size_t split, std::uint16_t *bones,
                                                                  double *weights) const
{
    Influences result;
    if (isFree(split))
        return result;
    const int boneLimit = int(m_bonesOfJoints.size());
    for (const InfluenceSet &set : m_sets) {
        for (size_t k = 4 * split; k < 4 * split + 4; ++k) {
            const double weight = double(set.weights[k]);
            if (weight == 0.0)
                continue;
            const int joint = set.joint(k);
            if (!std::isfinite(weight) || weight < 0.0 || joint >= boneLimit) {
                ++result.dropped;
                continue;
            }
            const auto bone = std::uint16_t(m_bonesOfJoints[size_t(joint)]);
            const int place = int(std::find(bones, bones + result.count, bone) - bones);
            if (place == result.count) { // a file may say a bone twice
                bones[result.count] = bone;
                weights[result.count++] = 0.0;
            }
            weights[place] += weight;
            result.sum += weight;
        }
    }
    return result;
}
