#pragma once

#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyQuat.h"
#include "rycore/math/RyRotationOrder.h"
#include "rycore/math/RyVec3.h"

#include <array>
#include <vector>

class RyLegacyBinding;
class RyNode;
class RySkeleton;

/// What one bone's pose controls say, all at rest by default.
struct RyLegacyControls
{
    std::array<double, 3> turn{};         // about bone axis X, Y, Z, radians
    std::array<double, 3> translation{};  // centimetres
    std::array<double, 3> scale{1, 1, 1}; // along the bone axes, general scale included
    bool operator==(const RyLegacyControls &) const = default;
};

/// A parametric figure at rest as the maths sees it: bones, parameters, and which bone owns each vertex. A copy of
/// values: nothing here looks at the scene.
struct RyLegacyRig
{
    struct Bone
    {
        int parent = -1; // index of the bone above; -1 for one right below the skeleton
        RyVec3 origin;
        RyVec3 end;
        RyQuat orientation;
        RyRotationOrder order;
        bool inheritsScale = true;
        bool hasGroup = false; // a face group is paired with it
        bool operator==(const Bone &) const = default;
    };
    struct Param
    {
        int type = 0;       // RyLegacyJointParam::Type
        unsigned flags = 0; // RyLegacyJointParam::Flag
        int axis = 0;
        int bone = -1;   // whose joint it is on
        int driver = -1; // -1: gone; it then acts on nothing
        RyMatrix4 dynamicMatrix;
        RyMatrix4 staticMatrix;
        std::vector<float> values; // of its controllers, in their order; degrees for angles
        bool operator==(const Param &) const = default;
    };
    std::vector<Bone> bones;   // parents before children: the order of `bonesOf`
    std::vector<Param> params; // in the order of joints, then of parameters
    std::vector<int> owners;   // index of a bone for each vertex

    static RyLegacyRig of(const RyLegacyBinding &binding, const RySkeleton &skeleton);
    /// The bones of the figure in tree order; then those that joined another skeleton, each with all nodes above it
    /// there, which move it as bones without parameters do.
    static std::vector<RyNode *> bonesOf(const RyLegacyBinding *binding, const RySkeleton &skeleton);
    /// What the bones' pose controls say at present, one for each bone; a played clip counts as controls.
    static std::vector<RyLegacyControls> controlsOf(const RySkeleton &skeleton);
};
