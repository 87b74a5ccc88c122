#pragma once

#include "rycore/parametric/RyLegacyGroups.h"
#include "rycore/parametric/RyLegacyPose.h"

#include <vector>

/// A figure's groups of vertices and its bones in one pose. Looks at weights and groups, which have to stay.
class RyLegacyFrame
{
public:
    /// `normals`: whether normals are going to be asked for.
    RyLegacyFrame(const RyLegacyWeights &weights, const RyLegacyGroups &groups,
                  const std::vector<RyLegacyControls> &controls, bool normals);

    const RyLegacyRig &rig() const { return m_weights.rig(); }
    const RyLegacyGroups::Group &group(int number) const { return m_groups.groups()[size_t(number)]; }
    const RyLegacyPose &pose() const { return m_pose; }
    bool hasNormals() const { return m_normals; }
    /// Nothing moves the group.
    bool isAtRest(int group) const;
    /// Of what follows a bone and all above wholly, scale that is not inherited left aside; the identity for -1.
    const RyAffine &wholeMap(int bone) const { return m_wholeMaps[size_t(bone + 1)]; }
    const RyAffine &wholeNormalMap(int bone) const { return m_wholeNormalMaps[size_t(bone + 1)]; }
    /// Whether any bone is taken out of the scale of others.
    bool isAnyApart() const { return m_anyApart; }

private:
    const RyLegacyWeights &m_weights;
    const RyLegacyGroups &m_groups;
    RyLegacyPose m_pose;
    bool m_normals;
    bool m_anyApart = false;
    // Those of bones stand behind one for no bone.
    std::vector<RyAffine> m_wholeMaps;
    std::vector<RyAffine> m_wholeNormalMaps;
    std::vector<char> m_wholeAtRest;
};
