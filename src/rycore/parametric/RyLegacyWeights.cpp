#include "rycore/parametric/RyLegacyWeights.h"

#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

/// Whether vertices have the same owners and reach the same bones.
bool sameTree(const RyLegacyRig &a, const RyLegacyRig &b)
{
    return a.owners == b.owners && std::equal(a.bones.begin(), a.bones.end(), b.bones.begin(), b.bones.end(),
                                              [](const RyLegacyRig::Bone &x, const RyLegacyRig::Bone &y) {
                                                  return x.parent == y.parent && x.hasGroup == y.hasGroup;
                                              });
}

bool samePlace(const RyLegacyRig::Bone &a, const RyLegacyRig::Bone &b)
{
    return a.origin == b.origin && a.end == b.end && a.orientation == b.orientation;
}

bool sameWeights(const RyLegacyRig &a, const RyLegacyRig::Param &inA, const RyLegacyRig &b,
                 const RyLegacyRig::Param &inB)
{
    return inA == inB && (inA.driver < 0 || samePlace(a.bones[size_t(inA.driver)], b.bones[size_t(inA.driver)]));
}

} // namespace

bool RyLegacyWeights::update(const RyLegacyRig &rig, const std::vector<RyVec3> &positions)
{
    const bool samePositions = positions == m_positions;
    const bool treeStays = sameTree(rig, m_rig) && positions.size() == m_positions.size();
    if (samePositions && treeStays && rig.bones == m_rig.bones && rig.params == m_rig.params)
        return false;
    const std::vector<char> moved = treeStays ? movedOwners(positions) : std::vector<char>();
    const RyLegacyRig old = std::exchange(m_rig, rig);
    m_positions = positions;
    m_rig.owners.resize(positions.size(), rig.bones.empty() ? -1 : 0);
    std::vector<Kept> kept = std::exchange(m_kept, std::vector<Kept>(rig.params.size()));
    if (treeStays) {
        for (Kept &each : kept) {
            for (auto *maps : {&each.weights, &each.bulges})
                std::erase_if(*maps, [&](const auto &entry) { return moved[size_t(entry.first)]; });
        }
        takeKept(old, kept);
    } else {
        for (size_t i = 0; i < std::min(m_kept.size(), kept.size()); ++i)
            m_kept[i].builds = kept[i].builds;
        listVertices();
    }
    m_zones.clear();
    std::vector<char> decides;
    for (const RyLegacyRig::Param &param : m_rig.params) {
        m_zones.emplace_back(m_rig, param);
        decides.push_back(m_zones.back().decides());
    }
    const RyLegacyReach oldReach = std::exchange(m_reach, RyLegacyReach(m_rig, decides));
    m_unchangedOwners = treeStays ? findUnchangedOwners(old, oldReach, moved) : std::vector<char>();
    fillMissing();
    return true;
}

/// A parameter may stand at another place of the list: others came or went.
void RyLegacyWeights::takeKept(const RyLegacyRig &old, std::vector<Kept> &kept)
{
    size_t hint = 0;
    for (size_t i = 0; i < m_rig.params.size(); ++i) {
        for (size_t tried = 0; tried < kept.size(); ++tried) {
            const size_t place = (hint + tried) % kept.size();
            if (sameWeights(old, old.params[place], m_rig, m_rig.params[i])) {
                m_kept[i] = std::move(kept[place]);
                kept[place] = Kept();
                hint = place + 1;
                break;
            }
        }
        if (m_kept[i].weights.empty() && m_kept[i].builds == 0 && i < kept.size())
            m_kept[i].builds = kept[i].builds;
    }
}

void RyLegacyWeights::listVertices()
{
    m_vertices.assign(m_rig.bones.size(), {});
    for (size_t v = 0; v < m_rig.owners.size(); ++v) {
        if (m_rig.owners[v] >= 0)
            m_vertices[size_t(m_rig.owners[v])].push_back(int(v));
    }
}

std::vector<char> RyLegacyWeights::movedOwners(const std::vector<RyVec3> &positions) const
{
    std::vector<char> moved(m_rig.bones.size(), 0);
    for (size_t v = 0; v < positions.size(); ++v) {
        if (m_rig.owners[v] >= 0 && positions[v] != m_positions[v])
            moved[size_t(m_rig.owners[v])] = 1;
    }
    return moved;
}

std::vector<char> RyLegacyWeights::findUnchangedOwners(const RyLegacyRig &old, const RyLegacyReach &oldReach,
                                                       const std::vector<char> &moved) const
{
    if (old.params.size() != m_rig.params.size())
        return {};
    std::vector<char> same;
    for (size_t i = 0; i < m_rig.params.size(); ++i)
        same.push_back(sameWeights(old, old.params[i], m_rig, m_rig.params[i]));
    const auto isSame = [&same](int param) { return param < 0 || same[size_t(param)]; };
    std::vector<char> unchanged;
    for (int owner = 0; owner < int(m_rig.bones.size()); ++owner) {
        const std::vector<RyLegacySite> &sites = m_reach.sitesOf(owner);
        unchanged.push_back(!moved[size_t(owner)] && sites == oldReach.sitesOf(owner) &&
                            std::all_of(sites.begin(), sites.end(), [&](const RyLegacySite &site) {
                                return isSame(site.smooth) &&
                                       std::all_of(std::begin(site.acting), std::end(site.acting), isSame);
                            }));
    }
    return unchanged;
}

void RyLegacyWeights::fillMissing()
{
    struct Piece
    {
        const RyLegacyParamZones *zones;
        const std::vector<int> *vertices;
        std::vector<float> *values;
        bool bulge;
        size_t first;
        size_t last;
    };
    std::vector<Piece> pieces;
    std::vector<char> made(m_kept.size(), 0);
    const auto want = [&](int param, int owner, bool bulge) {
        Kept &kept = m_kept[size_t(param)];
        std::vector<float> &values = (bulge ? kept.bulges : kept.weights)[owner];
        const std::vector<int> &vertices = verticesOf(owner);
        if (values.size() == vertices.size())
            return;
        values.resize(vertices.size());
        made[size_t(param)] = 1;
        constexpr size_t PieceSize = 1024;
        for (size_t first = 0; first < vertices.size(); first += PieceSize)
            pieces.push_back({&m_zones[size_t(param)], &vertices, &values, bulge, first,
                              std::min(first + PieceSize, vertices.size())});
    };
    for (int owner = 0; owner < int(m_rig.bones.size()); ++owner) {
        for (const RyLegacySite &site : m_reach.sitesOf(owner)) {
            for (const int param : site.acting) {
                if (param >= 0 && m_zones[size_t(param)].decides())
                    want(param, owner, false);
                if (param >= 0 && m_zones[size_t(param)].bulges())
                    want(param, owner, true);
            }
            if (site.smooth >= 0)
                want(site.smooth, owner, false);
        }
    }
    for (size_t i = 0; i < made.size(); ++i)
        m_kept[i].builds += made[i];
    RyParallel::forRanges(pieces.size(), 4, [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i) {
            const Piece &piece = pieces[i];
            for (size_t k = piece.first; k < piece.last; ++k) {
                const RyVec3 &at = m_positions[size_t((*piece.vertices)[k])];
                const double p[3] = {at.x, at.y, at.z};
                (*piece.values)[k] = float(piece.bulge ? piece.zones->bulge(p) : piece.zones->weight(p));
            }
        }
    });
}

const float *RyLegacyWeights::bulges(int param, int owner) const
{
    const auto found = m_kept[size_t(param)].bulges.find(owner);
    return found == m_kept[size_t(param)].bulges.end() ? nullptr : found->second.data();
}

RyLegacyFractions RyLegacyWeights::fractions(const RyLegacySite &site, int owner, size_t number) const
{
    return site.fractions([&](int param) { return double(weights(param, owner)[number]); });
}

RyLegacyFractions RyLegacyWeights::fractions(const RyLegacySite &site, const double p[3]) const
{
    return site.fractions([&](int param) { return zones(param).weight(p); });
}
