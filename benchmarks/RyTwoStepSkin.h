#pragma once

#include "RySkinWorkload.h"

#include <memory>

/// Another way to a posed picture of a skin, to measure ours by: blends the positions alone, with lists of vertices and
/// 32-bit offsets, in two threads where there are; copies them to the object, looks whether they differ from those of
/// the last picture and keeps them; then makes all normals anew from the triangles and puts both together for an
/// upload.
class RyTwoStepSkin
{
public:
    /// For four influences. `triangles` has three vertices for each.
    RyTwoStepSkin(const RySkinWorkload &work, std::vector<unsigned> triangles);
    ~RyTwoStepSkin();

    void blendPositions(int pose);
    /// All of the above.
    void makePicture(int pose);
    const std::vector<RyVec3> &positions() const;
    /// Position and normal of each vertex in turns.
    const std::vector<RyVec3> &picture() const;

private:
    struct Arrays;
    std::unique_ptr<Arrays> m_arrays;
};
