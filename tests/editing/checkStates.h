#pragma once

#include "io/CharacterScene.h"
#include "support/RyValidator.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <QTemporaryDir>
#include <QtTest>

/// The restore point of that name leads to the state of the dump `before`, and the next one back from there.
inline void checkRestoring(const QString &caption, const QString &before)
{
    const QString after = rySceneDump(*ryScene());
    QVERIFY(after != before);
    const int point = ryRestorePoints()->captions().indexOf(caption);
    QVERIFY(ryRestorePoints()->restore(point));
    QCOMPARE(rySceneDump(*ryScene()), before);
    QVERIFY(ryRestorePoints()->restore(0)); // and the way back
    QCOMPARE(rySceneDump(*ryScene()), after);
}

/// Opened and saved once more a file stays as it is, and it is a good one.
inline void checkSavedFile(const QString &saved)
{
    const QTemporaryDir folder;
    const QString twice = folder.filePath(QStringLiteral("twice.glb"));
    RyScene again;
    QString error;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    QVERIFY2(RySceneFile::save(&again, twice, &error), qPrintable(error));
    QVERIFY(bytesOf(twice) == bytesOf(saved));
    const RyValidation valid = ryValidate(saved);
    if (valid.available)
        QVERIFY2(valid.errors == 0, qPrintable(valid.report));
}
