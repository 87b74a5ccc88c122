#pragma once

#include "evaluator/GltfClipEvaluator.h"

#include <Eigen/Core>

#include <set>
#include <vector>

/// Some points of a file, ready to be shown at many frames of its clips, in the world and in file units. Morphs are
/// left aside.
class ClipStage
{
public:
    /// A vertex of a primitive, or with primitive -1 a point of a node's own frame: its place (0) and a point on each
    /// of its axes (1 to 3).
    struct Point
    {
        int node = -1, primitive = -1;
        size_t vertex = 0;
        double axisLength = 0.0; ///< in the node's own units
    };

    /// Vertices of all primitives, every so many of each, `atMost` or a few more; none that one of the joints pulls
    /// or one of these nodes shows.
    static std::vector<Point> pickVertices(const GltfEvaluator &file, size_t atMost,
                                           const std::set<int> &withoutNodes = {});
    /// The four points of each of these nodes; `axisLength` as the axes stand in the world of the file's own pose.
    static std::vector<Point> framesOf(const GltfEvaluator &file, const std::set<int> &nodes, double axisLength);

    /// Throws std::runtime_error when the file lacks a point.
    ClipStage(const GltfEvaluator &file, const std::vector<Point> &points);

    /// The points as they stand at a time, in their order.
    const std::vector<Eigen::Vector3d> &show(const GltfClipEvaluator &clip, double time);

private:
    using Map = Eigen::Matrix<double, 3, 4>;
    struct Slot // what a vertex can follow: a joint of a skin, or the node that shows it
    {
        int node = -1;
        Eigen::Matrix4d inverseBind = Eigen::Matrix4d::Identity();
        Map now = Map::Zero();
    };
    struct Share
    {
        size_t slot = 0;
        double weight = 1.0;
    };
    struct FramePoint
    {
        size_t place = 0;
        Point point;
    };

    void orderNodes(const GltfEvaluator &file);
    void addVertices(const GltfEvaluator &file, const GltfPrimitive &primitive, const std::vector<size_t> &places,
                     const std::vector<Point> &points);
    size_t slotOf(const GltfEvaluator &file, int skin, int node);

    std::vector<int> m_parents, m_order; // parents first
    std::vector<Eigen::Matrix4d> m_own, m_locals, m_worlds;
    std::vector<std::pair<std::pair<int, int>, size_t>> m_slotNumbers; // by skin and node
    std::vector<Slot> m_slots;
    std::vector<size_t> m_places; // of the vertices among the points
    std::vector<Eigen::Vector4d> m_rest;
    std::vector<size_t> m_firstShares;
    std::vector<Share> m_shares;
    std::vector<FramePoint> m_framePoints;
    std::vector<Eigen::Vector3d> m_shown;
};
