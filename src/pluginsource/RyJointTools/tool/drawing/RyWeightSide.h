#pragma once

#include <array>

class RyLegacyJointParam;
struct RyJointState;

/// One side of a joint in the drawing of a parameter's weights: the parameter on the face group of its own joint,
/// beside its partner, whose weights show there where they are larger.
struct RyWeightSide
{
    RyLegacyJointParam *param = nullptr;
    RyLegacyJointParam *partner = nullptr;
    // Instead of the dynamic colour where it acts fully it has the static one.
    bool isReversed = false;
    bool isPartnerReversed = false;

    /// That of the current parameter and that of its partner; without a parameter where there is none.
    static std::array<RyWeightSide, 2> of(const RyJointState &joint);
};
