#include "rycore/ui/RyViewToolAction.h"

#include "rycore/ui/RyActionMgr.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"

RyViewToolAction::RyViewToolAction(const QString &toolClassName)
    : RyAction(QString(), QString()), m_toolClassName(toolClassName)
{
    setCheckable(true);
}

RyViewTool *RyViewToolAction::findTool() const
{
    const RyActionMgr *actions = RyActionMgr::instance();
    const RyViewportMgr *viewports = actions ? actions->getViewportMgr() : nullptr;
    return viewports ? viewports->findTool(m_toolClassName) : nullptr;
}

void RyViewToolAction::init()
{
    const RyActionMgr *actions = RyActionMgr::instance();
    RyViewportMgr *viewports = actions ? actions->getViewportMgr() : nullptr;
    if (viewports) {
        connect(viewports, &RyViewportMgr::activeToolChanged, this, &RyViewToolAction::toolChanged);
        connect(viewports, &RyViewportMgr::toolListChanged, this, &RyViewToolAction::toolChanged);
    }
    toolChanged();
}

void RyViewToolAction::executeAction()
{
    RyViewTool *tool = findTool();
    if (!tool)
        return;
    RyActionMgr::instance()->getViewportMgr()->setActiveTool(tool);
    // A checkable action has unchecked itself when it was active already.
    toolChanged();
}

void RyViewToolAction::toolChanged()
{
    const RyViewTool *tool = findTool();
    setEnabled(tool != nullptr);
    setUnavailableReason(tr("The tool is not there: its plug-in has not been loaded."));
    if (tool) {
        setText(tool->objectName());
        setDescription(tr("Work with the tool %1").arg(tool->objectName()));
    }
    setChecked(tool && tool->isActive());
}
