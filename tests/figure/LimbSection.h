#pragma once

#include "rycore/mesh/RyFacet.h"

#include <array>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

/// Where a plane across an axis of figure space cuts a limb: of the closed lines in which it cuts the surface, the one
/// whose middle is nearest to a point of the plane.
class LimbSection
{
public:
    LimbSection(const std::vector<RyVec3> &positions, const std::vector<RyFacet> &facets, const RyVec3 &point, int axis)
        : m_positions(positions), m_point(point), m_axis(axis)
    {
        for (const RyFacet &facet : facets)
            cut(facet);
        double nearest = 1e300;
        std::map<Edge, Line> lines;
        for (const Segment &segment : m_segments)
            lines[find(segment.from)].add(at(segment.from), at(segment.to));
        for (const auto &[edge, line] : lines) {
            const Place middle = line.middle();
            const double distance = std::hypot(middle[0], middle[1]);
            if (distance < nearest) {
                nearest = distance;
                radius = std::sqrt(std::abs(line.area) / M_PI);
                offset = {-middle[0] / radius, -middle[1] / radius};
            }
        }
    }

    double radius = 0.0; // of a circle of the same area
    /// From its middle to the point, in radii.
    std::array<double, 2> offset = {1e300, 1e300};

private:
    using Edge = std::pair<int, int>;
    using Place = std::array<double, 2>; // on the plane, from the point

    struct Segment
    {
        Edge from, to;
    };
    struct Line
    {
        double area = 0.0;
        Place moment = {};

        void add(const Place &a, const Place &b)
        {
            const double part = 0.5 * (a[0] * b[1] - a[1] * b[0]);
            area += part;
            for (size_t k = 0; k < 2; ++k)
                moment[k] += part * (a[k] + b[k]) / 3.0;
        }
        Place middle() const { return {moment[0] / area, moment[1] / area}; }
    };

    double height(int vertex) const { return double(m_positions[size_t(vertex)][m_axis]) - double(m_point[m_axis]); }

    void cut(const RyFacet &facet)
    {
        std::vector<Edge> up, down;
        for (int k = 0; k < facet.count(); ++k) {
            const int a = facet.vertices[k];
            const int b = facet.vertices[(k + 1) % facet.count()];
            if ((height(a) < 0.0) == (height(b) < 0.0))
                continue;
            (height(a) < 0.0 ? up : down).push_back(std::minmax(a, b));
        }
        for (size_t i = 0; i < up.size(); ++i) {
            m_segments.push_back({up[i], down[i]});
            m_roots[find(up[i])] = find(down[i]);
        }
    }

    Edge find(Edge edge)
    {
        for (auto found = m_roots.find(edge); found != m_roots.end() && found->second != edge;
             found = m_roots.find(edge))
            edge = found->second;
        return edge;
    }

    Place at(const Edge &edge) const
    {
        const double low = height(edge.first);
        const double share = low / (low - height(edge.second));
        Place place;
        for (int k = 0; k < 2; ++k) {
            const int axis = (m_axis + 1 + k) % 3;
            const double a = double(m_positions[size_t(edge.first)][axis]);
            const double b = double(m_positions[size_t(edge.second)][axis]);
            place[size_t(k)] = a + share * (b - a) - double(m_point[axis]);
        }
        return place;
    }

    const std::vector<RyVec3> &m_positions;
    RyVec3 m_point;
    int m_axis;
    std::vector<Segment> m_segments;
    std::map<Edge, Edge> m_roots;
};
