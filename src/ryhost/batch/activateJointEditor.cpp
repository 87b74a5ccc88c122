#include "ryhost/batch/activateJointEditor.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QCoreApplication>

void activateJointEditor(RyMainWindow &window)
{
    RyViewportMgr &manager = *window.getViewportMgr();
    RyViewTool *tool = manager.findTool(QStringLiteral("RyJointEditorTool"));
    if (tool && manager.getActiveTool() != tool)
        manager.setActiveTool(tool);
    // It takes a new selection by an event.
    QCoreApplication::sendPostedEvents();
}
