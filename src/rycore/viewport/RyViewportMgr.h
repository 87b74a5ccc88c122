#pragma once

#include <QObject>

#include <memory>
#include <vector>

class Ry3DViewport;
class RyCamera;
class RyScene;
class RyViewTool;

/// Knows the viewports and the tools made from factories; one tool is active.
class RyViewportMgr : public QObject
{
    Q_OBJECT
public:
    explicit RyViewportMgr(RyScene *scene, QObject *parent = nullptr);
    ~RyViewportMgr() override;

    RyScene *getScene() const;
    /// Takes ownership; sorted by priority.
    void addTool(RyViewTool *tool);
    const std::vector<RyViewTool *> &getTools() const;
    /// By meta-object class name, null when there is none.
    RyViewTool *findTool(const QString &className) const;
    RyViewTool *getActiveTool() const;
    void setActiveTool(RyViewTool *tool);
    /// Deactivates and deletes all tools (before a plug-in is unloaded).
    void deleteTools();

    Ry3DViewport *getActiveViewport() const;
    void setActiveViewport(Ry3DViewport *viewport);
    RyCamera *getActiveCamera() const;
    const std::vector<Ry3DViewport *> &getViewports() const;
    void addViewport(Ry3DViewport *viewport);
    void removeViewport(Ry3DViewport *viewport);
    /// Asks every viewport for one repaint, coalesced by Qt.
    void updateViewports();

    /// Grows with every change of what is drawn of the scene, the camera and the selection left out.
    quint64 sceneRevision() const;
    /// Grows with every change of what the active tool draws but the highlight under the mouse: what an active tool
    /// asks for between beginHover and endHover is taken for that.
    quint64 toolRevision() const;
    void beginHover();
    void endHover();

signals:
    void toolListChanged();
    void viewportAdded(Ry3DViewport *viewport);
    void activeToolChanged(RyViewTool *tool);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
