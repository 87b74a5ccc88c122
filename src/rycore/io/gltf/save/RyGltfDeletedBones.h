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
    /// What a node adds to the way from where a vertex was to where it is.
    struct Pull
    {
        size_t node;           // in `m_chain`
        double weight;         // now, less that before
        Eigen::Vector3d place; // in the node, by the weight
    };
    struct Point
    {
        double height; // of the figure, in units of the world of the file
        std::vector<Pull> pulls;
    };
    struct Link
    {
        int node;   // of the file
        int parent; // in `m_chain`; -1 at the top
    };

    void addFigure(const RyGltfFigureSource &figure);
    std::map<int, std::vector<Share>> sharesBefore(const RyGltfFigureSource &figure) const;
    int knownAbove(const RyNode &bone) const;
    void addPoint(const Eigen::Vector3d &place, double height, const std::vector<Share> &before,
                  const std::vector<Share> &now);
    size_t linkOf(int node);

    const RyGltfScenePatch &m_patch;
    const RyGltfModel &m_before;
    std::map<int, Eigen::Affine3d> m_toNode; // from the figure's rest to nodes of bones, as they were read
    std::vector<Link> m_chain;               // nodes that points follow, and those above them first
    std::map<int, size_t> m_linkOf;          // by node
    std::vector<Point> m_points;
};
