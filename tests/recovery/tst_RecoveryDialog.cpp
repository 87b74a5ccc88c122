#include "recovery/AutosaveStage.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryDialog.h"
#include "ryhost/recovery/recoverUnsavedWork.h"

#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

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
        QVERIFY(!offerUnsavedWork(*ryScene(), *m_files, *m_autosave, nullptr));
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
        QVERIFY(offerUnsavedWork(*ryScene(), *m_files, *m_autosave, nullptr));
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
        QVERIFY(!offerUnsavedWork(*ryScene(), *m_files, *m_autosave, nullptr));
        QCOMPARE(dump(), before);
        m_autosave.reset();
        QVERIFY(isKept());
        QCOMPARE(RecoverySession::leftBehind(AutosaveSettings::global().folders()).size(), 1);
    }

    /// The newest comes first, each says what it is of, from when, and what to know before it is saved.
    void describes()
    {
        RecoveryInfo old = info();
        old.path = path(QStringLiteral("mannequin.glb"));
        old.time = QDateTime::currentDateTimeUtc().addDays(-2);
        old.fileCount = 3;
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
        QCOMPARE(list->item(0)->text(), QStringLiteral("Untitled, as it was on %1").arg(fresh.timeText()));
        QCOMPARE(detail->text(), QStringLiteral("It was never saved; saving it asks where.\nThe undo history is "
                                                "gone.\nNot kept: a clip"));
        const_cast<QListWidget *>(list)->setCurrentRow(1);
        QCOMPARE(list->item(1)->text(), QStringLiteral("mannequin.glb, as it was on %1").arg(old.timeText()));
        const QStringList lines = detail->text().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0], QStringLiteral("%1 is as it was and is replaced only when you save.").arg(old.path));
        QCOMPARE(lines[1], QStringLiteral("2 file(s) were merged into it."));
        QVERIFY(lines[2].startsWith(QStringLiteral("That file was written later, on ")) &&
                lines[2].endsWith(QStringLiteral(": compare the two before you save over it.")));
        QVERIFY(dialog.findChild<QPushButton *>(QStringLiteral("RecoveryRecover"))->isEnabled());
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
        leave(info());
        {
            RecoveryDialog dialog(left());
            RyDialogDriver driver;
            driver.setAnswer(QStringLiteral("Delete Unsaved Work"), answer);
            dialog.findChild<QPushButton *>(QStringLiteral("RecoveryDelete"))->click();
            QCOMPARE(driver.errors(), QStringList());
            QCOMPARE(driver.boxes().size(), size_t(1));
            QCOMPARE(driver.boxes().front().text, QStringLiteral("Delete what was not saved of mannequin.glb?"));
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
    }

    /// A part of it that is gone only shows when it is read: the scene stays, and so does what there is.
    void missingPart()
    {
        leave(info());
        reset();
        for (const QString &name : QDir(kept().front()).entryList({QStringLiteral("*.bytes")}))
            QVERIFY(QFile::remove(kept().front() + QLatin1Char('/') + name));
        const QString before = dump();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Recover"));
        QVERIFY(!offerUnsavedWork(*ryScene(), *m_files, *m_autosave, nullptr));
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
    static QStringList left() { return RecoverySession::leftBehind(AutosaveSettings::global().folders()); }
    RecoveryInfo info() const { return RecoveryInfo::of(*ryScene(), *m_files, {}); }
    /// What a program that was killed would leave of the present scene.
    void leave(const RecoveryInfo &about)
    {
        QString error;
        const auto session = RecoverySession::create(settings() + QStringLiteral("/autosave"), &error);
        QVERIFY2(session, qPrintable(error));
        RySnapshotParts parts = RySceneSnapshot::take(*ryScene(), false, &error)->parts();
        parts.push_back({RecoveryInfo::PartName, about.toBytes(), false, {}});
        QVERIFY2(RySnapshotStore(session->folder()).write(parts, &error), qPrintable(error));
        QTest::qWait(2); // names are told apart by the millisecond
    }
    /// The program as it starts.
    void reset()
    {
        m_autosave.reset();
        ryScene()->clear();
        ryUndoStack()->clearAll();
        ryUndoStack()->setClean();
        m_files = std::make_unique<HostFiles>(ryScene(), nullptr);
        start();
    }
};

RY_TEST(RecoveryDialogTest)
#include "tst_RecoveryDialog.moc"
