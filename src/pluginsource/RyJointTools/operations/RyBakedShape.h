#pragma once

#include "rycore/math/RyMatrix3.h"
#include "rycore/math/RyVec3.h"

#include <vector>

class RyFacetShape;
class RySkinBinding;

/// A shape that is bound to bones which get another rest: what is drawn of it, taken before, and the mesh that shows
/// the same afterwards.
class RyBakedShape
{
public:
    /// Both are there for as long as this is used.
    RyBakedShape(RyFacetShape *shape, RySkinBinding *skin) : m_shape(shape), m_skin(skin) {}

    /// Reads what is drawn. False where the skin refuses, or there is no mesh.
    bool take();
    /// Makes what was drawn the mesh, without the morphs, which turn with their vertices. For a skin whose bones all
    /// have lost their pose, or are about to.
    void installShown();
    /// The mesh that shows the same while some bones of the skin have lost their pose and others keep theirs. Vertices
    /// that a bone flattens stay as they are.
    void installBelowPose();

private:
    void install(std::vector<RyVec3> positions, const std::vector<RyMatrix3> *back);
    std::vector<RyVec3> turned(const std::vector<int> &vertices, const std::vector<RyVec3> &deltas,
                               const std::vector<RyMatrix3> *back) const;
    void keepUnmoved(std::vector<RyVec3> &positions) const;

    RyFacetShape *m_shape;
    RySkinBinding *m_skin;
    std::vector<RyVec3> m_shown;
    std::vector<RyMatrix3> m_linear; // of the map of each vertex; only where there are morphs
};
