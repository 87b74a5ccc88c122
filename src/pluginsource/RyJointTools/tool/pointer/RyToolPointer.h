#pragma once

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"

#include "rycore/math/RyQuat.h"
#include "rycore/viewport/RyViewMouseModifier.h"

#include <QCoreApplication>
#include <QPointer>

#include <functional>
#include <memory>

class QMouseEvent;
class QPoint;
class Ry3DViewport;
class RyBoneIndex;
class RyHandleDrag;
class RyLine3;
class RyPickTool;
class RyVec3;
struct RyHandle;
struct RyJointState;
struct RyJointToolDisplay;
struct RyToolOptions;

/// What the mouse does with the tool: the handle or bone under it, the press on a handle and the drag that becomes of
/// it. What it has no use for goes on to the base of the tool.
class RyToolPointer
{
    Q_DECLARE_TR_FUNCTIONS(RyJointEditorTool)
public:
    /// What of the tool the mouse depends on; it outlives the pointer.
    struct Surroundings
    {
        RyPickTool &tool;
        const RyJointState &joint;
        const RyToolOptions &options;
        const RyJointToolDisplay &display;
        const RyBoneIndex &bones;
        RyDragContext::SetAngle setAngle;
    };
    explicit RyToolPointer(const Surroundings &surroundings);
    ~RyToolPointer();

    /// The tool's mouse functions, with their results.
    void hover(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    void leave(Ry3DViewport *viewport);
    bool press(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    bool move(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);
    bool release(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier);

    /// What a release ends, and the hovering of the handle with it.
    void endPress();
    /// Ends a press or drag: what it has changed so far is kept as one step. Nothing without one.
    void finish();
    /// Takes back what a drag has changed and ends it; nothing while a handle is only hovered or pressed.
    void cancel();
    /// Ends a press or drag without a trace, and the hovering as well.
    void drop();
    /// The same when the tool goes away: nobody is told.
    void abandon();
    /// Whether the drag under way moves that node's origin; it has then carried the change on to what hangs below.
    bool propagateOrigin(RyNode *node, const RyVec3 &newOrigin) const;

    /// 0 for none.
    int hoveredId() const { return m_hoveredId; }
    bool isDragging() const { return m_dragging; }
    /// Of the press that has not been released.
    Ry3DViewport *pressViewport() const;
    const RyQuat &pressCameraRotation() const { return m_pressCameraRotation; }
    QString statusText() const;

private:
    bool pressRight(QMouseEvent *event);
    bool putClipAway();
    void createBone(const QPoint &point);
    void startDrag(int id, const QPoint &point);
    void selectBone(int id, RyViewMouseModifier modifier);
    /// Whether a click with Ctrl creates a bone, whatever is under the mouse.
    bool createsBones() const;
    void setHoveredId(int id);
    void hideToolTip();
    bool isRestricted(const RyHandle *handle) const;
    QString stillText(const RyHandle *handle) const;
    RyDragContext dragContext() const;
    RyLine3 pressViewportRay(const QPoint &point) const;

    const Surroundings m_in;
    int m_hoveredId = 0;
    bool m_dragging = false;                  // the mouse was moved since the press
    std::unique_ptr<RyHandleDrag> m_drag;     // from the press on; holds the undo step of the drag
    QPointer<Ry3DViewport> m_toolTipViewport; // the one that shows a handle's tool tip
    QPointer<Ry3DViewport> m_pressViewport;
    RyQuat m_pressCameraRotation;
};
