#pragma once

#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QtTest>

/// Runs an edit that opens no hold of its own within the hold of somebody else: one step takes all of it back and
/// brings it again.
template<typename Edit>
void checkUndoInHold(const Edit &edit)
{
    const QString before = rySceneDump(*ryScene());
    RyUndoStackHold hold;
    edit();
    hold.accept(QStringLiteral("Around it"));
    const QString after = rySceneDump(*ryScene());
    QVERIFY(after != before);
    ryUndoStack()->undo();
    QCOMPARE(rySceneDump(*ryScene()), before);
    ryUndoStack()->redo();
    QCOMPARE(rySceneDump(*ryScene()), after);
}
