#pragma once

#include "rycore/math/RyVec3.h"

#include <QtGlobal>

/// Inner loops of the skin deformer: the images of points under blended maps, those of their normals with them.
namespace RySkinKernels {

/// X - 1 of a channel: four rows of three floats, and behind each of the first three one of the last row's, which is
/// the translation. In one cache line.
struct alignas(64) Delta
{
    float rows[16] = {};
};
/// Channels are told by offsets in such units, which processors multiply within an address.
constexpr unsigned UnitsOfDelta = sizeof(Delta) / 8;

enum class Output { Positions, Normals, Both };

/// `count` elements with `influences` entries each, in one of two widths of offsets (the other one null). Element i
/// stands at `places[i]`, ascending, or at `firstPlace + i` where there is no list. What one vertex gets does not
/// depend on what else the task holds.
struct Task
{
    const RyVec3 *restPositions;
    const RyVec3 *restNormals;
    RyVec3 *positions;
    RyVec3 *normals; // of any length
    const Delta *deltas;
    const int *places;
    int firstPlace;
    const quint16 *offsets; // of deltas, see UnitsOfDelta
    const quint32 *wideOffsets;
    const float *weights;
    int count;
    int influences;
    Output output;
};

/// For any processor.
void blendPlain(const Task &task);
/// Only where `hasAvx2()`.
void blendAvx2(const Task &task);
bool hasAvx2();

} // namespace RySkinKernels
