#pragma once

#include "rycore/base/RyBase.h"
#include "rycore/viewport/RyViewMouseModifier.h"

class QMouseEvent;
class QWidget;
class Ry3DViewport;
class RyActionMenu;
class RyDrawStyle;
class RyMenu;

/// A tool of the viewports: the active one draws over the scene and gets the mouse.
class RyViewTool : public RyBase
{
    Q_OBJECT
public:
    explicit RyViewTool(const QString &name);
    ~RyViewTool() override;

    virtual void activated();
    virtual void deactivated();
    bool isActive() const { return m_active; }

    /// Draws with the current GL context; the modelview matrix maps world to eye.
    virtual void draw(Ry3DViewport *viewport, const RyDrawStyle &style);
    /// Each returns true when the tool used the event.
    virtual bool mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    virtual bool mouseMove(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    virtual bool mouseRelease(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    /// The mouse moved with no button held.
    virtual void mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    /// The mouse left the viewport.
    virtual void mouseLeave(Ry3DViewport *viewport);
    /// Takes back what a drag under way has changed and ends it; the button may still be held. Nothing without a drag.
    virtual void cancelDrag();
    /// Ends a press or drag whose release was lost, as by a release at the place it has come to. Nothing without one.
    virtual void finishDrag();

    /// Shown as the tool settings pane; null for none. The tool owns it until the pane's parent does.
    virtual QWidget *getSettingsWidget();
    virtual QWidget *getDividerBar();
    /// Tools are listed by this number.
    virtual int getToolPriority() const;
    /// Fills the menu of the tool: in the menu bar and beside the tool's settings.
    virtual void addToolMenuItems(RyMenu *menu);
    /// Fills the context menu of the viewport while the tool is active.
    virtual void fillToolOptionsMenu(RyActionMenu *menu);
    /// Whether figures are drawn slightly see-through while this tool is active. True unless a tool says otherwise.
    virtual bool showsInsideFigures() const { return true; }
    /// Whether something of what `draw` would draw now hides other parts of it by depth. Where nothing does, the
    /// viewport draws the tool without depth, which saves clearing it. True unless a tool says otherwise.
    virtual bool needsDepth() const { return true; }
    /// One line for the status bar on what the mouse will do now; empty for none.
    virtual QString getStatusText() const;

    /// Asks all viewports for one repaint, coalesced.
    void drawnDataChanged();
    /// How often that was asked, for tests.
    int drawnDataChangeCount() const { return m_drawnDataChanges; }

    /// Asks for `mouseOver` at the place of the cursor, where it is in a viewport and no button is held: something
    /// else lies under it now. Only for the active tool.
    void hoverAgain();

signals:
    void drawnDataChangeRequested();
    void hoverRequested();
    void statusTextChanged();
    /// A switch that menus or the settings pane show, with a check mark for example, is set.
    void optionsChanged();

private:
    bool m_active = false;
    int m_drawnDataChanges = 0;
};
