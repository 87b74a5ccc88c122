#pragma once

#include "rycore/parametric/fit/RyLegacyFitInput.h"
#include "rycore/parametric/fit/RyLegacyFitReport.h"
#include "rycore/scene/RyBone.h"

#include <QPointer>
#include <QtGlobal>

#include <vector>

/// Weights with which an ordinary skin comes near to what the joints of a parametric figure do.
struct RyLegacyFit
{
    struct Bone
    {
        QPointer<RyBone> bone;
        std::vector<int> vertices; // ascending
        std::vector<quint16> weights;
    };
    std::vector<Bone> bones; // those of the rig, in its order; the weights of a vertex sum to full weight
    RyLegacyFitInput input;  // what it was made from
    bool isPlain = false;    // plain averages: the fit was cancelled
    RyLegacyFitReport report;
};
