#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"

#include "rycore/math/RyLine3.h"
#include "rycore/scene/RyCamera.h"

#include <cmath>

static RyLine3 lineOfSight(const RyVec3 &place, const RyCamera &camera)
{
    return {camera.isOrthographic() ? place - camera.viewDirection() : camera.getWSPos(), place};
}

bool isAlongView(const RyLine3 &line, const RyCamera *camera)
{
    return camera && line.isParallelTo(lineOfSight(line.getOrigin(), *camera));
}

bool isEdgeOn(const RyVec3 &place, const RyVec3 &normal, const RyCamera *camera)
{
    constexpr float sine = 0.0262f; // the angle at which lines count as parallel
    return camera && std::abs(lineOfSight(place, *camera).getDirection().dot(normal.normalized())) < sine;
}
