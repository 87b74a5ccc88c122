#include "host/WindowStage.h"
#include "support/RyTest.h"
#include "support/strangeFile.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/ActionSearch.h"
#include "ryhost/commands/FileNotes.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/panes/ParametersPane.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/panes/ToolSettingsPane.h"
#include "ryhost/window/HostMenus.h"
#include "ryhost/window/ToolStrip.h"

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QStatusBar>
#include <QToolButton>
#include <QTreeView>

/// The window with the sample figure; plug-ins are left out.
class HostWindowTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup() { close(); }

    void opensReadyToWork()
    {
        QCOMPARE(m_window->windowTitle(), QStringLiteral("mannequin.glb[*] - ryhost"));
        QVERIFY(!m_window->isWindowModified());
        QVERIFY(m_window->getViewportMgr()->getActiveTool());
        QCOMPARE(QApplication::focusWidget(), m_window->viewport()); // F frames, as the status bar says
        QVERIFY(!m_window->statusLabel()->text().isEmpty());
        QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("UnitStatus"))->text(),
                 QStringLiteral("1 file unit = 100 cm"));
        QPointF head, foot;
        const RyNode *figure = m_scene->getSkeletons().at(0);
        QVERIFY(figure);
        m_window->viewport()->project(m_scene->findNode(QStringLiteral("head"))->getWSEndPoint(), head);
        m_window->viewport()->project(RyVec3(), foot);
        QVERIFY(head.y() > 0 && foot.y() < m_window->viewport()->height());
        QVERIFY2(foot.y() - head.y() > 0.5 * m_window->viewport()->height(), "the figure fills the view");
        // Its bones are seen at once.
        QCOMPARE(m_scene->getPrimarySelection(), figure);
        QVERIFY(!ryUndoStack()->canUndo());
        // The sample is no file of the user's.
        QVERIFY(m_window->files()->recentFiles().isEmpty());
    }

    /// Not over the hint of the tool, though the button for unsaved work comes up with it and makes the bar higher.
    void messageTakesThePlaceOfTheHint()
    {
        m_window = std::make_unique<HostWindow>(m_scene); // in which nothing was opened yet
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        QStatusBar *bar = m_window->statusBar();
        QVERIFY(m_window->statusLabel()->isVisible());
        m_scene->findNode(QStringLiteral("head"))->getXRotControl()->setValue(20.0f);
        m_window->showMessage(QStringLiteral("Something was done."));
        QCoreApplication::processEvents();
        QCoreApplication::processEvents(); // the layout's turn, and what it asked for
        QVERIFY(m_window->isWindowModified());
        QCOMPARE(bar->currentMessage(), QStringLiteral("Something was done."));
        QVERIFY(!m_window->statusLabel()->isVisible());
        bar->clearMessage();
        QVERIFY(m_window->statusLabel()->isVisible());
    }

    void everyWidgetHasAName()
    {
        for (const QDockWidget *dock : m_window->docks())
            QVERIFY(!dock->objectName().isEmpty());
        for (const char *name : {"SceneTree", "SceneFilter", "ParametersPane", "ToolSettingsPane", "Viewport",
                                 "ToolStrip", "StatusText", "ActionSearch", "PoseXRotate"})
            QVERIFY2(m_window->findChild<QWidget *>(QString::fromLatin1(name)), name);
    }

    void theStyleDrawsPlainFrames()
    {
        // A sheet would be matched with every widget whenever one gets a parent.
        QVERIFY(qApp->styleSheet().isEmpty());
        const QDockWidget *scene = m_window->docks().first();
        const QRect title(0, 0, scene->width(), scene->widget()->y());
        QRgb before = 0;
        for (bool dark : {true, false}) {
            m_window->setDark(dark);
            settle();
            const QImage picture = m_window->docks().first()->grab(title).toImage();
            const QRgb ground = QApplication::palette().color(QPalette::Midlight).rgb();
            QVERIFY(ground != before);
            before = ground;
            for (const QPoint &corner : {title.topLeft(), title.bottomLeft(), title.topRight(), title.bottomRight()})
                QCOMPARE(picture.pixel(corner), ground);
            for (const QTreeView *tree : m_window->findChildren<QTreeView *>(QRegularExpression(".*(Tree|List)")))
                QVERIFY2(!tree->isVisible() || tree->frameWidth() == 0, qPrintable(tree->objectName()));
            const QStyle *style = m_window->style();
            QCOMPARE(style->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent, nullptr, m_window.get()), 4);
        }
    }

    void clearButtonsAreMadeWithTheFirstText()
    {
        for (const char *name : {"SceneFilter", "ActionSearch"}) {
            auto *field = m_window->findChild<QLineEdit *>(QString::fromLatin1(name));
            QVERIFY(field->findChildren<QToolButton *>().isEmpty());
            for (const char *text : {"h", "hip"}) {
                field->setText(QString::fromLatin1(text));
                QCOMPARE(field->findChildren<QToolButton *>().size(), 1);
            }
            QTest::mouseClick(field->findChild<QToolButton *>(), Qt::LeftButton);
            QVERIFY(field->text().isEmpty());
        }
    }

    void selectionGoesBothWays()
    {
        RyNode *hip = m_scene->findNode(QStringLiteral("hip"));
        m_scene->setSelection({hip, forearm()});
        QCOMPARE(tree()->selectionModel()->selectedRows().size(), 2);
        QCOMPARE(tree()->currentIndex(), indexOf(forearm()));
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          tree()->visualRect(indexOf(hip)).center());
        QCOMPARE(m_scene->selectedNodeListIterator(), std::vector<RyNode *>{hip});
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          tree()->visualRect(indexOf(forearm())).center());
        QCOMPARE(m_scene->getPrimarySelection(), forearm());
        QCOMPARE(m_scene->getNumSelectedNodes(), 2);
        m_scene->selectAllNodes(false);
        QVERIFY(tree()->selectionModel()->selectedRows().isEmpty());
    }

    void theEyeHidesInOneStep()
    {
        RyNode *hip = m_scene->findNode(QStringLiteral("hip"));
        const QModelIndex eye = indexOf(hip).siblingAtColumn(SceneModel::VisibleColumn);
        tree()->scrollTo(eye);
        const QString before = eye.data(Qt::AccessibleTextRole).toString();
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, tree()->visualRect(eye).center());
        QVERIFY(hip->isHidden());
        QVERIFY(eye.data(Qt::AccessibleTextRole).toString() != before);
        QVERIFY(m_window->isWindowModified());
        ryUndoStack()->undo();
        QVERIFY(!hip->isHidden());
        QVERIFY(!m_window->isWindowModified());
    }

    void theFilterKeepsTheWayToAMatch()
    {
        m_window->scenePane()->filter()->setText(QStringLiteral("LFOREARM"));
        QVERIFY(indexOf(forearm()).isValid());
        QVERIFY(indexOf(m_scene->findNode(QStringLiteral("hip"))).isValid());
        QVERIFY(!indexOf(m_scene->findNode(QStringLiteral("head"))).isValid());
        m_window->scenePane()->filter()->clear();
        QVERIFY(indexOf(m_scene->findNode(QStringLiteral("head"))).isValid());
    }

    void theTreeFollowsTheScene()
    {
        RyNode *hand = m_scene->findNode(QStringLiteral("lHand"));
        tree()->collapse(indexOf(m_scene->findNode(QStringLiteral("rHand"))));
        auto *added = new RyBone;
        added->setName(QStringLiteral("extra"));
        hand->addNodeChild(added);
        m_scene->addNode(added);
        settle();
        QVERIFY(indexOf(added).isValid());
        QCOMPARE(indexOf(added).parent(), indexOf(hand));
        QVERIFY(!tree()->isExpanded(indexOf(m_scene->findNode(QStringLiteral("rHand")))));
        added->setLabel(QStringLiteral("Extra Bone"));
        QCOMPARE(indexOf(added).data().toString(), QStringLiteral("Extra Bone"));
        m_scene->removeNode(added);
        settle();
        QCOMPARE(tree()->model()->rowCount(indexOf(hand)), hand->getNumNodeChildren());
    }

    void poseSlidersWriteThePose()
    {
        m_scene->setSelection({forearm()});
        auto *row = m_window->findChild<RyFloatPropertyWgt *>(QStringLiteral("PoseZRotate"));
        QCOMPARE(row->getFirstProperty(), forearm()->getZRotControl());
        row->numberField()->setFocus();
        row->numberField()->selectAll();
        QTest::keyClicks(row->numberField(), QStringLiteral("90/2"));
        QTest::keyClick(row->numberField(), Qt::Key_Return);
        QCOMPARE(forearm()->getZRotControl()->getValue(), 45.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        auto *restore = m_window->findChild<QPushButton *>(QStringLiteral("ParametersRestore"));
        QVERIFY(restore->isEnabled());
        QTest::mouseClick(restore, Qt::LeftButton);
        QCOMPARE(forearm()->getZRotControl()->getValue(), 0.0f);
        QVERIFY(!restore->isEnabled());
        m_scene->selectAllNodes(false);
        QCOMPARE(row->getFirstProperty(), nullptr);
    }

    void undoAndRedoSayWhat()
    {
        QAction *undo = action("EditUndo");
        QAction *redo = action("EditRedo");
        QVERIFY(!undo->isEnabled() && !redo->isEnabled());
        bend();
        QCOMPARE(undo->text(), QStringLiteral("&Undo Bend"));
        QVERIFY(
            m_window->findChild<QLabel *>(QStringLiteral("UndoStatus"))->text().contains(QStringLiteral("undo: Bend")));
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!undo->isEnabled());
        QCOMPARE(redo->text(), QStringLiteral("&Redo Bend"));
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(undo->isEnabled());
    }

    void restorePoseIsOneStep()
    {
        bend();
        action("EditRestorePose")->trigger();
        QVERIFY(!forearm()->isPosed());
        QCOMPARE(ryUndoStack()->count(), 2);
        action("EditRestorePose")->trigger();
        QCOMPARE(ryUndoStack()->count(), 2);
    }

    void savesAndRemembers()
    {
        bend();
        QVERIFY(m_window->isWindowModified());
        const QString path = file(QStringLiteral("saved.glb"));
        QVERIFY(m_window->files()->savePath(path));
        QVERIFY(!m_window->isWindowModified());
        QCOMPARE(m_window->windowTitle(), QStringLiteral("saved.glb[*] - ryhost"));
        QCOMPARE(m_window->files()->recentFiles(), QStringList{path});
        QVERIFY(m_window->files()->openPath(path));
        QCOMPARE(qRound(forearm()->getZRotControl()->getValue()), 20);
        QVERIFY(m_window->files()->save());
    }

    void recentFilesFromTheirMenu()
    {
        const QStringList paths{file(QStringLiteral("one.glb")), file(QStringLiteral("two.glb"))};
        for (const QString &path : paths)
            QVERIFY(m_window->files()->savePath(path));
        auto *menu = m_window->findChild<QMenu *>(QStringLiteral("RecentMenu"));
        // Triggering fills the menu anew: the action must outlive its own signal.
        const QPointer<QAction> first(menu->actions().at(1));
        QCOMPARE(first->text(), QStringLiteral("one.glb"));
        connect(first, &QAction::triggered, this, [&] { QVERIFY(first); });
        first->trigger();
        QCoreApplication::processEvents();
        QCOMPARE(m_window->files()->path(), paths.first());
        QCOMPARE(menu->actions().first()->text(), QStringLiteral("one.glb"));
        const QPointer<QAction> clear(menu->actions().last());
        QCOMPARE(clear->text(), QStringLiteral("Clear List"));
        connect(clear, &QAction::triggered, this, [&] { QVERIFY(clear); });
        clear->trigger();
        QCoreApplication::processEvents();
        QVERIFY(menu->actions().isEmpty() && !menu->menuAction()->isEnabled());
    }

    void refusedFilesLeaveTheScene()
    {
        const QString path = file(QStringLiteral("broken.glb"));
        QFile broken(path);
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("this is no model");
        broken.close();
        QString text;
        withDialog<QMessageBox>([&](QMessageBox *box) {
            text = box->text();
            box->accept();
        });
        QVERIFY(!m_window->files()->openPath(path));
        QVERIFY2(text.contains(QStringLiteral("broken.glb")), qPrintable(text));
        QVERIFY(forearm());
        QCOMPARE(m_window->windowTitle(), QStringLiteral("mannequin.glb[*] - ryhost"));
    }

    /// What a file could hold and is not written is told, and the scene is not saved then.
    void lossesAreTold()
    {
        const QString path = file(QStringLiteral("strange.gltf"));
        QFile strange(path);
        QVERIFY(strange.open(QIODevice::WriteOnly));
        strange.write(strangeFile());
        strange.close();
        QVERIFY(m_window->files()->mergePath(path));
        QVERIFY(m_scene->findNode(QStringLiteral("strange")));
        QStringList box;
        withDialog<QMessageBox>([&](QMessageBox *shown) {
            box = QStringList{shown->windowTitle(), shown->text()};
            shown->accept();
        });
        QVERIFY(m_window->files()->savePath(file(QStringLiteral("both.glb"))));
        QCOMPARE(box, (QStringList{QStringLiteral("Not All Saved"),
                                   QStringLiteral("both.glb was written without the following, and the scene still "
                                                  "counts as unsaved:\n\nstrange.gltf: the extension EXT_strange was "
                                                  "left out, for what it names is not known")}));
        QVERIFY(!ryUndoStack()->isClean());
        QVERIFY(m_window->isWindowModified());
        m_scene->removeNode(m_scene->findNode(QStringLiteral("strange")));
        QVERIFY(m_window->files()->savePath(file(QStringLiteral("one.glb"))));
        QVERIFY(ryUndoStack()->isClean() && !m_window->isWindowModified());
    }

    /// A short line says the first of them, a box all.
    void notes()
    {
        QVERIFY(!action("FileNotes")->isEnabled());
        QStringList posted;
        connect(m_window->files(), &HostFiles::messagePosted, this,
                [&posted](const QString &message) { posted.append(message); });
        QVERIFY(m_window->files()->savePath(file(QStringLiteral("bare.obj"))));
        const QStringList notes = m_window->files()->notes()->texts();
        QVERIFY(!notes.isEmpty());
        QVERIFY2(posted.last().startsWith(QStringLiteral("Saved bare.obj: ") + notes.first()),
                 qPrintable(posted.last()));
        QCOMPARE(posted.last().contains(QStringLiteral("more: File, Notes")), notes.size() > 1);
        QVERIFY(action("FileNotes")->isEnabled());
        QStringList box;
        withDialog<QMessageBox>([&box](QMessageBox *shown) {
            box = QStringList{shown->windowTitle(), shown->text(), shown->informativeText()};
            shown->accept();
        });
        action("FileNotes")->trigger();
        QCOMPARE(box, (QStringList{QStringLiteral("Notes"), QStringLiteral("About bare.obj:"),
                                   notes.join(QStringLiteral("\n\n"))}));
        QVERIFY(m_window->files()->savePath(file(QStringLiteral("whole.glb"))));
        QVERIFY(!action("FileNotes")->isEnabled());
    }

    /// Until another file is opened.
    void jointsOnly()
    {
        QAction *entry = action("FileJointsOnly");
        QVERIFY(!entry->isChecked());
        entry->trigger();
        QVERIFY(entry->isChecked() && m_window->files()->savesJointsOnly());
        const QString path = file(QStringLiteral("saved.glb"));
        QVERIFY(m_window->files()->savePath(path));
        QVERIFY(entry->isChecked());
        QVERIFY(m_window->files()->openPath(path));
        QVERIFY(!entry->isChecked() && !m_window->files()->savesJointsOnly());
    }

    void asksAboutUnsavedChanges()
    {
        QVERIFY(m_window->files()->confirmDiscard());
        bend();
        withDialog<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Cancel)->click(); });
        QVERIFY(!m_window->close());
        QVERIFY(m_window->isVisible());
        withDialog<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Discard)->click(); });
        QVERIFY(m_window->close());
    }

    void droppedFilesOpen()
    {
        const QString path = file(QStringLiteral("dropped.glb"));
        QVERIFY(QFile::copy(m_window->files()->path(), path));
        QVERIFY(wouldTake({path}));
        // The other program waits until the drop is taken, not until the file is open.
        drop({path});
        QVERIFY(m_window->files()->path() != path);
        settle();
        QCOMPARE(m_window->files()->path(), path);
        QVERIFY(!wouldTake({QStringLiteral("/tmp/picture.png")}));
    }

    void layoutAndLookAreRemembered()
    {
        QDockWidget *parameters = m_window->findChild<QDockWidget *>(QStringLiteral("ParametersDock"));
        parameters->close();
        action("ViewLight")->trigger();
        QVERIFY(!m_window->isDark());
        QVERIFY(m_window->viewport()->renderOptions().backgroundTop.lightness() > 150);
        QVERIFY(m_window->close());
        HostWindow again(m_scene);
        again.show();
        QVERIFY(!again.isDark());
        QVERIFY(!again.findChild<QDockWidget *>(QStringLiteral("ParametersDock"))->isVisible());
        again.resetLayout();
        QVERIFY(again.findChild<QDockWidget *>(QStringLiteral("ParametersDock"))->isVisible());
        again.setDark(true);
    }

    void wireframeFromTheMenu()
    {
        action("ViewWireframe")->trigger();
        QVERIFY(m_window->viewport()->renderOptions().wireframe);
    }

    void searchFindsAndRunsCommands()
    {
        ActionSearch *search = m_window->actionSearch();
        QTest::keyClick(m_window.get(), Qt::Key_F3);
        QTRY_VERIFY(search->hasFocus());
        QTest::keyClicks(search, QStringLiteral("wirefr"));
        QTest::keyClick(search, Qt::Key_Return);
        QTRY_VERIFY(m_window->viewport()->renderOptions().wireframe);
        QVERIFY(search->text().isEmpty());
    }

    void toolStripShowsAndSwitches()
    {
        auto *strip = m_window->findChild<ToolStrip *>();
        auto *select = strip->findChild<QAction *>(QStringLiteral("Tool_RySelectTool"));
        QVERIFY(select && select->isChecked());
        m_window->getViewportMgr()->setActiveTool(nullptr);
        QVERIFY(!select->isChecked());
        select->trigger();
        QCOMPARE(m_window->getViewportMgr()->getActiveTool(),
                 m_window->getViewportMgr()->findTool(QStringLiteral("RySelectTool")));
        QVERIFY(m_window->findChild<QLabel *>(QStringLiteral("NoToolSettings")));
    }

private:
    QTreeView *tree() const { return m_window->scenePane()->tree(); }
    QModelIndex indexOf(RyNode *node) const
    {
        auto *proxy = qobject_cast<QSortFilterProxyModel *>(tree()->model());
        return proxy->mapFromSource(m_window->scenePane()->model()->indexOf(node));
    }
};

RY_TEST(HostWindowTest)
#include "tst_HostWindow.moc"
