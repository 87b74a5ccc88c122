#pragma once

#include "rycore/parametric/fit/RyLegacyFitInput.h"

#include <QString>

/// A pose in which weights are fitted or measured.
struct RyLegacyFitPose
{
    std::vector<RyLegacyControls> controls; // of all bones
    std::vector<int> moved; // drivers of which it moves anything; a vertex that all others move is exact
    QString name;
    bool isRandom = false; // measured only
};

/// For each driver and axis the control at its limits and at half of them, one pose for each pair of neighbouring
/// drivers, the scales 0.8 and 1.25 where zones share it, and random ones, the same every time.
/// `drivers`: bones that move some vertices partly.
std::vector<RyLegacyFitPose> ryLegacyFitPoses(const RyLegacyFitInput &input, const std::vector<int> &drivers);
