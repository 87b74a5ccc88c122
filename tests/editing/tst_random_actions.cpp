#include "support/RyTest.h"

#include "RandomActions.h"
#include "makeParametric.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/viewport/RyOffscreenContext.h"

/// All actions of the joint editor at random, on figures with bulges, morphs and poses, with undo, redo and restore
/// points in between: every state that was left comes back as it was. RY_RANDOM_ACTIONS asks for so many edits of each
/// character instead of the few of an ordinary run.
class RandomActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(RyOffscreenContext::instance().makeCurrent(), "clicks and drags need OpenGL"); }
    void everyStateComesBack_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isParametric");
        const QString sample = QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
        QTest::newRow("sample") << sample << false;
        QTest::newRow("parametric") << sample << true;
        if (!ryModel(QStringLiteral("Fox.glb")).isEmpty())
            QTest::newRow("Fox") << ryModel(QStringLiteral("Fox.glb")) << false;
    }
    void everyStateComesBack()
    {
        QFETCH(QString, path);
        QFETCH(bool, isParametric);
        bool isLong = false;
        const int asked = qEnvironmentVariableIntValue("RY_RANDOM_ACTIONS", &isLong);
        const int edits = isLong ? asked : 150;
        auto stage = std::make_unique<EditingStage>(path);
        if (isParametric)
            QVERIFY(ryMakeParametric());
        RandomActions::addShapes();
        RandomActions random(*stage, ryTestSeed());
        const QStringList actions = RandomActions::allActions(*stage);
        QCOMPARE(actions.size(), 35);
        QString wrong = random.run(edits);
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1: %2").arg(ryTestSeed()).arg(wrong)));
        wrong = random.unwind();
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("seed %1: %2").arg(ryTestSeed()).arg(wrong)));
        qInfo("%d steps, %d restore points taken, %d gone back to, %d actions refused", random.steps(),
              random.pointsTaken(), random.restored(), random.refused());
        QStringList idle;
        for (const QString &action : actions) {
            if (isLong)
                qInfo("%-45s %4d ran, %4d refused", qPrintable(action), random.ran().value(action),
                      random.turnedDown().value(action));
            if (random.ran().value(action) == 0)
                idle.append(action);
        }
        QVERIFY2(edits < 3000 || idle.isEmpty(), qPrintable(idle.join(QStringLiteral(", "))));
        QVERIFY(random.ran().size() > 15);
        QVERIFY(random.steps() > edits / 10);
        QVERIFY(!random.stillAlive().isEmpty());
        stage.reset();
        QCOMPARE(random.stillAlive(), QStringList());
    }
};

RY_TEST(RandomActionsTest)

#include "tst_random_actions.moc"
