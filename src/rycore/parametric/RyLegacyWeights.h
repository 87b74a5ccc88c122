#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/parametric/RyLegacyParamZones.h"
#include "rycore/parametric/RyLegacyReach.h"

#include <map>
#include <vector>

/// The weights of a figure's parameters on its vertices, kept from one change to the next: those of a parameter are
/// made anew only when its values, its driver's placement, the positions of its vertices, face groups or pairs differ.
class RyLegacyWeights
{
public:
    /// One position at rest for each owner of the rig. False when nothing differs from the last call.
    bool update(const RyLegacyRig &rig, const std::vector<RyVec3> &positions);

    const RyLegacyRig &rig() const { return m_rig; }
    const RyLegacyReach &reach() const { return m_reach; }
    const std::vector<RyVec3> &positions() const { return m_positions; }
    /// The bones whose vertices have the same fractions as before the last update that found a difference, for the same
    /// reasons; empty where nothing is known of that.
    const std::vector<char> &unchangedOwners() const { return m_unchangedOwners; }
    /// The vertices of a bone, ascending.
    const std::vector<int> &verticesOf(int owner) const { return m_vertices[size_t(owner)]; }
    const RyLegacyParamZones &zones(int param) const { return m_zones[size_t(param)]; }
    /// On the vertices of a bone, in step with them; of a parameter with zones that a site of that bone names.
    const float *weights(int param, int owner) const { return m_kept[size_t(param)].weights.at(owner).data(); }
    /// Shares of the bulge, the same way; null where it does not bulge.
    const float *bulges(int param, int owner) const;
    /// Of the vertex with that number among those of its owner.
    RyLegacyFractions fractions(const RyLegacySite &site, int owner, size_t number) const;
    /// Of any point of figure space at rest that belongs to that bone, not rounded.
    RyLegacyFractions fractions(const RyLegacySite &site, const double p[3]) const;
    /// How often the weights of a parameter were made.
    int builds(int param) const { return m_kept[size_t(param)].builds; }

private:
    struct Kept
    {
        std::map<int, std::vector<float>> weights; // by owner
        std::map<int, std::vector<float>> bulges;
        int builds = 0;
    };
    void takeKept(const RyLegacyRig &old, std::vector<Kept> &kept);
    void listVertices();
    std::vector<char> movedOwners(const std::vector<RyVec3> &positions) const;
    std::vector<char> findUnchangedOwners(const RyLegacyRig &old, const RyLegacyReach &oldReach,
                                          const std::vector<char> &moved) const;
    void fillMissing();

    RyLegacyRig m_rig;
    RyLegacyReach m_reach;
    std::vector<char> m_unchangedOwners;
    std::vector<RyVec3> m_positions;
    std::vector<std::vector<int>> m_vertices;
    std::vector<RyLegacyParamZones> m_zones;
    std::vector<Kept> m_kept; // in step with the parameters
};
