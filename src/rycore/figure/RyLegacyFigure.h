#pragma once

#include "rycore/scene/RySkeleton.h"

/// A parametric skeleton: its object may have a legacy binding. Not a weight-mapped figure.
class RyLegacyFigure : public RySkeleton
{
    Q_OBJECT
public:
    RyLegacyFigure() = default;

protected:
    RyNode *makeSameKind() const override { return new RyLegacyFigure; }
};
