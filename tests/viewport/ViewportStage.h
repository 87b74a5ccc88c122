#pragma once

#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <memory>

/// A scene of its own and a viewport on it. Tests inherit from it.
class ViewportStage
{
protected:
    void open()
    {
        m_scene = std::make_unique<RyScene>();
        m_manager = std::make_unique<RyViewportMgr>(m_scene.get());
        m_viewport = std::make_unique<Ry3DViewport>(m_manager.get());
    }
    void close()
    {
        m_viewport.reset();
        m_manager.reset();
        m_scene.reset();
    }

    std::unique_ptr<RyScene> m_scene;
    std::unique_ptr<RyViewportMgr> m_manager;
    std::unique_ptr<Ry3DViewport> m_viewport;
};
