#include "foreign/ForeignStage.h"
#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "pointer/PointerDriver.h"
#include "rycore/app/RyApp.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/FileNotes.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/timeText.h"
#include "ryhost/panes/ScenePane.h"

#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

/// The window while a foreign file is read, and what it says and asks about the scene that comes of it.
class ForeignWindowTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        m_stage = std::make_unique<ForeignStage>();
        QVERIFY(open());
        m_posted.clear();
        connect(m_window->files(), &HostFiles::messagePosted, this,
                [this](const QString &message) { m_posted.append(message); });
        m_hero = m_stage->write(QStringLiteral("hero.fbx"), "take " + ForeignStage::sample().toUtf8());
        m_slow = m_stage->write(QStringLiteral("slow.fbx"), "slow");
    }
    void cleanup()
    {
        const QStringList leftovers = m_stage->leftovers();
        close();
        m_stage.reset();
        QCOMPARE(leftovers, QStringList());
        QCOMPARE(RyApp::busyCursorDepth(), 0);
    }

    void opensAsANewScene()
    {
        QVERIFY(m_window->files()->openPath(m_hero));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.fbx[*] - ryhost"));
        QVERIFY(m_window->isWindowModified());
        QVERIFY(m_scene->findNode(QStringLiteral("lForearm")));
        QCOMPARE(m_window->files()->recentFiles(), QStringList{m_hero});
        QVERIFY(m_window->files()->notes()->texts().contains(QStringLiteral("Two lights did not come along.")));
        QVERIFY2(m_posted.last().startsWith(QStringLiteral("hero.fbx: ")), qPrintable(m_posted.last()));
        QVERIFY(!m_window->findChild<QProgressDialog *>(QStringLiteral("ImportProgress")));
    }

    void savingAsksWhere()
    {
        QVERIFY(m_window->files()->openPath(m_hero));
        const QString wanted = m_stage->path(QStringLiteral("hero.glb"));
        QStringList suggested, filters;
        withDialog<QFileDialog>([&](QFileDialog *dialog) {
            suggested = dialog->selectedFiles();
            filters = dialog->nameFilters();
            QMetaObject::invokeMethod(dialog, "accept");
        });
        action("FileSave")->trigger();
        QCOMPARE(suggested, QStringList{wanted});
        QVERIFY2(!filters.join(QLatin1Char(' ')).contains(QStringLiteral("fbx")), qPrintable(filters.join(";")));
        QVERIFY(QFileInfo::exists(wanted));
        QVERIFY(!m_window->isWindowModified());
        QCOMPARE(m_window->windowTitle(), QStringLiteral("hero.glb[*] - ryhost"));
        // From now on it is a file like any other.
        QVERIFY(m_window->files()->save());
        QString refused;
        withDialog<QMessageBox>([&](QMessageBox *shown) {
            refused = shown->text();
            shown->accept();
        });
        QVERIFY(!m_window->files()->savePath(m_hero));
        QVERIFY2(refused.startsWith(m_hero), qPrintable(refused));
    }

    void theOpenDialogShowsThem()
    {
        QStringList filters;
        withDialog<QFileDialog>([&](QFileDialog *dialog) {
            filters = dialog->nameFilters();
            dialog->reject();
        });
        action("FileOpen")->trigger();
        for (const char *pattern : {"*.fbx", "*.dae", "*.bvh", "*.glb"})
            QVERIFY2(filters.join(QLatin1Char(' ')).contains(QLatin1String(pattern)), pattern);
    }

    void closingAsks()
    {
        QVERIFY(m_window->files()->openPath(m_hero));
        QStringList box;
        withDialog<QMessageBox>([&](QMessageBox *shown) {
            box = QStringList{shown->windowTitle(), shown->text(), shown->informativeText()};
            shown->button(QMessageBox::Cancel)->click();
        });
        QVERIFY(!m_window->close());
        const QString read = QStringLiteral("Read from hero.fbx at %1, in no file yet")
                                 .arg(timeTextOf(m_window->files()->file().savedState().time));
        QCOMPARE(box, (QStringList{QStringLiteral("Unsaved Changes"),
                                   QStringLiteral("Save what was read from hero.fbx as glTF first?"),
                                   read + QStringLiteral(".\nhero.fbx itself stays as it is.")}));
        // Hours of work are not passed over.
        bend();
        withDialog<QMessageBox>([&](QMessageBox *shown) {
            box = QStringList{shown->informativeText()};
            shown->button(QMessageBox::Cancel)->click();
        });
        QVERIFY(!m_window->close());
        QCOMPARE(box, QStringList{read + QStringLiteral(", and 1 edit since: Bend.\nhero.fbx itself stays as it is.")});
    }

    /// What was only read has nothing to go back from, and says where it stands everywhere.
    void unedited()
    {
        QVERIFY(m_window->files()->openPath(m_hero));
        const QString read = QStringLiteral("Read from hero.fbx at %1, in no file yet.")
                                 .arg(timeTextOf(m_window->files()->file().savedState().time));
        QCOMPARE(m_window->files()->file().unsavedChanges(), read);
        m_window->showHistory();
        QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("HistoryState"))->text(), read);
        QCOMPARE(m_window->findChild<QToolButton *>(QStringLiteral("UnsavedStatus"))->text(),
                 QStringLiteral("* unsaved"));
        QCOMPARE(action("FileSave")->statusTip(), QStringLiteral("Save to a file; asks which"));
        QVERIFY(!action("FileRevert")->isEnabled());
        QVERIFY(!m_window->files()->revert());
        bend();
        QCOMPARE(m_window->files()->file().whyNotReverted(), QString());
        ryUndoStack()->undo();
        QVERIFY(!m_window->files()->file().whyNotReverted().isEmpty());
    }

    void mergesBeside()
    {
        const QString path = m_window->files()->path();
        QVERIFY(m_window->files()->mergePath(m_hero));
        QCOMPARE(m_scene->getSkeletons().size(), size_t(2));
        QCOMPARE(m_window->files()->path(), path);
    }

    void isDropped()
    {
        QVERIFY(wouldTake({m_hero}));
        drop({m_hero});
        QVERIFY(m_window->files()->path() != m_hero);
        QTRY_COMPARE(m_window->files()->path(), m_hero);
    }

    void refusalIsABox()
    {
        const QString bad = m_stage->write(QStringLiteral("bad.dae"), "crash");
        QStringList box;
        withDialog<QMessageBox>([&](QMessageBox *shown) {
            box = QStringList{shown->windowTitle(), shown->text()};
            shown->accept();
        });
        QVERIFY(!m_window->files()->openPath(bad));
        QCOMPARE(box, (QStringList{QStringLiteral("Not Opened"),
                                   bad + QStringLiteral(" cannot be opened: the reader of such files broke down over "
                                                        "it, which damaged files can cause. Exported as glTF 2.0 "
                                                        "(.glb) from the program that made it, it can be opened.\n\n"
                                                        "The scene is as it was before.")}));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("mannequin.glb[*] - ryhost"));
    }

    /// The window paints and tells, and takes nothing that would change the scene.
    void livesMeanwhile()
    {
        bend();
        QApplication::setActiveWindow(m_window.get());
        const QString before = rySceneDump(*m_scene);
        RyNode *selected = m_scene->getPrimarySelection();
        bool wasShown = false;
        int beats = 0;
        QStringList said;
        QTimer beat;
        connect(&beat, &QTimer::timeout, this, [&] { ++beats; });
        beat.start(20);
        meanwhile(1500, [&](QProgressDialog *dialog) {
            wasShown = dialog && dialog->isVisible();
            for (const QLabel *label : dialog->findChildren<QLabel *>())
                said.append(label->text());
            PointerDriver pointer;
            QApplication::setActiveWindow(m_window.get()); // shortcuts are for the active window
            QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
            QTreeView *tree = m_window->scenePane()->tree();
            pointer.click(tree->viewport(), tree->viewport()->rect().center());
            pointer.click(m_window->centralWidget(), QPoint(30, 30));
            pointer.click(dialog->findChild<QPushButton *>(), QPoint(5, 5));
        });
        QVERIFY(!m_window->files()->openPath(m_slow));
        QVERIFY(wasShown);
        QVERIFY2(said.contains(QStringLiteral("Reading slow.fbx")), qPrintable(said.join(";")));
        QVERIFY(beats > 20);
        QCOMPARE(rySceneDump(*m_scene), before);
        QVERIFY(ryUndoStack()->canUndo());
        QCOMPARE(m_scene->getPrimarySelection(), selected);
        QCOMPARE(m_posted, QStringList{QStringLiteral("slow.fbx was not opened: it was cancelled.")});
        settle();
        // And takes it again afterwards.
        QApplication::setActiveWindow(m_window.get());
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        settle();
        QVERIFY(!ryUndoStack()->canUndo());
    }

    void aQuickOneShowsNoProgress()
    {
        bool wasShown = false;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            for (const QWidget *widget : QApplication::topLevelWidgets())
                wasShown = wasShown || (widget->isVisible() && qobject_cast<const QProgressDialog *>(widget));
        });
        watch.start(5);
        QVERIFY(m_window->files()->openPath(m_hero));
        QVERIFY(!wasShown);
    }

    void escapeCancels()
    {
        meanwhile(300, [&](QProgressDialog *) { QTest::keyClick(m_window.get(), Qt::Key_Escape); });
        QVERIFY(!m_window->files()->openPath(m_slow));
        QCOMPARE(m_posted, QStringList{QStringLiteral("slow.fbx was not opened: it was cancelled.")});
        QVERIFY(m_scene->findNode(QStringLiteral("lForearm")));
    }

    void closingCancels()
    {
        bool closed = true;
        meanwhile(300, [&](QProgressDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), QStringLiteral("Merge"));
            closed = m_window->close();
        });
        QVERIFY(!m_window->files()->mergePath(m_slow));
        QCOMPARE(m_posted, QStringList{QStringLiteral("slow.fbx was not merged: it was cancelled.")});
        QVERIFY(!closed); // not under the feet of the reading
        QVERIFY(m_window->isVisible());
        settle();
        QVERIFY(!m_window->isVisible());
    }

private:
    /// Once, while the file is read.
    void meanwhile(int after, const std::function<void(QProgressDialog *)> &use)
    {
        QTimer::singleShot(after, this, [this, use] {
            use(m_window->findChild<QProgressDialog *>(QStringLiteral("ImportProgress")));
        });
    }

    std::unique_ptr<ForeignStage> m_stage;
    QString m_hero;
    QString m_slow;
    QStringList m_posted;
};

RY_TEST(ForeignWindowTest)
#include "tst_foreign_window.moc"
