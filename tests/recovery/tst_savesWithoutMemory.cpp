#include "recovery/AllocationFailure.h"
#include "recovery/AutosaveStage.h"
#include "support/RyTest.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"

#include <QFile>

#include <pthread.h>

/// Memory that runs out while a file is made ends in a message, and the file that was there stays.
class SavesWithoutMemoryTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void cleanup() { close(); }

    void nothingIsLost_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<bool>("exports");
        QTest::newRow("as it came") << sample("mannequin.glb") << QStringLiteral("saved.glb") << false;
        QTest::newRow("from another format") << sample("hand.obj") << QStringLiteral("saved.glb") << false;
        QTest::newRow("export") << sample("mannequin.glb") << QStringLiteral("saved.glb") << true;
        QTest::newRow("OBJ") << sample("hand.obj") << QStringLiteral("saved.obj") << false;
    }
    void nothingIsLost()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(bool, exports);
        QVERIFY(open(from));
        edit();
        const QString before = dump(), target = path(to);
        QFile file(target);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("what was there") > 0);
        file.close();
        char thread[16] = {};
        QCOMPARE(pthread_getname_np(pthread_self(), thread, sizeof(thread)), 0);
        RySceneFile::SaveOptions options;
        options.purpose = exports ? RySceneFile::Export : RySceneFile::Save;
        QString error;
        AllocationFailure::failNextIn(thread);
        QVERIFY(!RySceneFile::save(ryScene(), target, options, &error));
        QVERIFY(AllocationFailure::hasFailed());
        QCOMPARE(error, QStringLiteral("%1: the scene needs more memory than this machine has").arg(target));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("what was there"));
        QCOMPARE(dump(), before);
        QVERIFY(!ryUndoStack()->isClean());
        // The next one has memory again.
        QVERIFY2(RySceneFile::save(ryScene(), target, options, &error), qPrintable(error));
    }
};

RY_TEST(SavesWithoutMemoryTest)

#include "tst_savesWithoutMemory.moc"
