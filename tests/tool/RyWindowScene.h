#pragma once

#include "RyToolScene.h"

#include "rycore/app/RyMainWindow.h"

/// The scene of the tool tests and a main window whose viewports have another tool of the same class.
struct RyWindowScene : RyToolScene
{
    RyWindowScene() : window(std::make_unique<RyMainWindow>(ryScene())), windowTool(new RyJointEditorTool)
    {
        window->getViewportMgr()->addTool(windowTool);
    }
    std::unique_ptr<RyMainWindow> window;
    RyJointEditorTool *windowTool;
};
