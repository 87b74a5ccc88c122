#include "rycore/scene/RyMorphedPositions.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyMorph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

using Sum = std::array<double, 3>;

/// The first place from `from` on whose number is not below `wanted`: in steps that double, since it is mostly near.
size_t advance(const std::vector<int> &numbers, size_t from, int wanted)
{
    size_t step = 1;
    size_t end = from;
    while (end < numbers.size() && numbers[end] < wanted) {
        from = end + 1;
        end += step;
        step *= 2;
    }
    const auto first = numbers.begin() + std::ptrdiff_t(from);
    const auto last = numbers.begin() + std::ptrdiff_t(std::min(end, numbers.size()));
    return size_t(std::lower_bound(first, last, wanted) - numbers.begin());
}

/// Adds a morph's share to the sums of some vertices, ascending.
void addShare(const RyMorph &morph, double value, const std::vector<int> &vertices, std::vector<Sum> &sums)
{
    const std::vector<int> &moved = morph.vertices();
    size_t i = 0;
    size_t k = 0;
    while (i < vertices.size() && k < moved.size()) {
        if (vertices[i] < moved[k]) {
            i = advance(vertices, i, moved[k]);
        } else if (moved[k] < vertices[i]) {
            k = advance(moved, k, vertices[i]);
        } else {
            const RyVec3 &delta = morph.deltas()[k];
            sums[i][0] += value * double(delta.x);
            sums[i][1] += value * double(delta.y);
            sums[i][2] += value * double(delta.z);
            ++i;
            ++k;
        }
    }
}

/// Vertices that any of these morphs moves, ascending.
std::vector<int> movedBy(const std::vector<RyMorph *> &morphs, const std::vector<int> &which, size_t vertexCount)
{
    if (which.size() == 1)
        return morphs[size_t(which.front())]->vertices();
    std::vector<char> isMoved(vertexCount, 0);
    for (const int morph : which) {
        for (const int vertex : morphs[size_t(morph)]->vertices())
            isMoved[size_t(vertex)] = 1;
    }
    std::vector<int> vertices;
    for (size_t vertex = 0; vertex < vertexCount; ++vertex) {
        if (isMoved[vertex])
            vertices.push_back(int(vertex));
    }
    return vertices;
}

} // namespace

bool RyMorphedPositions::isOther(const RyVertexMesh &mesh) const
{
    return !m_isKnown || m_mesh != &mesh || m_meshRevision != mesh.revision();
}

const std::vector<RyVec3> &RyMorphedPositions::update(const RyVertexMesh &mesh, const std::vector<RyMorph *> &morphs)
{
    const std::vector<RyVec3> &base = mesh.getPositions();
    if (isOther(mesh)) {
        m_isKnown = true;
        m_mesh = &mesh;
        m_meshRevision = mesh.revision();
        m_values.assign(morphs.size(), 0.0f);
        takeValues(morphs);
        computeAll(base, morphs);
    } else {
        const std::vector<int> changed = takeValues(morphs);
        if (!changed.empty()) {
            if (m_positions.empty())
                m_positions = base;
            const std::vector<int> vertices = movedBy(morphs, changed, base.size());
            compute(base, morphs, vertices);
            m_changes.begin();
            for (const int vertex : vertices)
                m_changes.mark(vertex, 1);
        }
    }
    return m_areMorphed ? m_positions : base;
}

/// Morphs whose values differ from those that the positions were made with. A morph that
/// does not fit the mesh counts as 0.
std::vector<int> RyMorphedPositions::takeValues(const std::vector<RyMorph *> &morphs)
{
    std::vector<int> changed;
    const int count = m_mesh->getNumVertices();
    m_areMorphed = false;
    for (size_t i = 0; i < morphs.size(); ++i) {
        const std::vector<int> &vertices = morphs[i]->vertices();
        const bool fits = vertices.empty() || (vertices.front() >= 0 && vertices.back() < count);
        const float shown = morphs[i]->shownValue();
        const float value = fits && std::isfinite(shown) ? shown : 0.0f;
        m_areMorphed = m_areMorphed || value != 0.0f;
        if (value == m_values[i])
            continue;
        m_values[i] = value;
        changed.push_back(int(i));
    }
    return changed;
}

void RyMorphedPositions::computeAll(const std::vector<RyVec3> &base, const std::vector<RyMorph *> &morphs)
{
    m_positions.clear();
    if (m_areMorphed) {
        m_positions = base;
        std::vector<int> vertices(base.size());
        std::iota(vertices.begin(), vertices.end(), 0);
        compute(base, morphs, vertices);
    }
    m_changes.markAll(int(base.size()));
}

void RyMorphedPositions::compute(const std::vector<RyVec3> &base, const std::vector<RyMorph *> &morphs,
                                 const std::vector<int> &vertices)
{
    std::vector<Sum> sums;
    sums.reserve(vertices.size());
    for (const int vertex : vertices) {
        const RyVec3 &at = base[size_t(vertex)];
        sums.push_back({double(at.x), double(at.y), double(at.z)});
    }
    for (size_t i = 0; i < morphs.size(); ++i) {
        if (m_values[i] != 0.0f)
            addShare(*morphs[i], double(m_values[i]), vertices, sums);
    }
    for (size_t i = 0; i < vertices.size(); ++i) {
        m_positions[size_t(vertices[i])] = {RyFastMath::toFloat(sums[i][0]), RyFastMath::toFloat(sums[i][1]),
                                            RyFastMath::toFloat(sums[i][2])};
    }
    m_lastTouched = qint64(vertices.size());
    m_totalTouched += m_lastTouched;
}
