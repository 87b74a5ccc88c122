#pragma once

#include "rycore/scene/RyMorph.h"

#include <QPointer>

#include <vector>

/// Where a morph comes from: one of the targets of each mesh that shows a part of it.
struct RyGltfMorphSource
{
    struct Target
    {
        int node = -1; // that shows the mesh
        int mesh = -1;
        int number = -1; // in the lists of targets and weights
        bool operator==(const Target &) const = default;
    };

    QPointer<RyMorph> morph;
    std::vector<Target> targets;
    float value = 0.0f; // as it was read
};
