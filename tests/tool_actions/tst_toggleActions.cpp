#include "support/RyTest.h"

#include "tool/RyWindowScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleActions.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "rycore/app/RyApp.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/ui/RyActionMgr.h"

#include <QSignalSpy>

namespace {

struct Toggle
{
    const char *name;
    std::unique_ptr<RyAction> (*make)();
    bool (*flag)(RyJointEditorTool *);
    void (*setFlag)(RyJointEditorTool *, bool);
};

template<typename T>
std::unique_ptr<RyAction> make()
{
    return std::make_unique<T>();
}

const Toggle toggles[] = {
    {"translation", make<RyJETogglePropagateTranslationAction>,
     [](RyJointEditorTool *tool) { return tool->propagateTranslation(); },
     [](RyJointEditorTool *tool, bool onOff) { tool->setPropagateTranslation(onOff); }},
    {"creation", make<RyJEToggleViewBoneCreationAction>,
     [](RyJointEditorTool *tool) { return tool->boneCreationActive(); },
     [](RyJointEditorTool *tool, bool onOff) { tool->setBoneCreationActive(onOff); }},
    {"align", make<RyJEToggleAutoAlignNodeAction>, [](RyJointEditorTool *tool) { return tool->autoAlign(); },
     [](RyJointEditorTool *tool, bool onOff) { tool->setAutoAlign(onOff); }},
    {"snap", make<RyJEToggleAutoSnapEndPointsAction>, [](RyJointEditorTool *tool) { return tool->autoSnapEndPoints(); },
     [](RyJointEditorTool *tool, bool onOff) { tool->setAutoSnapEndPoints(onOff); }},
};

/// All four flags, so that a setter for a wrong one shows.
QList<bool> flagsOf(RyJointEditorTool *tool)
{
    QList<bool> flags;
    for (const Toggle &toggle : toggles)
        flags.append(toggle.flag(tool));
    return flags;
}

/// A tool of another class.
class OtherTool : public RyPickTool
{
    Q_OBJECT
public:
    OtherTool() : RyPickTool(QStringLiteral("Joint Editor")) {}
};

} // namespace

/// The actions that switch the tool's modes, and how actions find the tool.
class RyToggleActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void findsTheTool();
    void nothingOpensForAnotherTool();
    void baseClassAlone();
    void togglesWithTool_data();
    void togglesWithTool();
    void togglesWithoutTool_data();
    void togglesWithoutTool();
    void togglesTakeTheFlag_data();
    void togglesTakeTheFlag();
    void togglesFollowTheFlag_data();
    void togglesFollowTheFlag();
    void togglesIgnoreTheSelection();
    void metaObjects();
};

void RyToggleActionsTest::findsTheTool()
{
    QVERIFY(!findJointEditorTool());
    RyToolScene scene;
    QVERIFY(!findJointEditorTool());
    RyMainWindow window(ryScene());
    QVERIFY(!findJointEditorTool());
    window.getViewportMgr()->addTool(new OtherTool);
    QVERIFY(!findJointEditorTool());
    auto *tool = new RyJointEditorTool;
    window.getViewportMgr()->addTool(tool);
    QCOMPARE(findJointEditorTool(), tool);
    RyApp::setInterface(nullptr);
    QVERIFY(!findJointEditorTool());
    RyApp::setInterface(&window);
    QCOMPARE(findJointEditorTool(), tool);
    window.getViewportMgr()->deleteTools();
    QVERIFY(!findJointEditorTool());
}

void RyToggleActionsTest::nothingOpensForAnotherTool()
{
    RyToolScene scene;
    RyMainWindow window(ryScene());
    auto *other = new OtherTool;
    window.getViewportMgr()->addTool(other);
    window.getViewportMgr()->setActiveTool(other);
    ryScene()->setSelection({scene.hip});
    RyDialogDriver driver;
    RyJECreateBoneAction().executeAction();
    RyJECustomColorsAction().executeAction();
    QCOMPARE(int(driver.records().size()), 0);
}

void RyToggleActionsTest::baseClassAlone()
{
    const RyJEToolAction action(QStringLiteral("Text"), QStringLiteral("What it does."));
    QCOMPARE(action.objectName(), QStringLiteral("JointEditorToolAction"));
    QCOMPARE(action.text(), QStringLiteral("Text"));
    QCOMPARE(action.getDescription(), QStringLiteral("What it does."));
    QVERIFY(action.isEnabled());
    QVERIFY(!action.isCheckable());
}

static void addToggleRows()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(toggles)); ++i)
        QTest::newRow(toggles[i].name) << i;
}

void RyToggleActionsTest::togglesWithTool_data()
{
    addToggleRows();
}

void RyToggleActionsTest::togglesWithTool()
{
    QFETCH(int, index);
    RyWindowScene scene;
    const std::unique_ptr<RyAction> action = toggles[index].make();
    action->init();
    QVERIFY(action->isCheckable());
    QVERIFY(action->isEnabled());
    QVERIFY(!action->isChecked());
    QList<bool> expected = {false, false, false, false};
    QCOMPARE(flagsOf(scene.windowTool), expected);
    for (bool onOff : {true, false, true}) {
        action->trigger();
        expected[index] = onOff;
        QCOMPARE(action->isChecked(), onOff);
        QCOMPARE(flagsOf(scene.windowTool), expected);
        QCOMPARE(flagsOf(scene.tool), QList<bool>({false, false, false, false}));
    }
    // A check mark that comes from elsewhere counts as well as a click.
    action->setChecked(false);
    QVERIFY(!toggles[index].flag(scene.windowTool));
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyToggleActionsTest::togglesWithoutTool_data()
{
    addToggleRows();
}

void RyToggleActionsTest::togglesWithoutTool()
{
    QFETCH(int, index);
    RyToolScene scene;
    for (bool window : {false, true}) {
        const std::unique_ptr<RyMainWindow> empty = window ? std::make_unique<RyMainWindow>(ryScene()) : nullptr;
        const std::unique_ptr<RyAction> action = toggles[index].make();
        action->init();
        QVERIFY(!action->isChecked());
        action->trigger();
        QVERIFY(action->isChecked());
        // Nothing is known of a flag: the check mark stays.
        action->init();
        QVERIFY(action->isChecked());
        QVERIFY(QMetaObject::invokeMethod(action.get(), "toggleAction", Q_ARG(bool, true)));
        QCOMPARE(flagsOf(scene.tool), QList<bool>({false, false, false, false}));
    }
}

void RyToggleActionsTest::togglesTakeTheFlag_data()
{
    addToggleRows();
}

void RyToggleActionsTest::togglesTakeTheFlag()
{
    QFETCH(int, index);
    const Toggle &toggle = toggles[index];
    RyWindowScene scene;
    toggle.setFlag(scene.windowTool, true);
    const QList<bool> flags = flagsOf(scene.windowTool);
    const std::unique_ptr<RyAction> action = toggle.make();
    const QSignalSpy toggled(action.get(), SIGNAL(toggled(bool)));
    QVERIFY(!action->isChecked());
    action->init();
    QVERIFY(action->isChecked());
    QCOMPARE(flagsOf(scene.windowTool), flags);
    toggle.setFlag(scene.windowTool, false);
    action->init();
    QVERIFY(!action->isChecked());
    QVERIFY(!toggle.flag(scene.windowTool));
    QCOMPARE(toggled.count(), 0);
    // The check mark alone, without the tool.
    QVERIFY(QMetaObject::invokeMethod(action.get(), "updateActionState", Q_ARG(bool, true)));
    QVERIFY(action->isChecked());
    QVERIFY(!toggle.flag(scene.windowTool));
    // The host's manager initialises what it takes over.
    toggle.setFlag(scene.windowTool, true);
    RyAction *managed = toggle.make().release();
    scene.window->getActionMgr()->addAction(managed);
    QVERIFY(managed->isChecked());
}

void RyToggleActionsTest::togglesFollowTheFlag_data()
{
    addToggleRows();
}

void RyToggleActionsTest::togglesFollowTheFlag()
{
    QFETCH(int, index);
    const Toggle &toggle = toggles[index];
    RyWindowScene scene;
    const std::unique_ptr<RyAction> action = toggle.make();
    action->init();
    action->init(); // once more changes nothing
    const QSignalSpy toggled(action.get(), SIGNAL(toggled(bool)));
    // A script sets the flag: the check mark shows it, and the next click takes it back.
    for (bool onOff : {true, false, true}) {
        toggle.setFlag(scene.windowTool, onOff);
        QCOMPARE(action->isChecked(), onOff);
        QCOMPARE(toggled.count(), 0);
    }
    action->trigger();
    QVERIFY(!action->isChecked());
    QVERIFY(!toggle.flag(scene.windowTool));
    // The flag of another tool is none of its business.
    toggle.setFlag(scene.tool, true);
    QVERIFY(!action->isChecked());
    scene.window.reset();
    action->trigger();
    QVERIFY(action->isChecked());
}

void RyToggleActionsTest::togglesIgnoreTheSelection()
{
    RyWindowScene scene;
    for (const Toggle &toggle : toggles) {
        const std::unique_ptr<RyAction> action = toggle.make();
        for (RyNode *node : {static_cast<RyNode *>(scene.prop), static_cast<RyNode *>(scene.hip)}) {
            ryScene()->setSelection({node});
            QVERIFY(action->isEnabled());
            QVERIFY(toggle.make()->isEnabled());
        }
        // Nor does it enable them.
        action->setEnabled(false);
        ryScene()->setSelection({scene.hip});
        ryScene()->selectAllNodes(false);
        QVERIFY(!action->isEnabled());
    }
}

void RyToggleActionsTest::metaObjects()
{
    const RyToolScene scene;
    for (const Toggle &toggle : toggles) {
        const std::unique_ptr<RyAction> action = toggle.make();
        const QMetaObject *metaObject = action->metaObject();
        for (const char *name : {"toggleAction(bool)", "updateActionState(bool)"}) {
            const int slot = metaObject->indexOfSlot(name);
            QVERIFY2(slot >= metaObject->methodOffset(), metaObject->className());
            QCOMPARE(metaObject->method(slot).access(), QMetaMethod::Protected);
        }
        QCOMPARE(metaObject->indexOfSlot("selectionChanged()"), -1);
        QVERIFY(action->isCheckable());
    }
}

RY_TEST(RyToggleActionsTest)

#include "tst_toggleActions.moc"
