#include "pluginsource/RyJointTools/tool/drawing/drawCube.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"

#include "rycore/math/RyMatrix4.h"
#include "rycore/viewport/RyViewVolume.h"

#include <algorithm>

static constexpr float cubePixels = 45.0f;
static constexpr float maxHalfSize = 0.5f;

float cubeSizeAt(const RyViewVolume &volume, const RyVec3 &place)
{
    return std::min(volume.lengthOf(cubePixels, place) * 0.125f, maxHalfSize);
}

void putCube(const RyMatrix4 &toWorld, float halfSize)
{
    const RyVec3 center = toWorld.translation();
    for (int axis = 0; axis < 3; ++axis) {
        const RyVec3 out = toWorld.multDirMatrix(RyVec3::axis(axis) * halfSize);
        const RyVec3 first = toWorld.multDirMatrix(RyVec3::axis((axis + 1) % 3) * halfSize);
        const RyVec3 second = toWorld.multDirMatrix(RyVec3::axis((axis + 2) % 3) * halfSize);
        for (const float side : {1.0f, -1.0f}) {
            const RyVec3 middle = center + out * side;
            // Counter-clockwise seen from outside.
            putVertex(middle - first * side - second);
            putVertex(middle + first * side - second);
            putVertex(middle + first * side + second);
            putVertex(middle - first * side + second);
        }
    }
}
