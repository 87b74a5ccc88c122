#include "rycore/parametric/RyLegacyGroups.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace {

bool isWhole(const RyLegacyFractions &f)
{
    return f == RyLegacyFractions::all();
}

bool isZeroOrOne(double f)
{
    return f == 0.0 || f == 1.0;
}

bool isUniform(const RyLegacyFractions &f)
{
    return isZeroOrOne(f.turn[0]) && isZeroOrOne(f.turn[1]) && isZeroOrOne(f.turn[2]) && isZeroOrOne(f.translation) &&
           isZeroOrOne(f.scale);
}

/// As a group keeps them: one that a float cannot tell from 0 or 1 is 0 or 1 for its pattern, too.
RyLegacyFractions asKept(RyLegacyFractions f)
{
    for (double *each : {&f.turn[0], &f.turn[1], &f.turn[2], &f.translation, &f.scale})
        *each = float(*each);
    return f;
}

/// Which fractions are 0, 1, or between, as one number.
int patternOf(const RyLegacyFractions &f)
{
    int pattern = 0;
    for (const double each : {f.turn[0], f.turn[1], f.turn[2], f.translation, f.scale})
        pattern = 3 * pattern + (each == 0.0 ? 0 : each == 1.0 ? 1 : 2);
    return pattern;
}

struct HashOfKey
{
    size_t operator()(const std::vector<int> &key) const
    {
        size_t hash = 1469598103934665603u;
        for (const int each : key)
            hash = (hash ^ size_t(unsigned(each))) * 1099511628211u;
        return hash;
    }
};

} // namespace

RyLegacyKernels::Fractions RyLegacyGroups::Group::component(size_t driver, size_t which) const
{
    const size_t turns = drivers.size() * 3 * RyLegacyKernels::Lanes;
    if (which < 3)
        return {fractions + (driver * 3 + which) * RyLegacyKernels::Lanes, int(turns)};
    return {fractions + blocks() * turns + (driver * 2 + which - 3) * RyLegacyKernels::Lanes, int(turns / 3 * 2)};
}

RyLegacyFractions RyLegacyGroups::Group::fractionsOf(size_t driver, size_t number) const
{
    if (uniform)
        return fixed[driver];
    RyLegacyFractions f;
    for (size_t axis = 0; axis < 3; ++axis)
        f.turn[axis] = component(driver, axis)[number];
    f.translation = component(driver, 3)[number];
    f.scale = component(driver, 4)[number];
    return f;
}

bool RyLegacyGroups::Group::isAlike(size_t driver, size_t which) const
{
    // Vertices with another pattern are in another group.
    const RyLegacyFractions &f = fixed[driver];
    return uniform || isZeroOrOne(which < 3 ? f.turn[which] : which == 3 ? f.translation : f.scale);
}

/// What is gathered while groups are made; members are kept from vertex to vertex to save their memory.
struct RyLegacyGroups::Sketch
{
    size_t firstGroup = 0; // of the owner
    std::unordered_map<std::vector<int>, int, HashOfKey> groupOfKey;
    std::vector<int> key;
    std::vector<int> drivers;
    std::vector<RyLegacyFractions> fractions;
    std::vector<std::pair<int, int>> bulges;              // parameter, driver
    std::vector<std::vector<int>> vertices;               // of each group
    std::vector<std::vector<RyLegacyFractions>> byVertex; // of each group, all drivers of a vertex in a row
};

void RyLegacyGroups::build(const RyLegacyWeights &weights)
{
    const size_t count = weights.positions().size();
    std::vector<Group> before = std::exchange(m_groups, {});
    const std::vector<char> &stays = weights.unchangedOwners();
    if (stays.empty() || m_groupOf.size() != count) {
        before.clear();
        m_groupOf.assign(count, -1);
        m_numberOf.assign(count, -1);
    }
    const bool isKnown = !before.empty();
    m_lists.resize(weights.rig().bones.size());
    size_t next = 0;
    for (int owner = 0; owner < int(m_lists.size()); ++owner) {
        const size_t first = next;
        while (next < before.size() && before[next].owner == owner)
            ++next;
        if (isKnown && stays[size_t(owner)])
            takeGroups(before, first, next);
        else
            buildOwner(weights, owner);
    }
}

void RyLegacyGroups::takeGroups(std::vector<Group> &from, size_t first, size_t last)
{
    for (size_t g = first; g < last; ++g) {
        if (g != m_groups.size()) {
            for (const int vertex : from[g].vertices)
                m_groupOf[size_t(vertex)] = int(m_groups.size());
        }
        m_groups.push_back(std::move(from[g]));
    }
}

void RyLegacyGroups::buildOwner(const RyLegacyWeights &weights, int owner)
{
    Sketch sketch;
    sketch.firstGroup = m_groups.size();
    const std::vector<int> &vertices = weights.verticesOf(owner);
    for (size_t i = 0; i < vertices.size(); ++i)
        addVertex(sketch, weights, owner, i, vertices[i]);
    layOut(sketch, m_lists[size_t(owner)]);
}

/// Lists by vertex become lists by driver and component.
void RyLegacyGroups::layOut(const Sketch &sketch, Lists &lists)
{
    using namespace RyLegacyKernels;
    const std::span<Group> groups(m_groups.begin() + long(sketch.firstGroup), m_groups.end());
    lists.vertices.clear();
    for (const std::vector<int> &vertices : sketch.vertices)
        lists.vertices.insert(lists.vertices.end(), vertices.begin(), vertices.end());
    size_t vertex = 0;
    size_t size = 0;
    for (size_t g = 0; g < groups.size(); ++g) {
        Group &group = groups[g];
        group.vertices = {lists.vertices.data() + vertex, sketch.vertices[g].size()};
        vertex += group.vertices.size();
        size += group.uniform ? 0 : group.blocks() * Lanes * group.drivers.size() * Group::Components;
        for (Bulge &bulge : group.bulges)
            bulge.shares.resize(group.blocks() * Lanes);
    }
    lists.fractions.assign(size, 0.0f);
    float *next = lists.fractions.data();
    for (size_t g = 0; g < groups.size(); ++g) {
        Group &group = groups[g];
        if (group.uniform)
            continue;
        group.fractions = next;
        const size_t drivers = group.drivers.size();
        for (size_t d = 0; d < drivers; ++d) {
            for (size_t which = 0; which < Group::Components; ++which) {
                const Fractions its = group.component(d, which);
                float *to = next + (its.first - group.fractions);
                for (size_t i = 0; i < group.vertices.size(); ++i) {
                    const RyLegacyFractions &f = sketch.byVertex[g][i * drivers + d];
                    to[i / Lanes * size_t(its.stride) + i % Lanes] = float(which < 3    ? f.turn[which]
                                                                           : which == 3 ? f.translation
                                                                                        : f.scale);
                }
            }
        }
        next += group.blocks() * Lanes * drivers * Group::Components;
    }
}

void RyLegacyGroups::addVertex(Sketch &sketch, const RyLegacyWeights &weights, int owner, size_t number, int vertex)
{
    sketch.drivers.clear();
    sketch.fractions.clear();
    sketch.bulges.clear();
    bool uniform = true;
    int wholeBelow = weights.rig().bones[size_t(owner)].parent;
    const std::vector<RyLegacySite> &sites = weights.reach().sitesOf(owner);
    for (auto site = sites.rbegin(); site != sites.rend(); ++site) {
        bool bulges = false;
        for (const int param : site->acting) {
            const float *shares = param >= 0 ? weights.bulges(param, owner) : nullptr;
            if (shares && shares[number] != 0.0f) {
                sketch.bulges.emplace_back(param, site->driver);
                bulges = true;
            }
        }
        const RyLegacyFractions fractions = asKept(weights.fractions(*site, owner, number));
        uniform = uniform && !bulges && isUniform(fractions);
        if (site->own && isWhole(fractions)) {
            wholeBelow = owner;
        } else if (!fractions.isNone()) {
            sketch.drivers.push_back(site->driver);
            sketch.fractions.push_back(fractions);
        }
    }
    sketch.key = {owner, wholeBelow, int(uniform)};
    sketch.key.insert(sketch.key.end(), sketch.drivers.begin(), sketch.drivers.end());
    for (const RyLegacyFractions &f : sketch.fractions)
        sketch.key.push_back(patternOf(f));
    sketch.key.push_back(-1);
    for (const auto &[param, driver] : sketch.bulges)
        sketch.key.push_back(param);
    const auto [found, isNew] = sketch.groupOfKey.try_emplace(sketch.key, int(m_groups.size()));
    if (isNew) {
        Group group;
        group.owner = owner;
        group.wholeBelow = wholeBelow;
        group.uniform = uniform;
        group.drivers = sketch.drivers;
        group.fixed = sketch.fractions;
        for (const auto &[param, driver] : sketch.bulges)
            group.bulges.push_back({param, driver, {}});
        m_groups.push_back(std::move(group));
        sketch.vertices.emplace_back();
        sketch.byVertex.emplace_back();
    }
    Group &group = m_groups[size_t(found->second)];
    m_groupOf[size_t(vertex)] = found->second;
    std::vector<int> &vertices = sketch.vertices[size_t(found->second) - sketch.firstGroup];
    m_numberOf[size_t(vertex)] = int(vertices.size());
    vertices.push_back(vertex);
    for (Bulge &bulge : group.bulges)
        bulge.shares.push_back(weights.bulges(bulge.param, owner)[number]);
    if (!uniform) {
        std::vector<RyLegacyFractions> &list = sketch.byVertex[size_t(found->second) - sketch.firstGroup];
        list.insert(list.end(), sketch.fractions.begin(), sketch.fractions.end());
    }
}

void RyLegacyGroups::setFurtherNormals(const std::vector<int> &vertices)
{
    for (Group &group : m_groups) {
        group.furtherNormals.clear();
        group.furtherVertices.clear();
    }
    for (size_t i = 0; i < vertices.size(); ++i) {
        const int vertex = vertices[i];
        if (vertex < 0 || size_t(vertex) >= m_groupOf.size() || groupOf(vertex) < 0)
            continue;
        Group &group = m_groups[size_t(groupOf(vertex))];
        group.furtherNormals.push_back(int(m_groupOf.size() + i));
        group.furtherVertices.push_back(numberOf(vertex));
    }
}
