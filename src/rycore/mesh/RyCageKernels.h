#pragma once

/// Inner loops of the coordinates of a cage, in double precision.
namespace RyCageKernels {

/// From a point to a vertex.
struct alignas(32) Direction
{
    double x, y, z;  // unit vector; zero for a vertex at the point
    double nearness; // 1 / distance; 0 for a vertex at the point
};

/// Wider facets, in the cosine of the angle under which an edge is seen, are left out.
constexpr double LeastCosine = 0.9;

/// The facets of one kind, each with the vertices of its corners one after the other.
struct Facets
{
    const int *corners;
    int count;
};

struct Task
{
    const double *places[3]; // X, Y and Z of the vertices
    int vertexCount;
    double point[3];
    Facets triangles;
    Facets quads;
    Direction *directions; // as many as vertices
    double *weights;       // of vertices; what facets give is added
    // Facets that were left out, by their places among the triangles and among the quads; room for all of them.
    int *wideTriangles;
    int wideTriangleCount;
    int *wideQuads;
    int wideQuadCount;
};

/// For any processor.
void addPlain(Task &task);
/// Only where `hasAvx2()`.
void addAvx2(Task &task);
bool hasAvx2();

} // namespace RyCageKernels
