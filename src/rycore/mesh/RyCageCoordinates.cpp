#include "rycore/mesh/RyCageCoordinates.h"

#include "rycore/math/RyBox3.h"
#include "rycore/mesh/RyWideFacet.h"

#include <algorithm>
#include <cmath>

namespace {

// The part of all that is seen which may be missing, and the part of the sum that must be left of its terms: between
// the two of each the coordinates go over into nearness.
constexpr double MissingTrusted = 0.05, MissingUseless = 0.25;
constexpr double LeftTrusted = 0.3, LeftUseless = 0.1;

/// 0 at `from` and before it, 1 at `to` and behind it, without a corner.
double goOver(double value, double from, double to)
{
    const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

} // namespace

RyCageCoordinates::RyCageCoordinates(const std::vector<RyVec3> &positions, const std::vector<RyFacet> &facets)
{
    RyBox3 box;
    for (const RyVec3 &position : positions)
        box.include(position);
    if (!box.isEmpty()) {
        m_middle = box.getCenter();
        const RyVec3 size = box.getExtents();
        m_size = std::max({double(size.x), double(size.y), double(size.z)});
        m_size = m_size > 0.0 ? m_size : 1.0;
    }
    for (int axis = 0; axis < 3; ++axis) {
        m_places[axis].reserve(positions.size());
        for (const RyVec3 &position : positions)
            m_places[axis].push_back((double(position[axis]) - double(m_middle[axis])) / m_size);
    }
    m_areas.resize(positions.size());
    for (const RyFacet &facet : facets) {
        std::vector<int> &list = facet.isTriangle() ? m_triangles : m_quads;
        list.insert(list.end(), facet.vertices, facet.vertices + facet.count());
        const RyVec3 &first = positions[size_t(facet.vertices[0])];
        const RyVec3 &second = positions[size_t(facet.vertices[1])];
        const RyVec3 &third = positions[size_t(facet.vertices[2])];
        // Half the product of the diagonals is the area of a quad.
        const RyVec3 across = facet.isTriangle() ? (second - first).cross(third - first)
                                                 : (third - first).cross(positions[size_t(facet.vertices[3])] - second);
        for (int k = 0; k < facet.count(); ++k)
            m_areas[size_t(facet.vertices[k])] += double(across.length()) / facet.count();
        m_hasArea = m_hasArea || across.length() > 0.0f;
    }
}

void RyCageCoordinates::compute(const RyVec3 &point, Room &room, bool withAvx2) const
{
    const size_t count = m_areas.size();
    room.m_weights.assign(count, 0.0);
    if (!m_hasArea)
        return;
    room.m_directions.resize(count);
    room.m_wideTriangles.resize(m_triangles.size() / 3);
    room.m_wideQuads.resize(m_quads.size() / 4);
    RyCageKernels::Task task = {};
    for (int axis = 0; axis < 3; ++axis) {
        task.places[axis] = m_places[axis].data();
        task.point[axis] = (double(point[axis]) - double(m_middle[axis])) / m_size;
    }
    task.vertexCount = int(count);
    task.triangles = {m_triangles.data(), int(m_triangles.size() / 3)};
    task.quads = {m_quads.data(), int(m_quads.size() / 4)};
    task.directions = room.m_directions.data();
    task.weights = room.m_weights.data();
    task.wideTriangles = room.m_wideTriangles.data();
    task.wideQuads = room.m_wideQuads.data();
    if (withAvx2)
        RyCageKernels::addAvx2(task);
    else
        RyCageKernels::addPlain(task);
    if (!addWide(task, room))
        divide(task, room);
}

/// True when the point lies on a facet: then the weights are done. Where it lies on several all of them count alike.
bool RyCageCoordinates::addWide(const RyCageKernels::Task &task, Room &room) const
{
    struct Touch
    {
        const int *corners;
        int count;
        RyWideFacet facet;
    };
    std::vector<Touch> touches;
    const auto add = [&](const int *corners, int count) {
        RyWideFacet::Way ways[4];
        for (int k = 0; k < count; ++k) {
            const auto vertex = size_t(corners[k]);
            ways[k] = {m_places[0][vertex] - task.point[0], m_places[1][vertex] - task.point[1],
                       m_places[2][vertex] - task.point[2]};
        }
        const RyWideFacet facet(ways, count);
        if (facet.isTouched())
            touches.push_back({corners, count, facet});
        for (int k = 0; k < count && touches.empty(); ++k)
            room.m_weights[size_t(corners[k])] += facet.shares()[k];
    };
    for (int i = 0; i < task.wideTriangleCount; ++i)
        add(task.triangles.corners + 3 * task.wideTriangles[i], 3);
    for (int i = 0; i < task.wideQuadCount; ++i)
        add(task.quads.corners + 4 * task.wideQuads[i], 4);
    if (touches.empty())
        return false;
    std::fill(room.m_weights.begin(), room.m_weights.end(), 0.0);
    for (const Touch &touch : touches) {
        for (int k = 0; k < touch.count; ++k)
            room.m_weights[size_t(touch.corners[k])] += touch.facet.shares()[k] / double(touches.size());
    }
    return true;
}

/// Makes the sum of the weights 1, and nearness of those that cannot be trusted.
void RyCageCoordinates::divide(const RyCageKernels::Task &task, Room &room) const
{
    const size_t count = room.m_weights.size();
    double sum = 0.0, terms = 0.0, seen = 0.0, nearSum = 0.0;
    double missing[3] = {};
    const auto nearOf = [&](size_t vertex) {
        const double nearness = task.directions[vertex].nearness;
        return m_areas[vertex] * (nearness * nearness) * (nearness * nearness);
    };
    for (size_t v = 0; v < count; ++v) {
        const RyCageKernels::Direction &direction = task.directions[v];
        const double weight = room.m_weights[v];
        if (weight == 0.0)
            continue;
        const double part = weight / direction.nearness;
        sum += weight;
        terms += std::abs(weight);
        seen += std::abs(part);
        missing[0] += part * direction.x;
        missing[1] += part * direction.y;
        missing[2] += part * direction.z;
    }
    const double notSeen = std::hypot(missing[0], missing[1], missing[2]);
    double trust = 0.0;
    if (seen > 0.0 && std::isfinite(seen)) {
        trust = (1.0 - goOver(notSeen / seen, MissingTrusted, MissingUseless)) *
                goOver(std::abs(sum) / terms, LeftUseless, LeftTrusted);
    }
    if (trust < 1.0) {
        for (size_t v = 0; v < count; ++v)
            nearSum += nearOf(v);
    }
    const double by = trust > 0.0 ? trust / sum : 0.0;
    const double nearBy = nearSum > 0.0 ? (1.0 - trust) / nearSum : 0.0;
    for (size_t v = 0; v < count; ++v)
        room.m_weights[v] = by * room.m_weights[v] + (nearBy > 0.0 ? nearBy * nearOf(v) : 0.0);
}
