#include "host/WindowStage.h"
#include "recovery/leaveUnsaved.h"
#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/timeText.h"
#include "ryhost/recovery/Autosave.h"
#include "ryhost/recovery/recoverUnsavedWork.h"

#include <QAction>
#include <QFile>
#include <QLineEdit>
#include <QStatusBar>
#include <QToolButton>

/// What the window says of work that was brought back, and where saving puts it.
class RecoveredWorkTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup()
    {
        m_autosave.reset();
        close();
    }

    void saysThatItWasRecovered()
    {
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(m_window->files()->savePath(path));
        crashAndRecover();
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb (recovered)[*] - ryhost"));
        QVERIFY(m_window->isWindowModified());
        QCOMPARE(m_window->statusBar()->currentMessage(),
                 QStringLiteral("Recovered unsaved work; its undo history is gone. Save to keep it."));
        const auto *unsaved = m_window->findChild<QToolButton *>(QStringLiteral("UnsavedStatus"));
        QVERIFY(unsaved->isVisible());
        QCOMPARE(unsaved->text(), QStringLiteral("* unsaved"));
        QCOMPARE(unsaved->toolTip(),
                 QStringLiteral("Unsaved work of before a crash, brought back at %1.\nClick to see the history.")
                     .arg(timeTextOf(m_window->files()->file().savedState().time)));
        // No undo leads out of it.
        bend(40);
        ryUndoStack()->undo();
        QVERIFY(m_window->isWindowModified());
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb (recovered)[*] - ryhost"));
    }

    /// It had a file, and that is where it belongs.
    void savingGoesToItsFile()
    {
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(m_window->files()->savePath(path));
        const QByteArray former = bytesOf(path);
        crashAndRecover();
        QVERIFY2(bytesOf(path) == former, "nobody has saved yet");
        QCOMPARE(action("FileSave")->statusTip(), QStringLiteral("Save to the file that was opened"));
        RyDialogDriver driver;
        action("FileSave")->trigger();
        QVERIFY2(driver.records().empty(), "there is nothing to ask");
        QVERIFY(bytesOf(path) != former);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb[*] - ryhost"));
        QVERIFY(!m_window->isWindowModified());
        QVERIFY(!m_window->findChild<QToolButton *>(QStringLiteral("UnsavedStatus"))->isVisible());
        QVERIFY(m_window->files()->openPath(path));
        QCOMPARE(qRound(forearm()->getZRotControl()->getValue()), 20);
    }

    void savingAsksWhereItNeverWas_data()
    {
        QTest::addColumn<bool>("isSample");
        QTest::addColumn<QString>("title");
        QTest::newRow("the sample figure") << true << QStringLiteral("mannequin.glb (recovered)[*] - ryhost");
        QTest::newRow("no file at all") << false << QStringLiteral("Untitled (recovered)[*] - ryhost");
    }
    void savingAsksWhereItNeverWas()
    {
        QFETCH(bool, isSample);
        QFETCH(QString, title);
        const QString sample = m_window->files()->path();
        const QByteArray former = bytesOf(sample);
        if (!isSample) {
            QVERIFY(m_window->files()->newScene());
            QVERIFY(m_window->files()->mergePath(sample));
        }
        crashAndRecover();
        QCOMPARE(QString(m_window->windowTitle()).remove(QStringLiteral(" + 1 file")), title);
        QCOMPARE(action("FileSave")->statusTip(), QStringLiteral("Save to a file; asks which"));
        const QString wanted = file(QStringLiteral("kept.glb"));
        QFile::remove(wanted); // of the row before
        RyDialogDriver driver;
        driver.setField(QStringLiteral("fileNameEdit"), wanted);
        action("FileSave")->trigger();
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        QCOMPARE(driver.records().size(), size_t(1));
        QCOMPARE(driver.records().front().title, QStringLiteral("Save As"));
        QVERIFY(bytesOf(sample) == former);
        QCOMPARE(m_window->files()->path(), wanted);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("kept.glb[*] - ryhost"));
        QVERIFY(!m_window->isWindowModified());
    }

    /// Who asks for another name finds it proposed beside the file, without what the title says of it.
    void theProposedNameIsThatOfTheFile()
    {
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(m_window->files()->savePath(path));
        crashAndRecover();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Save As"), QStringLiteral("Cancel"));
        QString proposed;
        connect(&driver, &RyDialogDriver::opened, this, [&proposed](const QDialog *dialog) {
            if (const auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                proposed = name->text();
        });
        action("FileSaveAs")->trigger();
        QCOMPARE(proposed, QStringLiteral("hero.glb"));
    }

private:
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// An edit, the program's end without a word, the next start, and the answer of who wants the work back.
    void crashAndRecover()
    {
        bend(20);
        QCOMPARE(leaveUnsaved(*m_scene, RecoveryInfo::of(*m_window->files(), {})), QString());
        close();
        QVERIFY(openAgain());
        m_autosave = std::make_unique<Autosave>(*m_scene, *m_window->files());
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Recover Unsaved Work"), QStringLiteral("Recover"));
        QVERIFY(offerUnsavedWork(*m_scene, *m_window->files(), *m_autosave, {}, m_window.get()));
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        settle();
    }

    std::unique_ptr<Autosave> m_autosave;
};

RY_TEST(RecoveredWorkTest)
#include "tst_RecoveredWork.moc"
