#pragma once

/// A triangle or a quad: vertex indices counter-clockwise seen from outside; a negative fourth marks a triangle.
struct RyFacet
{
    int vertices[4] = {0, 0, 0, -1};
    /// Index of the face group, -1 for none. A facet is in one group at a time.
    int group = -1;

    bool isTriangle() const { return vertices[3] < 0; }
    int count() const { return isTriangle() ? 3 : 4; }
    bool operator==(const RyFacet &) const = default;
};
