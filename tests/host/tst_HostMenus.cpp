#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "pointer/PointerDriver.h"
#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyMenu.h"
#include "rycore/ui/RyViewToolAction.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/ActionSearch.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/menuText.h"
#include "ryhost/panes/ToolSettingsPane.h"

#include <QActionGroup>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>
#include <QTreeView>

/// The menus of the program with the joint editor loaded: what stands in them, what they say, and the search over them.
class HostMenusTest : public QObject, private WindowStage
{
    Q_OBJECT
public:
    HostMenusTest() : WindowStage(Plugins::All) {}

private slots:
    void initTestCase()
    {
        QVERIFY(open());
        QVERIFY(m_window->getViewportMgr()->findTool(QStringLiteral("RyJointEditorTool")));
        m_window->resize(1200, 800);
        m_window->move(0, 0);
    }
    void cleanupTestCase() { close(); }
    void init()
    {
        ryScene()->selectAllNodes(false);
        ryUndoStack()->clearAll();
        m_window->statusBar()->clearMessage();
        QApplication::setActiveWindow(m_window.get());
        QCoreApplication::processEvents();
    }

    void cleanup() { delete m_window->findChild<QMenu *>(QStringLiteral("ToolMenu")); }

    void menuBar()
    {
        QStringList titles;
        for (const QAction *action : m_window->menuBar()->actions())
            titles.append(action->text());
        QCOMPARE(titles, QStringList({"&File", "&Edit", "&View", "&Tools", "&Joint Editor", "&Scripts", "&Help"}));
    }

    void editMenuEndsWithTheLibrarysActions()
    {
        const QList<QAction *> actions = m_window->findChild<QMenu *>(QStringLiteral("EditMenu"))->actions();
        QStringList names;
        for (const QAction *action : actions.mid(actions.size() - 2))
            names << action->objectName();
        QCOMPARE(names, QStringList({"RyBindToNearestBonesAction", "RyFitZonesToBoneAction"}));
    }

    void theToolsMenuStandsInThreePlaces()
    {
        RyMenu expected;
        m_window->getViewportMgr()->getActiveTool()->addToolMenuItems(&expected);
        const QStringList lines = expected.describe();
        QVERIFY(lines.contains(QStringLiteral("Rotation Order >")));
        for (const char *name : {"ActiveToolMenu", "ToolCommandsMenu", "ToolSettingsMenu"}) {
            const auto *menu = m_window->findChild<RyMenu *>(QString::fromLatin1(name));
            QVERIFY2(menu, name);
            QCOMPARE(menu->describe(), lines);
        }
        const auto *tools = m_window->findChild<QMenu *>(QStringLiteral("ToolsMenu"));
        QCOMPARE(tools->actions().last()->text(), QStringLiteral("Joint Editor &Commands"));
        const auto *button = m_window->findChild<QToolButton *>(QStringLiteral("ToolSettingsMenuButton"));
        QVERIFY(button->isVisible());
        // A tool without commands has no menu anywhere.
        m_window->getViewportMgr()->setActiveTool(m_window->getViewportMgr()->findTool(QStringLiteral("RySelectTool")));
        QVERIFY(!button->isVisible());
        QVERIFY(!m_window->findChild<RyMenu *>(QStringLiteral("ActiveToolMenu"))->menuAction()->isVisible());
        m_window->getViewportMgr()->setActiveTool(
            m_window->getViewportMgr()->findTool(QStringLiteral("RyJointEditorTool")));
        QVERIFY(button->isVisible());
        QCOMPARE(m_window->findChild<RyMenu *>(QStringLiteral("ActiveToolMenu"))->describe(), lines);
    }

    void noEntryIsDead_data()
    {
        QTest::addColumn<QString>("selected");
        QTest::newRow("nothing selected") << QString();
        QTest::newRow("a bone selected") << QStringLiteral("lForearm");
    }

    void noEntryIsDead()
    {
        QFETCH(QString, selected);
        if (!selected.isEmpty())
            ryScene()->findNode(selected)->select(true);
        int seen = 0;
        for (QMenu *menu : allMenus()) {
            QVERIFY2(menu->toolTipsVisible(), qPrintable(menu->title()));
            QAction *previous = nullptr;
            QSet<QChar> mnemonics;
            for (QAction *entry : menu->actions()) {
                if (!entry->isVisible())
                    continue;
                const QByteArray what = (menu->title() + QStringLiteral(" > ") + entry->text()).toLocal8Bit();
                ++seen;
                if (entry->isSeparator())
                    QVERIFY2(previous && !previous->isSeparator(), what.constData());
                else
                    QVERIFY2(!entry->text().isEmpty(), what.constData());
                previous = entry;
                if (const QChar mnemonic = mnemonicOf(entry->text()); !mnemonic.isNull()) {
                    QVERIFY2(!mnemonics.contains(mnemonic), what.constData());
                    mnemonics.insert(mnemonic);
                }
                if (!entry->isEnabled()) {
                    QVERIFY2(!entry->property("unavailableReason").toString().isEmpty(), what.constData());
                    QVERIFY2(entry->statusTip() == entry->property("unavailableReason").toString(), what.constData());
                }
                if (entry->isSeparator() || (entry->menu() && entry->menu()->actions().size() > 0) ||
                    !entry->isEnabled())
                    continue;
                QVERIFY2(doesSomething(entry), what.constData());
                QVERIFY2(!entry->statusTip().isEmpty(), what.constData());
            }
            QVERIFY2(!previous || !previous->isSeparator(), qPrintable(menu->title()));
        }
        QVERIFY(seen > 100);
    }

    void theCheckSeesDeadEntries()
    {
        QMenu *menu = m_window->findChild<QMenu *>(QStringLiteral("ViewMenu"));
        QActionGroup group(nullptr);
        QAction dead(QStringLiteral("Dead")), toggled(QStringLiteral("Toggled")), alive(QStringLiteral("Alive"));
        RyAction empty(QStringLiteral("Empty"), QString());
        for (QAction *action : std::initializer_list<QAction *>{&dead, &toggled, &alive, &empty})
            menu->addAction(action);
        group.addAction(&dead);
        QVERIFY(!doesSomething(&dead));
        QVERIFY(!doesSomething(&empty));
        connect(&alive, &QAction::triggered, &alive, [] {});
        connect(&toggled, &QAction::toggled, &toggled, [] {});
        QVERIFY(doesSomething(&alive));
        QVERIFY(doesSomething(&toggled));
    }

    void everyActionHasAnEffect_data()
    {
        QTest::addColumn<QString>("className");
        for (const RyAction *action : m_window->getActionMgr()->getActions()) {
            // What is to come says so and cannot be run.
            if (action->unavailableReason().startsWith(QLatin1String("Not available yet")))
                continue;
            // The sample has no parametric figure; the command's own test has.
            if (action->objectName() != QLatin1String("RyFitZonesToBoneAction"))
                QTest::newRow(action->metaObject()->className())
                    << QString::fromLatin1(action->metaObject()->className());
        }
    }

    void everyActionHasAnEffect()
    {
        QFETCH(QString, className);
        const QString figure = ryScene()->getSkeletons().front()->getName();
        bool isAlive = false;
        for (const QStringList &selected :
             {QStringList{QStringLiteral("lForearm")},
              QStringList{QStringLiteral("lForearm"), QStringLiteral("rForearm")}, QStringList{figure}, QStringList{}})
            isAlive = isAlive || hasEffect(className, selected);
        if (qobject_cast<RyViewToolAction *>(m_window->getActionMgr()->findAction(className))) {
            RyViewportMgr *viewports = m_window->getViewportMgr();
            viewports->setActiveTool(viewports->findTool(QStringLiteral("RySelectTool")));
            m_window->getActionMgr()->findAction(className)->trigger();
            isAlive = viewports->getActiveTool() != viewports->findTool(QStringLiteral("RySelectTool"));
        }
        QVERIFY(isAlive);
    }

    void noKeyTwice()
    {
        // Keys that the viewport takes itself.
        QMap<QString, QString> keys;
        for (const char *key : {"F", "A", "Esc", "Up", "Down", "Left", "Right", "Num+1", "Num+3", "Num+5", "Num+7"})
            keys.insert(QKeySequence(QString::fromLatin1(key)).toString(), QStringLiteral("the viewport"));
        QSet<QAction *> actions;
        for (QMenu *menu : allMenus()) {
            for (QAction *entry : menu->actions())
                actions.insert(entry);
        }
        for (QAction *action : m_window->findChildren<QAction *>())
            actions.insert(action);
        for (RyAction *action : m_window->getActionMgr()->getActions())
            actions.insert(action);
        for (const QAction *action : qAsConst(actions)) {
            for (const QKeySequence &key : action->shortcuts()) {
                const QString text = key.toString();
                QVERIFY2(!keys.contains(text), qPrintable(text + QStringLiteral(": ") + action->text() +
                                                          QStringLiteral(" and ") + keys.value(text)));
                keys.insert(text, action->text());
            }
        }
        for (const char *key :
             {"Shift+Alt+J", "F3", "Ctrl+Shift+P", "F1", "Ctrl+Z", "Ctrl+Shift+Z", "Ctrl+S", "Ctrl+O"})
            QVERIFY2(keys.contains(QKeySequence(QString::fromLatin1(key)).toString()), key);
    }

    void hoveringAGreyEntrySaysWhy()
    {
        const QString reason = QStringLiteral("Select a bone or a figure first.");
        auto *menu = m_window->findChild<RyMenu *>(QStringLiteral("ActiveToolMenu"));
        QMenuBar *bar = m_window->menuBar();
        m_pointer.click(bar, bar->actionGeometry(menu->menuAction()).center());
        QTRY_VERIFY(menu->isVisible());
        hover(menu, QStringLiteral("RyJEAlignAllBonesAction"));
        QTRY_COMPARE(m_window->statusBar()->currentMessage(), reason);
        QTRY_VERIFY(QToolTip::isVisible());
        QCOMPARE(QToolTip::text(), QStringLiteral("Aligns all bones of the figure.\n") + reason);
        menu->close();
        // The menu of the right mouse button has no menu bar that would show its tips.
        m_window->showToolMenu(m_window->mapToGlobal(QPoint(300, 60)));
        auto *context = m_window->findChild<QMenu *>(QStringLiteral("ToolMenu"));
        QVERIFY(context);
        m_window->statusBar()->clearMessage();
        hover(context, QStringLiteral("RyJEAlignAllBonesAction"));
        QTRY_COMPARE(m_window->statusBar()->currentMessage(), reason);
        context->close();
        QTRY_COMPARE(m_window->statusBar()->currentMessage(), QString());
    }

    void searchFinds_data()
    {
        QTest::addColumn<QString>("first");
        QTest::newRow("roll") << "Align Node";
        QTest::newRow("symmetrize") << "Mirror Joints...";
        QTest::newRow("parent") << "Reparent Bone...";
        QTest::newRow("add") << "Create Child Bone...";
        QTest::newRow("new") << "Create Child Bone...";
        QTest::newRow("extrude") << "Create Child Bone...";
        QTest::newRow("remove") << "Delete Bone";
        QTest::newRow("subdivide") << "Split Bone";
        QTest::newRow("copy") << "Duplicate Bones";
        QTest::newRow("freeze") << "Memorize Figure Rigging";
        QTest::newRow("apply rest pose") << "Memorize Figure Rigging";
        QTest::newRow("reset") << "Restore Figure Rigging";
        QTest::newRow("euler") << "XYZ";
        QTest::newRow("rotation mode") << "XYZ";
        QTest::newRow("Selected Node") << "Selected Node(s) Attributes...";
        QTest::newRow("further down the bone hierarchy") << "Propagate Translations";
        QTest::newRow("wirefr") << "Wireframe";
        QTest::newRow("theme") << "Dark Look";
    }

    void searchFinds()
    {
        QFETCH(QString, first);
        // As if everything could run: what is disabled otherwise goes last of its kind.
        QList<RyAction *> disabled;
        for (RyAction *action : m_window->getActionMgr()->getActions()) {
            if (!action->isEnabled())
                disabled.append(action);
            action->setEnabled(true);
        }
        QStringList names;
        for (const CommandList::Command &command :
             m_window->actionSearch()->commands().find(QString::fromLatin1(QTest::currentDataTag())))
            names.append(command.name);
        for (RyAction *action : disabled)
            action->setEnabled(false);
        QVERIFY2(names.mid(0, 5).contains(first), qPrintable(names.join(QStringLiteral(", "))));
    }

    void searchWithTheKeyboard_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("F3") << int(Qt::Key_F3) << Qt::KeyboardModifiers();
        QTest::newRow("Ctrl+Shift+P") << int(Qt::Key_P)
                                      << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier);
    }

    void searchWithTheKeyboard()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        RyNode *forearm = ryScene()->findNode(QStringLiteral("lForearm"));
        ryScene()->setSelection({forearm});
        m_window->viewport()->setFocus();
        forearm->setRotationOrder(RyRotationOrder(0));
        QTest::keyClick(m_window.get(), Qt::Key(key), modifiers);
        ActionSearch *search = m_window->actionSearch();
        QTRY_VERIFY(search->hasFocus());
        QVERIFY(search->results()->isVisible());
        const int all = search->results()->model()->rowCount();
        QVERIFY(all > 50);
        type(QStringLiteral("rotation order"));
        QAbstractItemModel *rows = search->results()->model();
        for (int i = 0; i < 6; ++i)
            QCOMPARE(rows->index(i, 1).data().toString(), QStringLiteral("Joint Editor > Rotation Order"));
        QVERIFY(rows->rowCount() < all / 4);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(search->results()->currentIndex().data().toString(), QStringLiteral("YXZ"));
        QCOMPARE(search->text(), QStringLiteral("rotation order"));
        QCOMPARE(m_window->statusBar()->currentMessage(),
                 QStringLiteral("Modifies the rotation order of the selected node."));
        bool isBack = false;
        const auto watch = connect(qApp, &QApplication::focusChanged, this,
                                   [&](QWidget *, QWidget *now) { isBack = isBack || now == m_window->viewport(); });
        press(Qt::Key_Return);
        QTRY_COMPARE(forearm->getRotationOrder().order(), 2);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Rotation Order YXZ"));
        QVERIFY(search->text().isEmpty());
        QVERIFY(!search->results()->isVisible());
        // Where no window manager runs, the list that closes may take the keyboard along later.
        QTRY_VERIFY(isBack);
        disconnect(watch);
    }

    void searchShowsWhyNot()
    {
        ActionSearch *search = m_window->actionSearch();
        search->begin();
        type(QStringLiteral("align all"));
        const QAbstractItemModel *rows = search->results()->model();
        QCOMPARE(rows->rowCount(), 1);
        QCOMPARE(rows->index(0, 0).data().toString(), QStringLiteral("Align All Bones"));
        QVERIFY(!(rows->flags(rows->index(0, 0)) & Qt::ItemIsEnabled));
        QCOMPARE(rows->index(0, 1).data().toString(),
                 QStringLiteral("Joint Editor > Align - Select a bone or a figure first."));
        press(Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(m_window->statusBar()->currentMessage(), QStringLiteral("Select a bone or a figure first."));
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(search->text(), QStringLiteral("align all"));
        press(Qt::Key_Escape);
        QVERIFY(search->text().isEmpty());
        search->begin();
        type(QStringLiteral("xyzzy"));
        QCOMPARE(search->results()->model()->index(0, 0).data().toString(), QStringLiteral("No command is called so."));
        press(Qt::Key_Escape);
        QVERIFY(!search->results()->isVisible());
    }

    void searchShowsKeys()
    {
        ActionSearch *search = m_window->actionSearch();
        search->begin();
        type(QStringLiteral("joint editor"));
        const QAbstractItemModel *rows = search->results()->model();
        QCOMPARE(rows->index(0, 0).data().toString(), QStringLiteral("Joint Editor"));
        QCOMPARE(rows->index(0, 1).data().toString(), QStringLiteral("Tools"));
        QCOMPARE(rows->index(0, 2).data().toString(),
                 QKeySequence(QStringLiteral("Alt+Shift+J")).toString(QKeySequence::NativeText));
        press(Qt::Key_Escape);
    }

private:
    /// The menus of the bar, of the tool settings and of the right mouse button, and all below them.
    QList<QMenu *> allMenus()
    {
        m_window->showToolMenu(QPoint(10, 10));
        auto *context = m_window->findChild<QMenu *>(QStringLiteral("ToolMenu"));
        context->setTitle(QStringLiteral("Right click"));
        QList<QMenu *> menus = {m_window->toolSettingsPane()->optionsMenu(), context};
        for (const QAction *action : m_window->menuBar()->actions())
            menus.append(action->menu());
        for (int i = 0; i < menus.size(); ++i) {
            for (const QAction *action : menus[i]->actions()) {
                if (action->menu())
                    menus.append(action->menu());
            }
        }
        return menus;
    }
    static int receiversOf(const QAction *action, const char *signal)
    {
        struct Spy : QAction
        {
            using QAction::receivers;
        };
        int (QObject::*const receivers)(const char *) const = &Spy::receivers;
        return (action->*receivers)(signal);
    }
    /// How often somebody listens, those not counted who listen to every action that is put into them.
    static int listenersOf(const QAction *entry, const char *signal)
    {
        const auto listening = [signal](auto &&container) {
            QAction probe;
            container.addAction(&probe);
            return receiversOf(&probe, signal);
        };
        int containers = 0;
        for (const QWidget *widget : entry->associatedWidgets()) {
            if (qobject_cast<const QMenu *>(widget))
                containers += listening(QMenu());
            else if (qobject_cast<const QMenuBar *>(widget))
                containers += listening(QMenuBar());
            else if (qobject_cast<const QToolBar *>(widget))
                containers += listening(QToolBar());
        }
        if (entry->actionGroup())
            containers += listening(QActionGroup(nullptr));
        return receiversOf(entry, signal) - containers;
    }
    /// An action runs what its class says; any other must be heard by somebody.
    static bool doesSomething(const QAction *entry)
    {
        if (listenersOf(entry, SIGNAL(toggled(bool))) > 0)
            return true;
        if (const auto *action = qobject_cast<const RyAction *>(entry)) {
            const QMetaObject *metaObject = action->metaObject();
            return metaObject->method(metaObject->indexOfSlot("executeAction()")).enclosingMetaObject() !=
                   &RyAction::staticMetaObject;
        }
        return listenersOf(entry, SIGNAL(triggered(bool))) > 0;
    }
    /// Everything that an action may change.
    QString stateOfAll() const
    {
        QStringList state{rySceneDump(*ryScene()), QString::number(ryUndoStack()->count())};
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            state.append(ryUndoStack()->caption(i));
        for (const RyAction *action : m_window->getActionMgr()->getActions())
            state.append(QString::number(action->isChecked()));
        for (const QAbstractButton *button : m_window->toolSettingsPane()->findChildren<QAbstractButton *>())
            state.append(QString::number(button->isChecked()));
        const RyViewTool *tool = m_window->getViewportMgr()->getActiveTool();
        state.append(tool ? tool->objectName() : QString());
        return state.join(QLatin1Char('\n'));
    }
    /// Whether it changes something, opens a dialog or says something; everything is as before afterwards.
    bool hasEffect(const QString &className, const QStringList &selected)
    {
        std::vector<RyNode *> nodes;
        for (const QString &name : selected)
            nodes.push_back(ryScene()->findNode(name));
        ryScene()->setSelection(nodes);
        QCoreApplication::sendPostedEvents();
        RyRestoreSpan span(RyRestoreSpan::Scope::Work, className);
        // Posed and moved, for actions that bring the one into the other.
        RyNode *forearm = ryScene()->findNode(QStringLiteral("lForearm"));
        forearm->getYRotControl()->setValue(20);
        forearm->adjustOrigin(forearm->getOrigin() + RyVec3(0, 2, 0));
        const QString before = stateOfAll();
        const RyDialogDriver driver;
        const RyActionResult result = RyActionRunner(m_window->getActionMgr()).run(className, driver);
        const bool changed = !result.dialogs.empty() || stateOfAll() != before;
        RyViewportMgr *viewports = m_window->getViewportMgr();
        viewports->setActiveTool(viewports->findTool(QStringLiteral("RyJointEditorTool")));
        return span.goBack() && changed;
    }
    /// Moves the real pointer through the sub-menus to the entry of an action.
    void hover(QMenu *menu, const QString &className)
    {
        for (QAction *entry : menu->actions()) {
            if (!entry->menu())
                continue;
            for (QAction *inner : entry->menu()->actions()) {
                if (className != QLatin1String(inner->metaObject()->className()))
                    continue;
                // The first movement after a menu has opened may be the one that was on its way.
                m_pointer.moveTo(menu, menu->actionGeometry(entry).center() - QPoint(6, 0));
                m_pointer.moveTo(menu, menu->actionGeometry(entry).center() - QPoint(3, 0));
                m_pointer.moveTo(menu, menu->actionGeometry(entry).center());
                QTRY_VERIFY(entry->menu()->isVisible());
                const QPoint place = entry->menu()->actionGeometry(inner).center();
                m_pointer.moveTo(entry->menu(), place - QPoint(3, 0));
                m_pointer.moveTo(entry->menu(), place);
                return;
            }
        }
        QFAIL("no such entry");
    }
    /// Keys go to the list while it is open, as a window system would send them.
    QWidget *keyboard() const
    {
        ActionSearch *search = m_window->actionSearch();
        return search->results()->isVisible() ? static_cast<QWidget *>(search->results()) : search;
    }
    void type(const QString &text)
    {
        for (const QChar &letter : text)
            QTest::keyClick(keyboard(), letter.toLatin1());
    }
    void press(Qt::Key key) { QTest::keyClick(keyboard(), key); }

    PointerDriver m_pointer;
};

RY_TEST(HostMenusTest)
#include "tst_HostMenus.moc"
