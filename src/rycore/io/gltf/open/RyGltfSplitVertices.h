#pragma once

#include "rycore/io/gltf/document/RyGltfFloats.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class RyGltfDocument;

/// The vertices of a primitive as the file splits them (at texture seams, at hard edges): the file's own bytes where
/// they lie packed, otherwise copies.
class RyGltfSplitVertices
{
public:
    /// `bonesOfJoints`: bones by joint numbers, empty for a primitive that no skin moves.
    RyGltfSplitVertices(const RyGltfDocument &document, int mesh, int primitive, std::vector<int> bonesOfJoints);
    RyGltfSplitVertices(const RyGltfSplitVertices &) = delete;
    RyGltfSplitVertices &operator=(const RyGltfSplitVertices &) = delete;

    size_t count() const { return m_count; }
    const float *position(int split) const { return m_positions + 3 * size_t(split); }
    /// Without normals any two are the same.
    bool sameNormal(size_t a, size_t b) const
    {
        return !m_normals || std::memcmp(m_normals + 3 * a, m_normals + 3 * b, 12) == 0;
    }
    /// Of all that tells vertices apart: those that are the same have the same.
    std::uint64_t hash(int split) const
    {
        std::uint64_t value = mix(mix(0x9e3779b97f4a7c15ull, position(split), 8), position(split) + 2, 4);
        for (const InfluenceSet &set : m_sets) {
            value = mix(value, set.joints + size_t(split) * size_t(4 * set.jointSize), size_t(4 * set.jointSize));
            value = mix(value, set.weights + 4 * size_t(split), 8);
            value = mix(value, set.weights + 4 * size_t(split) + 2, 8);
        }
        for (const std::vector<float> &morph : m_morphs)
            value = mix(mix(value, &morph[3 * size_t(split)], 8), &morph[3 * size_t(split) + 2], 4);
        value ^= std::uint64_t(apartOf(split));
        return value ^ (value >> 32);
    }
    /// Of a split vertex' normal, in step with `sameNormal`.
    std::uint64_t normalHash(size_t split) const
    {
        return m_normals ? mix(mix(1, m_normals + 3 * split, 8), m_normals + 3 * split + 2, 4) : 0;
    }
    /// Whether two split vertices, the other one perhaps of another primitive, are the same vertex.
    bool same(int split, const RyGltfSplitVertices &other, int otherSplit) const
    {
        if (std::memcmp(position(split), other.position(otherSplit), 12) != 0 || m_sets.size() != other.m_sets.size() ||
            !other.m_morphs.empty() != !m_morphs.empty() || (&other != this && !m_morphs.empty()) ||
            apartOf(split) != other.apartOf(otherSplit)) {
            return false;
        }
        for (size_t s = 0; s < m_sets.size(); ++s) {
            if (!m_sets[s].same(split, other.m_sets[s], otherSplit))
                return false;
        }
        for (const std::vector<float> &morph : m_morphs) {
            if (std::memcmp(&morph[3 * size_t(split)], &morph[3 * size_t(otherSplit)], 12) != 0)
                return false;
        }
        return true;
    }

    /// Most influences that a vertex can have.
    int width() const { return int(4 * m_sets.size()); }
    struct Influences
    {
        int count = 0; // entries of `bones` and `weights`, each bone once
        double sum = 0.0;
        int dropped = 0; // those that are not finite, not above zero or name no joint
    };
    /// What moves a vertex, into places for `width()` entries.
    Influences influencesOf(size_t split, std::uint16_t *bones, double *weights) const;
    /// The four weights of a vertex that needs no such care: each is finite, not below zero and of a bone of its own
    /// where it is above; `bones` are then those of all four. Null for the others.
    const float *plainInfluencesOf(size_t split, std::uint16_t *bones) const;

private:
    struct InfluenceSet
    {
        const unsigned char *joints = nullptr;
        int jointSize = 0; // 1 or 2 bytes
        const float *weights = nullptr;
        std::vector<std::uint16_t> jointCopy;
        RyGltfFloats weightFloats;

        int joint(size_t place) const
        {
            std::uint16_t number = joints[place];
            if (jointSize == 2)
                std::memcpy(&number, joints + 2 * place, 2);
            return number;
        }
        bool same(int split, const InfluenceSet &other, int otherSplit) const
        {
            const size_t bytes = size_t(4 * jointSize);
            return jointSize == other.jointSize &&
                   std::memcmp(joints + size_t(split) * bytes, other.joints + size_t(otherSplit) * bytes, bytes) == 0 &&
                   std::memcmp(weights + 4 * size_t(split), other.weights + 4 * size_t(otherSplit), 16) == 0;
        }
    };

    /// At most eight bytes.
    static std::uint64_t mix(std::uint64_t value, const void *bytes, size_t size)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, size);
        return (std::rotl(value, 29) ^ word) * 0xff51afd7ed558ccdull;
    }
    void readJoints(const RyGltfDocument &document, int accessor, InfluenceSet &set) const;
    bool isFree(size_t split) const;
    int apartOf(int split) const
    {
        const auto found = m_apart.empty() ? m_apart.end() : m_apart.find(split);
        return found == m_apart.end() ? 0 : found->second;
    }

    size_t m_count = 0;
    const float *m_positions = nullptr;
    RyGltfFloats m_positionFloats;
    const float *m_normals = nullptr;
    RyGltfFloats m_normalFloats;
    std::vector<InfluenceSet> m_sets;
    std::vector<std::vector<float>> m_morphs;
    std::vector<int> m_bonesOfJoints;
    std::unordered_map<int, int> m_apart; // numbers of splits that are not the vertices they look like
    std::unordered_set<int> m_free;       // splits that nothing moves, whatever holds them in the file
};
