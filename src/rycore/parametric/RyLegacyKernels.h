#pragma once

#include "rycore/math/RyVec3.h"

/// Inner loops of the deformer of joint parameters: several vertices of one group at a time, in double precision.
namespace RyLegacyKernels {

/// Vertices that a loop takes at once.
constexpr int Lanes = 16;

/// One bone that moves the vertices (see RyLegacyMotion). What is the same for all of them is multiplied together: each
/// turn that they take in part is followed by a matrix of what stands between it and the next one.
struct Step
{
    struct Turn
    {
        int axis;
        double angle;
        const float *fractions; // of each vertex of the group
        bool isFollowed;        // the matrix is not the identity
        double next[3][3];
    };
    double origin[3];
    double first[3][3]; // before the first turn
    Turn turns[3];
    int turnCount;
    double moved[3]; // origin and the part of the translation that all take
    double translation[3];
    const float *translationFractions; // null where all take the same
    double scale[3];
    const float *scaleFractions; // null where all take the same; otherwise `first` ends in bone axes
    int target;                  // the step that its push goes to; the number of steps for the result
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
