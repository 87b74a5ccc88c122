#include "recovery/AllocationFailure.h"
#include "recovery/AutosaveStage.h"
#include "recovery/RandomEdits.h"
#include "support/RyTest.h"
#include "support/ToyAction.h"
#include "support/strangeFile.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryInfo.h"
#include "ryhost/recovery/RecoverySession.h"

#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <unistd.h>

namespace {

constexpr int LongEnough = 1500; // for a snapshot that is due

} // namespace

class AutosaveTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    void keepsWhatWasEdited()
    {
        start();
        edit();
        QTRY_VERIFY(isKept());
        const QString edited = dump();
        QCOMPARE(QFileInfo(kept().front()).path(), settings() + QStringLiteral("/autosave"));
        QTRY_COMPARE(AutosaveSettings::global().state(),
                     QStringLiteral("Unsaved work is kept in %1/autosave.").arg(settings()));
        // What is kept of a running program is its own.
        QVERIFY(RecoverySession::leftBehind(AutosaveSettings::global().folders()).isEmpty());
        QCOMPARE(bringBack(), edited);
    }

    /// Nothing is kept of what nobody edited, and an edit that was taken back is none.
    void onlyWhatIsUnsaved()
    {
        start();
        ryScene()->getNodes().back()->select(true);
        QTest::qWait(LongEnough);
        QVERIFY(!isKept());
        edit();
        QTRY_VERIFY(isKept());
        ryUndoStack()->undo();
        QTRY_VERIFY(!isKept());
        ryUndoStack()->redo();
        QTRY_VERIFY(isKept());
    }

    void goesWhenItIsNotNeeded_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("stays");
        for (const char *how : {"save", "open", "quit", "off", "new", "close", "revert"})
            QTest::newRow(how) << QString::fromLatin1(how) << false;
        // What is written aside leaves the scene unsaved.
        for (const char *how : {"copy", "export"})
            QTest::newRow(how) << QString::fromLatin1(how) << true;
    }
    void goesWhenItIsNotNeeded()
    {
        QFETCH(QString, how);
        QFETCH(bool, stays);
        start();
        edit();
        QTRY_VERIFY(isKept());
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Discard"));
        driver.setAnswer(QStringLiteral("Revert"), QStringLiteral("Revert"));
        if (how == QLatin1String("new"))
            QVERIFY(m_files->newScene());
        if (how == QLatin1String("close"))
            QVERIFY(m_files->closeFile());
        if (how == QLatin1String("revert"))
            QVERIFY(m_files->revert());
        if (how == QLatin1String("copy"))
            QVERIFY(m_files->saveCopyTo(path(QStringLiteral("saved.glb"))));
        if (how == QLatin1String("export"))
            QVERIFY(m_files->exportTo(path(QStringLiteral("saved.glb"))));
        if (stays) {
            QTest::qWait(LongEnough);
            QVERIFY(isKept());
            return;
        }
        if (how == QLatin1String("save"))
            QVERIFY(m_files->savePath(path(QStringLiteral("saved.glb"))));
        if (how == QLatin1String("open"))
            QVERIFY(m_files->openPath(m_files->path()));
        if (how == QLatin1String("quit"))
            m_autosave.reset();
        if (how == QLatin1String("off"))
            AutosaveSettings::global().set(false, QString());
        QTRY_VERIFY(!isKept());
        if (how == QLatin1String("quit"))
            QVERIFY(QDir(settings() + QStringLiteral("/autosave")).isEmpty());
        if (how != QLatin1String("off"))
            return;
        edit();
        QTest::qWait(LongEnough);
        QVERIFY(!isKept());
    }

    void notInTheMiddle_data()
    {
        QTest::addColumn<QString>("what");
        for (const char *what : {"hold", "lock", "rig edit", "action"})
            QTest::newRow(what) << QString::fromLatin1(what);
    }
    /// Whatever is open: no snapshot shows a half of it, and one follows at its end.
    void notInTheMiddle()
    {
        QFETCH(QString, what);
        start();
        QVERIFY(!isKept());
        const auto change = [] { ryScene()->getNodes().back()->getXRotControl()->setValue(33.0f); };
        const auto check = [&] {
            QTest::qWait(LongEnough);
            QVERIFY(!isKept());
        };
        if (what == QLatin1String("hold")) {
            RyUndoStackHold hold;
            change();
            check();
            hold.accept(QStringLiteral("Turn"));
        } else if (what == QLatin1String("lock")) {
            const RyUndoStackLock lock;
            change();
            check();
        } else if (what == QLatin1String("rig edit")) {
            const RyRiggingEdit edit;
            change();
            check();
        } else {
            ToyAction action(QStringLiteral("Turn"), [&] {
                change();
                check();
            });
            action.trigger();
        }
        QTRY_VERIFY(isKept());
    }

    /// An edit is kept though another thing begins before its time has come, and stays open.
    void beforeSomethingLong()
    {
        start();
        edit();
        const QString edited = dump();
        QCoreApplication::processEvents();
        RyUndoStackHold hold;
        ryScene()->getNodes().back()->getYRotControl()->setValue(50.0f);
        QTRY_VERIFY(isKept());
        hold.cancel();
        QCOMPARE(bringBack(), edited);
    }

    /// The same for one edit after another, each of which has its snapshot already on the way when the next begins.
    void beforeSomethingLongAgain()
    {
        start();
        for (int round = 0; round < 3; ++round) {
            edit();
            QTRY_VERIFY(isKept() && m_autosave->isUpToDate());
            edit();
            QTest::qWait(150);
            const QString edited = dump();
            const qint64 before = keptAt();
            RyUndoStackHold hold;
            ryScene()->getNodes().back()->getYRotControl()->setValue(float(50 + round));
            QTRY_VERIFY(keptAt() != before);
            hold.cancel();
            const QStringList folders = kept();
            QCOMPARE(dumpOf(folders.front()), edited);
        }
    }

    /// A dialog that stands open for hours and changed nothing yet is no reason to wait.
    void behindADialog()
    {
        start();
        edit();
        ToyAction action(QStringLiteral("Ask"), [this] {
            QDialog dialog;
            QTimer::singleShot(LongEnough, &dialog, &QDialog::reject);
            dialog.exec();
            QVERIFY(isKept());
        });
        action.trigger();
    }

    /// Edits that follow one another without a pause are kept all the same.
    void withoutAPause()
    {
        start();
        QElapsedTimer time;
        time.start();
        int kept = 0;
        for (qint64 last = 0; time.elapsed() < 4000; QTest::qWait(20)) {
            edit();
            kept += keptAt() != last;
            last = keptAt();
        }
        QVERIFY2(kept >= 3, qPrintable(QString::number(kept)));
    }

    /// Whatever snapshots cost, four fifths of the time are left for the work.
    void leavesTimeForWork()
    {
        QCOMPARE(Autosave::pauseAfter(0.0), Autosave::Pause);
        for (const double cost : {200.0, 1300.0, 3000.0, 60000.0})
            QVERIFY2(Autosave::pauseAfter(cost) >= 4.0 * cost, qPrintable(QString::number(cost)));
    }

    /// The same edits with snapshots and without leave the same scene, history, title and file.
    void nobodyNotices()
    {
        const unsigned seed = ryTestSeed();
        const int count = qEnvironmentVariableIsSet("RY_EDITS") ? qEnvironmentVariableIntValue("RY_EDITS") : 300;
        QStringList states[2];
        QByteArray bytes[2];
        for (const bool isOn : {false, true}) {
            QVERIFY(open());
            start();
            AutosaveSettings::global().set(isOn, QString());
            RandomEdits edits(*ryScene(), seed);
            int kept = 0;
            qint64 last = 0;
            for (int i = 0; i < count; ++i) {
                edits.editOnce();
                QTest::qWait(5);
                kept += keptAt() != last;
                last = keptAt();
                if (i % 20 == 0)
                    states[isOn].append(state());
            }
            QCOMPARE(kept > 0, isOn);
            states[isOn].append(state());
            const QString saved = path(QStringLiteral("saved.glb"));
            QVERIFY(m_files->savePath(saved));
            QFile file(saved);
            QVERIFY(file.open(QIODevice::ReadOnly));
            bytes[isOn] = file.readAll();
        }
        QCOMPARE(states[1], states[0]);
        QVERIFY(bytes[1] == bytes[0]);
    }

    /// Where the wanted place cannot be written another is taken, and where none can be, somebody is told, once.
    void placesThatCannotBeWritten()
    {
        const QFile::Permissions readOnly = QFile::ReadOwner | QFile::ExeOwner;
        QDir().mkpath(settings());
        QVERIFY(QFile::setPermissions(settings(), readOnly));
        start();
        edit();
        QTRY_VERIFY(isKept());
        QVERIFY2(kept().front().startsWith(path(QStringLiteral("tmp"))), qPrintable(kept().front()));
        QTRY_COMPARE(m_messages.size(), 1);
        QCOMPARE(m_messages.front(),
                 QStringLiteral("Unsaved work is kept in %1, since the folder %2 is write-protected.")
                     .arg(QFileInfo(kept().front()).path(), settings()));
        QVERIFY(m_files->savePath(path(QStringLiteral("saved.glb"))));
        QTRY_VERIFY(!isKept());
        m_autosave.reset();
        QVERIFY(QDir(path(QStringLiteral("tmp/ryhost-autosave-%1")).arg(::getuid())).removeRecursively());
        QVERIFY(QFile::setPermissions(path(QStringLiteral("tmp")), readOnly));
        m_messages.clear();
        start();
        edit();
        QTRY_COMPARE(m_messages.size(), 1);
        QCOMPARE(m_messages.front(),
                 QStringLiteral("Unsaved work is not being kept: the folder %1 is write-protected. Save it; Edit > "
                                "Preferences chooses another folder.")
                     .arg(settings()));
        QCOMPARE(AutosaveSettings::global().state(), m_messages.front());
        edit();
        QTest::qWait(LongEnough);
        QCOMPARE(m_messages.size(), 1);
        // It begins again by itself, and says so.
        QVERIFY(QFile::setPermissions(settings(), readOnly | QFile::WriteOwner));
        QVERIFY(QFile::setPermissions(path(QStringLiteral("tmp")), readOnly | QFile::WriteOwner));
        edit();
        QTRY_VERIFY(isKept());
        QTRY_COMPARE(m_messages.size(), 2);
        QCOMPARE(m_messages.back(), QStringLiteral("Unsaved work is kept in %1/autosave.").arg(settings()));
    }

    /// A chosen folder is used at once, and what is elsewhere goes.
    void movesToAChosenFolder()
    {
        start();
        edit();
        QTRY_VERIFY(isKept());
        const QString chosen = path(QStringLiteral("chosen place"));
        AutosaveSettings::global().set(true, chosen);
        QTRY_VERIFY(kept().size() == 1 && kept().front().startsWith(chosen));
        QTRY_VERIFY(QDir(settings() + QStringLiteral("/autosave")).isEmpty());
    }

    /// The same with work that was brought back, which lies where the crash left it.
    void recoveredWorkMovesToo()
    {
        QString error;
        std::unique_ptr<RecoverySession> left =
            RecoverySession::create(settings() + QStringLiteral("/autosave"), &error);
        QVERIFY2(left, qPrintable(error));
        QVERIFY(
            RySnapshotStore(left->folder()).write(RySceneSnapshot::take(*ryScene(), false, &error)->parts(), &error));
        start();
        m_autosave->adopt(std::move(left));
        const QString chosen = path(QStringLiteral("chosen place"));
        AutosaveSettings::global().set(true, chosen);
        edit();
        QTRY_VERIFY2(kept().size() == 1 && kept().front().startsWith(chosen), qPrintable(kept().join(u' ')));
    }

    /// What a crash left in a folder is found there after another was chosen, or none.
    void formerFoldersAreSearched()
    {
        const QString first = path(QStringLiteral("first\nof all")), second = path(QStringLiteral("second"));
        AutosaveSettings::global().set(true, first);
        QString error;
        {
            const auto left = RecoverySession::create(first, &error);
            QVERIFY2(left, qPrintable(error));
            QVERIFY(RySnapshotStore(left->folder())
                        .write(RySceneSnapshot::take(*ryScene(), false, &error)->parts(), &error));
        }
        for (const QString &next : {second, QString(), second}) {
            AutosaveSettings::global().set(true, next);
            QVERIFY(!AutosaveSettings::global().folders().contains(first));
            QCOMPARE(AutosaveSettings::global().searchedFolders().count(first), 1);
            QCOMPARE(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()).size(), 1);
        }
    }

    /// A save that was not whole goes to another file all the same, and what is kept belongs to that.
    void followsToTheNewFile()
    {
        QFile strange(path(QStringLiteral("strange.gltf")));
        QVERIFY(strange.open(QIODevice::WriteOnly));
        strange.write(strangeFile());
        strange.close();
        QVERIFY(m_files->mergePath(strange.fileName()));
        start();
        edit();
        QTRY_VERIFY(isKept());
        const QString before = m_files->path(), both = path(QStringLiteral("both.glb"));
        QCOMPARE(keptInfo().path, before);
        QCOMPARE(keptInfo().mergedFiles, 1);
        RyDialogDriver driver;
        QVERIFY(m_files->savePath(both));
        QVERIFY(!ryUndoStack()->isClean());
        QTRY_COMPARE(keptInfo().path, both);
        QCOMPARE(keptInfo().stamp, OpenedFile::stampOf(both));
        QVERIFY(!keptInfo().jointsOnly);
        m_files->setSavesJointsOnly(true);
        QTRY_VERIFY(keptInfo().jointsOnly);
    }

    /// No memory for a snapshot is a thing to be told, and no end of the program.
    void noMemory()
    {
        start();
        edit();
        QTRY_VERIFY(isKept() && m_autosave->isUpToDate()); // the thread has what it needs by now
        const QString before = dump();
        AllocationFailure::failNextIn("Autosave");
        edit();
        QTRY_COMPARE(m_messages.size(), 1);
        QVERIFY(AllocationFailure::hasFailed());
        QCOMPARE(
            m_messages.front(),
            QStringLiteral("Unsaved work is not being kept: the scene needs more memory than this machine has. Save "
                           "it; Edit > Preferences chooses another folder."));
        QCOMPARE(bringBack(), before);
        edit();
        QTRY_COMPARE(m_messages.size(), 2);
        const QString edited = dump();
        QCOMPARE(bringBack(), edited);
    }

private:
    RecoveryInfo keptInfo() const
    {
        QString error;
        RySnapshotParts parts;
        RySnapshotStore::readOthers(kept().value(0), &parts, &error);
        return RecoveryInfo::fromBytes(rySnapshotBytes(parts, RecoveryInfo::PartName));
    }
    static QString state()
    {
        const RyUndoStack *stack = ryUndoStack();
        return QStringLiteral("%1 of %2, %3, %4, clean %5\n")
                   .arg(stack->index())
                   .arg(stack->count())
                   .arg(stack->undoText(), stack->redoText())
                   .arg(stack->isClean()) +
               dump();
    }
    /// The dump of what is kept now, in the place of the scene.
    QString bringBack() { return dumpOf(kept().front()); }
    QString dumpOf(const QString &folder)
    {
        RySnapshotParts parts;
        QString error;
        if (!RySnapshotStore::read(folder, &parts, &error))
            return error;
        const std::optional<RySceneSnapshot> snapshot = RySceneSnapshot::fromParts(parts, &error);
        if (!snapshot)
            return error;
        RyScene again;
        return snapshot->restore(again, m_files->path(), &error, nullptr) ? rySceneDump(again) : error;
    }
};

RY_TEST(AutosaveTest)
#include "tst_Autosave.moc"
