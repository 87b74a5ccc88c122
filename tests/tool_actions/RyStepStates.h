#pragma once

#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <vector>

/// What the application's scene looked like at every step of the history, without the selection, which is no part of a
/// step.
class RyStepStates
{
public:
    RyStepStates()
    {
        QObject::connect(ryUndoStack(), &RyUndoStack::changed, &m_listener, [this] { forgetWhatWasUndone(); });
    }
    ~RyStepStates() { QObject::disconnect(ryUndoStack(), nullptr, &m_listener, nullptr); }
    RyStepStates(const RyStepStates &) = delete;
    RyStepStates &operator=(const RyStepStates &) = delete;

    static QString now()
    {
        QString dump = rySceneDump(*ryScene());
        const int selection =
            dump.startsWith(QLatin1String("selection")) ? 0 : dump.indexOf(QLatin1String("\nselection"));
        if (selection >= 0)
            dump.remove(selection, dump.indexOf(QLatin1Char('\n'), selection + 1) - selection);
        return dump;
    }
    /// Keeps the state of a step that was made; empty when the history is as it must be.
    QString account()
    {
        const RyUndoStack &stack = *ryUndoStack();
        const QString state = now();
        if (stack.isHoldOpen())
            return QStringLiteral("a hold is open");
        const auto index = size_t(stack.index());
        m_states.resize(std::max(m_states.size(), index + 1));
        if (m_states[index].isEmpty())
            m_states[index] = state;
        return difference(m_states[index], state);
    }
    /// As kept last for the step that the history stands at.
    const QString &current() const { return m_states[size_t(ryUndoStack()->index())]; }
    /// Both say what is another state than it was at that step.
    QString undo() { return move(&RyUndoStack::undo); }
    QString redo() { return move(&RyUndoStack::redo); }

private:
    QString move(void (RyUndoStack::*way)())
    {
        m_isMoving = true;
        (ryUndoStack()->*way)();
        m_isMoving = false;
        QCoreApplication::sendPostedEvents();
        const auto index = size_t(ryUndoStack()->index());
        return index < m_states.size() && !m_states[index].isEmpty() ? difference(m_states[index], now()) : QString();
    }
    void forgetWhatWasUndone()
    {
        const int index = ryUndoStack()->index();
        if (!m_isMoving && index > m_index)
            m_states.resize(std::min(m_states.size(), size_t(m_index) + 1));
        m_index = index;
    }
    static QString difference(const QString &expected, const QString &found)
    {
        if (expected == found)
            return {};
        const QStringList a = expected.split(QLatin1Char('\n'));
        const QStringList b = found.split(QLatin1Char('\n'));
        int i = 0;
        while (a.value(i) == b.value(i))
            ++i;
        return QStringLiteral("expected %1\n  found    %2").arg(a.value(i), b.value(i));
    }

    QObject m_listener;
    int m_index = 0; // of the stack when it last told
    bool m_isMoving = false;
    std::vector<QString> m_states; // by index of the stack; empty where nobody has seen it
};
