#pragma once

#include "host/WindowStage.h"

#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QApplication>
#include <QStatusBar>

/// The window with the joint editor loaded, at one place and size; nothing is selected and nothing said when a test
/// begins.
class MenuStage : protected WindowStage
{
protected:
    MenuStage() : WindowStage(Plugins::All) {}

    [[nodiscard]] bool openWithTools()
    {
        if (!open() || !m_window->getViewportMgr()->findTool(QStringLiteral("RyJointEditorTool")))
            return false;
        m_window->resize(1200, 800);
        m_window->move(0, 0);
        return true;
    }
    void begin()
    {
        ryScene()->selectAllNodes(false);
        ryUndoStack()->clearAll();
        m_window->statusBar()->clearMessage();
        QApplication::setActiveWindow(m_window.get());
        QCoreApplication::processEvents();
    }
};
