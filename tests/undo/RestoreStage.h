#pragma once

#include "undo/UndoToys.h"

#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestorePoints.h"

/// An empty undo history in which restore points are taken. Tests inherit from it.
class RestoreStage
{
protected:
    static constexpr int MostPoints = 20;

    void open()
    {
        stack = ryUndoStack();
        points = ryRestorePoints();
        points->clear();
        points->setMost(MostPoints);
        stack->clearAll();
        stack->setClean();
    }
    void close()
    {
        points->clear();
        points->setMost(0);
        stack->clearAll();
        stack->setClean();
    }

    static void setInStep(ToyValue &toy, int value, const QString &caption = QStringLiteral("step"))
    {
        RyUndoStackHold hold;
        toy.set(value);
        hold.accept(caption);
    }
    /// What a command does that undo cannot take back.
    static void setAndClear(ToyValue &toy, int value)
    {
        RyUndoStackLock lock;
        ryUndoStack()->clearAll();
        toy.set(value);
    }

    RyUndoStack *stack = nullptr;
    RyRestorePoints *points = nullptr;
};
