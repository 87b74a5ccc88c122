#include "recovery/AllocationFailure.h"
#include "recovery/AutosaveStage.h"
#include "recovery/leaveUnsaved.h"
#include "support/RyTest.h"

#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryInfo.h"
#include "ryhost/recovery/RecoverySession.h"
#include "ryhost/recovery/recoverUnsavedWork.h"

#include <QCoreApplication>

#include <limits>
#include <new>

/// Memory runs out at one place after another while unsaved work is taken or brought back.
class NoMemoryTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup()
    {
        AllocationFailure::stopFailingHere();
        close();
    }

    /// Whatever fails, somebody is told, the scene is as it was, and the next snapshot is taken.
    void whileItIsTaken()
    {
        int failures = 0;
        while (failsToTake(failures, Large)) {
            ++failures;
            QVERIFY(!QTest::currentTestFailed());
        }
        QVERIFY2(failures > 5, qPrintable(QString::number(failures)));
    }

    /// The same where it is handed over to be written, which asks for little.
    void whileItIsHandedOver()
    {
        startEdited();
        AllocationFailure::failHere(std::numeric_limits<int>::max());
        emit ryUndoStack()->aboutToChange();
        const int all = std::numeric_limits<int>::max() - AllocationFailure::stopFailingHere();
        // Behind it come those of who is told of the edit.
        int failures = 0;
        for (int before = all; before > 0 && failures < 8; --before) {
            failures += failsToTake(before, 0);
            QVERIFY(!QTest::currentTestFailed());
        }
        QCOMPARE(failures, 8);
    }

    /// Whatever fails, somebody is told, nothing half is on the screen, and it is there for the next try.
    void whileItIsBroughtBack()
    {
        edit();
        const QString edited = dump();
        leave();
        int failures = 0;
        for (int before = 0;; before = next(before)) {
            reset();
            const QString empty = dump();
            std::unique_ptr<RecoverySession> session = RecoverySession::adopt(left().value(0));
            QVERIFY(session);
            QString error;
            AllocationFailure::failHere(before, Large);
            const bool isDone = recoverUnsavedWork(std::move(session), *ryScene(), *m_files, *m_autosave, &error);
            if (AllocationFailure::stopFailingHere() >= 0) {
                QVERIFY2(isDone, qPrintable(error));
                break;
            }
            ++failures;
            QVERIFY2(!isDone, qPrintable(QString::number(before)));
            QVERIFY2(error.endsWith(QStringLiteral("it needs more memory than this machine has")) ||
                         error.endsWith(QStringLiteral("there is not enough memory")),
                     qPrintable(QStringLiteral("%1: %2").arg(before).arg(error)));
            QCOMPARE(dump(), empty);
            m_autosave.reset(); // as at the end of the program
            QCOMPARE(left().size(), 1);
        }
        QVERIFY2(failures > 10, qPrintable(QString::number(failures)));
        QCOMPARE(dump(), edited);
        QVERIFY(!ryUndoStack()->isClean());
    }

private:
    /// Libraries destroy what they hold with a little memory more, and where there is not even that, no program goes
    /// on.
    static constexpr std::size_t Large = 4096;

    /// A snapshot is due.
    void startEdited()
    {
        start();
        m_messages.clear();
        edit();
        QCoreApplication::processEvents();
    }
    /// Takes one, and checks what comes of it; false when it could be taken all the same.
    bool failsToTake(int before, std::size_t size)
    {
        startEdited();
        const QString edited = dump();
        AllocationFailure::failHere(before, size);
        bool isTaken = false;
        try {
            emit ryUndoStack()->aboutToChange(); // which is when what was edited before is kept
            isTaken = AllocationFailure::stopFailingHere() >= 0;
        } catch (const std::bad_alloc &) {
            isTaken = true; // it failed for who came after it
        }
        const auto check = [&] {
            QCOMPARE(m_messages.size(), isTaken ? 0 : 1);
            if (!isTaken)
                QCOMPARE(m_messages.front(), QStringLiteral("Unsaved work is not being kept: the scene needs more "
                                                            "memory than this machine has. Save it; Edit > Preferences "
                                                            "chooses another folder."));
            QCOMPARE(dump(), edited);
            QTRY_VERIFY2(isTaken || (isKept() && m_autosave->isUpToDate()), qPrintable(QString::number(before)));
        };
        check();
        return !isTaken;
    }
    /// Each one at first, then ever fewer.
    static int next(int before) { return before + 1 + before / 8; }
    static QStringList left() { return RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()); }
    void leave() { QCOMPARE(leaveUnsaved(*ryScene(), RecoveryInfo::of(*m_files, {})), QString()); }
};

RY_TEST(NoMemoryTest)
#include "tst_noMemory.moc"
