#include "ClipStage.h"

#include <algorithm>
#include <map>
#include <stdexcept>

std::vector<ClipStage::Point> ClipStage::pickVertices(const GltfEvaluator &file, size_t atMost,
                                                      const std::set<int> &withoutNodes)
{
    size_t all = 0;
    for (const GltfPrimitive &primitive : file.primitives())
        all += file.restPositions(primitive).size();
    const size_t stride = std::max(all / std::max(atMost, size_t(1)), size_t(1));
    std::vector<Point> points;
    for (const GltfPrimitive &primitive : file.primitives()) {
        const auto shares = file.influences(primitive);
        for (size_t v = 0; v < shares.size(); v += stride) {
            const bool isPulled = withoutNodes.count(primitive.node) > 0 ||
                                  std::any_of(shares[v].begin(), shares[v].end(), [&](const GltfInfluence &influence) {
                                      return withoutNodes.count(influence.joint) > 0;
                                  });
            if (!isPulled)
                points.push_back({primitive.node, primitive.primitive, v});
        }
    }
    return points;
}

std::vector<ClipStage::Point> ClipStage::framesOf(const GltfEvaluator &file, const std::set<int> &nodes,
                                                  double axisLength)
{
    std::vector<Point> points;
    const std::vector<Eigen::Matrix4d> worlds = file.worldMatrices();
    for (const int node : nodes) {
        points.push_back({node, -1, 0, 0.0});
        for (int axis = 0; axis < 3; ++axis) {
            const double length = worlds[size_t(node)].block<3, 1>(0, axis).norm();
            points.push_back({node, -1, size_t(axis + 1), length > 0 ? axisLength / length : 0.0});
        }
    }
    return points;
}

ClipStage::ClipStage(const GltfEvaluator &file, const std::vector<Point> &points) : m_shown(points.size())
{
    orderNodes(file);
    std::map<std::pair<int, int>, std::vector<size_t>> wanted;
    for (size_t i = 0; i < points.size(); ++i) {
        if (points[i].primitive >= 0)
            wanted[{points[i].node, points[i].primitive}].push_back(i);
        else if (points[i].node >= file.nodeCount())
            throw std::runtime_error("there is no node " + std::to_string(points[i].node));
        else
            m_framePoints.push_back({i, points[i]});
    }
    size_t found = m_framePoints.size();
    for (const GltfPrimitive &primitive : file.primitives()) {
        const auto places = wanted.find({primitive.node, primitive.primitive});
        if (places == wanted.end())
            continue;
        addVertices(file, primitive, places->second, points);
        found += places->second.size();
    }
    if (found != points.size())
        throw std::runtime_error("a primitive is gone");
}

void ClipStage::orderNodes(const GltfEvaluator &file)
{
    const auto count = size_t(file.nodeCount());
    std::vector<std::vector<int>> children(count);
    for (int node = 0; node < file.nodeCount(); ++node) {
        m_own.push_back(file.localMatrix(node));
        m_parents.push_back(file.parent(node));
        if (m_parents.back() < 0)
            m_order.push_back(node);
        else
            children[size_t(m_parents.back())].push_back(node);
    }
    for (size_t i = 0; i < m_order.size(); ++i) {
        const std::vector<int> &below = children[size_t(m_order[i])];
        m_order.insert(m_order.end(), below.begin(), below.end());
    }
    m_worlds.resize(count);
}

size_t ClipStage::slotOf(const GltfEvaluator &file, int skin, int node)
{
    const std::pair<int, int> key(skin, node);
    const auto found = std::lower_bound(m_slotNumbers.begin(), m_slotNumbers.end(), std::make_pair(key, size_t(0)));
    if (found != m_slotNumbers.end() && found->first == key)
        return found->second;
    Slot slot;
    slot.node = node;
    if (skin >= 0) {
        const std::vector<int> &joints = file.joints(skin);
        const auto joint = std::find(joints.begin(), joints.end(), node);
        slot.inverseBind = file.inverseBindMatrices(skin)[size_t(joint - joints.begin())];
    }
    m_slotNumbers.insert(found, {key, m_slots.size()});
    m_slots.push_back(slot);
    return m_slots.size() - 1;
}

void ClipStage::addVertices(const GltfEvaluator &file, const GltfPrimitive &primitive,
                            const std::vector<size_t> &places, const std::vector<Point> &points)
{
    const auto rest = file.restPositions(primitive);
    const auto influences = file.influences(primitive);
    for (const size_t place : places) {
        const size_t vertex = points[place].vertex;
        if (vertex >= rest.size())
            throw std::runtime_error("a primitive has fewer vertices");
        m_places.push_back(place);
        m_rest.push_back(rest[vertex].homogeneous());
        m_firstShares.push_back(m_shares.size());
        for (const GltfInfluence &influence : influences[vertex])
            m_shares.push_back({slotOf(file, primitive.skin, influence.joint), influence.weight});
        if (influences[vertex].empty())
            m_shares.push_back({slotOf(file, -1, primitive.node), 1.0});
    }
}

const std::vector<Eigen::Vector3d> &ClipStage::show(const GltfClipEvaluator &clip, double time)
{
    m_locals = m_own;
    clip.play(time, m_locals);
    for (const int node : m_order) {
        const int parent = m_parents[size_t(node)];
        if (parent < 0)
            m_worlds[size_t(node)] = m_locals[size_t(node)];
        else
            m_worlds[size_t(node)].noalias() = m_worlds[size_t(parent)] * m_locals[size_t(node)];
    }
    for (Slot &slot : m_slots)
        slot.now.noalias() = m_worlds[size_t(slot.node)].topRows<3>() * slot.inverseBind;
    for (size_t i = 0; i < m_places.size(); ++i) {
        const size_t end = i + 1 < m_places.size() ? m_firstShares[i + 1] : m_shares.size();
        Map map = Map::Zero();
        for (size_t s = m_firstShares[i]; s < end; ++s)
            map += m_shares[s].weight * m_slots[m_shares[s].slot].now;
        m_shown[m_places[i]].noalias() = map * m_rest[i];
    }
    for (const auto &[place, point] : m_framePoints) {
        const Eigen::Matrix4d &world = m_worlds[size_t(point.node)];
        m_shown[place] = world.topRightCorner<3, 1>();
        if (point.vertex > 0)
            m_shown[place] += point.axisLength * world.block<3, 1>(0, Eigen::Index(point.vertex) - 1);
    }
    return m_shown;
}
