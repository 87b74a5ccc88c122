#pragma once

#include "rycore/math/RyVec3.h"

/// Inner loops of the deformer of joint parameters: several vertices of one group at a time, in double precision.
namespace RyLegacyKernels {

/// Vertices that a loop takes at once.
constexpr int Lanes = 16;

/// One bone that moves the vertices (see RyLegacyMotion).
struct Step
{
    double origin[3];
    double toAxes[3][3];
    int order[3];
    double turn[3]; // about X, Y, Z
    double translation[3];
    double scale[3];
    bool isScaled;
    int target;                // the step that its push goes to; the number of steps for the result
    const float *fractions[5]; // turns, translation, scale; one for each vertex of the group
};

/// Pushes vertices away from a line before anything else moves them.
struct Bulge
{
    double origin[3];
    double line[3];   // unit vector
    double factor[2]; // on the side of A, of D: of the distance from the line for a share of 1
    const float *shares;
};

struct Task
{
    const Step *steps;
    int stepCount;
    const Bulge *bulges;
    int bulgeCount;
    double last[4][3];  // what follows all steps, an affine map
    bool normals;       // directions instead of points
    const RyVec3 *in;   // by place
    RyVec3 *out;        // by place
    const int *places;  // of the elements
    const int *numbers; // of their vertices within the group; null: those from firstNumber on
    int firstNumber;
    int count;
    double *room; // 3 * Lanes for each step and the result
};

/// For any processor.
void movePlain(const Task &task);
/// Only where RySkinKernels::hasAvx2().
void moveAvx2(const Task &task);

} // namespace RyLegacyKernels
