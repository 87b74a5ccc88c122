#pragma once

#include "rycore/mesh/RyCageKernels.h"

#include <cstring>

#define RY_ALWAYS_INLINE inline __attribute__((always_inline))

// The loop over vertices and facets for one kind of registers. Included by each file that compiles it for its
// processor; what is here stays local to that file, so that no other one calls what its processor lacks.
namespace {

/// `Registers` says how many numbers stand in a vector, how it is read from directions, and a few operations.
///
/// All terms are twice those of the usual form: common factors do not count. Names: u is a unit vector to a vertex, n
/// the cross product of two of them, k an angle divided by its sine.
template<class Registers>
struct RyCageLoop
{
    using Vector = typename Registers::Vector;
    static constexpr int Width = Registers::Width;

    struct Vectors
    {
        Vector x, y, z;

        RY_ALWAYS_INLINE Vectors operator+(const Vectors &o) const { return {x + o.x, y + o.y, z + o.z}; }
        RY_ALWAYS_INLINE Vectors operator-(const Vectors &o) const { return {x - o.x, y - o.y, z - o.z}; }
        RY_ALWAYS_INLINE Vectors operator*(const Vector &by) const { return {x * by, y * by, z * by}; }
        RY_ALWAYS_INLINE Vector dot(const Vectors &o) const { return x * o.x + y * o.y + z * o.z; }
        RY_ALWAYS_INLINE Vectors cross(const Vectors &o) const
        {
            return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
        }
    };
    struct Corner
    {
        Vectors u;
        Vector nearness;
    };
    /// What an edge gives to both of its facets.
    struct Edge
    {
        Vectors n;
        Vectors kn;
        Vector square; // of n
    };

    RyCageKernels::Task &task;

    RY_ALWAYS_INLINE void run()
    {
        int vertex = 0;
        for (; vertex + Width <= task.vertexCount; vertex += Width)
            direct(vertex);
        for (; vertex < task.vertexCount; ++vertex)
            directOne(vertex);
        int facet = 0;
        for (; facet + Width <= task.triangles.count; facet += Width)
            addTriangles(facet);
        for (; facet < task.triangles.count; ++facet)
            task.wideTriangles[task.wideTriangleCount++] = facet;
        for (facet = 0; facet + Width <= task.quads.count; facet += Width)
            addQuads(facet);
        for (; facet < task.quads.count; ++facet)
            task.wideQuads[task.wideQuadCount++] = facet;
    }

private:
    RY_ALWAYS_INLINE void direct(int vertex)
    {
        const Vectors way{Registers::load(task.places[0] + vertex) - task.point[0],
                          Registers::load(task.places[1] + vertex) - task.point[1],
                          Registers::load(task.places[2] + vertex) - task.point[2]};
        const Vector square = way.dot(way);
        const Vector nearness = square > 0.0 ? 1.0 / Registers::root(square) : Vector{};
        Registers::store(way.x * nearness, way.y * nearness, way.z * nearness, nearness, task.directions + vertex);
    }

    RY_ALWAYS_INLINE void directOne(int vertex)
    {
        const double x = task.places[0][vertex] - task.point[0];
        const double y = task.places[1][vertex] - task.point[1];
        const double z = task.places[2][vertex] - task.point[2];
        const double square = x * x + y * y + z * z;
        const double nearness = square > 0.0 ? 1.0 / __builtin_sqrt(square) : 0.0;
        task.directions[vertex] = {x * nearness, y * nearness, z * nearness, nearness};
    }

    template<int Corners>
    RY_ALWAYS_INLINE void readCorners(const int *corners, Corner *out) const
    {
        for (int k = 0; k < Corners; ++k) {
            const RyCageKernels::Direction *rows[Width];
            for (int l = 0; l < Width; ++l)
                rows[l] = task.directions + corners[Corners * l + k];
            Registers::read(rows, out[k].u.x, out[k].u.y, out[k].u.z, out[k].nearness);
        }
    }

    /// Angle / sine by 1 - cosine, which is at most 1 - LeastCosine: the sum of n! / (2n + 1)!! z^n.
    static RY_ALWAYS_INLINE Vector angleBySine(const Vector &z)
    {
        constexpr double Terms[] = {3628800.0 / 13749310575,
                                    362880.0 / 654729075,
                                    40320.0 / 34459425,
                                    5040.0 / 2027025,
                                    720.0 / 135135,
                                    120.0 / 10395,
                                    24.0 / 945,
                                    6.0 / 105,
                                    2.0 / 15,
                                    1.0 / 3,
                                    1.0};
        Vector sum = Terms[0] + Vector{};
#pragma GCC unroll 10
        for (int i = 1; i < 11; ++i)
            sum = sum * z + Terms[i];
        return sum;
    }

    static RY_ALWAYS_INLINE Edge edge(const Vectors &from, const Vectors &to, Vector &leastCosine)
    {
        const Vector cosine = from.dot(to);
        leastCosine = cosine < leastCosine ? cosine : leastCosine;
        const Vectors n = from.cross(to);
        return {n, n * angleBySine(1.0 - cosine), n.dot(n)};
    }

    /// 1 / determinant, and 0 in place of what is only rounding: a facet whose plane the point lies in.
    static RY_ALWAYS_INLINE Vector inverse(const Vector &determinant, const Vector &squares)
    {
        const Vector least = 1e-8 * squares;
        return determinant / (determinant * determinant + least * least + 1e-300);
    }

    template<int Corners>
    RY_ALWAYS_INLINE void write(const int *corners, const Vector *shares, const Vector &leastCosine, int facet,
                                int *wide, int &wideCount) const
    {
        alignas(32) double rows[Corners][Width];
        for (int k = 0; k < Corners; ++k)
            std::memcpy(rows[k], &shares[k], sizeof(Vector));
        const bool hasWide = Registers::isAnyBelow(leastCosine, RyCageKernels::LeastCosine);
        for (int l = 0; l < Width; ++l) {
            if (__builtin_expect(hasWide, 0) && !(leastCosine[l] >= RyCageKernels::LeastCosine)) {
                wide[wideCount++] = facet + l;
                continue;
            }
            for (int k = 0; k < Corners; ++k)
                task.weights[corners[Corners * l + k]] += rows[k][l];
        }
    }

    RY_ALWAYS_INLINE void addTriangles(int facet)
    {
        const int *corners = task.triangles.corners + 3 * facet;
        Corner c[3];
        readCorners<3>(corners, c);
        Vector leastCosine = 1.0 + Vector{};
        const Edge e01 = edge(c[0].u, c[1].u, leastCosine);
        const Edge e12 = edge(c[1].u, c[2].u, leastCosine);
        const Edge e20 = edge(c[2].u, c[0].u, leastCosine);
        const Vectors mean = e01.kn + e12.kn + e20.kn;
        const Vector by = inverse(c[0].u.dot(e12.n), e01.square + e12.square + e20.square);
        const Vector shares[3] = {mean.dot(e12.n) * by * c[0].nearness, mean.dot(e20.n) * by * c[1].nearness,
                                  mean.dot(e01.n) * by * c[2].nearness};
        write<3>(corners, shares, leastCosine, facet, task.wideTriangles, task.wideTriangleCount);
    }

    /// As four triangles around the mean of the corners, which each have a fourth of it: that is the same however the
    /// quad begins, and for its mirror image.
    RY_ALWAYS_INLINE void addQuads(int facet)
    {
        const int *corners = task.quads.corners + 4 * facet;
        Corner c[4];
        readCorners<4>(corners, c);
        const Vector first = c[0].nearness * c[1].nearness;
        const Vector last = c[2].nearness * c[3].nearness;
        // The way to the middle, times 4 and all four nearnesses.
        const Vectors way = (c[0].u * c[1].nearness + c[1].u * c[0].nearness) * last +
                            (c[2].u * c[3].nearness + c[3].u * c[2].nearness) * first;
        const Vector inverseLength = 1.0 / Registers::root(way.dot(way) + 1e-300);
        const Vectors middle = way * inverseLength;
        Vector leastCosine = 1.0 + Vector{};
        Edge spokes[4], rims[4];
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
            spokes[k] = edge(middle, c[k].u, leastCosine);
            rims[k] = edge(c[k].u, c[(k + 1) % 4].u, leastCosine);
        }
        Vector shares[4] = {};
        Vector middleShare = {};
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
            const int next = (k + 1) % 4;
            const Vectors mean = spokes[k].kn + rims[k].kn - spokes[next].kn;
            const Vector by = inverse(middle.dot(rims[k].n), spokes[k].square + rims[k].square + spokes[next].square);
            middleShare += mean.dot(rims[k].n) * by;
            shares[k] -= mean.dot(spokes[next].n) * by;
            shares[next] += mean.dot(spokes[k].n) * by;
        }
        const Vector each = middleShare * (first * last) * inverseLength;
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k)
            shares[k] = shares[k] * c[k].nearness + each;
        write<4>(corners, shares, leastCosine, facet, task.wideQuads, task.wideQuadCount);
    }
};

} // namespace
