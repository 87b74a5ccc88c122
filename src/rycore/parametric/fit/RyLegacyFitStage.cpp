#include "rycore/parametric/fit/RyLegacyFitStage.h"

#include <algorithm>

RyLegacyFitStage::RyLegacyFitStage(const RyLegacyFitInput &input, const std::vector<int> &drivers)
    : m_inheritsScale(std::all_of(input.rig.bones.begin(), input.rig.bones.end(),
                                  [](const RyLegacyRig::Bone &bone) { return bone.inheritsScale; })),
      m_poses(ryLegacyFitPoses(input, drivers)), m_posesOf(input.rig.bones.size())
{
    for (size_t i = 0; i < m_poses.size(); ++i) {
        m_stands.emplace_back(input.rig, m_poses[i].controls);
        m_maps.push_back(mapsOf(input.rig, m_stands.back()));
        if (m_poses[i].isRandom)
            m_random.push_back(int(i));
        for (const int bone : m_poses[i].isRandom ? std::vector<int>() : m_poses[i].moved)
            m_posesOf[size_t(bone)].push_back(int(i));
    }
}

/// The map of figure space for each bone alone, wholly followed as all above it.
std::vector<RyAffine> RyLegacyFitStage::mapsOf(const RyLegacyRig &rig, const RyLegacyPose &pose) const
{
    std::vector<RyAffine> maps;
    for (int bone = 0; bone < int(rig.bones.size()); ++bone) {
        const int parent = rig.bones[size_t(bone)].parent;
        if (m_inheritsScale && parent < bone) {
            const RyAffine above = parent < 0 ? RyAffine() : maps[size_t(parent)];
            maps.push_back(pose.motion(bone).isAtRest() ? above : pose.motion(bone).wholeMap() * above);
            continue;
        }
        std::vector<RyLegacyPose::Part> chain;
        for (int above = bone; above >= 0; above = rig.bones[size_t(above)].parent)
            chain.push_back({above, RyLegacyFractions::all()});
        maps.push_back(pose.mapOf(chain));
    }
    return maps;
}

std::vector<int> RyLegacyFitStage::posesFor(const RyLegacyFitVertex &vertex, bool measured) const
{
    std::vector<int> all;
    for (const int bone : vertex.partly)
        all.insert(all.end(), m_posesOf[size_t(bone)].begin(), m_posesOf[size_t(bone)].end());
    if (measured)
        all.insert(all.end(), m_random.begin(), m_random.end());
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

void RyLegacyFitStage::stand(const RyLegacyFitVertex &vertex, const RyVec3 &rest, int pose, double *images,
                             double *target) const
{
    const double from[3] = {rest.x, rest.y, rest.z};
    const std::vector<RyAffine> &maps = m_maps[size_t(pose)];
    for (size_t i = 0; i < vertex.bones.size(); ++i)
        maps[size_t(vertex.bones[i])].mapPoint(from, images + 3 * i);
    if (m_inheritsScale && vertex.wholeFrom >= 0) {
        double moved[3];
        m_stands[size_t(pose)].mapPoint(vertex.lower, from, moved);
        maps[size_t(vertex.wholeFrom)].mapPoint(moved, target);
    } else {
        m_stands[size_t(pose)].mapPoint(vertex.parts, from, target);
    }
}
