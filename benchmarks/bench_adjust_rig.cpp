// The bones of a limb follow its surface: 300 bones in 500,000 quads, in one thread and in two, beside a plain loop in
// double precision over points and facets, which takes each point once and has its unit vectors made before, too, but
// works out one triangle after the other by the published form. The places of all points are compared before anything
// is timed. One thread: processor's time; two: the wall clock. A number as argument takes so many bones; --short times
// nothing and lets the plain loop place only some of the points, after a small limb of which it places all.
#include <tbb/global_control.h>

#include "RyRoundRobin.h"

#include "rycore/figure/moveWithSurface.h"
#include "rycore/mesh/RyFacet.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

using Vector = std::array<double, 3>;

constexpr float Exact = 1e-3f; // centimetres

Vector minus(const Vector &a, const Vector &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double length(const Vector &v)
{
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

/// A closed tube along X that is thick and thin by turns.
struct Limb
{
    std::vector<RyVec3> base, positions, points;
    std::vector<RyFacet> facets;

    Limb(int bones, int rings, int around)
    {
        const float reach = 200.0f;
        for (int ring = 0; ring < rings; ++ring) {
            const double along = double(ring) / (rings - 1);
            const double radius =
                (6.0 + 2.0 * std::sin(40.0 * along)) * std::sqrt(std::sin(M_PI * (0.01 + 0.98 * along)));
            for (int i = 0; i < around; ++i) {
                const double angle = 2.0 * M_PI * (i + 0.25) / around;
                base.push_back(
                    {reach * float(along), float(radius * std::cos(angle)), float(radius * std::sin(angle))});
            }
        }
        for (const float x : {0.0f, reach})
            base.push_back({x, 0, 0});
        const int first = rings * around;
        for (int i = 0; i < around; ++i) {
            const int next = (i + 1) % around;
            facets.push_back({{first, next, i, -1}});
            facets.push_back({{first + 1, first - around + i, first - around + next, -1}});
            for (int at = 0; at + around < first; at += around)
                facets.push_back({{at + i, at + next, at + around + next, at + around + i}});
        }
        positions = base;
        for (RyVec3 &p : positions)
            p += RyVec3(0.2f * p.x, 0.001f * p.x * p.x, 0.5f * p.z);
        // Each bone begins where the last one ends.
        for (int bone = 0; bone < bones; ++bone) {
            for (const int end : {bone, bone + 1})
                points.push_back({0.02f * reach + 0.96f * reach * float(end) / float(bones), 0.7f, -0.4f});
        }
    }
};

class PlainLoop
{
public:
    explicit PlainLoop(const Limb &limb) : m_limb(limb) {}

    std::vector<RyVec3> places() const
    {
        std::vector<RyVec3> result;
        for (size_t i = 0; i < m_limb.points.size(); ++i) {
            const bool isKnown = i > 0 && m_limb.points[i] == m_limb.points[i - 1];
            result.push_back(isKnown ? result.back() : place(m_limb.points[i]));
        }
        return result;
    }

    RyVec3 place(const RyVec3 &point) const
    {
        const size_t count = m_limb.base.size();
        std::vector<Vector> ways(count), units(count);
        std::vector<double> lengths(count), weights(count);
        for (size_t v = 0; v < count; ++v) {
            const RyVec3 &p = m_limb.base[v];
            ways[v] = {double(p.x) - double(point.x), double(p.y) - double(point.y), double(p.z) - double(point.z)};
            lengths[v] = length(ways[v]);
            units[v] = {ways[v][0] / lengths[v], ways[v][1] / lengths[v], ways[v][2] / lengths[v]};
        }
        for (const RyFacet &facet : m_limb.facets) {
            size_t corners[4];
            for (int k = 0; k < facet.count(); ++k)
                corners[k] = size_t(facet.vertices[k]);
            if (facet.isTriangle()) {
                double *to[] = {&weights[corners[0]], &weights[corners[1]], &weights[corners[2]]};
                add({units[corners[0]], units[corners[1]], units[corners[2]]},
                    {lengths[corners[0]], lengths[corners[1]], lengths[corners[2]]}, to);
                continue;
            }
            Vector middle = {};
            for (const size_t corner : corners) {
                for (size_t axis = 0; axis < 3; ++axis)
                    middle[axis] += 0.25 * ways[corner][axis];
            }
            const double far = length(middle);
            const Vector unit = {middle[0] / far, middle[1] / far, middle[2] / far};
            double share = 0.0;
            for (int k = 0; k < 4; ++k) {
                const size_t a = corners[k], b = corners[(k + 1) % 4];
                double *to[] = {&share, &weights[a], &weights[b]};
                add({unit, units[a], units[b]}, {far, lengths[a], lengths[b]}, to);
            }
            for (const size_t corner : corners)
                weights[corner] += 0.25 * share;
        }
        double sum = 0.0;
        Vector moved = {};
        for (size_t v = 0; v < count; ++v) {
            sum += weights[v];
            for (int axis = 0; axis < 3; ++axis)
                moved[size_t(axis)] += weights[v] * (double(m_limb.positions[v][axis]) - double(m_limb.base[v][axis]));
        }
        return point + RyVec3(float(moved[0] / sum), float(moved[1] / sum), float(moved[2] / sum));
    }

private:
    static void add(const std::array<Vector, 3> &u, const Vector &d, double *const *to)
    {
        Vector theta, c, s;
        for (size_t i = 0; i < 3; ++i)
            theta[i] = 2.0 * std::asin(0.5 * length(minus(u[(i + 1) % 3], u[(i + 2) % 3])));
        const double h = 0.5 * (theta[0] + theta[1] + theta[2]);
        const double determinant = u[0][0] * (u[1][1] * u[2][2] - u[1][2] * u[2][1]) +
                                   u[0][1] * (u[1][2] * u[2][0] - u[1][0] * u[2][2]) +
                                   u[0][2] * (u[1][0] * u[2][1] - u[1][1] * u[2][0]);
        const Vector sines = {std::sin(theta[0]), std::sin(theta[1]), std::sin(theta[2])};
        for (size_t i = 0; i < 3; ++i) {
            c[i] = 2.0 * std::sin(h) * std::sin(h - theta[i]) / (sines[(i + 1) % 3] * sines[(i + 2) % 3]) - 1.0;
            s[i] = std::copysign(std::sqrt(std::max(0.0, 1.0 - c[i] * c[i])), determinant);
            if (std::abs(s[i]) <= 1e-9)
                return;
        }
        for (size_t i = 0; i < 3; ++i) {
            const size_t next = (i + 1) % 3, last = (i + 2) % 3;
            *to[i] += (theta[i] - c[next] * theta[last] - c[last] * theta[next]) / (d[i] * sines[next] * s[last]);
        }
    }

    const Limb &m_limb;
};

float farthest(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    float most = 0.0f;
    for (size_t i = 0; i < a.size(); ++i)
        most = std::max(most, (a[i] - b[i]).length());
    return a.size() == b.size() ? most : 1e30f;
}

std::vector<RyVec3> follow(const Limb &limb)
{
    return *moveWithSurface(limb.points, limb.base, limb.positions, limb.facets, {});
}

bool isRight(const Limb &limb, float off, const std::vector<RyVec3> &places)
{
    std::printf("%zu bones, %zu facets: places differ by %g cm of %g that they move\n", limb.points.size() / 2,
                limb.facets.size(), double(off), double(farthest(places, limb.points)));
    if (!(off < Exact))
        std::printf("they are not where they should be\n");
    return off < Exact;
}

/// Every so many points beside the plain loop; the others must lie between their neighbours as their bones do.
int checkSome(const Limb &limb, size_t step)
{
    const PlainLoop plain(limb);
    const std::vector<RyVec3> places = follow(limb);
    if (places.size() != limb.points.size())
        return 1;
    float off = 0.0f;
    for (size_t i = 0; i < places.size(); i += step)
        off = std::max(off, (places[i] - plain.place(limb.points[i])).length());
    for (size_t i = 1; i < places.size(); ++i) {
        const bool isSame = limb.points[i] == limb.points[i - 1];
        const float way = (places[i] - places[i - 1]).length();
        const float bone = (limb.points[i] - limb.points[i - 1]).length();
        if (isSame ? way != 0.0f : !(way > bone && way < 2.0f * bone)) {
            std::printf("point %zu is %g cm from the one before\n", i, double(way));
            return 1;
        }
    }
    return isRight(limb, off, places) ? 0 : 1;
}

std::function<void(const RyRoundRobin::Work &)> inThreads(size_t count)
{
    return [count](const RyRoundRobin::Work &timed) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, count);
        timed();
    };
}

} // namespace

int main(int argc, char **argv)
{
    const bool isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    const int bones = argc > 1 && !isShort ? std::atoi(argv[1]) : 300;
    if (isShort && checkSome(Limb(12, 101, 50), 1) != 0)
        return 1;
    const Limb limb(bones, 1001, 500);
    if (isShort)
        return checkSome(limb, 120);
    const PlainLoop plain(limb);
    const std::vector<RyVec3> places = follow(limb);
    if (!isRight(limb, farthest(places, plain.places()), places))
        return 1;
    RyRoundRobin ways;
    const size_t one = ways.add(
        "one thread", [&] { follow(limb); }, inThreads(1));
    const size_t two = ways.add(
        "two threads", [&] { follow(limb); }, inThreads(2));
    const size_t peer = ways.add("plain loop", [&] { plain.places(); });
    ways.run(3);
    ways.print();
    std::printf("of the speed of the plain loop: one thread %.1f (at least 4), two threads %.1f (at least 7)\n",
                ways.cpuMedian(peer) / ways.cpuMedian(one), ways.ratio(peer, two));
    return 0;
}
