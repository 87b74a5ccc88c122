#include "rycore/parametric/RyLegacyFrame.h"

#include <algorithm>

using Group = RyLegacyGroups::Group;

RyLegacyFrame::RyLegacyFrame(const RyLegacyWeights &weights, const RyLegacyGroups &groups,
                             const std::vector<RyLegacyControls> &controls, bool normals)
    : m_weights(weights), m_groups(groups), m_pose(weights.rig(), controls), m_normals(normals)
{
    const std::vector<RyLegacyRig::Bone> &bones = weights.rig().bones;
    m_wholeMaps.resize(bones.size() + 1);
    m_wholeNormalMaps.resize(normals ? bones.size() + 1 : 0);
    m_wholeAtRest.assign(bones.size() + 1, 1);
    for (size_t b = 0; b < bones.size(); ++b) {
        const auto above = size_t(bones[b].parent + 1);
        const RyLegacyMotion &motion = m_pose.motion(int(b));
        const bool rests = motion.isAtRest();
        m_wholeAtRest[b + 1] = rests && m_wholeAtRest[above];
        m_wholeMaps[b + 1] = rests ? m_wholeMaps[above] : motion.wholeMap() * m_wholeMaps[above];
        if (normals)
            m_wholeNormalMaps[b + 1] =
                rests ? m_wholeNormalMaps[above] : motion.wholeNormalMap() * m_wholeNormalMaps[above];
        m_anyApart = m_anyApart || m_pose.isScaledForItself(int(b));
    }
}

bool RyLegacyFrame::isAtRest(int number) const
{
    const Group &its = group(number);
    return m_wholeAtRest[size_t(its.wholeBelow + 1)] &&
           std::all_of(its.drivers.begin(), its.drivers.end(),
                       [this](int driver) { return m_pose.motion(driver).isAtRest(); }) &&
           std::all_of(its.bulges.begin(), its.bulges.end(), [this](const RyLegacyGroups::Bulge &bulge) {
               return m_pose.bulgeOf(rig().params[size_t(bulge.param)]).isNone();
           });
}
