#pragma once

#include <vector>

/// What a facet gives to the coordinates of a point that it is near to, seen under angles of any width. Slow and exact:
/// few facets are. Corners are ways from the point, in any unit that is the same for all facets.
class RyWideFacet
{
public:
    struct Way
    {
        double x, y, z;
    };

    /// Of a triangle or a quad; the quad as four triangles around the mean of its corners.
    RyWideFacet(const Way *corners, int count);

    /// The point lies on the facet, so that nothing but `shares` counts.
    bool isTouched() const { return m_isTouched; }
    /// For each corner, as large as those of the cage's loops; on the facet they sum up to 1.
    const double *shares() const { return m_shares; }

private:
    void addTriangle(const Way *ways, const int *corners);
    bool touchTriangle(const Way *ways, const int *corners);
    void give(int corner, double share);

    double m_shares[4] = {};
    int m_count;
    bool m_isTouched = false;
};
