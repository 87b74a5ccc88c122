#include "rycore/viewport/RyViewTool.h"

RyViewTool::RyViewTool(const QString &name)
{
    setObjectName(name);
}

RyViewTool::~RyViewTool() = default;

void RyViewTool::activated()
{
    m_active = true;
}

void RyViewTool::deactivated()
{
    m_active = false;
}

void RyViewTool::draw(Ry3DViewport *, const RyDrawStyle &) {}

bool RyViewTool::mousePress(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier)
{
    return false;
}

bool RyViewTool::mouseMove(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier)
{
    return false;
}

bool RyViewTool::mouseRelease(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier)
{
    return false;
}

void RyViewTool::mouseOver(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier) {}

void RyViewTool::mouseLeave(Ry3DViewport *) {}

void RyViewTool::cancelDrag() {}

void RyViewTool::finishDrag() {}

QWidget *RyViewTool::getSettingsWidget()
{
    return nullptr;
}

QWidget *RyViewTool::getDividerBar()
{
    return nullptr;
}

int RyViewTool::getToolPriority() const
{
    return 0;
}

void RyViewTool::addToolMenuItems(RyMenu *) {}

void RyViewTool::fillToolOptionsMenu(RyActionMenu *) {}

QString RyViewTool::getStatusText() const
{
    return {};
}

void RyViewTool::drawnDataChanged()
{
    ++m_drawnDataChanges;
    emit drawnDataChangeRequested();
}

void RyViewTool::hoverAgain()
{
    emit hoverRequested();
}
