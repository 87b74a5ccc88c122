#include "rycore/io/gltf/save/RyGltfStrayVertices.h"

#include <algorithm>
#include <cmath>

void RyGltfStrayVertices::addPoint(double height, const std::map<int, Term> &terms)
{
    Point point{height, {}};
    for (const auto &[node, term] : terms) {
        if (term.weight != 0.0 || !term.place.isZero(0.0))
            point.pulls.push_back({linkOf(node), term});
    }
    m_points.push_back(std::move(point));
}

size_t RyGltfStrayVertices::linkOf(int node)
{
    const auto known = m_linkOf.find(node);
    if (known != m_linkOf.end())
        return known->second;
    const int above = m_before.nodes[size_t(node)].parent;
    const int parent = above >= 0 ? int(linkOf(above)) : -1;
    m_chain.push_back({node, parent});
    return m_linkOf[node] = m_chain.size() - 1;
}

double RyGltfStrayVertices::measure(const std::vector<float> &times, const MotionOf &motionOf) const
{
    constexpr size_t enough = 24;
    std::vector<RyGltfMotion> motions;
    for (const Link &link : m_chain)
        motions.push_back(motionOf(link.node));
    std::vector<Eigen::Affine3d> worlds(m_chain.size());
    double worst = 0.0;
    for (size_t i = 0; i < times.size(); i += times.size() / enough + 1) {
        const float behind = std::nextafter(times[i], std::numeric_limits<float>::infinity());
        for (size_t link = 0; link < m_chain.size(); ++link) {
            worlds[link] = RyGltfMotionPiece(motions[link], times[i], behind).map(double(times[i]));
            if (m_chain[link].parent >= 0)
                worlds[link] = worlds[size_t(m_chain[link].parent)] * worlds[link];
        }
        for (const Point &point : m_points) {
            Eigen::Vector3d way = Eigen::Vector3d::Zero();
            for (const Pull &pull : point.pulls)
                way +=
                    worlds[pull.node].linear() * pull.term.place + pull.term.weight * worlds[pull.node].translation();
            worst = std::max(worst, way.norm() / point.height);
        }
    }
    return worst;
}
