#include "support/RyTest.h"

#include "player/ToyClip.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMenu.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyMenu.h"
#include "rycore/ui/RyViewToolAction.h"
#include "rycore/viewport/RySelectTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "support/ToyAction.h"

class CountingAction : public RyAction
{
    Q_OBJECT
public:
    CountingAction() : RyAction(QStringLiteral("Count"), QStringLiteral("Counts")) {}
    void init() override { ++inits; }
    QKeySequence getDefaultAccel() const override { return QKeySequence(QStringLiteral("Ctrl+K")); }
    void executeAction() override { ++runs; }
    int inits = 0;
    int runs = 0;
};

class OtherAction : public RyAction
{
    Q_OBJECT
public:
    OtherAction() : RyAction(QStringLiteral("Other"), QString()) {}
};

class NoAction : public QObject
{
    Q_OBJECT
};

class FirstTool : public RySelectTool
{
    Q_OBJECT
public:
    int getToolPriority() const override { return 30; }
};

class SecondTool : public RySelectTool
{
    Q_OBJECT
public:
    SecondTool() { setObjectName(QStringLiteral("The Second")); }
    int getToolPriority() const override { return 20; }
};

class SecondToolAction : public RyViewToolAction
{
    Q_OBJECT
public:
    SecondToolAction() : RyViewToolAction(QStringLiteral("SecondTool")) {}
};

class RyActionsTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_viewports = std::make_unique<RyViewportMgr>(&m_scene);
        m_actions = std::make_unique<RyActionMgr>(m_viewports.get());
        m_actions->createActions({&m_counting, &m_none, &m_other});
    }
    void cleanup()
    {
        m_actions.reset();
        m_viewports.reset();
    }

    void oneInstanceForEachClass()
    {
        QCOMPARE(RyActionMgr::instance(), m_actions.get());
        m_actions->createActions({&m_counting});
        QCOMPARE(int(m_actions->getActions().size()), 2);
        auto *action = qobject_cast<CountingAction *>(m_actions->findAction(QStringLiteral("CountingAction")));
        QVERIFY(action);
        QCOMPARE(action->inits, 1);
        QCOMPARE(action->shortcut(), QKeySequence(QStringLiteral("Ctrl+K")));
        QCOMPARE(action->getDescription(), QStringLiteral("Counts"));
        action->trigger();
        QCOMPARE(action->runs, 1);
        QCOMPARE(m_actions->findAction(QStringLiteral("NoAction")), nullptr);
    }

    /// Actions find poses; those that only choose a tool leave the clip.
    void clipsMakeWay()
    {
        auto *figure = new RySkeleton;
        ryScene()->addNode(figure);
        const auto origin = std::make_shared<ToyOrigin>();
        origin->given = {std::make_shared<ToyClip>(QStringLiteral("walk"), 0.0, 1.0, std::vector<RyNode *>{figure})};
        ryScene()->setOrigins({origin});
        RyClipPlayer &player = *ryScene()->getClipPlayer();
        player.show(origin->given.front(), 0.5);
        SecondToolAction tool;
        tool.trigger();
        QVERIFY(player.isShowing());
        bool wasPlayed = true;
        ToyAction edit(QStringLiteral("Edit"), [&] { wasPlayed = figure->isPlayed(); });
        edit.setEnabled(false);
        edit.trigger();
        QVERIFY(player.isShowing());
        edit.setEnabled(true);
        edit.trigger();
        QVERIFY(!wasPlayed);
        QVERIFY(!player.isShowing());
        ryScene()->clear();
    }

    void menusTakeKnownNamesOnly()
    {
        RyMenu menu;
        menu.addAction(QStringLiteral("CountingAction"), 0);
        menu.addAction(QStringLiteral("Unknown"), 0);
        menu.addSeparator(0);
        const int outer = menu.addSubMenu(QStringLiteral("Outer"), 0);
        const int inner = menu.addSubMenu(QStringLiteral("Inner"), outer);
        menu.addAction(QStringLiteral("OtherAction"), inner);
        menu.addAction(QStringLiteral("OtherAction"), 99);
        QCOMPARE(menu.describe(), QStringList({"CountingAction", "-", "Outer >", "  Inner >", "    OtherAction"}));
    }

    void actionMenusKeepTheirOrder()
    {
        RyActionMenu menu;
        menu.insertAction(QStringLiteral("OtherAction"), -1);
        menu.insertAction(QStringLiteral("CountingAction"), 0);
        menu.insertSeparator(1);
        auto *sub = new RyActionMenu;
        sub->insertAction(QStringLiteral("Unknown"), -1);
        menu.insertMenu(QStringLiteral("Sub"), sub, -1);
        QCOMPARE(menu.describe(), QStringList({"CountingAction", "-", "OtherAction", "Sub >", "  Unknown"}));
        QMenu real;
        menu.fill(&real);
        QCOMPARE(real.actions().size(), 4);
        QCOMPARE(real.actions()[0], static_cast<QAction *>(m_actions->findAction(QStringLiteral("CountingAction"))));
        QVERIFY2(!real.actions()[3]->isVisible(), "a menu with nothing in it is not shown");
    }

    void toolActionsFollowTheTools()
    {
        auto *action = new SecondToolAction;
        m_actions->addAction(action);
        QVERIFY(!action->isEnabled());
        m_viewports->addTool(new FirstTool);
        m_viewports->addTool(new SecondTool);
        QCOMPARE(m_viewports->getTools()[0]->objectName(), QStringLiteral("The Second"));
        QVERIFY(action->isEnabled() && !action->isChecked());
        QCOMPARE(action->text(), QStringLiteral("The Second"));
        action->trigger();
        QCOMPARE(m_viewports->getActiveTool(), m_viewports->findTool(QStringLiteral("SecondTool")));
        QVERIFY(m_viewports->getActiveTool()->isActive());
        QVERIFY(action->isChecked());
        action->trigger();
        QVERIFY2(action->isChecked(), "triggered again, the tool stays");
        QCOMPARE(m_viewports->getActiveTool(), m_viewports->findTool(QStringLiteral("SecondTool")));
        m_viewports->setActiveTool(m_viewports->findTool(QStringLiteral("FirstTool")));
        QVERIFY(!action->isChecked());
        QVERIFY(!m_viewports->findTool(QStringLiteral("SecondTool"))->isActive());
        m_viewports->deleteTools();
        QVERIFY(!action->isEnabled() && !action->isChecked());
        action->executeAction();
        QCOMPARE(m_viewports->getActiveTool(), nullptr);
    }

private:
    RyScene m_scene;
    std::unique_ptr<RyViewportMgr> m_viewports;
    std::unique_ptr<RyActionMgr> m_actions;
    RyTClassFactory<CountingAction> m_counting{&CountingAction::staticMetaObject, RyGuid()};
    RyTClassFactory<NoAction> m_none{&NoAction::staticMetaObject, RyGuid()};
    RyTClassFactory<OtherAction> m_other{&OtherAction::staticMetaObject, RyGuid()};
};

RY_TEST(RyActionsTest)
#include "tst_RyActions.moc"
