#pragma once

/// A polygon of more than four corners: facets that follow one another in their mesh, triangles of one fan.
struct RyPolygon
{
    int firstFacet = 0;
    int facetCount = 0;  // two less than its corners
    int firstCorner = 0; // counted from the corner that the fan starts at

    int count() const { return facetCount + 2; }
    bool operator==(const RyPolygon &) const = default;
};
