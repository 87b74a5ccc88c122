#include "rycore/app/RyScriptSteps.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QCoreApplication>

RyScriptSteps::RyScriptSteps(RyScene *scene, RyViewportMgr *viewports, RyScriptEngine *scripts, QObject *parent)
    : QObject(parent), m_scene(scene), m_viewports(viewports), m_scripts(scripts)
{
    follow();
    // The tool posts its event when it hears of the selection, which it does from its activation on.
    connect(viewports, &RyViewportMgr::activeToolChanged, this, &RyScriptSteps::follow);
    connect(scripts, &RyScriptEngine::actionFinished, this, &RyScriptSteps::deliver);
}

void RyScriptSteps::follow()
{
    disconnect(m_following);
    if (m_scene)
        m_following = connect(m_scene, &RyScene::primarySelectionChanged, this, [this] {
            if (m_scripts && m_scripts->isStepping())
                deliver();
        });
}

void RyScriptSteps::deliver()
{
    if (RyViewTool *tool = m_viewports ? m_viewports->getActiveTool() : nullptr)
        QCoreApplication::sendPostedEvents(tool);
}
