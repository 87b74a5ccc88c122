#include "ryhost/menus/ToolMenus.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyMenu.h"
#include "rycore/ui/RyViewToolAction.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/menuText.h"

#include <QMenuBar>

ToolMenus::ToolMenus(RyMainWindow *window, QObject *parent)
    : QObject(parent), m_window(window), m_tools(window->menuBar()->addMenu(tr("&Tools")))
{
    m_tools->setObjectName(QStringLiteral("ToolsMenu"));
    m_commands = new RyMenu(QString(), m_tools);
    m_commands->setObjectName(QStringLiteral("ToolCommandsMenu"));
    m_activeTool = new RyMenu(QString(), window->menuBar());
    m_activeTool->setObjectName(QStringLiteral("ActiveToolMenu"));
    window->menuBar()->addMenu(m_activeTool);
}

void ToolMenus::refresh()
{
    fillTools();
    fillActiveTool();
}

void ToolMenus::fillTools()
{
    m_tools->clear();
    QStringList withAction;
    for (RyAction *action : m_window->getActionMgr()->getActions()) {
        if (auto *toolAction = qobject_cast<RyViewToolAction *>(action)) {
            withAction.append(toolAction->getToolClassName());
            m_tools->addAction(toolAction);
        }
    }
    RyViewportMgr *viewports = m_window->getViewportMgr();
    for (RyViewTool *tool : viewports->getTools()) {
        if (withAction.contains(QString::fromLatin1(tool->metaObject()->className())))
            continue;
        QAction *action = m_tools->addAction(menuTextOf(tool->objectName()));
        action->setStatusTip(tr("Work with the tool %1").arg(tool->objectName()));
        action->setCheckable(true);
        action->setChecked(tool == viewports->getActiveTool());
        const QString className = QString::fromLatin1(tool->metaObject()->className());
        connect(
            action, &QAction::triggered, this,
            [this, className] {
                RyViewportMgr *manager = m_window->getViewportMgr();
                manager->setActiveTool(manager->findTool(className));
            },
            Qt::QueuedConnection);
    }
    m_tools->addSeparator();
    m_tools->addMenu(m_commands);
}

void ToolMenus::fillActiveTool()
{
    RyViewTool *tool = m_window->getViewportMgr()->getActiveTool();
    for (RyMenu *menu : {m_activeTool, m_commands}) {
        menu->clear();
        if (tool)
            tool->addToolMenuItems(menu);
        menu->menuAction()->setVisible(!menu->isEmpty());
    }
    m_activeTool->setTitle(QString());
    if (tool) {
        m_activeTool->setTitle(menuTextOf(tool->objectName(), m_window->menuBar()->actions()));
        m_commands->setTitle(tr("%1 &Commands").arg(menuTextOf(tool->objectName())));
    }
}
