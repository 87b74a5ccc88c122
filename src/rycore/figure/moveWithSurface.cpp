#include "rycore/figure/moveWithSurface.h"

#include "rycore/mesh/RyCageCoordinates.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <thread>
#include <tuple>

namespace {

struct Move
{
    size_t vertex;
    double by[3];
};

bool isBefore(const RyVec3 &a, const RyVec3 &b)
{
    return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
}

std::vector<Move> movesOf(const std::vector<RyVec3> &base, const std::vector<RyVec3> &positions)
{
    std::vector<Move> moves;
    for (size_t v = 0; v < base.size(); ++v) {
        if (base[v] == positions[v])
            continue;
        Move move{v, {}};
        for (int axis = 0; axis < 3; ++axis)
            move.by[axis] = double(positions[v][axis]) - double(base[v][axis]);
        moves.push_back(move);
    }
    return moves;
}

RyVec3 moved(const RyVec3 &point, const std::vector<Move> &moves, const std::vector<double> &weights)
{
    double sum[3] = {double(point.x), double(point.y), double(point.z)};
    for (const Move &move : moves) {
        for (int axis = 0; axis < 3; ++axis)
            sum[axis] += weights[move.vertex] * move.by[axis];
    }
    return {float(sum[0]), float(sum[1]), float(sum[2])};
}

/// Rooms to work in, made when all others are taken: they are as large as the mesh.
class Rooms
{
public:
    using Room = RyCageCoordinates::Room;

    std::unique_ptr<Room> take()
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (m_free.empty())
            return std::make_unique<Room>();
        std::unique_ptr<Room> room = std::move(m_free.back());
        m_free.pop_back();
        return room;
    }
    void giveBack(std::unique_ptr<Room> room)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_free.push_back(std::move(room));
    }

private:
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Room>> m_free;
};

} // namespace

std::optional<std::vector<RyVec3>> moveWithSurface(const std::vector<RyVec3> &points, const std::vector<RyVec3> &base,
                                                   const std::vector<RyVec3> &positions,
                                                   const std::vector<RyFacet> &facets,
                                                   const std::function<bool(double)> &progress)
{
    std::vector<RyVec3> distinct = points;
    std::sort(distinct.begin(), distinct.end(), isBefore);
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    std::vector<RyVec3> places = distinct;
    const std::vector<Move> moves = movesOf(base, positions);
    const RyCageCoordinates coordinates(base, facets);
    Rooms rooms;
    const size_t block = 4 * std::max(2u, std::thread::hardware_concurrency());
    for (size_t begin = 0; begin < distinct.size(); begin += block) {
        if (progress && !progress(double(begin) / double(distinct.size())))
            return std::nullopt;
        RyParallel::forRanges(std::min(block, distinct.size() - begin), 1, [&](size_t first, size_t last) {
            std::unique_ptr<Rooms::Room> room = rooms.take();
            for (size_t i = begin + first; i < begin + last; ++i) {
                coordinates.compute(distinct[i], *room);
                places[i] = moved(distinct[i], moves, room->weights());
            }
            rooms.giveBack(std::move(room));
        });
    }
    std::vector<RyVec3> result;
    result.reserve(points.size());
    for (const RyVec3 &point : points) {
        const auto found = std::lower_bound(distinct.begin(), distinct.end(), point, isBefore);
        result.push_back(places[size_t(found - distinct.begin())]);
    }
    return result;
}
