#include "pluginsource/RyJointTools/tool/drawing/drawCone.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/math/RyMatrix4.h"
#include "rycore/viewport/RyViewVolume.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>

static constexpr float conePixels = 50.0f;
static constexpr float maxConeSize = 6.0f;
static constexpr int rimPoints = 11; // the last one closes the rim
static constexpr double rimStep = 36.0 * RyFastMath::RadiansPerDegree;

float coneSizeAt(const RyViewVolume &volume, const RyVec3 &place)
{
    return std::min(volume.lengthOf(conePixels, place), maxConeSize);
}

void drawCone(const RyMatrix4 &toWorld, const RyVec3 &base, int axis, float size)
{
    const RyVec3 sideways = RyVec3::axis((axis + 1) % 3);
    const RyVec3 upwards = RyVec3::axis((axis + 2) % 3);
    std::array<RyVec3, rimPoints> rim;
    for (int i = 0; i < rimPoints; ++i) {
        float sine, cosine;
        RyFastMath::sinAndCos(float(i * rimStep), sine, cosine);
        const RyVec3 spoke = (sideways * cosine + upwards * sine) * (size / 10.0f);
        rim[size_t(i)] = toWorld.multVecMatrix(base + spoke);
    }
    glBegin(GL_TRIANGLE_FAN);
    putVertex(toWorld.multVecMatrix(base + RyVec3::axis(axis) * (size / 4.0f)));
    for (const RyVec3 &point : rim)
        putVertex(point);
    glEnd();
    glBegin(GL_POLYGON);
    for (const RyVec3 &point : rim)
        putVertex(point);
    glEnd();
}
