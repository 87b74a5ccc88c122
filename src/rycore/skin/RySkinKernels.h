#pragma once

#include "rycore/math/RyVec3.h"

#include <QtGlobal>

/// Inner loops of the skin deformer. `deltas` holds four rows of four floats per channel, aligned to 64 bytes;
/// `vertices`, `offsets` (in bytes, to the channel's rows) and `weights` describe `count` vertices with `influences`
/// entries each.
namespace RySkinKernels {

struct Task
{
    const RyVec3 *rest;
    RyVec3 *out;
    const float *deltas;
    const int *vertices;
    const quint32 *offsets;
    const float *weights;
    int count;
    int influences;
};

/// For any processor.
void blendPlain(const Task &task);
/// Only where `hasAvx2()`.
void blendAvx2(const Task &task);
bool hasAvx2();

} // namespace RySkinKernels
