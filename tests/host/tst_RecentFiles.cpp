#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "ryhost/commands/FileDialogs.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/RecentFiles.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QStandardPaths>
#include <QTimer>

/// Names of files where people read them: the list of recent ones, the title, and the folder that a dialog begins in.
class RecentFilesTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    void labels_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QStringList>("labels");
        QTest::newRow("names of their own") << QStringList({"/x/a.glb", "/x/b.glb"}) << QStringList({"a.glb", "b.glb"});
        QTest::newRow("one name") << QStringList({"/x/new/a.glb", "/x/old/a.glb", "/x/old/b.glb"})
                                  << QStringList({"new/a.glb", "old/a.glb", "b.glb"});
        QTest::newRow("one folder name too") << QStringList({"/p/hero/out/a.glb", "/p/wolf/out/a.glb"})
                                             << QStringList({"hero/out/a.glb", "wolf/out/a.glb"});
        QTest::newRow("only as far as each needs")
            << QStringList({"/p/hero/out/a.glb", "/p/wolf/out/a.glb", "/p/in/a.glb"})
            << QStringList({"hero/out/a.glb", "wolf/out/a.glb", "in/a.glb"});
        QTest::newRow("at the root") << QStringList({"/a.glb", "/x/a.glb"}) << QStringList({"/a.glb", "x/a.glb"});
        QTest::newRow("one") << QStringList({"/x/a.glb"}) << QStringList({"a.glb"});
    }
    void labels()
    {
        QFETCH(QStringList, paths);
        QFETCH(QStringList, labels);
        QCOMPARE(RecentFiles::labelsOf(paths), labels);
    }

    void theMenuTellsThemApart()
    {
        const QString first = save(QStringLiteral("first/hero.glb")), second = save(QStringLiteral("second/hero.glb"));
        const QString other = save(QStringLiteral("second/wolf & co.glb"));
        const auto *menu = m_window->findChild<QMenu *>(QStringLiteral("RecentMenu"));
        const QList<QAction *> entries = menu->actions();
        QCOMPARE(entries[0]->text(), QStringLiteral("wolf && co.glb"));
        QCOMPARE(entries[1]->text(), QStringLiteral("second/hero.glb"));
        QCOMPARE(entries[2]->text(), QStringLiteral("first/hero.glb"));
        QVERIFY(menu->toolTipsVisible());
        QCOMPARE(entries[2]->toolTip(), QDir::toNativeSeparators(first));
        QCOMPARE(entries[0]->toolTip(), QDir::toNativeSeparators(other));
        entries[2]->trigger();
        QCoreApplication::processEvents();
        QCOMPARE(files()->path(), first);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("first/hero.glb[*] - ryhost"));
        files()->recent()->clear();
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb[*] - ryhost"));
    }

    /// Any name that a folder can have.
    void aFolderWithALineBreak()
    {
        const QString first = save(QStringLiteral("first/hero.glb")), odd = save(QStringLiteral("two\nlines/hero.glb"));
        QCOMPARE(files()->recentFiles(), QStringList({odd, first}));
        QCOMPARE(files()->title(), QStringLiteral("two\nlines/hero.glb"));
        files()->recent()->clear();
        QCOMPARE(files()->recentFiles(), QStringList());
    }

    /// An unsaved merge counts; a save holds everything.
    void titleAfterAMerge()
    {
        const QString hat = save(QStringLiteral("hat.glb")), sword = save(QStringLiteral("sword.glb"));
        save(QStringLiteral("hero.glb"));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb[*] - ryhost"));
        QVERIFY(files()->mergePath(hat));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb + 1 file[*] - ryhost"));
        QVERIFY(m_window->isWindowModified());
        QVERIFY(files()->mergePath(sword));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb + 2 files[*] - ryhost"));
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb + 1 file[*] - ryhost"));
        save(QStringLiteral("hero.glb"));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb[*] - ryhost"));
        QVERIFY(!m_window->isWindowModified());
        action("FileNew")->trigger();
        QVERIFY(files()->mergePath(hat));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled + 1 file[*] - ryhost"));
        ryUndoStack()->setClean();
    }

    /// "[*]" in a name is no place for the star.
    void aStrangeName()
    {
        save(QStringLiteral("odd[*].glb"));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("odd[*][*].glb[*] - ryhost"));
    }

    void dialogsBeginInAFolderThatExists()
    {
        const FileDialogs dialogs(m_window.get(), files()->recent());
        QTemporaryDir home;
        const QByteArray before = qgetenv("HOME");
        qputenv("HOME", home.path().toLocal8Bit());
        const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        QCOMPARE(dialogs.folderFor(QString()), QFileInfo(documents).isDir() ? documents : QDir::homePath());
        const QString first = save(QStringLiteral("first/a.glb")), second = save(QStringLiteral("second/b.glb"));
        const QString third = file(QStringLiteral("third"));
        QVERIFY(QDir().mkpath(third));
        QCOMPARE(dialogs.folderFor(first), folderOf(first));
        QCOMPARE(dialogs.folderFor(QString()), folderOf(second));
        dialogs.rememberFolderOf(third + QStringLiteral("/copy.glb"));
        QCOMPARE(dialogs.folderFor(QString()), third);
        QCOMPARE(dialogs.folderFor(second), folderOf(second));
        QVERIFY(QDir(third).removeRecursively());
        QCOMPARE(dialogs.folderFor(QString()), folderOf(second));
        QVERIFY(QDir(folderOf(second)).removeRecursively());
        QCOMPARE(dialogs.folderFor(second), folderOf(first));
        QVERIFY(QDir(folderOf(first)).removeRecursively());
        QCOMPARE(dialogs.folderFor(second), QFileInfo(documents).isDir() ? documents : QDir::homePath());
        qputenv("HOME", before);
    }

    /// The dialog itself stands there, and a copy has a name of its own.
    void theDialogItself()
    {
        const QString path = save(QStringLiteral("first/hero.glb"));
        QString folder, name, suffix;
        for (const char *entry : {"FileOpen", "FileSaveCopy"}) {
            QTimer::singleShot(0, this, [&] {
                auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
                QVERIFY(dialog);
                folder = dialog->directory().absolutePath();
                name = dialog->selectedFiles().value(0);
                suffix = dialog->defaultSuffix();
                dialog->reject();
            });
            action(entry)->trigger();
            QCOMPARE(folder, folderOf(path));
        }
        QCOMPARE(QFileInfo(name).fileName(), QStringLiteral("hero copy.glb"));
        QCOMPARE(suffix, QStringLiteral("glb"));
    }

private:
    HostFiles *files() const { return m_window->files(); }
    static QString folderOf(const QString &path) { return QFileInfo(path).absolutePath(); }
    QString save(const QString &name)
    {
        const QString path = file(name);
        QDir().mkpath(folderOf(path));
        return files()->savePath(path) ? path : QString();
    }
};

RY_TEST(RecentFilesTest)
#include "tst_RecentFiles.moc"
