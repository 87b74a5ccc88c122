#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"
#include "rycore/io/gltf/document/RyGltfModel.h"

#include <functional>
#include <map>

/// Vertices that go another way in clips than they went, for something was edited that no motion of nodes can make up
/// for: how far.
class RyGltfStrayVertices
{
public:
    /// `before`: of the document as it was read; it must outlive this.
    explicit RyGltfStrayVertices(const RyGltfModel &before) : m_before(before) {}

    bool isEmpty() const { return m_points.empty(); }
    /// How a node of the file moves within its parent.
    using MotionOf = std::function<RyGltfMotion(int node)>;
    /// The largest distance at some of the times, in heights of the figure.
    double measure(const std::vector<float> &times, const MotionOf &motionOf) const;

protected:
    /// What a node adds to the way from where a vertex was to where it is.
    struct Term
    {
        double weight = 0.0;                             // now, less that before
        Eigen::Vector3d place = Eigen::Vector3d::Zero(); // in the node, by the weight
    };
    /// `height`: of the figure, in units of the world of the file; `terms`: by node of the file.
    void addPoint(double height, const std::map<int, Term> &terms);

private:
    struct Pull
    {
        size_t node; // in `m_chain`
        Term term;
    };
    struct Point
    {
        double height;
        std::vector<Pull> pulls;
    };
    struct Link
    {
        int node;   // of the file
        int parent; // in `m_chain`; -1 at the top
    };
    size_t linkOf(int node);

    const RyGltfModel &m_before;
    std::vector<Link> m_chain;      // nodes that points follow, and those above them first
    std::map<int, size_t> m_linkOf; // by node
    std::vector<Point> m_points;
};
