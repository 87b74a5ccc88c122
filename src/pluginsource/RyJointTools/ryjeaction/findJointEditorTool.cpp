#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/viewport/RyViewportMgr.h"

RyJointEditorTool *findJointEditorTool()
{
    const RyMainWindow *window = RyApp::getInterface();
    const RyViewportMgr *viewports = window ? window->getViewportMgr() : nullptr;
    RyViewTool *tool = viewports ? viewports->findTool(QStringLiteral("RyJointEditorTool")) : nullptr;
    return qobject_cast<RyJointEditorTool *>(tool);
}
