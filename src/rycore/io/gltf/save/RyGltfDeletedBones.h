#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"
#include "rycore/io/gltf/save/RyGltfStrayVertices.h"

/// Vertices that followed bones which are gone, and what they follow now: how far clips move them elsewhere by that.
class RyGltfDeletedBones : public RyGltfStrayVertices
{
public:
    explicit RyGltfDeletedBones(const RyGltfScenePatch &patch);

private:
    struct Share
    {
        int node; // of the file
        double weight;
    };

    void addFigure(const RyGltfFigureSource &figure);
    std::map<int, std::vector<Share>> sharesBefore(const RyGltfFigureSource &figure) const;
    void addVertex(const Eigen::Vector3d &place, double height, const std::vector<Share> &before,
                   const std::vector<Share> &now);

    const RyGltfScenePatch &m_patch;
    const RyGltfModel &m_before;
    std::map<int, Eigen::Affine3d> m_toNode; // from the figure's rest to nodes of bones, as they were read
};
