#pragma once

#include <QPoint>
#include <Qt>

#include <memory>

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;
class Ry3DViewport;
class RyPressRestorePoint;
class RyScene;
class RyViewTool;

/// What mouse and keys do in a viewport: they move the view, go to the active tool, ask for the context menu, or walk
/// the selection.
class RyViewportInput
{
public:
    /// The viewport outlives it.
    explicit RyViewportInput(Ry3DViewport &viewport);
    ~RyViewportInput();

    void press(QMouseEvent *event);
    void move(QMouseEvent *event);
    void release(QMouseEvent *event);
    void wheel(QWheelEvent *event);
    /// The mouse left the viewport.
    void leave();
    /// The viewport is hidden, and no release will come.
    void hide();
    /// False when the key means nothing here.
    bool key(QKeyEvent *event);

    /// Tells the active tool of the cursor once more. Nothing while it is elsewhere and while a button is held.
    void hoverAgain();
    /// True between a press that the tool got and its release.
    bool isToolDragging() const { return m_toolDrag; }
    /// Where the mouse was last, in the widget.
    QPoint lastPlace() const { return m_lastPlace; }

private:
    enum class ViewDrag { None, Orbit, Pan, Zoom };

    RyViewTool *tool() const;
    RyScene *scene() const;
    static ViewDrag viewDragOf(const QMouseEvent &event);
    bool beginViewDrag(QMouseEvent *event);
    void moveView(QMouseEvent *event);
    void pressRight(QMouseEvent *event);
    void pressTool(QMouseEvent *event);
    /// The button has gone up and nobody told: the drag of the tool is kept as far as it came.
    void endLostDrag();
    void deliverHover(QMouseEvent *event);
    void walkSelection(int key);
    bool keypadKey(int key);

    Ry3DViewport &m_viewport;
    ViewDrag m_viewDrag = ViewDrag::None;
    Qt::MouseButton m_viewDragButton = Qt::NoButton;
    QPoint m_lastPlace;
    QPoint m_pressPlace;
    bool m_toolDrag = false;
    bool m_isUnderCursor = false;                        // and the tool knows it
    bool m_menuPending = false;                          // a right click so far
    std::unique_ptr<RyPressRestorePoint> m_restorePoint; // from a press of the tool to its release
};
