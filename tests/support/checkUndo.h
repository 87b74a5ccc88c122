#pragma once

#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QtTest>

/// The last step takes back all that was done since the dump `before`, and brings it again.
inline void checkLastStep(const QString &before, const RyScene &scene = *ryScene())
{
    const QString after = rySceneDump(scene);
    QVERIFY(after != before);
    ryUndoStack()->undo();
    QCOMPARE(rySceneDump(scene), before);
    ryUndoStack()->redo();
    QCOMPARE(rySceneDump(scene), after);
}

/// Runs an edit that opens no hold of its own within the hold of somebody else: one step takes all of it back and
/// brings it again.
template<typename Edit>
void checkUndoInHold(const Edit &edit)
{
    const QString before = rySceneDump(*ryScene());
    RyUndoStackHold hold;
    edit();
    hold.accept(QStringLiteral("Around it"));
    checkLastStep(before);
}
