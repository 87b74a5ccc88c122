#include "ryforeign/RyForeignCorners.h"

#include "ryforeign/RyForeignInfluences.h"

#include <assimp/mesh.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

std::uint64_t mix(std::uint64_t value, std::uint32_t word)
{
    return (std::rotl(value, 23) ^ word) * 0xff51afd7ed558ccdull;
}

/// So many arrays are enough to tell most corners apart: positions and normals. Influences and morphs differ where
/// positions do, nearly always.
constexpr size_t hashed = 2;

template<typename T>
T wordAt(const char *bytes)
{
    T word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

} // namespace

RyForeignCorners::RyForeignCorners(const aiMesh &mesh, const RyForeignInfluences *influences)
    : vertexOf(mesh.mNumVertices), m_influences(influences)
{
    findArrays(mesh);
    firsts.reserve(vertexOf.size() / 2);
    // Half full at most: 0 for an empty slot, otherwise one more than the vertex.
    std::vector<std::uint32_t> table(std::bit_ceil(2 * size_t(mesh.mNumVertices) + 2), 0);
    for (size_t corner = 0; corner < vertexOf.size(); ++corner) {
        size_t slot = size_t(hashOf(corner)) & (table.size() - 1);
        while (table[slot] != 0 && !areSame(corner, firsts[table[slot] - 1]))
            slot = (slot + 1) & (table.size() - 1);
        if (table[slot] == 0) {
            firsts.push_back(std::uint32_t(corner));
            table[slot] = std::uint32_t(firsts.size());
        }
        vertexOf[corner] = table[slot] - 1;
    }
}

void RyForeignCorners::findArrays(const aiMesh &mesh)
{
    const auto add = [this](const auto *array, size_t components) {
        if (array)
            m_arrays.push_back({reinterpret_cast<const char *>(array), sizeof *array, components * sizeof(ai_real)});
    };
    add(mesh.mVertices, 3);
    add(mesh.mNormals, 3);
    for (unsigned set = 0; set < mesh.GetNumUVChannels(); ++set)
        add(mesh.mTextureCoords[set], 2);
    for (unsigned set = 0; set < mesh.GetNumColorChannels(); ++set)
        add(mesh.mColors[set], 4);
    for (unsigned morph = 0; morph < mesh.mNumAnimMeshes; ++morph) {
        const aiAnimMesh &shape = *mesh.mAnimMeshes[morph];
        if (shape.mNumVertices != mesh.mNumVertices)
            continue;
        add(shape.mVertices, 3);
        add(shape.mNormals, 3);
    }
}

std::uint64_t RyForeignCorners::hashOf(size_t corner) const
{
    std::uint64_t value = 0x9e3779b97f4a7c15ull;
    for (size_t i = 0; i < std::min(m_arrays.size(), hashed); ++i) {
        const char *bytes = m_arrays[i].bytes + corner * m_arrays[i].stride;
        for (size_t at = 0; at < m_arrays[i].size; at += 4)
            value = mix(value, wordAt<std::uint32_t>(bytes + at));
    }
    return value ^ (value >> 32);
}

bool RyForeignCorners::areSame(size_t a, size_t b) const
{
    for (const Array &array : m_arrays) {
        // Eight bytes of at least that many, and the last four: a call for twelve costs more than they do.
        const char *one = array.bytes + a * array.stride;
        const char *other = array.bytes + b * array.stride;
        std::uint64_t differences = wordAt<std::uint64_t>(one) ^ wordAt<std::uint64_t>(other);
        for (size_t at = 8; at < array.size; at += 4)
            differences |= wordAt<std::uint32_t>(one + at) ^ wordAt<std::uint32_t>(other + at);
        if (differences != 0)
            return false;
    }
    return !m_influences || (m_influences->count(unsigned(a)) == m_influences->count(unsigned(b)) &&
                             std::equal(m_influences->begin(unsigned(a)),
                                        m_influences->begin(unsigned(a)) + m_influences->count(unsigned(a)),
                                        m_influences->begin(unsigned(b))));
}
