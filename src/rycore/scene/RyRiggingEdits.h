#pragma once

#include <QPointer>

#include <vector>

class RyNode;

/// The open rig edits of a scene, and the nodes that wait for their end to announce a changed rigging.
class RyRiggingEdits
{
public:
    void begin() { ++m_level; }
    /// Nothing while none is open.
    void finish();
    /// Ends all of them. Who began one of them has none to finish any more, which the period tells.
    void finishAll();
    bool isOpen() const { return m_level > 0; }
    /// Another one after each `finishAll`.
    quint64 period() const { return m_period; }
    /// Lets a node wait for the end; false while no edit is open.
    bool putOff(RyNode *node);

private:
    void announce();

    int m_level = 0;
    quint64 m_period = 0;
    std::vector<QPointer<RyNode>> m_waiting; // each once, in order of its first change
};
