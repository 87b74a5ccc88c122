#include "rycore/io/gltf/clips/RyGltfMotionChange.h"

#include "rycore/io/gltf/clips/RyGltfExactChange.h"
#include "rycore/io/gltf/clips/RyGltfSampledChange.h"

#include <algorithm>

bool RyGltfMotionChange::isConstant() const
{
    const auto isDriven = [](const RyGltfMotion &motion) { return motion.isDriven(); };
    return std::none_of(down.begin(), down.end(), isDriven) && std::none_of(up.begin(), up.end(), isDriven);
}

RyGltfMotion ryGltfChanged(const RyGltfMotion &motion, const RyGltfMotionChange &change, double *missed)
{
    *missed = 0.0;
    const RyGltfSampledChange sampled(motion, change);
    if (change.isConstant()) {
        const Eigen::Affine3d after = sampled.behind(0.0f, 0.0f, 0.0);
        if (!motion.isDriven()) {
            const Eigen::Affine3d place = after * RyGltfMotionPiece(motion, 0.0f, 0.0f).map(0.0) * change.before;
            RyGltfMotion result;
            result.rest = place.matrix().allFinite() ? RyGltfParts::nearest(place, motion.rest.scale) : motion.rest;
            *missed = ryGltfDistance(place, result.rest.map(), change.reach);
            return result;
        }
        if (const auto exact = RyGltfExactChange::find(motion, change.before, after, change.tolerance, change.slack))
            return exact->apply(motion);
    }
    return sampled.apply(missed);
}
