#pragma once

#include <array>
#include <vector>

/// Parametric deformation of one point, written from its definition alone: plain recursion in double precision, which
/// shares no function with the library. Slow, and meant to be read beside the formulas.
namespace LegacyEvaluator {

using Vec = std::array<double, 3>;
using Quat = std::array<double, 4>; // x, y, z, w

enum Type { Bend = 0, SmoothScale = 1, Twist = 2, Curve = 3 };

struct Bone
{
    int parent = -1;
    Vec origin{};
    Vec end{};
    Quat orientation{0, 0, 0, 1};
    std::array<int, 3> order{0, 1, 2};
    bool inheritsScale = true;
    bool hasGroup = false;
};

struct Param
{
    int type = Bend;
    bool flipped = false, matrices = false, angles = false, bulges = false, blend = false, zones = false;
    bool high = false, low = false;
    int axis = 0;
    int bone = -1;
    int driver = -1;
    // Rows of affine maps of row vectors, the translation last.
    std::array<Vec, 4> dynamicMatrix{};
    std::array<Vec, 4> staticMatrix{};
    std::vector<double> values;
};

struct Controls
{
    Vec turn{};
    Vec translation{};
    Vec scale{1, 1, 1};
};

struct Figure
{
    std::vector<Bone> bones;
    std::vector<Param> params;
};

/// Where a point of figure space goes that belongs to the bone `owner`.
Vec deform(const Figure &figure, const std::vector<Controls> &controls, int owner, const Vec &point);

} // namespace LegacyEvaluator
