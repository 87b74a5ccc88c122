#include "support/RyTest.h"

#include "RandomEdits.h"
#include "makeParametric.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/viewport/RyOffscreenContext.h"

/// Thousands of edits at random with undo, redo and restore points in between: every state that was left comes back as
/// it was.
class RandomEditingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!RyOffscreenContext::instance().makeCurrent())
            QSKIP("no OpenGL here, which clicks and drags need");
    }
    void everyStateComesBack_data();
    void everyStateComesBack();

private:
    /// The selection belongs to who works on a figure and is in no file; all else is.
    static QString filed(QString dump)
    {
        dump.remove(QRegularExpression(QStringLiteral("^selection.*\n?"), QRegularExpression::MultilineOption));
        return dump.trimmed();
    }
};

void RandomEditingTest::everyStateComesBack_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("edits");
    QTest::addColumn<bool>("isParametric");
    QTest::newRow("sample") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb") << 3400 << false;
    QTest::newRow("parametric") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb") << 1500 << true;
    QTest::newRow("Fox") << ryModel(QStringLiteral("Fox.glb")) << 3300 << false;
    QTest::newRow("CesiumMan") << ryModel(QStringLiteral("CesiumMan.glb")) << 3300 << false;
    if (!QFile::exists(QStringLiteral(RY_BINARY_DIR "/lib/ryforeign")))
        return; // a build without the reader of such files
    for (const char *name : {"arnaud.fbx", "two_armatures.dae", "foreign/mh_clip_morph.fbx", "foreign/mh_clip.bvh"})
        QTest::newRow(name) << ryModel(QString::fromLatin1(name)) << 600 << false;
}

void RandomEditingTest::everyStateComesBack()
{
    QFETCH(QString, path);
    QFETCH(int, edits);
    QFETCH(bool, isParametric);
    if (path.isEmpty())
        QSKIP("the folder of characters is not here");
    auto stage = std::make_unique<EditingStage>(path);
    if (isParametric && !ryMakeParametric())
        return;
    RandomEdits random(*stage, ryTestSeed());
    QString wrong = random.run(edits);
    QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1: %2").arg(ryTestSeed()).arg(wrong)));
    // What came from another format becomes a glTF file that says the same.
    const QTemporaryDir folder;
    const QString saved =
        path.endsWith(QLatin1String(".glb")) ? QString() : folder.filePath(QStringLiteral("saved.glb"));
    const QString expected = filed(rySceneDump(*ryScene()));
    QString error;
    QVERIFY2(saved.isEmpty() || RySceneFile::save(ryScene(), saved, &error), qPrintable(error));
    wrong = random.unwind();
    QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1: %2").arg(ryTestSeed()).arg(wrong)));
    qInfo("%d steps, %d restore points taken, %d gone back to, %d actions refused", random.steps(),
          random.pointsTaken(), random.restored(), random.refused());
    QVERIFY(!random.stillAlive().isEmpty());
    stage.reset();
    QCOMPARE(random.stillAlive(), QStringList());
    QVERIFY(random.steps() > edits / 10);
    QVERIFY(random.pointsTaken() > edits / 50);
    QVERIFY(random.restored() > edits / 100);
    if (!saved.isEmpty()) { // last, as opening clears the undo history
        RyScene again;
        QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
        QCOMPARE(filed(rySceneDump(again)), expected);
    }
}

RY_TEST(RandomEditingTest)

#include "tst_random_editing.moc"
