#include "foreign/ForeignSketch.h"
#include "recovery/AutosaveStage.h"
#include "recovery/leaveUnsaved.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/timeText.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryDialog.h"
#include "ryhost/recovery/RecoverySession.h"
#include "ryhost/recovery/recoverUnsavedWork.h"

#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class RecoveryDialogTest : public QObject, private AutosaveStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    /// Without anything left nobody is asked.
    void nothingToOffer()
    {
        start();
        RyDialogDriver driver;
        QVERIFY(!offerUnsavedWork(*ryScene(), *m_files, *m_autosave, {}, nullptr));
        QVERIFY(driver.records().empty());
    }

    void bringsBack()
    {
        edit();
        const QString edited = dump();
        leave(info());
        const QString file = m_files->path();
        reset();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Recover"));
        QStringList posted;
        connect(m_files.get(), &HostFiles::messagePosted, this, [&posted](const QString &each) { posted << each; });
        QVERIFY(offerUnsavedWork(*ryScene(), *m_files, *m_autosave, {}, nullptr));
        QCOMPARE(driver.errors(), QStringList());
        QCOMPARE(dump(), edited);
        QCOMPARE(m_files->path(), file);
        QVERIFY(!ryUndoStack()->isClean());
        QVERIFY(!ryUndoStack()->canUndo());
        QCOMPARE(posted,
                 QStringList{QStringLiteral("Recovered unsaved work; its undo history is gone. Save to keep it.")});
        // It is kept until it is saved, and then it goes.
        QVERIFY(isKept());
        QVERIFY(m_files->savePath(path(QStringLiteral("saved.glb"))));
        QTRY_VERIFY(!isKept());
    }

    void later()
    {
        leave(info());
        reset();
        const QString before = dump();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Later"));
        QVERIFY(!offerUnsavedWork(*ryScene(), *m_files, *m_autosave, {}, nullptr));
        QCOMPARE(dump(), before);
        m_autosave.reset();
        QVERIFY(isKept());
        QCOMPARE(RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()).size(), 1);
    }

    /// Whoever can write beside our folders could make links that lead to the work of the one who starts the program.
    void linksAreLetBe()
    {
        const QString parent = AutosaveSettings::global().folders().first();
        const QString work = path(QStringLiteral("work"));
        QVERIFY(QDir().mkpath(work + QStringLiteral("/models")));
        QVERIFY(QDir().mkpath(parent));
        for (const char *name : {"session-1-1", "starting-1-1"}) {
            QVERIFY(QFile::link(work, parent + QLatin1Char('/') + QLatin1String(name)));
            struct timespec old[2] = {{1000, 0}, {1000, 0}};
            QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(work).constData(), old, 0), 0);
        }
        QCOMPARE(left(), QStringList());
        QVERIFY(QFileInfo::exists(work + QStringLiteral("/models")));
        QVERIFY(!RecoverySession::adopt(parent + QStringLiteral("/session-1-1")));
        // A folder of the same kind goes.
        QVERIFY(QDir().mkpath(parent + QStringLiteral("/session-2-2/models")));
        QCOMPARE(left(), QStringList());
        QVERIFY(!QFileInfo::exists(parent + QStringLiteral("/session-2-2")));
    }

    /// In a folder for everybody's temporary files anybody can take our name first.
    void foldersOfOthersAreLetBe()
    {
        if (::getuid() != 0)
            return; // nobody else can give a folder away
        const QString parent = path(QStringLiteral("theirs"));
        const QString session = parent + QStringLiteral("/session-1-1");
        QVERIFY(QDir().mkpath(session));
        QCOMPARE(::chown(QFile::encodeName(parent).constData(), 65534, 65534), 0);
        QVERIFY(RecoverySession::leftBehind({parent}).isEmpty());
        QVERIFY(QFileInfo::exists(session));
        QVERIFY(RecoverySession::obstacle(parent).contains(QStringLiteral("belongs to somebody else")));
        // A link to a folder of ours, made by somebody else.
        const QString ours = path(QStringLiteral("ours")), link = path(QStringLiteral("link"));
        QVERIFY(QDir().mkpath(ours + QStringLiteral("/session-1-1")));
        QVERIFY(QFile::link(ours, link));
        QCOMPARE(::lchown(QFile::encodeName(link).constData(), 65534, 65534), 0);
        QVERIFY(RecoverySession::leftBehind({link}).isEmpty());
        QVERIFY(QFileInfo::exists(ours + QStringLiteral("/session-1-1")));
    }

    /// The newest comes first, each says what it is of, from when, and what to know before it is saved.
    void describes()
    {
        RecoveryInfo old = info();
        old.path = path(QStringLiteral("mannequin.glb"));
        old.time = QDateTime::currentDateTimeUtc().addDays(-2);
        old.mergedFiles = 2;
        old.stamp = OpenedFile::stampOf(old.path);
        old.stamp.first = old.stamp.first.addDays(-2);
        leave(old);
        RecoveryInfo fresh = info();
        fresh.path.clear();
        fresh.losses = QStringList{QStringLiteral("a clip")};
        fresh.time = QDateTime::currentDateTimeUtc();
        leave(fresh);
        RecoveryDialog dialog(left());
        const auto *list = dialog.findChild<QListWidget *>(QStringLiteral("RecoveryList"));
        const auto *detail = dialog.findChild<QLabel *>(QStringLiteral("RecoveryDetail"));
        QCOMPARE(list->count(), 2);
        QCOMPARE(list->item(0)->text(), QStringLiteral("Untitled, as of %1").arg(fresh.timeText()));
        QCOMPARE(detail->text(), QStringLiteral("It was never saved; saving it asks where.\nThe undo history is "
                                                "gone.\nNot kept: a clip"));
        const_cast<QListWidget *>(list)->setCurrentRow(1);
        QCOMPARE(list->item(1)->text(), QStringLiteral("mannequin.glb, as of %1").arg(old.timeText()));
        const QStringList lines = detail->text().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0], QStringLiteral("%1 is as it was and is replaced only when you save.").arg(old.path));
        QCOMPARE(lines[1], QStringLiteral("2 files were merged into it."));
        QCOMPARE(lines[2],
                 QStringLiteral("Another program has written that file since (%1): compare the two before you "
                                "save over it.")
                     .arg(timeTextOf(QFileInfo(old.path).lastModified())));
        QVERIFY(dialog.findChild<QPushButton *>(QStringLiteral("RecoveryRecover"))->isEnabled());
    }

    /// One file in words of its own; and of times that stamps say nothing of, nothing is said.
    void oneMergedFile()
    {
        RecoveryInfo about = info();
        about.mergedFiles = 1;
        leave(about);
        RecoveryDialog dialog(left());
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("RecoveryDetail"))->text(),
                 QStringLiteral("%1 is as it was and is replaced only when you save.\n1 file was merged into it.\nThe "
                                "undo history is gone.")
                     .arg(about.path));
    }

    /// Another program wrote the file in the middle of the session, before the latest snapshot: saving what is brought
    /// back asks, as it would have without the crash.
    void fileOfAnotherProgram()
    {
        RecoveryInfo about = info();
        const QString file = about.path;
        QFile other(file);
        QVERIFY(other.open(QIODevice::Append));
        other.write("    ");
        other.close();
        about.time = QDateTime::currentDateTimeUtc().addSecs(1);
        leave(about);
        reset();
        QVERIFY(recoverOne().contains(QStringLiteral("Another program has written that file since")));
        RyDialogDriver driver;
        QVERIFY(!m_files->save());
        QCOMPARE(driver.boxes().size(), size_t(1));
        QCOMPARE(driver.boxes().front().title, QStringLiteral("Written Meanwhile"));
    }

    /// All of it is unsaved, not only what was done since; and what was merged is known still.
    void saysWhatIsUnsaved()
    {
        RecoveryInfo about = info();
        about.mergedFiles = 2;
        leave(about);
        reset();
        recoverOne();
        const QString all = QStringLiteral("Unsaved work of before a crash, brought back at %1")
                                .arg(timeTextOf(m_files->file().savedState().time));
        QCOMPARE(m_files->file().unsavedChanges(), all + QLatin1Char('.'));
        QVERIFY2(m_files->title().endsWith(QStringLiteral("mannequin.glb + 2 files")), qPrintable(m_files->title()));
        edit();
        QCOMPARE(m_files->file().unsavedChanges(), all + QStringLiteral(", and 1 edit since: Turn."));
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Cancel"));
        QVERIFY(!m_files->confirmDiscard());
        QCOMPARE(driver.boxes().front().informativeText,
                 all + QStringLiteral(", and 1 edit since: Turn.\nWithout saving all of it is lost."));
        QVERIFY(!m_files->revert());
        QVERIFY2(driver.boxes().back().informativeText.endsWith(
                     QStringLiteral("What was merged from 2 other files goes too.")),
                 qPrintable(driver.boxes().back().informativeText));
        QVERIFY(m_files->savePath(path(QStringLiteral("saved.glb"))));
        QVERIFY(m_files->title().endsWith(QStringLiteral("saved.glb")));
    }

    /// Who started the program with files sees the recovered work instead, and is told.
    void namesWhatIsNotOpened()
    {
        leave(info());
        reset();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Recover"));
        const QStringList asked{QStringLiteral("/a/hero.glb"), QStringLiteral("/b/prop.obj")};
        QVERIFY(offerUnsavedWork(*ryScene(), *m_files, *m_autosave, asked, nullptr));
        QCOMPARE(driver.boxes().size(), size_t(1));
        QCOMPARE(driver.boxes().front().title, QStringLiteral("Not Opened"));
        QCOMPARE(
            driver.boxes().front().text,
            QStringLiteral("The recovered work is on the screen, so this was not opened:\n\n/a/hero.glb\n/b/prop.obj"
                           "\n\nSave the recovered work, then File > Open opens it."));
        QCOMPARE(driver.boxes().front().buttons, QStringList{QStringLiteral("Ok")});
    }

    /// What was read from a foreign file is in no file: it is kept before the first edit, and the file is never
    /// written.
    void ofAForeignFile()
    {
        const QString foreign = path(QStringLiteral("arm.bvh"));
        QFile file(foreign);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(ForeignSketch::bvh());
        file.close();
        start();
        QVERIFY(m_files->openPath(foreign));
        QTRY_VERIFY(isKept() && m_autosave->isUpToDate());
        const QString read = dump();
        RySnapshotParts parts;
        QString error;
        QVERIFY2(RySnapshotStore::read(kept().front(), &parts, &error), qPrintable(error));
        reset();
        QCOMPARE(leaveUnsaved(parts), QString());
        QCOMPARE(recoverOne(),
                 QStringLiteral("It was read from %1, which stays as it is, and never saved; saving it asks "
                                "where.\nThe undo history is gone.")
                     .arg(foreign));
        QCOMPARE(dump(), read);
        QCOMPARE(m_files->path(), foreign);
        QCOMPARE(ryScene()->getOrigin()->path(), foreign);
        QVERIFY(!m_files->file().savesInPlace());
        QVERIFY(m_files->savePath(path(QStringLiteral("arm.glb"))));
    }

    void deletes_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("count");
        QTest::newRow("really") << QStringLiteral("Delete") << 0;
        QTest::newRow("not after all") << QStringLiteral("Cancel") << 1;
    }
    void deletes()
    {
        QFETCH(QString, answer);
        QFETCH(int, count);
        const RecoveryInfo about = info();
        leave(about);
        {
            RecoveryDialog dialog(left());
            RyDialogDriver driver;
            driver.setAnswer(QStringLiteral("Delete Unsaved Work"), answer);
            dialog.findChild<QPushButton *>(QStringLiteral("RecoveryDelete"))->click();
            QCOMPARE(driver.errors(), QStringList());
            QCOMPARE(driver.boxes().size(), size_t(1));
            QCOMPARE(driver.boxes().front().text,
                     QStringLiteral("Delete what was not saved of mannequin.glb, as of %1?").arg(about.timeText()));
            QCOMPARE(driver.boxes().front().informativeText,
                     QStringLiteral("It cannot be brought back afterwards. The file itself stays as it is."));
            QCOMPARE(driver.boxes().front().defaultButton, QStringLiteral("Cancel"));
            QCOMPARE(dialog.isEmpty(), count == 0);
        }
        QCOMPARE(left().size(), count);
    }

    /// What is damaged is said to be, and stays where somebody may look at it.
    void damaged()
    {
        leave(info());
        QFile file(kept().front() + QStringLiteral("/snapshot"));
        QVERIFY(file.resize(file.size() / 2));
        RecoveryDialog dialog(left());
        QVERIFY(!dialog.findChild<QPushButton *>(QStringLiteral("RecoveryRecover"))->isEnabled());
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("RecoveryDetail"))->text(),
                 QStringLiteral("This cannot be brought back: %1 is damaged.").arg(file.fileName()));
        QVERIFY(isKept());
        // Which of several it is.
        QCOMPARE(dialog.findChild<QListWidget *>(QStringLiteral("RecoveryList"))->item(0)->text(),
                 QStringLiteral("Damaged: %1").arg(kept().front()));
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Delete Unsaved Work"), QStringLiteral("Cancel"));
        dialog.findChild<QPushButton *>(QStringLiteral("RecoveryDelete"))->click();
        QCOMPARE(driver.boxes().front().text, QStringLiteral("Delete what is left in %1?").arg(kept().front()));
    }

    /// What cannot be brought back is not offered, though it is known what it was.
    void cannotBeRead_data()
    {
        QTest::addColumn<QString>("what");
        for (const char *what : {"missing part", "other version", "no word of it"})
            QTest::newRow(what) << QString::fromLatin1(what);
    }
    void cannotBeRead()
    {
        QFETCH(QString, what);
        const RecoveryInfo about = info();
        leave(about);
        QString reason = QStringLiteral("it was made by another version of the program");
        RySnapshotParts parts;
        QString error;
        QVERIFY2(RySnapshotStore::read(kept().front(), &parts, &error), qPrintable(error));
        if (what == QLatin1String("missing part")) {
            const QStringList names = QDir(kept().front()).entryList({QStringLiteral("*.bytes")});
            QVERIFY(!names.isEmpty());
            reason = QStringLiteral("%1/%2 is not there").arg(kept().front(), names.front());
            QVERIFY(QFile::remove(kept().front() + QLatin1Char('/') + names.front()));
        } else {
            const bool isOther = what == QLatin1String("other version");
            if (!isOther)
                reason = QStringLiteral("it does not say what it is of");
            for (RySnapshotPart &part : parts) {
                if (part.name == "scene" && isOther)
                    part.bytes[3] = 2;
                else if (part.name == RecoveryInfo::PartName && !isOther)
                    part.bytes.clear();
            }
            QVERIFY2(RySnapshotStore(kept().front()).write(parts, &error), qPrintable(error));
        }
        RecoveryDialog dialog(left());
        QVERIFY(!dialog.findChild<QPushButton *>(QStringLiteral("RecoveryRecover"))->isEnabled());
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("RecoveryDetail"))->text(),
                 QStringLiteral("This cannot be brought back: %1.").arg(reason));
        QCOMPARE(dialog.findChild<QListWidget *>(QStringLiteral("RecoveryList"))->item(0)->text(),
                 what == QLatin1String("no word of it")
                     ? QStringLiteral("Damaged: %1").arg(kept().front())
                     : QStringLiteral("mannequin.glb, as of %1").arg(about.timeText()));
        QVERIFY(isKept());
    }

    /// A part of it that has changed only shows when it is read: the scene stays, and so does what there is.
    void changedPart()
    {
        leave(info());
        reset();
        for (const QString &name : QDir(kept().front()).entryList({QStringLiteral("*.bytes")})) {
            QFile part(kept().front() + QLatin1Char('/') + name);
            QVERIFY(part.open(QIODevice::ReadWrite));
            QCOMPARE(part.write("changed"), qint64(7));
        }
        const QString before = dump();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Recover"));
        QVERIFY(!offerUnsavedWork(*ryScene(), *m_files, *m_autosave, {}, nullptr));
        QCOMPARE(driver.boxes().size(), size_t(1));
        QCOMPARE(driver.boxes().front().title, QStringLiteral("Not Recovered"));
        QVERIFY(driver.boxes().front().text.startsWith(QStringLiteral("The unsaved work cannot be brought back: ")));
        QVERIFY(driver.boxes().front().text.endsWith(
            QStringLiteral("It stays in %1 and is offered again at the next start.").arg(kept().front())));
        QCOMPARE(driver.boxes().front().buttons, QStringList{QStringLiteral("Ok")});
        QCOMPARE(dump(), before);
        QCOMPARE(left().size(), 1);
    }

    /// Two programs that start at once do not both bring back the same.
    void offeredOnce()
    {
        leave(info());
        RecoveryDialog first(left());
        QVERIFY(!first.isEmpty());
        QVERIFY(left().isEmpty());
        RecoveryDialog second({kept().front()});
        QVERIFY(second.isEmpty());
    }

private:
    static QStringList left() { return RecoverySession::leftBehind(AutosaveSettings::global().searchedFolders()); }
    RecoveryInfo info() const { return RecoveryInfo::of(*m_files, {}); }
    /// What a program that was killed would leave of the present scene.
    void leave(const RecoveryInfo &about)
    {
        QCOMPARE(leaveUnsaved(*ryScene(), about), QString());
        QTest::qWait(2); // names are told apart by the millisecond
    }
    /// Brings back the only one; gives what was said of it.
    QString recoverOne()
    {
        QString said;
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Recover"));
        connect(&driver, &RyDialogDriver::opened, this, [&said](const QDialog *dialog) {
            if (const auto *detail = dialog->findChild<QLabel *>(QStringLiteral("RecoveryDetail")))
                said = detail->text();
        });
        return offerUnsavedWork(*ryScene(), *m_files, *m_autosave, {}, nullptr) ? said : QStringLiteral("nothing");
    }
};

RY_TEST(RecoveryDialogTest)
#include "tst_RecoveryDialog.moc"
