#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/mesh/RyFacet.h"

#include <array>
#include <cmath>
#include <vector>

/// Mean value coordinates by the letter of their publication, triangle by triangle, and divided by their sum. A quad is
/// four triangles around the mean of its corners. For points that lie on no facet.
class PlainMeanValue
{
public:
    using Number = long double;
    using Vector = std::array<Number, 3>;

    static std::vector<double> weights(const std::vector<RyVec3> &positions, const std::vector<RyFacet> &facets,
                                       const RyVec3 &point)
    {
        PlainMeanValue plain(positions, point);
        for (const RyFacet &facet : facets)
            plain.add(facet);
        Number sum = 0;
        for (const Number weight : plain.m_weights)
            sum += weight;
        std::vector<double> result;
        for (const Number weight : plain.m_weights)
            result.push_back(double(weight / sum));
        return result;
    }

private:
    PlainMeanValue(const std::vector<RyVec3> &positions, const RyVec3 &point) : m_weights(positions.size())
    {
        for (const RyVec3 &position : positions) {
            m_ways.push_back({Number(position.x) - Number(point.x), Number(position.y) - Number(point.y),
                              Number(position.z) - Number(point.z)});
        }
    }

    void add(const RyFacet &facet)
    {
        const int *v = facet.vertices;
        if (facet.isTriangle()) {
            const std::array<Number, 3> of = triangle({way(v[0]), way(v[1]), way(v[2])});
            for (int k = 0; k < 3; ++k)
                m_weights[size_t(v[k])] += of[size_t(k)];
            return;
        }
        Vector middle = {};
        for (int k = 0; k < 4; ++k) {
            for (size_t axis = 0; axis < 3; ++axis)
                middle[axis] += way(v[k])[axis] / 4;
        }
        for (int k = 0; k < 4; ++k) {
            const int next = (k + 1) % 4;
            const std::array<Number, 3> of = triangle({middle, way(v[k]), way(v[next])});
            for (int corner = 0; corner < 4; ++corner)
                m_weights[size_t(v[corner])] += of[0] / 4;
            m_weights[size_t(v[k])] += of[1];
            m_weights[size_t(v[next])] += of[2];
        }
    }

    const Vector &way(int vertex) const { return m_ways[size_t(vertex)]; }

    static Number length(const Vector &v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

    static std::array<Number, 3> triangle(const std::array<Vector, 3> &ways)
    {
        std::array<Vector, 3> u;
        std::array<Number, 3> d, theta, c, s;
        for (size_t i = 0; i < 3; ++i) {
            d[i] = length(ways[i]);
            u[i] = {ways[i][0] / d[i], ways[i][1] / d[i], ways[i][2] / d[i]};
        }
        for (size_t i = 0; i < 3; ++i) {
            const Vector &a = u[(i + 1) % 3];
            const Vector &b = u[(i + 2) % 3];
            theta[i] = 2 * std::asin(length({a[0] - b[0], a[1] - b[1], a[2] - b[2]}) / 2);
        }
        const Number h = (theta[0] + theta[1] + theta[2]) / 2;
        const Number determinant = u[0][0] * (u[1][1] * u[2][2] - u[1][2] * u[2][1]) +
                                   u[0][1] * (u[1][2] * u[2][0] - u[1][0] * u[2][2]) +
                                   u[0][2] * (u[1][0] * u[2][1] - u[1][1] * u[2][0]);
        for (size_t i = 0; i < 3; ++i) {
            const size_t next = (i + 1) % 3, last = (i + 2) % 3;
            c[i] = 2 * std::sin(h) * std::sin(h - theta[i]) / (std::sin(theta[next]) * std::sin(theta[last])) - 1;
            const Number square = 1 - c[i] * c[i];
            s[i] = std::copysign(std::sqrt(square > 0 ? square : 0), determinant);
            if (std::abs(s[i]) <= 1e-12L)
                return {};
        }
        std::array<Number, 3> result;
        for (size_t i = 0; i < 3; ++i) {
            const size_t next = (i + 1) % 3, last = (i + 2) % 3;
            result[i] =
                (theta[i] - c[next] * theta[last] - c[last] * theta[next]) / (d[i] * std::sin(theta[next]) * s[last]);
        }
        return result;
    }

    std::vector<Vector> m_ways;
    std::vector<Number> m_weights;
};
