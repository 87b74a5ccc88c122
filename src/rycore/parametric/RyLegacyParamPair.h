#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

/// A parameter and its partner on the other side of the joint, edited as one, so that the two stay equal. A partner of
/// another kind counts as none. Zones of two smooth-scales are each other's mirror images: where the low one of the
/// first ends, the high one of the other starts.
class RyLegacyParamPair
{
public:
    RyLegacyParamPair(RyLegacyJointParam *param, RyLegacyJointParam *partner);
    /// With the partner that the parameter has.
    explicit RyLegacyParamPair(RyLegacyJointParam *param);

    /// Null where there is none.
    RyLegacyJointParam *partner() const { return m_partner; }
    bool isFlagSet(RyLegacyJointParam::Flag flag, bool on) const;
    /// True when something changed.
    bool setFlag(RyLegacyJointParam::Flag flag, bool on) const;
    /// A controller of the parameter or a control of one of its spheres, then the partner's one that is its equal.
    std::vector<RyFloatProperty *> both(RyFloatProperty *value) const;

private:
    RyFloatProperty *partnersOne(const RyFloatProperty *value) const;

    RyLegacyJointParam *m_param;
    RyLegacyJointParam *m_partner;
};
