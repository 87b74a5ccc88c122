#pragma once

#include "rycore/math/RyVec3.h"

#include <cstddef>

/// Inner loops of the deformer of joint parameters: several vertices of one group at a time, in double precision.
namespace RyLegacyKernels {

/// Vertices that a loop takes at once.
constexpr int Lanes = 8;

/// A fraction of each vertex of a group, in blocks of as many as a loop takes at once.
struct Fractions
{
    const float *first = nullptr;
    int stride = 0; // from block to block

    float operator[](size_t number) const { return first[number / Lanes * size_t(stride) + number % Lanes]; }
};

/// One bone that moves the vertices (see RyLegacyMotion). What is the same for all of them is multiplied together: each
/// turn that they take in part is followed by a matrix of what stands between it and the next one.
struct Step
{
    struct Turn
    {
        int axis;
        double angle;
        Fractions fractions;
        bool isFollowed; // the matrix is not the identity
        double next[3][3];
    };
    double origin[3];
    double first[3][3]; // before the first turn
    double firstOfNormals[3][3];
    Turn turns[4];
    int turnCount;
    double moved[3]; // origin and the part of the translation that all take
    double translation[3];
    Fractions translationFractions; // null where all take the same
    double scale[3];
    Fractions scaleFractions; // null where all take the same; otherwise `first` ends in bone axes
    int target;               // the step that its push goes to; the number of steps for the result
    bool isPushed;            // by a step before it
    bool pushesFirst;         // no step before it has that target
};

/// Pushes vertices away from a line before anything else moves them.
struct Bulge
{
    double origin[3];
    double line[3];   // unit vector
    double factor[2]; // on the side of A, of D: of the distance from the line for a share of 1
    Fractions shares;
};

/// Where something stands at rest, and where it goes to; by place.
struct Row
{
    const RyVec3 *in = nullptr;
    RyVec3 *out = nullptr;
};

/// Moves points, normals, or both at once: then they share what is read and the sines.
struct Task
{
    const Step *steps;
    int stepCount;
    const Bulge *bulges; // of points
    int bulgeCount;
    const double (*last)[3];          // what follows all steps, an affine map
    const double (*lastOfNormals)[3]; // a linear one
    Row points;                       // null: normals alone
    Row normals;                      // null: points alone
    const int *places;                // of the elements
    const int *numbers;               // of their vertices within the group; null: those from firstNumber on
    int firstNumber;                  // the first one of a block
    int count;
    double *room; // 6 * Lanes for each step and the result, at a multiple of 64 bytes
};

/// For any processor.
void movePlain(const Task &task);
/// Only where RySkinKernels::hasAvx2().
void moveAvx2(const Task &task);

} // namespace RyLegacyKernels
