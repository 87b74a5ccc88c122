#include "rycore/parametric/RyLegacyReach.h"

#include "rycore/parametric/RyLegacyJointParam.h"

using Param = RyLegacyJointParam;

RyLegacyReach::RyLegacyReach(const RyLegacyRig &rig, const std::vector<char> &decides)
{
    const int count = int(rig.bones.size());
    m_paramsOfJoint.resize(rig.bones.size());
    for (size_t i = 0; i < rig.params.size(); ++i) {
        if (rig.params[i].bone >= 0)
            m_paramsOfJoint[size_t(rig.params[i].bone)].push_back(int(i));
    }
    for (int b = 0; b < count; ++b) {
        m_parents.push_back(rig.bones[size_t(b)].parent);
        m_hasGroup.push_back(rig.bones[size_t(b)].hasGroup);
    }
    std::vector<char> owns(rig.bones.size(), 0);
    for (const int owner : rig.owners) {
        if (owner >= 0)
            owns[size_t(owner)] = 1;
    }
    m_sites.resize(rig.bones.size());
    for (int driver = 0; driver < count; ++driver) {
        if (owns[size_t(driver)])
            m_sites[size_t(driver)].push_back(siteOf(rig, decides, driver, true));
        for (int b = m_parents[size_t(driver)]; b >= 0; b = m_parents[size_t(b)]) {
            if (owns[size_t(b)])
                m_sites[size_t(b)].push_back(siteOf(rig, decides, driver, false));
            if (m_hasGroup[size_t(b)])
                break;
        }
    }
}

bool RyLegacyReach::isAbove(int bone, int below) const
{
    while (below > bone)
        below = m_parents[size_t(below)];
    return below == bone;
}

RyLegacyReach::Side RyLegacyReach::side(int driver, int owner) const
{
    if (driver == owner)
        return Side::Own;
    if (owner < 0)
        return Side::Nothing;
    if (isAbove(driver, owner))
        return Side::Whole;
    if (!isAbove(owner, driver))
        return Side::Nothing;
    int b = m_parents[size_t(driver)];
    while (b != owner && !m_hasGroup[size_t(b)])
        b = m_parents[size_t(b)];
    return b == owner ? Side::Parents : Side::Nothing;
}

RyLegacySite RyLegacyReach::siteOf(const RyLegacyRig &rig, const std::vector<char> &decides, int driver, bool own) const
{
    RyLegacySite site;
    site.driver = driver;
    site.own = own;
    const int parent = m_parents[size_t(driver)];
    const auto paramsOf = [this](int joint) {
        return joint >= 0 ? m_paramsOfJoint[size_t(joint)] : std::vector<int>();
    };
    for (const int index : paramsOf(own ? driver : parent)) {
        const RyLegacyRig::Param &param = rig.params[size_t(index)];
        const bool turns = param.type == Param::Bend || param.type == Param::Twist;
        if (!turns || param.driver != driver || site.acting[param.axis] >= 0)
            continue;
        site.acting[param.axis] = index;
        RyLegacySite::Turn &turn = site.turns[param.axis];
        turn.param = decides[size_t(index)] ? index : -1;
        turn.fixed = param.type == Param::Bend;
        turn.value = param.flags & Param::Flipped ? 0.0 : 1.0;
        if (param.type == Param::Bend && decides[size_t(index)])
            site.bends.push_back(index);
    }
    const auto findSmooth = [&](int joint, int itsDriver) {
        for (const int index : paramsOf(joint)) {
            const RyLegacyRig::Param &param = rig.params[size_t(index)];
            if (param.type == Param::SmoothScale && param.driver == itsDriver && itsDriver >= 0)
                return decides[size_t(index)] ? index : -1;
        }
        return -1;
    };
    site.smooth = findSmooth(driver, parent);
    site.smoothIsParents = site.smooth >= 0;
    if (site.smooth < 0)
        site.smooth = findSmooth(parent, driver);
    return site;
}
