#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

#include <functional>

/// Vertices that followed bones which are gone, and what they follow now: how far clips move them elsewhere by that.
class RyGltfDeletedBones
{
public:
    explicit RyGltfDeletedBones(const RyGltfScenePatch &patch);

    bool isEmpty() const { return m_points.empty(); }
    /// How a node of the file moves within its parent.
    using MotionOf = std::function<RyGltfMotion(int node)>;
    /// The largest distance at some of the times, in heights of the figure.
    double measure(const std::vector<float> &times, const MotionOf &motionOf) const;

private:
    struct Share
    {
        int node; // of the file
        double weight;
    };
    struct Point
    {
        Eigen::Vector3d place; // at rest, in centimetres of the figure
        double height;         // of the figure, in units of the world of the file
        std::vector<Share> before, now;
    };

    void addFigure(const RyGltfFigureSource &figure);
    std::map<int, std::vector<Share>> sharesBefore(const RyGltfFigureSource &figure) const;
    int knownAbove(const RyNode &bone) const;

    const RyGltfScenePatch &m_patch;
    const RyGltfModel &m_before;
    std::map<int, Eigen::Affine3d> m_toNode; // from the figure's rest to nodes of bones, as they were read
    std::vector<Point> m_points;
};
