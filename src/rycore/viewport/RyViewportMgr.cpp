#include "rycore/viewport/RyViewportMgr.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"

#include <QPointer>

#include <algorithm>

struct RyViewportMgr::Private
{
    QPointer<RyScene> scene;
    std::vector<RyViewTool *> tools;
    std::vector<Ry3DViewport *> viewports;
    RyViewTool *active = nullptr;
    Ry3DViewport *activeViewport = nullptr;
    quint64 sceneRevision = 1;
    quint64 toolRevision = 1;
    int hovering = 0;
};

RyViewportMgr::RyViewportMgr(RyScene *scene, QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    d->scene = scene;
    if (!scene)
        return;
    const auto sceneChanged = [this] {
        ++d->sceneRevision;
        ++d->toolRevision;
        updateViewports();
    };
    const auto toolChanged = [this] {
        ++d->toolRevision;
        updateViewports();
    };
    connect(scene, &RyScene::drawnDataChanged, this, sceneChanged);
    connect(scene, &RyScene::nodeListChanged, this, sceneChanged);
    connect(scene, &RyScene::timeChanged, this, sceneChanged);
    connect(scene, &RyScene::nodeSelectionListChanged, this, toolChanged);
}

RyViewportMgr::~RyViewportMgr()
{
    deleteTools();
}

RyScene *RyViewportMgr::getScene() const
{
    return d->scene;
}

void RyViewportMgr::addTool(RyViewTool *tool)
{
    if (!tool || std::find(d->tools.begin(), d->tools.end(), tool) != d->tools.end())
        return;
    tool->setParent(this);
    const auto place = std::upper_bound(d->tools.begin(), d->tools.end(), tool, [](RyViewTool *a, RyViewTool *b) {
        return a->getToolPriority() < b->getToolPriority();
    });
    d->tools.insert(place, tool);
    connect(tool, &RyViewTool::drawnDataChangeRequested, this, [this, tool] {
        if (tool != d->active)
            return;
        // While the mouse hovers, nothing but the highlight changes.
        if (d->hovering == 0)
            ++d->toolRevision;
        updateViewports();
    });
    connect(tool, &RyViewTool::hoverRequested, this, [this, tool] {
        for (Ry3DViewport *viewport : std::vector<Ry3DViewport *>(d->viewports)) {
            if (tool == d->active)
                viewport->hoverAgain();
        }
    });
    emit toolListChanged();
}

const std::vector<RyViewTool *> &RyViewportMgr::getTools() const
{
    return d->tools;
}

RyViewTool *RyViewportMgr::findTool(const QString &className) const
{
    const auto found = std::find_if(d->tools.begin(), d->tools.end(), [&](const RyViewTool *tool) {
        return className == QLatin1String(tool->metaObject()->className());
    });
    return found != d->tools.end() ? *found : nullptr;
}

RyViewTool *RyViewportMgr::getActiveTool() const
{
    return d->active;
}

void RyViewportMgr::setActiveTool(RyViewTool *tool)
{
    if (tool == d->active || (tool && std::find(d->tools.begin(), d->tools.end(), tool) == d->tools.end()))
        return;
    RyViewTool *old = d->active;
    d->active = tool;
    ++d->toolRevision;
    for (Ry3DViewport *viewport : d->viewports) {
        viewport->setToolTipText(QString());
        viewport->unsetCursor();
    }
    if (old)
        old->deactivated();
    if (tool)
        tool->activated();
    updateViewports();
    emit activeToolChanged(tool);
}

void RyViewportMgr::deleteTools()
{
    setActiveTool(nullptr);
    const std::vector<RyViewTool *> tools = std::move(d->tools);
    d->tools.clear();
    if (!tools.empty())
        emit toolListChanged();
    for (RyViewTool *tool : tools)
        delete tool;
}

Ry3DViewport *RyViewportMgr::getActiveViewport() const
{
    return d->activeViewport;
}

void RyViewportMgr::setActiveViewport(Ry3DViewport *viewport)
{
    if (std::find(d->viewports.begin(), d->viewports.end(), viewport) != d->viewports.end())
        d->activeViewport = viewport;
}

RyCamera *RyViewportMgr::getActiveCamera() const
{
    return d->activeViewport ? d->activeViewport->getCamera() : nullptr;
}

const std::vector<Ry3DViewport *> &RyViewportMgr::getViewports() const
{
    return d->viewports;
}

void RyViewportMgr::addViewport(Ry3DViewport *viewport)
{
    d->viewports.push_back(viewport);
    if (!d->activeViewport)
        d->activeViewport = viewport;
    emit viewportAdded(viewport);
}

void RyViewportMgr::removeViewport(Ry3DViewport *viewport)
{
    d->viewports.erase(std::remove(d->viewports.begin(), d->viewports.end(), viewport), d->viewports.end());
    if (d->activeViewport == viewport)
        d->activeViewport = d->viewports.empty() ? nullptr : d->viewports.front();
}

void RyViewportMgr::updateViewports()
{
    for (Ry3DViewport *viewport : d->viewports)
        viewport->update();
}

quint64 RyViewportMgr::sceneRevision() const
{
    return d->sceneRevision;
}

quint64 RyViewportMgr::toolRevision() const
{
    return d->toolRevision;
}

void RyViewportMgr::beginHover()
{
    ++d->hovering;
}

void RyViewportMgr::endHover()
{
    --d->hovering;
}
