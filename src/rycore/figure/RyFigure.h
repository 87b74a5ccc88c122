#pragma once

#include "rycore/scene/RySkeleton.h"

class RySkinBinding;

/// A weight-mapped skeleton: its object may have a skin binding.
class RyFigure : public RySkeleton
{
    Q_OBJECT
public:
    RyFigure();

    /// The skin of the figure's object or null.
    RySkinBinding *getSkinBinding() const;

protected:
    RyNode *makeSameKind() const override { return new RyFigure; }
};
