#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/parametric/fit/RyLegacyFitPoses.h"
#include "rycore/parametric/fit/RyLegacyFitVertex.h"

/// A figure in all poses of a fit: what its joints make of a vertex, and what single bones would.
class RyLegacyFitStage
{
public:
    /// The input must outlive it.
    RyLegacyFitStage(const RyLegacyFitInput &input, const std::vector<int> &drivers);

    const std::vector<RyLegacyFitPose> &poses() const { return m_poses; }
    /// The poses in which a blend may miss the vertex, ascending. `measured`: the random ones too.
    std::vector<int> posesFor(const RyLegacyFitVertex &vertex, bool measured) const;
    /// Where the candidates bring a vertex in one pose, x, y and z by turns, and where the joints do.
    void stand(const RyLegacyFitVertex &vertex, const RyVec3 &rest, int pose, double *images, double *target) const;

private:
    std::vector<RyAffine> mapsOf(const RyLegacyRig &rig, const RyLegacyPose &pose) const;

    bool m_inheritsScale; // all bones

    std::vector<RyLegacyFitPose> m_poses;
    std::vector<RyLegacyPose> m_stands;
    std::vector<std::vector<RyAffine>> m_maps; // of single bones, in each pose
    std::vector<std::vector<int>> m_posesOf;   // of each driver
    std::vector<int> m_random;
};
