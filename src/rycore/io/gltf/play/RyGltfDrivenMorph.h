#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"

/// A morph whose value a clip drives.
struct RyGltfDrivenMorph
{
    QPointer<RyMorph> morph;
    std::shared_ptr<const RyGltfCurve> curve; ///< one number

    /// Those of a clip. Where several nodes show parts of a morph, the first that is driven counts.
    static std::vector<RyGltfDrivenMorph> allOf(const RyGltfOrigin &origin, const RyGltfClips &clips,
                                                const RyGltfClip &clip);
};
