#include "rycore/parametric/fit/RyLegacyFitVertex.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

namespace {

double meanTurn(const RyLegacyFractions &by)
{
    return (by.turn[0] + by.turn[1] + by.turn[2]) / 3.0;
}

} // namespace

/// How far the vertex follows a bone and all bones above it.
double RyLegacyFitVertex::wholeOf(const RyLegacyRig &rig, int bone) const
{
    double whole = 1.0;
    for (; bone >= 0 && whole > 0.0; bone = rig.bones[size_t(bone)].parent) {
        const auto part = std::find_if(parts.begin(), parts.end(), [bone](const auto &p) { return p.bone == bone; });
        whole *= part == parts.end() ? 0.0 : meanTurn(part->by);
    }
    return whole;
}

void RyLegacyFitVertex::findLower(const RyLegacyRig &rig)
{
    std::vector<int> parents; // of each part, its place
    for (const RyLegacyPose::Part &part : parts) {
        size_t above = parts.size();
        for (int bone = rig.bones[size_t(part.bone)].parent; bone >= 0 && above == parts.size();
             bone = rig.bones[size_t(bone)].parent) {
            const auto is = [bone](const RyLegacyPose::Part &each) { return each.bone == bone; };
            above = size_t(std::find_if(parts.begin(), parts.end(), is) - parts.begin());
        }
        parents.push_back(int(above));
    }
    // From the root on, as long as one bone alone goes on from the last.
    size_t end = parts.size();
    for (size_t at = parts.size(); at-- > 0 && parts[at].by == RyLegacyFractions::all();) {
        const auto hangs = [&](int parent) { return parent == int(at) + 1; };
        if (std::count_if(parents.begin(), parents.end(), hangs) != 1 || !hangs(parents[at]))
            break;
        end = at;
        wholeFrom = parts[at].bone;
    }
    lower.assign(parts.begin(), parts.begin() + std::ptrdiff_t(end));
}

RyLegacyFitVertex::RyLegacyFitVertex(const RyLegacyRig &rig, int owner, std::vector<RyLegacyPose::Part> movers)
    : parts(std::move(movers))
{
    std::map<int, double> shares; // of the bones that move it, and of the owner
    shares[owner] = 0.0;
    std::set<int> candidates{owner};
    for (const RyLegacyPose::Part &part : parts) {
        const int parent = rig.bones[size_t(part.bone)].parent;
        const double whole = wholeOf(rig, part.bone);
        shares[part.bone] += whole;
        if (parent >= 0)
            shares[parent] -= whole;
        if (part.by == RyLegacyFractions::all())
            continue;
        partly.push_back(part.bone);
        candidates.insert(part.bone);
        if (parent >= 0)
            candidates.insert(parent);
    }
    findLower(rig);
    double sum = 0.0;
    for (auto &[bone, share] : shares) {
        share = share > 1e-9 ? share : 0.0;
        sum += share;
        if (share > 0.0)
            candidates.insert(bone);
    }
    if (!(sum > 0.0))
        shares[owner] = sum = 1.0;
    if (partly.empty() && candidates.size() > 1) // the owner rests, what is above it has the vertex
        std::erase_if(candidates, [&](int bone) { return !(shares[bone] > 0.0); });
    std::sort(partly.begin(), partly.end());
    for (const int bone : candidates) {
        bones.push_back(bone);
        plain.push_back(shares[bone] / sum);
    }
}
