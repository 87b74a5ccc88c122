#include "rycore/viewport/RySelectTool.h"

RySelectTool::RySelectTool() : RyPickTool(tr("Select")) {}

int RySelectTool::getToolPriority() const
{
    return -100;
}

QString RySelectTool::getStatusText() const
{
    return tr(
        "Click a part of the figure to select its bone, Ctrl+click adds. Middle drag turns the view, the wheel zooms.");
}
