#pragma once

#include "rycore/scene/RySkeleton.h"

/// A parametric skeleton: its object may have a legacy binding. Not a weight-mapped figure.
class RyLegacyFigure : public RySkeleton
{
    Q_OBJECT
public:
    RyLegacyFigure() = default;

    /// As RyFigure::convertPropToFigure, with a legacy binding in place of the skin. The joint of the root bone is in
    /// the figure's binding, whichever skeleton the bone joins; where the mesh has exactly one face group, that is
    /// paired with the bone. Nothing is done either where the bone may not join the outer skeleton.
    static RyLegacyFigure *convertPropToFigure(RyNode *node, const QString &rootName, bool inherit);
    /// False where the prop hangs on a weight-mapped figure, whose bones have weights and no joints.
    static bool mayJoinOuterSkeleton(const RyNode *prop);

protected:
    RyNode *makeSameKind() const override { return new RyLegacyFigure; }
};
