#include "rycore/skin/RySkinBulges.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyShapePoints.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyParallel.h"
#include "rycore/skin/RySkinDeformer.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace {

double dot(const double a[3], const double b[3])
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// Of an axis, left and right; null for none.
const RyWeightMap *mapOf(const RyBoneBinding &binding, int number)
{
    const RyBulgeBinding *bulge = binding.getBulgeBinding(number / 2);
    if (!bulge)
        return nullptr;
    return number % 2 == 0 ? bulge->getLeftWeights() : bulge->getRightWeights();
}

} // namespace

void RySkinBulges::setBindings(const std::vector<RyBoneBinding *> &bindings)
{
    *this = RySkinBulges();
    for (const RyBoneBinding *binding : bindings) {
        if (binding->getBulgeBinding(0) || binding->getBulgeBinding(1) || binding->getBulgeBinding(2))
            m_bones.push_back({binding, {}, false});
    }
}

std::vector<quint64> RySkinBulges::mapsKey() const
{
    std::vector<quint64> key;
    for (const Bone &bone : m_bones) {
        for (int axis = 0; axis < 3; ++axis) {
            const RyBulgeBinding *bulge = bone.binding->getBulgeBinding(axis);
            key.push_back(bulge ? bulge->revision() : 0);
        }
        for (int number = 0; number < MapCount; ++number) {
            const RyWeightMap *map = mapOf(*bone.binding, number);
            key.push_back(map ? map->revision() : 0);
        }
    }
    return key;
}

/// Weights above the number of vertices are left out.
void RySkinBulges::updateShares(int vertexCount)
{
    std::vector<quint64> key = mapsKey();
    key.push_back(quint64(vertexCount));
    if (key == m_mapsKey)
        return;
    m_mapsKey = std::move(key);
    m_source = nullptr;
    const auto walk = [&](auto visit) {
        for (size_t bone = 0; bone < m_bones.size(); ++bone) {
            for (int number = 0; number < MapCount; ++number) {
                const RyWeightMap *map = mapOf(*m_bones[bone].binding, number);
                for (int i = 0; map && i < map->getNumAffected(); ++i) {
                    const int vertex = map->getAffectedIndices()[i];
                    if (vertex < vertexCount)
                        visit(size_t(vertex), Share{int(bone), number, map->getFloatWeight(vertex)});
                }
            }
        }
    };
    std::vector<int> next(size_t(vertexCount), 0); // how many shares each vertex has, then where its next one goes
    walk([&next](size_t vertex, const Share &) { ++next[vertex]; });
    m_vertices.clear();
    m_firstShares.assign(1, 0);
    for (int vertex = 0; vertex < vertexCount; ++vertex) {
        const int count = std::exchange(next[size_t(vertex)], m_firstShares.back());
        if (count == 0)
            continue;
        m_vertices.push_back(vertex);
        m_firstShares.push_back(m_firstShares.back() + count);
    }
    m_shares.resize(size_t(m_firstShares.back()));
    walk([&](size_t vertex, const Share &share) { m_shares[size_t(next[vertex]++)] = share; });
}

RySkinBulges::Push RySkinBulges::pushOf(const RyBoneBinding &binding)
{
    const RyBone *bone = binding.getBone();
    if (!bone || bone->isPlayed())
        return {};
    Push push;
    const RyVec3 origin = bone->getOrigin();
    const RyVec3 end = bone->getEndPoint();
    for (int k = 0; k < 3; ++k) {
        push.origin[k] = double(origin[k]);
        push.line[k] = double(end[k]) - double(origin[k]);
    }
    const double length = std::sqrt(dot(push.line, push.line));
    bool isAny = false;
    for (int axis = 0; axis < 3; ++axis) {
        const RyBulgeBinding *bulge = binding.getBulgeBinding(axis);
        if (!bulge)
            continue;
        float posLeft, negLeft, posRight, negRight;
        bulge->getBulgeValues(posLeft, negLeft, posRight, negRight);
        const double degrees = double(bone->rotationControl(axis)->getValue());
        const double size = length * std::fabs(degrees) / 90.0;
        push.lengths[2 * axis] = size * double(degrees > 0.0 ? posLeft : negLeft);
        push.lengths[2 * axis + 1] = size * double(degrees > 0.0 ? posRight : negRight);
        isAny = isAny || push.lengths[2 * axis] != 0.0 || push.lengths[2 * axis + 1] != 0.0;
    }
    if (!isAny) // where the line lies matters to nothing
        return {};
    for (double &component : push.line)
        component /= length;
    return push;
}

/// False where nothing pushes.
bool RySkinBulges::takePushes()
{
    bool isAny = false;
    for (Bone &bone : m_bones) {
        const Push push = pushOf(*bone.binding);
        bone.isChanged = !(push == bone.push);
        bone.push = push;
        isAny = isAny || !(push == Push());
    }
    return isAny;
}

void RySkinBulges::push(RyShapePoints &points, const RyShape *shape)
{
    m_lastTouched = 0;
    updateShares(int(points.positions->size()));
    if (!takePushes() || m_shares.empty()) {
        m_source = nullptr;
        return;
    }
    const size_t places = points.normals ? points.normals->size() : points.positions->size();
    const quint64 revision = points.changes ? points.changes->revision() : 0;
    if (!m_source || points.changes != m_source || places != m_placesSeen) {
        pushAll(*points.positions);
        m_changes.markAll(int(places));
    } else {
        pushSome(*points.positions,
                 revision == m_revision ? std::vector<RyPointChanges::Range>() : points.changes->since(m_revision));
    }
    m_source = points.changes;
    m_revision = revision;
    m_placesSeen = places;
    points.positions = &m_positions;
    updateNormals(points, shape);
    points.changes = &m_changes;
}

void RySkinBulges::pushAll(const std::vector<RyVec3> &rest)
{
    m_positions = rest;
    std::vector<int> numbers(m_vertices.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    pushVertices(rest, numbers);
    m_moved.markAll(int(rest.size()));
}

/// What differs in the rest, and what is pushed by bones that changed.
void RySkinBulges::pushSome(const std::vector<RyVec3> &rest, const std::vector<RyPointChanges::Range> &places)
{
    const auto isPushedOtherwise = [this](size_t number) {
        return std::any_of(m_shares.begin() + m_firstShares[number], m_shares.begin() + m_firstShares[number + 1],
                           [this](const Share &share) { return m_bones[size_t(share.bone)].isChanged; });
    };
    const bool isAnyChanged = std::any_of(m_bones.begin(), m_bones.end(), [](auto &bone) { return bone.isChanged; });
    if (places.empty() && !isAnyChanged)
        return;
    std::vector<int> numbers;
    auto place = places.begin();
    for (size_t number = 0; number < m_vertices.size(); ++number) {
        const int vertex = m_vertices[number];
        while (place != places.end() && place->first + place->count <= vertex)
            ++place;
        const bool restDiffers = place != places.end() && place->first <= vertex;
        if (restDiffers || (isAnyChanged && isPushedOtherwise(number)))
            numbers.push_back(int(number));
    }
    m_moved.begin();
    for (const RyPointChanges::Range &range : places) {
        const int end = std::min(range.first + range.count, int(rest.size()));
        for (int vertex = range.first; vertex < end; ++vertex)
            m_positions[size_t(vertex)] = rest[size_t(vertex)];
        m_moved.mark(range.first, end - range.first);
    }
    for (const int number : numbers)
        m_moved.mark(m_vertices[size_t(number)], 1);
    pushVertices(rest, numbers);
}

void RySkinBulges::pushVertices(const std::vector<RyVec3> &rest, const std::vector<int> &numbers)
{
    m_lastTouched = qint64(numbers.size());
    const auto pushRange = [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i) {
            const auto vertex = size_t(m_vertices[size_t(numbers[i])]);
            m_positions[vertex] = pushed(rest[vertex], size_t(numbers[i]));
        }
    };
    constexpr size_t Grain = 4096;
    if (m_lastTouched > RySkinDeformer::ThreadedAbove)
        RyParallel::forRanges(numbers.size(), Grain, pushRange);
    else
        pushRange(0, numbers.size());
}

RyVec3 RySkinBulges::pushed(const RyVec3 &rest, size_t number) const
{
    double sum[3] = {double(rest.x), double(rest.y), double(rest.z)};
    const int end = m_firstShares[number + 1];
    for (int i = m_firstShares[number]; i < end;) {
        const int bone = m_shares[size_t(i)].bone;
        const Push &push = m_bones[size_t(bone)].push;
        double by = 0.0;
        for (; i < end && m_shares[size_t(i)].bone == bone; ++i)
            by += double(m_shares[size_t(i)].weight) * push.lengths[m_shares[size_t(i)].map];
        if (by == 0.0)
            continue;
        double away[3];
        for (int k = 0; k < 3; ++k)
            away[k] = double(rest[k]) - push.origin[k];
        // What single precision leaves of a place on the line is no direction.
        constexpr double OnLine = 1e-6;
        const double least = OnLine * (std::sqrt(dot(away, away)) + std::sqrt(dot(push.origin, push.origin)));
        const double along = dot(away, push.line);
        for (int k = 0; k < 3; ++k)
            away[k] -= along * push.line[k];
        const double distance = std::sqrt(dot(away, away));
        for (int k = 0; k < 3 && distance > least; ++k)
            sum[k] += by * away[k] / distance;
    }
    return {RyFastMath::toFloat(sum[0]), RyFastMath::toFloat(sum[1]), RyFastMath::toFloat(sum[2])};
}

/// Made from the facets as those of the rest are. Without facets they stay what they are.
void RySkinBulges::updateNormals(RyShapePoints &points, const RyShape *shape)
{
    const auto *facets = points.places ? qobject_cast<const RyFacetShape *>(shape) : nullptr;
    if (points.normals && facets && facets->getFacetMesh()) {
        m_normals.update(*facets->getFacetMesh(), facets->getParts(), m_positions, m_moved);
        points.normals = &m_normals.normals();
    }
    if (m_moved.revision() == m_movedSeen && m_normals.revision() == m_normalsSeen)
        return;
    m_changes.begin();
    for (const RyPointChanges::Range &range : m_moved.since(m_movedSeen))
        m_changes.mark(range.first, range.count);
    if (points.normals == &m_normals.normals()) {
        for (const RyPointChanges::Range &range : m_normals.changes().since(m_normalsSeen))
            m_changes.mark(range.first, range.count);
    }
    m_movedSeen = m_moved.revision();
    m_normalsSeen = m_normals.revision();
}
