#pragma once

#include <map>

class RyNode;

/// How far what a bone moves reaches from its origin, in centimetres: vertices at rest, its end point, things that hang
/// on it, and all of that of the bones below.
class RyGltfReach
{
public:
    /// Of any other node the size of its figure, or 0 without one.
    double of(const RyNode &node);
    /// Of the figure of a node: the height of its mesh, or of what its joints take up where it has no vertices.
    double heightOf(const RyNode &node);

private:
    void measure(const RyNode &figure);
    static double reachOfThings(const RyNode &bone, const RyNode &figure);

    std::map<const RyNode *, double> m_reach;   // of bones
    std::map<const RyNode *, double> m_heights; // of figures
};

/// How much shear nobody sees, of the size of what is sheared, where it reaches so far in a figure so high.
double ryGltfShearSlack(double reach, double height);
