#include "ryforeign/RyForeignInfluences.h"

#include <assimp/mesh.h>

#include <algorithm>
#include <cmath>

RyForeignInfluences::RyForeignInfluences(const aiMesh &mesh, const std::vector<int> &placeOf)
    : m_first(mesh.mNumVertices + 1, 0), m_count(mesh.mNumVertices, 0)
{
    const auto forAll = [&](const auto &work) {
        for (unsigned b = 0; b < mesh.mNumBones; ++b) {
            const aiBone &bone = *mesh.mBones[b];
            for (unsigned w = 0; placeOf[b] >= 0 && w < bone.mNumWeights; ++w) {
                const aiVertexWeight &weight = bone.mWeights[w];
                if (weight.mVertexId < mesh.mNumVertices && std::isfinite(weight.mWeight) && weight.mWeight > 0.0f)
                    work(weight.mVertexId, Influence{std::uint32_t(placeOf[b]), float(weight.mWeight)});
            }
        }
    };
    forAll([this](unsigned vertex, const Influence &) { ++m_first[vertex + 1]; });
    for (size_t vertex = 1; vertex < m_first.size(); ++vertex)
        m_first[vertex] += m_first[vertex - 1];
    m_all.resize(m_first.back());
    forAll([this](unsigned vertex, const Influence &influence) {
        m_all[m_first[vertex] + m_count[vertex]++] = influence;
    });
}

/// Few stand side by side, and mostly in order.
template<typename Less>
static void sortFew(RyForeignInfluences::Influence *first, RyForeignInfluences::Influence *end, const Less &less)
{
    for (auto *at = first; at < end; ++at) {
        const RyForeignInfluences::Influence moved = *at;
        auto *to = at;
        for (; to > first && less(moved, to[-1]); --to)
            *to = to[-1];
        *to = moved;
    }
}

void RyForeignInfluences::normalize(const std::vector<std::uint32_t> &vertices)
{
    for (const std::uint32_t vertex : vertices) {
        Influence *first = m_all.data() + m_first[vertex];
        if (m_count[vertex] == 0)
            continue;
        Influence *end = first + m_count[vertex];
        sortFew(first, end, [](const Influence &a, const Influence &b) { return a.joint < b.joint; });
        Influence *last = first;
        for (Influence *at = first + 1; at < end; ++at) { // what is said twice counts together
            if (at->joint == last->joint)
                last->weight += at->weight;
            else
                *++last = *at;
        }
        end = last + 1;
        m_count[vertex] = unsigned(end - first);
        m_most = std::max(m_most, m_count[vertex]);
        sortFew(first, end, [](const Influence &a, const Influence &b) {
            return a.weight != b.weight ? a.weight > b.weight : a.joint < b.joint;
        });
        double sum = 0.0;
        for (const Influence *at = first; at < end; ++at)
            sum += double(at->weight);
        double others = 0.0;
        for (Influence *at = first + 1; at < end; ++at) {
            at->weight = float(double(at->weight) / sum);
            others += double(at->weight);
        }
        first->weight = float(1.0 - others);
    }
}
