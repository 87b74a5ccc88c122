#include "host/WindowStage.h"
#include "support/RyTest.h"
#include "support/strangeFile.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/FileNotes.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/timeText.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QStatusBar>

/// The entries of the File menu that leave a file, go back to it, or write beside it.
class FileCommandsTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    void newIsAnEmptyScene()
    {
        bend();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Cancel"));
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Discard"));
        const QString before = dump();
        action("FileNew")->trigger();
        QCOMPARE(dump(), before);
        const RyDialogRecord &box = driver.records().front();
        QCOMPARE(box.text, QStringLiteral("Save the changes to mannequin.glb first?"));
        QVERIFY2(box.informativeText.startsWith(QStringLiteral("1 edit since the opening at ")) &&
                     box.informativeText.endsWith(QStringLiteral(": Bend.\nWithout saving they are lost.")),
                 qPrintable(box.informativeText));
        action("FileNew")->trigger();
        QVERIFY(m_scene->getNodes().empty() && m_scene->getOrigins().empty());
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - ryhost"));
        QVERIFY(!m_window->isWindowModified() && ryUndoStack()->isClean());
        QVERIFY(!ryUndoStack()->canUndo());
        QVERIFY(files()->path().isEmpty());
        for (const char *name : {"FileSave", "FileSaveAs", "FileSaveCopy", "FileExport"}) {
            QVERIFY2(!action(name)->isEnabled(), name);
            QCOMPARE(action(name)->statusTip(), QStringLiteral("The scene is empty: there is nothing to save."));
        }
        // The sample has an entry of its own.
        action("FileOpenSample")->trigger();
        QVERIFY(m_scene->findNode(QStringLiteral("lForearm")));
        QVERIFY(action("FileSave")->isEnabled() && action("FileExport")->isEnabled());
        QCOMPARE(driver.records().size(), size_t(2));
    }

    /// What a plug-in or a script puts into an empty scene can be saved.
    void savingComesWithTheFirstNode()
    {
        action("FileNew")->trigger();
        QVERIFY(!action("FileSaveAs")->isEnabled());
        auto *node = new RyNode;
        m_scene->addNode(node);
        QVERIFY(action("FileSaveAs")->isEnabled() && action("FileClose")->isEnabled());
        m_scene->removeNode(node);
        QVERIFY(!action("FileSaveAs")->isEnabled());
        ryUndoStack()->setClean();
    }

    void theSampleIsAskedForToo()
    {
        bend();
        const QString before = dump();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Cancel"));
        action("FileOpenSample")->trigger();
        QCOMPARE(driver.records().size(), size_t(1));
        QCOMPARE(dump(), before);
    }

    void closeLeavesTheFile()
    {
        const QString path = file(QStringLiteral("closed.glb"));
        QVERIFY(files()->savePath(path));
        QVERIFY(action("FileClose")->isEnabled());
        bend();
        {
            RyDialogDriver driver;
            driver.setAnswer(QStringLiteral("Unsaved Changes"), QStringLiteral("Save"));
            action("FileClose")->trigger();
            QCOMPARE(driver.records().size(), size_t(1));
        }
        QVERIFY(m_scene->getNodes().empty());
        QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("Closed closed.glb. The scene is empty."));
        QVERIFY(!action("FileClose")->isEnabled());
        QCOMPARE(action("FileClose")->statusTip(), QStringLiteral("No file is open."));
        QVERIFY(files()->openPath(path));
        QCOMPARE(qRound(forearm()->getZRotControl()->getValue()), 20);
        QVERIFY(action("FileClose")->isEnabled());
    }

    void revertOpensAgain()
    {
        QAction *revert = action("FileRevert");
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(files()->savePath(path));
        QVERIFY(!revert->isEnabled());
        QCOMPARE(revert->statusTip(), QStringLiteral("Nothing has changed: the scene is as hero.glb is on the disk."));
        QVERIFY(files()->openPath(path));
        const QString before = dump();
        bend();
        bend(30);
        QVERIFY(revert->isEnabled());
        const QString edited = dump();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Revert"), QStringLiteral("Cancel"));
        driver.setAnswer(QStringLiteral("Revert"), QStringLiteral("Revert"));
        revert->trigger();
        QCOMPARE(dump(), edited);
        const RyDialogRecord &box = driver.records().front();
        QCOMPARE(box.text, QStringLiteral("Open hero.glb again as it is on the disk?"));
        QVERIFY2(box.informativeText.startsWith(
                     QStringLiteral("This is lost, and undo does not bring it back:\n2 edits since the opening at ")) &&
                     box.informativeText.endsWith(QStringLiteral(": Bend (2 times).")),
                 qPrintable(box.informativeText));
        QCOMPARE(QSet<QString>(box.buttons.begin(), box.buttons.end()),
                 (QSet<QString>{QStringLiteral("Cancel"), QStringLiteral("Revert")}));
        QCOMPARE(box.defaultButton, QStringLiteral("Cancel"));
        revert->trigger();
        QCOMPARE(dump(), before);
        QVERIFY(ryUndoStack()->isClean() && !ryUndoStack()->canUndo() && !revert->isEnabled());
        QCOMPARE(files()->path(), path);
    }

    void revertNamesWhatWasMerged()
    {
        const QString path = file(QStringLiteral("hero.glb")), other = file(QStringLiteral("other.glb"));
        QVERIFY(files()->savePath(other) && files()->savePath(path));
        QVERIFY(files()->mergePath(other));
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Revert"), QStringLiteral("Revert"));
        action("FileRevert")->trigger();
        QVERIFY2(driver.records().front().informativeText.endsWith(
                     QStringLiteral("What was merged from another file goes too.")),
                 qPrintable(driver.records().front().informativeText));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb[*] - ryhost"));
    }

    /// Of a file that another program has written meanwhile nothing here has changed.
    void revertSeesTheDisk()
    {
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(files()->savePath(path));
        QCOMPARE(files()->file().whyNotReverted().isEmpty(), false);
        QFile sample(path);
        QVERIFY(sample.open(QIODevice::Append));
        sample.write("    ");
        sample.close();
        QCOMPARE(files()->file().whyNotReverted(), QString());
        QVERIFY(QFile::remove(path));
        QCOMPARE(files()->file().whyNotReverted(), path + QStringLiteral(" is not there any more."));
        action("FileNew")->trigger();
        QCOMPARE(action("FileRevert")->statusTip(),
                 QStringLiteral("There is no file to go back to: the scene was neither opened nor saved."));
    }

    void askedBeforeAnotherProgramsWorkIsReplaced_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::newRow("stay") << QStringLiteral("Cancel");
        QTest::newRow("replace") << QStringLiteral("Replace");
    }
    /// Two programs on one file: the second to save is asked.
    void askedBeforeAnotherProgramsWorkIsReplaced()
    {
        QFETCH(QString, answer);
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(files()->savePath(path));
        bend();
        RyDialogDriver driver;
        QVERIFY(files()->save());
        QVERIFY2(driver.records().empty(), "the program itself is no other one");
        bend(30);
        const QByteArray theirs = writeMeanwhile(path);
        driver.setAnswer(QStringLiteral("Written Meanwhile"), answer);
        QCOMPARE(files()->save(), answer != QLatin1String("Cancel"));
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        const RyDialogRecord &box = driver.records().front();
        QCOMPARE(box.text, QStringLiteral("Replace hero.glb, which another program has written since?"));
        QCOMPARE(
            box.informativeText,
            QStringLiteral("It was written at %1. Replacing it loses what it holds now; Save As writes another file.")
                .arg(timeTextOf(QDateTime::currentDateTime())));
        QCOMPARE(QSet<QString>(box.buttons.begin(), box.buttons.end()),
                 (QSet<QString>{QStringLiteral("Cancel"), QStringLiteral("Replace"), QStringLiteral("Save As...")}));
        QCOMPARE(box.defaultButton, QStringLiteral("Cancel"));
        QCOMPARE(bytesOf(path) == theirs, answer != QLatin1String("Replace"));
        QCOMPARE(ryUndoStack()->isClean(), answer != QLatin1String("Cancel"));
        QCOMPARE(files()->path(), path);
        ryUndoStack()->setClean();
    }

    /// Who would rather have both: the scene goes on in the new file, and what the other program wrote stays.
    void savesBesideAnotherProgramsWork()
    {
        const QString path = file(QStringLiteral("hero.glb")), beside = file(QStringLiteral("mine.glb"));
        QVERIFY(files()->savePath(path));
        bend();
        const QByteArray theirs = writeMeanwhile(path);
        const QString before = dump();
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Written Meanwhile"), QStringLiteral("Save As..."));
        connect(&driver, &RyDialogDriver::opened, this, [&beside](QDialog *dialog) {
            if (auto *chooser = qobject_cast<QFileDialog *>(dialog))
                chooser->selectFile(beside);
        });
        action("FileSave")->trigger();
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        QCOMPARE(driver.records().size(), size_t(2));
        QCOMPARE(driver.records()[1].title, QStringLiteral("Save As"));
        QVERIFY(bytesOf(path) == theirs);
        QCOMPARE(files()->path(), beside);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("mine.glb[*] - ryhost"));
        QVERIFY(!m_window->isWindowModified());
        QCOMPARE(dump(), before);
        QVERIFY(files()->openPath(beside));
        QCOMPARE(qRound(forearm()->getZRotControl()->getValue()), 20);
    }

    /// Who changes their mind in the second box has saved nothing.
    void savesNowhereWhenTheNameIsNotGiven()
    {
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(files()->savePath(path));
        bend();
        const QByteArray theirs = writeMeanwhile(path);
        RyDialogDriver driver;
        driver.setAnswer(QStringLiteral("Written Meanwhile"), QStringLiteral("Save As..."));
        driver.setAnswer(QStringLiteral("Save As"), QStringLiteral("Cancel"));
        QVERIFY(!files()->save());
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        QVERIFY(bytesOf(path) == theirs);
        QCOMPARE(files()->path(), path);
        QVERIFY(m_window->isWindowModified());
        ryUndoStack()->setClean();
    }

    void aCopyChangesNothing()
    {
        const QString path = file(QStringLiteral("hero.glb")), copy = file(QStringLiteral("hero copy.glb"));
        QVERIFY(files()->savePath(path));
        bend();
        const QString title = m_window->windowTitle(), changes = files()->file().unsavedChanges();
        const QStringList recent = files()->recentFiles();
        RyDialogDriver driver;
        driver.setField(QStringLiteral("fileNameEdit"), copy);
        action("FileSaveCopy")->trigger();
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        QVERIFY(QFile::exists(copy));
        QVERIFY(m_window->statusBar()->currentMessage().startsWith(QStringLiteral("Saved a copy as ")));
        QCOMPARE(m_window->windowTitle(), title);
        QCOMPARE(files()->path(), path);
        QCOMPARE(files()->file().unsavedChanges(), changes);
        QCOMPARE(files()->recentFiles(), recent);
        QVERIFY(m_window->isWindowModified() && !ryUndoStack()->isClean());
        ryUndoStack()->undo();
        QVERIFY2(ryUndoStack()->isClean(), "the saved state is where it was");
        QVERIFY(files()->openPath(copy));
        QCOMPARE(qRound(forearm()->getZRotControl()->getValue()), 20);
    }

    void neitherCopyNorExportReplacesTheFile()
    {
        const QString path = file(QStringLiteral("hero.glb"));
        QVERIFY(files()->savePath(path));
        bend();
        QFile saved(path);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        const QByteArray before = saved.readAll();
        saved.close();
        RyDialogDriver driver;
        QVERIFY(!files()->saveCopyTo(path));
        QVERIFY(!files()->exportTo(path));
        QCOMPARE(driver.records().size(), size_t(2));
        QCOMPARE(driver.records()[0].title, QStringLiteral("Save a Copy"));
        QCOMPARE(driver.records()[1].title, QStringLiteral("Export Without Extras"));
        QCOMPARE(driver.records()[1].text, QStringLiteral("hero.glb is the file that is open. Choose another name; "
                                                          "File > Save writes the file itself."));
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QVERIFY(saved.readAll() == before);
    }

    void exportSaysWhatItLeavesOut()
    {
        const QString path = file(QStringLiteral("hero.glb")), bare = file(QStringLiteral("bare.glb"));
        QVERIFY(files()->savePath(path));
        bend();
        RyDialogDriver driver;
        driver.setField(QStringLiteral("fileNameEdit"), bare);
        action("FileExport")->trigger();
        QVERIFY2(driver.errors().isEmpty(), qPrintable(driver.errors().join(u'\n')));
        QFile written(bare);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(!written.readAll().contains("RYHOST"));
        QVERIFY2(files()->notes()->texts().value(0).startsWith(QStringLiteral(
                     "Without our extras the file does not hold end points, rotation orders and orientations of ")),
                 qPrintable(files()->notes()->texts().join(u'\n')));
        QVERIFY(m_window->statusBar()->currentMessage().startsWith(QStringLiteral("Exported bare.glb: Without ")));
        QCOMPARE(files()->path(), path);
        QVERIFY(!ryUndoStack()->isClean());
        ryUndoStack()->undo();
        QVERIFY(ryUndoStack()->isClean());
    }

    void lossesOfACopy()
    {
        QFile strange(file(QStringLiteral("strange.gltf")));
        QVERIFY(strange.open(QIODevice::WriteOnly));
        strange.write(strangeFile());
        strange.close();
        QVERIFY(files()->mergePath(strange.fileName()));
        RyDialogDriver driver;
        QVERIFY(files()->saveCopyTo(file(QStringLiteral("both.glb"))));
        QCOMPARE(driver.records().size(), size_t(1));
        QVERIFY2(driver.records()[0].text.startsWith(
                     QStringLiteral("both.glb was written without the following:\n\nstrange.gltf")),
                 qPrintable(driver.records()[0].text));
    }

    /// A save that was not whole is none that edits could be counted from.
    void aSaveWithLossesCountsFromBefore()
    {
        QFile strange(file(QStringLiteral("strange.gltf")));
        QVERIFY(strange.open(QIODevice::WriteOnly));
        strange.write(strangeFile());
        strange.close();
        QVERIFY(files()->mergePath(strange.fileName()));
        RyDialogDriver driver;
        QVERIFY(files()->savePath(file(QStringLiteral("both.glb"))));
        QCOMPARE(int(files()->file().savedState().kind), int(SavedState::Opened));
        QVERIFY(!files()->file().unsavedChanges().isEmpty());
    }

    /// The ending is put behind the name before the question whether the file may be replaced.
    void saveAsAsksBeforeItReplaces()
    {
        const QString path = file(QStringLiteral("there.glb"));
        QFile there(path);
        QVERIFY(there.open(QIODevice::WriteOnly));
        there.write("something else");
        there.close();
        RyDialogDriver driver;
        driver.setField(QStringLiteral("fileNameEdit"), file(QStringLiteral("there")));
        action("FileSaveAs")->trigger();
        QVERIFY2(!driver.boxes().empty() && driver.boxes().front().text.contains(QStringLiteral("there.glb")),
                 "nobody was asked");
        QVERIFY(there.open(QIODevice::ReadOnly));
        QCOMPARE(there.readAll(), QByteArray("something else"));
    }

private:
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// As another program does; what the file then holds.
    static QByteArray writeMeanwhile(const QString &path)
    {
        QFile other(path);
        if (other.open(QIODevice::Append))
            other.write("    ");
        other.close();
        return bytesOf(path);
    }
    HostFiles *files() const { return m_window->files(); }
    QString dump() const { return rySceneDump(*m_scene); }
};

RY_TEST(FileCommandsTest)
#include "tst_FileCommands.moc"
