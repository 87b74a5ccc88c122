#pragma once

#include "rycore/parametric/RyBendAngles.h"

#include <functional>

class RyCamera;
class RyLegacyJointParam;
class RyNode;

/// What a drag is made for, as it stands at the press.
struct RyDragContext
{
    using SetAngle = std::function<void(int index, float radians, const RyBendAngles::Values &start)>;

    RyNode *node = nullptr;                // whose handles are drawn
    RyLegacyJointParam *param = nullptr;   // the current one of the node's joint
    RyLegacyJointParam *partner = nullptr; // of the same kind, edited with it; or null
    const RyCamera *camera = nullptr;      // of the viewport that was pressed
    /// Sets an angle (0 to 3 for A to D, radians) of the current bend parameter and what goes along with it; all four
    /// start from where they were at the press, in degrees.
    SetAngle setAngle = {};
};
