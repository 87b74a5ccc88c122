#include "rycore/parametric/fit/RyLegacyFitVertex.h"

#include <algorithm>

namespace {

using Part = RyLegacyPose::Part;

double meanTurn(const RyLegacyFractions &by)
{
    return (by.turn[0] + by.turn[1] + by.turn[2]) / 3.0;
}

/// For each part the place of the nearest bone above it that moves the vertex, too; their number for none.
std::vector<size_t> placesAbove(const RyLegacyRig &rig, const std::vector<Part> &parts)
{
    std::vector<size_t> above(parts.size(), parts.size());
    for (size_t i = 0; i < parts.size(); ++i) {
        for (int bone = rig.bones[size_t(parts[i].bone)].parent; bone >= 0 && above[i] == parts.size();
             bone = rig.bones[size_t(bone)].parent) {
            above[i] = i + 1;
            while (above[i] < parts.size() && parts[above[i]].bone != bone)
                ++above[i];
        }
    }
    return above;
}

/// Whether a bone and all above it move the vertex, wholly, and nothing else.
bool isChain(const RyLegacyRig &rig, const std::vector<Part> &parts)
{
    for (size_t i = 0; i < parts.size(); ++i) {
        const int next = i + 1 < parts.size() ? parts[i + 1].bone : -1;
        if (rig.bones[size_t(parts[i].bone)].parent != next || !(parts[i].by == RyLegacyFractions::all()))
            return false;
    }
    return !parts.empty();
}

/// What some bones have of a vertex, ascending.
class Shares
{
public:
    double &of(int bone)
    {
        const auto isBelow = [](const auto &share, int its) { return share.first < its; };
        auto place = std::lower_bound(m_list.begin(), m_list.end(), bone, isBelow);
        if (place == m_list.end() || place->first != bone)
            place = m_list.insert(place, {bone, 0.0});
        return place->second;
    }
    std::vector<std::pair<int, double>> &list() { return m_list; }

private:
    std::vector<std::pair<int, double>> m_list;
};

} // namespace

/// How far the vertex follows the bone of each part and all bones above it.
std::vector<double> RyLegacyFitVertex::wholes(const RyLegacyRig &rig, const std::vector<size_t> &above) const
{
    std::vector<double> wholes(parts.size());
    for (size_t i = parts.size(); i-- > 0;) {
        const int parent = rig.bones[size_t(parts[i].bone)].parent;
        const bool goesOn = above[i] < parts.size() && parts[above[i]].bone == parent;
        wholes[i] = meanTurn(parts[i].by) * (parent < 0 ? 1.0 : goesOn ? wholes[above[i]] : 0.0);
    }
    return wholes;
}

void RyLegacyFitVertex::findLower(const std::vector<size_t> &above)
{
    std::vector<int> hanging(parts.size() + 1, 0);
    for (const size_t place : above)
        ++hanging[place];
    // From the root on, as long as one bone alone goes on from the last.
    size_t end = parts.size();
    while (end > 0 && parts[end - 1].by == RyLegacyFractions::all() && above[end - 1] == end && hanging[end] == 1)
        wholeFrom = parts[--end].bone;
    lower.assign(parts.begin(), parts.begin() + std::ptrdiff_t(end));
}

RyLegacyFitVertex::RyLegacyFitVertex(const RyLegacyRig &rig, int owner, std::vector<Part> movers)
    : parts(std::move(movers))
{
    if (isChain(rig, parts)) { // as most are
        bones = {parts.front().bone};
        plain = {1.0};
        parts.clear();
        parts.shrink_to_fit();
        return;
    }
    const std::vector<size_t> above = placesAbove(rig, parts);
    const std::vector<double> whole = wholes(rig, above);
    findLower(above);
    Shares shares; // of the bones that move it, and of the owner
    shares.of(owner) = 0.0;
    bones = {owner};
    // Of a chain that moves it wholly the lowest one has all.
    const bool isChained = lower.size() < parts.size() && whole[lower.size()] == 1.0;
    if (isChained)
        shares.of(wholeFrom) = 1.0;
    for (size_t i = 0; i < (isChained ? lower.size() : parts.size()); ++i) {
        const Part &part = parts[i];
        const int parent = rig.bones[size_t(part.bone)].parent;
        shares.of(part.bone) += whole[i];
        if (parent >= 0)
            shares.of(parent) -= whole[i];
        if (part.by == RyLegacyFractions::all())
            continue;
        partly.push_back(part.bone);
        bones.push_back(part.bone);
        if (parent >= 0)
            bones.push_back(parent);
    }
    double sum = 0.0;
    for (auto &[bone, share] : shares.list()) {
        share = share > 1e-9 ? share : 0.0;
        sum += share;
        if (share > 0.0)
            bones.push_back(bone);
    }
    if (!(sum > 0.0))
        shares.of(owner) = sum = 1.0;
    std::sort(bones.begin(), bones.end());
    bones.erase(std::unique(bones.begin(), bones.end()), bones.end());
    if (partly.empty() && bones.size() > 1) // the owner rests, what is above it has the vertex
        std::erase_if(bones, [&](int bone) { return !(shares.of(bone) > 0.0); });
    std::sort(partly.begin(), partly.end());
    for (const int bone : bones)
        plain.push_back(shares.of(bone) / sum);
}
