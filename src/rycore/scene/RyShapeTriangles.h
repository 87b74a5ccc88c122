#pragma once

#include <cstddef>
#include <vector>

class RyFacetMesh;
struct RyMeshParts;

/// A corner of a triangle: its vertex, and the place of its normal (see RyShapeNormals).
struct RyTriangleCorner
{
    int vertex = 0;
    int place = 0;
};

/// The triangles whose normals make the smooth ones of a shape, in order, and which of them lie around a vertex or give
/// a share to a normal: for work on a few vertices of many.
class RyShapeTriangles
{
public:
    /// See ryWalkTriangles.
    void build(const RyFacetMesh &mesh, const RyMeshParts *parts, const std::vector<int> &placeOfNumber,
               int placeCount);
    bool isEmpty() const { return m_corners.empty(); }
    /// Of a triangle.
    const RyTriangleCorner *corners(int triangle) const { return &m_corners[3 * size_t(triangle)]; }

    struct List
    {
        const int *first;
        const int *last;
        const int *begin() const { return first; }
        const int *end() const { return last; }
    };
    /// Triangles, ascending; one that has several such corners as often.
    List aroundVertex(int vertex) const { return m_ofVertices.of(vertex); }
    List ofPlace(int place) const { return m_ofPlaces.of(place); }

private:
    struct Lists
    {
        std::vector<int> starts;
        std::vector<int> triangles;

        template<typename Key>
        void build(const std::vector<RyTriangleCorner> &corners, int count, Key key);
        List of(int number) const
        {
            const int *all = triangles.data();
            return {all + starts[size_t(number)], all + starts[size_t(number) + 1]};
        }
    };

    std::vector<RyTriangleCorner> m_corners;
    Lists m_ofVertices;
    Lists m_ofPlaces;
};
