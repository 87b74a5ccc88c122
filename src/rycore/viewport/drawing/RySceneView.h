#pragma once

#include "rycore/viewport/RyRenderOptions.h"
#include "rycore/viewport/RyViewMatrices.h"

/// From where and how the scene is looked at.
struct RySceneView
{
    RyViewMatrices matrices;
    RyRenderOptions options;
    /// In device pixels.
    int width = 0;
    int height = 0;

    bool operator==(const RySceneView &) const = default;
};
