#pragma once

#include "RySkinWorkload.h"

/// What others make of a workload: the results and the way there.
struct RySkinPeer
{
    std::vector<RyVec3> positions;
    std::vector<RyVec3> normals; // not always of length 1

    explicit RySkinPeer(const RySkinWorkload &work) : positions(work.positions.size()), normals(work.positions.size())
    {}

    /// The plain loop: blends 4 x 4 matrices and maps position and normal.
    void blendWithEigen(const RySkinWorkload &work, int pose)
    {
        using Eigen::Map;
        using Eigen::Vector3f;
        const size_t influences = size_t(work.influenceCount);
        for (size_t v = 0; v < positions.size(); ++v) {
            Eigen::Matrix4f sum = Eigen::Matrix4f::Zero();
            for (size_t k = influences * v; k < influences * (v + 1); ++k)
                sum += work.weights[k] * work.matrices[pose][work.bones[k]];
            Map<Vector3f>(&positions[v].x) =
                sum.topLeftCorner<3, 3>() * Map<const Vector3f>(&work.positions[v].x) + sum.topRightCorner<3, 1>();
            Map<Vector3f>(&normals[v].x) = sum.topLeftCorner<3, 3>() * Map<const Vector3f>(&work.normals[v].x);
        }
    }
};
