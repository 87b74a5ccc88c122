#include "host/MenuStage.h"
#include "support/RyTest.h"

#include "pointer/PointerDriver.h"
#include "rycore/scene/RyNode.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyMenu.h"
#include "rycore/viewport/RyViewTool.h"
#include "ryhost/commands/menuText.h"
#include "ryhost/panes/ToolSettingsPane.h"

#include <QActionGroup>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>

/// The menus of the program with the joint editor loaded: what stands in them, and what they say.
class HostMenusTest : public QObject, private MenuStage
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(openWithTools()); }
    void cleanupTestCase() { close(); }
    void init() { begin(); }

    void cleanup() { delete m_window->findChild<QMenu *>(QStringLiteral("ToolMenu")); }

    void menuBar()
    {
        QStringList titles;
        for (const QAction *action : m_window->menuBar()->actions())
            titles.append(action->text());
        QCOMPARE(titles, QStringList({"&File", "&Edit", "&View", "&Tools", "&Joint Editor", "&Scripts", "&Help"}));
    }

    void editMenuEndsWithTheLibrarysActionsAndPreferences()
    {
        const QList<QAction *> actions = m_window->findChild<QMenu *>(QStringLiteral("EditMenu"))->actions();
        QStringList names;
        for (const QAction *action : actions.mid(actions.size() - 5))
            names << (action->isSeparator() ? QStringLiteral("-") : action->objectName());
        QCOMPARE(names, QStringList({"RyBindToNearestBonesAction", "RyFitZonesToBoneAction", "RySymmetricEditingAction",
                                     "-", "EditPreferences"}));
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

    PointerDriver m_pointer;
};

RY_TEST(HostMenusTest)
#include "tst_HostMenus.moc"
