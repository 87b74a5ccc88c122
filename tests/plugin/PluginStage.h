#pragma once

#include "support/RyTest.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QFileInfo>
#include <QTemporaryDir>

/// A main window with the plug-in, with settings of its own. Tests inherit from it.
class PluginStage
{
protected:
    void open()
    {
        RyAppSettings::setSettingsPath(m_settings.path());
        m_window = std::make_unique<RyMainWindow>(ryScene());
        QCOMPARE(m_window->loadPlugins(QFileInfo(QStringLiteral(RY_PLUGIN_FILE)).path()), 1);
        m_tool = m_window->getViewportMgr()->findTool(QStringLiteral("RyJointEditorTool"));
        QVERIFY(m_tool);
    }
    void close()
    {
        m_window.reset();
        ryScene()->clear();
        ryUndoStack()->clearAll();
    }

    QTemporaryDir m_settings;
    std::unique_ptr<RyMainWindow> m_window;
    RyViewTool *m_tool = nullptr;
};
