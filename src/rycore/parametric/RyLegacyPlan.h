#pragma once

#include "rycore/parametric/RyLegacyFrame.h"
#include "rycore/parametric/RyLegacyKernels.h"

#include <vector>

/// What moves the vertices of a group in a pose: nothing, or bulges, then steps with fractions of each vertex, then one
/// map. Where scale is not inherited each vertex goes by itself.
class RyLegacyPlan
{
public:
    using Group = RyLegacyGroups::Group;
    enum class How { Stay, Together, OneByOne };

    /// Keeps the memory of the one before. The frame has to stay.
    void make(const RyLegacyFrame &frame, int group);

    How how() const { return m_how; }
    const RyAffine &map() const { return m_map; }
    const RyAffine &normalMap() const { return m_normalMap; }
    const std::vector<RyLegacyKernels::Step> &steps() const { return m_steps; }
    const std::vector<RyLegacyKernels::Bulge> &bulges() const { return m_bulges; }
    /// One by one: all bones that move them, children before parents, those with fractions first.
    const std::vector<RyLegacyPose::Part> &parts() const { return m_parts; }

private:
    void addBulges(const RyLegacyFrame &frame, const Group &group);
    void addParts(const RyLegacyFrame &frame, const Group &group, bool withWhole);
    void setMaps(const RyLegacyFrame &frame);
    void addSteps(const RyLegacyFrame &frame, const Group &group);
    void fillStep(const RyLegacyMotion &motion, const Group &group, size_t driver, RyLegacyKernels::Step &step) const;

    How m_how = How::Stay;
    RyAffine m_map;
    RyAffine m_normalMap;
    std::vector<RyLegacyKernels::Step> m_steps;
    std::vector<RyLegacyKernels::Bulge> m_bulges;
    std::vector<RyLegacyPose::Part> m_parts;
    std::vector<int> m_stepOf; // of each driver of the group, -1 for none
};
