#pragma once

class QEvent;
class RyJointEditorTool;
class RyNode;
class RyPointFollowUp;
class RyToolPointer;
class RyToolParam;
struct RyJointState;

/// Which node is the tool's current one: while the tool is active it is the scene's primary selection. Many changes of
/// the selection in one pass of the event loop are followed once.
class RyToolSelection
{
public:
    RyToolSelection(RyJointEditorTool &tool, RyJointState &joint, RyToolParam &param, RyPointFollowUp &points,
                    RyToolPointer &pointer);

    /// Begins and ends to follow the scene.
    void start();
    void stop();
    /// Follows the selection when the event loop comes round.
    void followLater();
    bool isPending() const { return m_pending; }
    /// True for the event that `followLater` posted.
    bool takeEvent(const QEvent &event);

    void update(RyNode *node);
    /// The current node goes away; the selection says later what comes instead.
    void forgetNode();

private:
    void connectNode() const;
    void disconnectNode() const;

    RyJointEditorTool &m_tool;
    RyJointState &m_joint;
    RyToolParam &m_param;
    RyPointFollowUp &m_points;
    RyToolPointer &m_pointer;
    bool m_pending = false;
};
