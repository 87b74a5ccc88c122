#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyPointChanges.h"

#include <algorithm>
#include <vector>

class RyShapeNormals;

/// The points of a shape, as it is or as a modifier left them, in figure space without the figure's own transform. The
/// arrays belong to whoever filled them.
struct RyShapePoints
{
    const std::vector<RyVec3> *positions = nullptr; // one for each vertex
    const std::vector<RyVec3> *normals = nullptr;   // of any length; null where nobody asks for them
    const RyShapeNormals *places = nullptr;         // which normal belongs to what; null without normals
    /// By places: the vertices, then the further normals. Null when nothing is known of where the points come from.
    const RyPointChanges *changes = nullptr;
    quint64 sourceRevision = 0; // since when the points have come from there

    /// Grows whenever points may differ; 0 for none.
    quint64 revision() const { return changes ? std::max(changes->revision(), sourceRevision) : 0; }
    /// The places that differ from when the revision was that, ascending.
    std::vector<RyPointChanges::Range> changedSince(quint64 revision) const
    {
        if (!changes)
            return {};
        return changes->since(revision < sourceRevision ? 0 : revision);
    }
};
