#pragma once

#include "rycore/parametric/RyLegacyPose.h"

#include <vector>

/// What a fit has to know of one vertex: which bones move it, and which of them a blend may use.
struct RyLegacyFitVertex
{
    RyLegacyFitVertex() = default;
    /// `movers`: all bones that move the vertex, children before parents.
    RyLegacyFitVertex(const RyLegacyRig &rig, int owner, std::vector<RyLegacyPose::Part> movers);

    std::vector<RyLegacyPose::Part> parts; // none where one bone and all above it move it wholly
    std::vector<int> partly;               // bones that move it neither wholly nor not at all, ascending
    std::vector<int> bones;                // candidates, ascending
    std::vector<double> plain; // their plain averages: means of the turns' fractions, chained down the bones; sum 1
    bool isPartly() const { return bones.size() > 1; }
    /// Where all bones inherit scale: the parts without the chain of bones above them that move it wholly, and the
    /// lowest of these, -1 for none.
    std::vector<RyLegacyPose::Part> lower;
    int wholeFrom = -1;

private:
    void findLower(const std::vector<size_t> &above);
    std::vector<double> wholes(const RyLegacyRig &rig, const std::vector<size_t> &above) const;
};
