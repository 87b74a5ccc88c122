#pragma once

#include "rycore/math/RyVec3.h"

#include <vector>

/// Normals of a part of a mesh that stay in the file they came in and are read when somebody asks for them, per split
/// vertex in figure space: a slot that the file formats fill.
class RyNormalSource
{
public:
    virtual ~RyNormalSource() = default;
    /// Of length 1, or null where the file has none of use.
    virtual std::vector<RyVec3> normals() const = 0;
    /// What the normals belong to: where the vertices were when the part was read.
    virtual std::vector<RyVec3> positions() const = 0;
};
