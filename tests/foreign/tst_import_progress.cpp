#include "foreign/ForeignStage.h"
#include "support/RyTest.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <algorithm>
#include <set>

namespace {

constexpr double ProcessShare = 0.7; // where the process has ended

} // namespace

/// Who waits for a foreign file is told on and on until the scene is there, and may say at any time that he waits no
/// more.
class ImportProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_stage = std::make_unique<ForeignStage>();
        m_file = m_stage->write(QStringLiteral("hero.fbx"), "take " + ForeignStage::sample().toUtf8());
    }
    void cleanup()
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
        m_stage.reset();
    }

    void goesOnWhileTheSceneIsBuilt()
    {
        std::vector<double> told;
        RySceneFile::Options options;
        options.progress = [&told](double done) {
            told.push_back(done);
            return true;
        };
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), m_file, options, &error), qPrintable(error));
        QVERIFY(std::is_sorted(told.begin(), told.end()));
        const std::set<double> steps(std::upper_bound(told.begin(), told.end(), ProcessShare), told.end());
        // The document and the mesh on the way and when they are there, the numbers, the bones, the skin, the morphs.
        QVERIFY2(steps.size() >= 10, qPrintable(QString::number(steps.size())));
        QVERIFY(*steps.rbegin() > 0.9 && *steps.rbegin() <= 1.0);
        // The same scene as without anybody who waits.
        const QString waited = rySceneDump(*ryScene());
        QVERIFY2(RySceneFile::open(ryScene(), m_file, &error), qPrintable(error));
        QCOMPARE(rySceneDump(*ryScene()), waited);
    }

    void isCancelledAtAnyStep_data()
    {
        QTest::addColumn<bool>("merge");
        QTest::newRow("open") << false;
        QTest::newRow("merge") << true;
    }

    /// Whenever it happens, the scene stays as it was; and once the last step is told, the file is there.
    void isCancelledAtAnyStep()
    {
        QFETCH(bool, merge);
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), ForeignStage::sample(), &error), qPrintable(error));
        {
            RyNode *bone = ryScene()->findNode(QStringLiteral("lForearm"));
            RyUndoStackHold hold;
            bone->adjustOrigin(bone->getOrigin() + RyVec3(0, 1, 0));
            hold.accept(QStringLiteral("Move"));
        }
        const QString before = rySceneDump(*ryScene());
        int cancelled = 0;
        for (bool isOpened = false; !isOpened; ++cancelled) {
            int left = cancelled; // steps of the building that are let through
            RySceneFile::Options options;
            options.merge = merge;
            double last = 0.0;
            options.progress = [&left, &last](double done) {
                left -= done > ProcessShare && done > last;
                last = std::max(last, done);
                return left >= 0;
            };
            isOpened = RySceneFile::open(ryScene(), m_file, options, &error);
            if (isOpened)
                break;
            QCOMPARE(error, m_file + QStringLiteral(" was not opened: it was cancelled"));
            QCOMPARE(rySceneDump(*ryScene()), before);
            QCOMPARE(ryUndoStack()->count(), 1);
            QVERIFY(cancelled < 100);
        }
        QVERIFY2(cancelled >= 10, qPrintable(QString::number(cancelled)));
        QVERIFY(rySceneDump(*ryScene()) != before);
    }

private:
    std::unique_ptr<ForeignStage> m_stage;
    QString m_file;
};

RY_TEST(ImportProgressTest)
#include "tst_import_progress.moc"
