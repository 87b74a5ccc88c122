#pragma once

#include <utility>
#include <vector>

class RyNodePose;
class RyNodeRigging;

/// An edit of a node: the raw and default values of its controls from before, which cancel brings back, and whether its
/// rigging changed meanwhile.
class RyNodeEdit
{
public:
    void begin(const RyNodeRigging &rigging, const RyNodePose &pose);
    void finish();
    /// Brings the values back. True when the rigging changed within the edit.
    bool cancel(const RyNodeRigging &rigging, const RyNodePose &pose);
    void touchRigging() { m_riggingTouched = true; }
    /// Notes a change of the rigging at an edit level. True when nobody else will announce it.
    bool noteRiggingChange(int editLevel);

    /// Whether the announcement of a changed rigging waits for the end of the scene's rig edit. True when it did not
    /// wait yet.
    bool startWaiting() { return !std::exchange(m_waiting, true); }
    void stopWaiting() { m_waiting = false; }

private:
    std::vector<float> m_values; // raw and default in turn
    bool m_riggingTouched = false;
    bool m_restoring = false;
    bool m_waiting = false;
};
