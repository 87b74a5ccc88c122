#pragma once

#include "rycore/parametric/RyLegacyRig.h"

#include <vector>

/// How far one vertex follows the motions of one bone.
struct RyLegacyFractions
{
    double turn[3] = {};      // of the turn about each bone axis
    double translation = 0.0; // of the translation
    double scale = 0.0;       // of the scale; of the parent's scale the vertex takes the rest
    bool operator==(const RyLegacyFractions &) const = default;

    static RyLegacyFractions all() { return {{1, 1, 1}, 1, 1}; }
    bool isNone() const { return *this == RyLegacyFractions(); }
};

/// What decides the fractions of one bone, the driver, on the vertices of another one or its own.
///
/// A vertex belongs to one bone, its owner. It follows wholly what is above the owner. The owner's own joint says how
/// far it follows the owner. The children's motions reach it by the parameters on the joint of their parent, where that
/// is the owner or where no bone from there up to the owner has a face group. Nothing else moves it.
///
/// On each axis the first bend or twist decides. Where it has no zones, a bend counts 1, flipped 0, and a twist the
/// mean of the bends that have zones; without such a bend that mean is 1 on the own side and 0 on the parent's. That
/// mean is also what counts for the translation, for an axis without parameter, and for the scale unless a smooth-scale
/// has zones: the one that the parent drives says what is left of the parent's scale, on both sides of the joint; only
/// without it the other one says how much there is of the child's.
struct RyLegacySite
{
    /// How a fraction is found: from a parameter's zones, or it is fixed, or the mean of the bends.
    struct Turn
    {
        int param = -1;
        bool fixed = false;
        double value = 0.0;
        bool operator==(const Turn &) const = default;
    };
    int driver = -1;
    bool own = false;
    Turn turns[3];
    int acting[3] = {-1, -1, -1}; // the parameter of each axis, also one without zones
    std::vector<int> bends;       // those with zones
    int smooth = -1;
    bool smoothIsParents = false;
    bool operator==(const RyLegacySite &) const = default;

    /// `weight(param)` gives the weight of a parameter's zones at the vertex.
    template<class Weight>
    RyLegacyFractions fractions(Weight weight) const
    {
        RyLegacyFractions result;
        double sum = 0.0;
        for (const int bend : bends)
            sum += weight(bend);
        result.translation = bends.empty() ? (own ? 1.0 : 0.0) : sum / double(bends.size());
        for (int axis = 0; axis < 3; ++axis) {
            const Turn &turn = turns[axis];
            result.turn[axis] = turn.param >= 0 ? weight(turn.param) : turn.fixed ? turn.value : result.translation;
        }
        result.scale = smooth < 0 ? result.translation : smoothIsParents ? 1.0 - weight(smooth) : weight(smooth);
        return result;
    }
};

/// Which bones move the vertices of which others, and by which parameters.
class RyLegacyReach
{
public:
    enum class Side { Nothing, Whole, Own, Parents };

    RyLegacyReach() = default;
    /// `decides`: for each parameter whether it has zones.
    RyLegacyReach(const RyLegacyRig &rig, const std::vector<char> &decides);

    Side side(int driver, int owner) const;
    /// The sites of a bone's vertices, ascending by driver.
    const std::vector<RyLegacySite> &sitesOf(int owner) const { return m_sites[size_t(owner)]; }

private:
    RyLegacySite siteOf(const RyLegacyRig &rig, const std::vector<char> &decides, int driver, bool own) const;
    bool isAbove(int bone, int below) const;

    std::vector<int> m_parents;
    std::vector<char> m_hasGroup;
    std::vector<std::vector<int>> m_paramsOfJoint;
    std::vector<std::vector<RyLegacySite>> m_sites;
};
