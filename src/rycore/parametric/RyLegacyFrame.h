#pragma once

#include "rycore/parametric/RyLegacyGroups.h"
#include "rycore/parametric/RyLegacyKernels.h"
#include "rycore/parametric/RyLegacyPose.h"

#include <vector>

/// The groups of a figure's vertices in one pose, ready to be moved. Looks at weights and groups, which have to stay.
class RyLegacyFrame
{
public:
    /// `normals`: whether normals are going to be asked for.
    RyLegacyFrame(const RyLegacyWeights &weights, const RyLegacyGroups &groups,
                  const std::vector<RyLegacyControls> &controls, bool normals);

    const RyLegacyPose &pose() const { return m_pose; }
    /// Has to be called for a group, once, before it is moved.
    void prepare(int group);
    /// Nothing moves it; points stay what they are.
    bool isAtRest(int group) const { return m_plans[size_t(group)].how == Plan::Stay; }
    /// `first` and `count` of the vertices of the group.
    void movePoints(int group, int first, int count, const RyVec3 *in, RyVec3 *out) const;
    void moveNormals(int group, int first, int count, const RyVec3 *in, RyVec3 *out) const;
    /// Normals that stand behind those of the vertices, of all the group.
    void moveFurtherNormals(int group, const RyVec3 *in, RyVec3 *out) const;

private:
    using Group = RyLegacyGroups::Group;
    struct Plan
    {
        enum How { Stay, Map, Steps, OneByOne } how = Stay;
        RyAffine map; // of all vertices, or what follows the steps
        RyAffine normalMap;
        std::vector<RyLegacyKernels::Step> steps;
        std::vector<RyLegacyKernels::Step> normalSteps;
        std::vector<RyLegacyKernels::Bulge> bulges;
        std::vector<RyLegacyPose::Part> parts; // one by one: all bones, children before parents
    };
    /// Places of points, and which vertices of their group these are: listed, or in a row.
    struct Elements
    {
        const int *places;
        const int *numbers;
        int firstNumber;
        int count;
    };
    void addBulges(const Group &group, Plan &plan) const;
    void addSteps(const Group &group, Plan &plan, bool normals) const;
    RyLegacyKernels::Step makeStep(const Group &group, size_t driver, bool normals) const;
    std::vector<RyLegacyPose::Part> partsOf(const Group &group) const;
    RyLegacyKernels::Task taskFor(const Plan &plan, const Elements &elements, bool normals, const RyVec3 *in,
                                  RyVec3 *out) const;
    void run(RyLegacyKernels::Task task) const;
    void move(int group, const Elements &elements, bool normals, const RyVec3 *in, RyVec3 *out) const;
    void moveOneByOne(const Group &group, const Plan &plan, const Elements &elements, bool normals, const RyVec3 *in,
                      RyVec3 *out) const;

    const RyLegacyWeights &m_weights;
    const RyLegacyGroups &m_groups;
    RyLegacyPose m_pose;
    bool m_normals;
    bool m_anyApart = false;
    std::vector<RyAffine> m_wholeMaps; // of what follows a bone wholly and all above
    std::vector<RyAffine> m_wholeNormalMaps;
    std::vector<char> m_wholeAtRest;
    std::vector<Plan> m_plans;
};
