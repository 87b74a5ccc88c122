#pragma once

#include "rycore/viewport/RyPickTool.h"

/// Nothing but picking: a click selects what is under the mouse.
class RySelectTool : public RyPickTool
{
    Q_OBJECT
public:
    RySelectTool();

    int getToolPriority() const override;
    bool showsInsideFigures() const override { return false; }
    bool needsDepth() const override { return getHighlightNode(); }
    QString getStatusText() const override;
};
