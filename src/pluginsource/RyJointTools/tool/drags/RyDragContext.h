#pragma once

#include <functional>

class RyCamera;
class RyLegacyJointParam;
class RyNode;

/// The angles of a bend parameter.
enum class RyBendAngle { StaticA, DynamicB, DynamicC, StaticD };

/// What a drag is made for, as it stands at the press.
struct RyDragContext
{
    RyNode *node = nullptr;                    // whose handles are drawn
    RyLegacyJointParam *param = nullptr;       // the current one of the node's joint
    RyLegacyJointParam *partner = nullptr;     // on the parent's joint
    RyLegacyJointParam *bendPartner = nullptr; // on the driver's joint
    const RyCamera *camera = nullptr;          // of the viewport that was pressed
    /// Sets an angle, in radians, of the current bend parameter and what goes along with it.
    std::function<void(RyBendAngle, float)> setAngle = {};
};
