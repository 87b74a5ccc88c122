#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"
#include "rycore/automation/RyDialogDriver.h"

#include <QStatusBar>

/// Nodes and windows that go while an action has a dialog or a message box open.
class RyGoneWhileOpenTest : public QObject
{
    Q_OBJECT

private slots:
    void reparenting_data();
    void reparenting();
    void unusedBones_data();
    void unusedBones();
    void unusedBonesSayWhyNothingGoes();
    void windows_data();
    void windows();
    void parentsOfBoxes();
};

void RyGoneWhileOpenTest::reparenting_data()
{
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("inPicker");
    QTest::addColumn<QString>("gone");
    QTest::addColumn<bool>("deleted");
    for (bool deleted : {false, true}) {
        for (const char *gone : {"figure", "lShin", "hip"}) {
            const QByteArray how = QByteArray(deleted ? "deleted " : "removed ") + gone;
            QTest::newRow(how + " while picking") << "rThigh" << true << gone << deleted;
            QTest::newRow(how + " at the warning of levels") << "hip" << false << gone << deleted;
            QTest::newRow(how + " at the refusal") << "lFoot" << false << gone << deleted;
        }
    }
}

void RyGoneWhileOpenTest::reparenting()
{
    QFETCH(QString, to);
    QFETCH(bool, inPicker);
    QFETCH(QString, gone);
    QFETCH(bool, deleted);
    RyWindowScene scene;
    ryScene()->setSelection({scene.lShin});
    // Somebody may hold what left the scene.
    const RyRef<RyNode> held(deleted ? nullptr : ryScene()->findNode(gone));
    QString left;
    RyDialogDriver driver;
    driver.setField(QStringLiteral("NodeDlgSearchLEdit"), to);
    connect(&driver, &RyDialogDriver::opened, &driver, [&](QDialog *dialog) {
        RyNode *node = ryScene()->findNode(gone);
        if (inPicker != (qobject_cast<QMessageBox *>(dialog) == nullptr) || !node)
            return;
        ryScene()->removeNode(node);
        left = scene.dump();
    });
    RyJEReparentBoneAction().executeAction();
    QCOMPARE(int(driver.records().size()), inPicker ? 1 : 2);
    QVERIFY(!left.isEmpty());
    QCOMPARE(scene.dump(), left);
}

void RyGoneWhileOpenTest::unusedBones_data()
{
    QTest::addColumn<bool>("deleted");
    QTest::newRow("removed") << false;
    QTest::newRow("deleted") << true;
}

void RyGoneWhileOpenTest::unusedBones()
{
    QFETCH(bool, deleted);
    RySkinnedScene scene;
    const RyRef<RyFigure> held(deleted ? nullptr : scene.figure);
    auto *idle = RyToolScene::makeBone(scene.hip, "idle", {}, {0, 1, 0});
    ryScene()->setSelection({idle});
    RyDialogDriver driver;
    connect(&driver, &RyDialogDriver::opened, &driver, [&] { ryScene()->removeNode(scene.figure); });
    RyJEDeleteUnusedBonesAction().executeAction();
    QCOMPARE(int(driver.boxes().size()), 1);
    QVERIFY(!ryScene()->findNode(QStringLiteral("figure")));
    if (held)
        QCOMPARE(int(held->getAllBones().size()), 6);
}

void RyGoneWhileOpenTest::unusedBonesSayWhyNothingGoes()
{
    RySkinnedScene scene;
    ryScene()->setSelection({scene.hip});
    RyDialogDriver driver;
    const QString before = scene.dump();
    RyJEDeleteUnusedBonesAction().executeAction();
    QCOMPARE(scene.window->statusBar()->currentMessage(),
             QStringLiteral("Nothing removed: every bone of the figure is used."));
    QCOMPARE(scene.dump(), before);
    // One is enough not to say so.
    scene.window->statusBar()->clearMessage();
    RyToolScene::makeBone(scene.hip, "idle", {}, {0, 1, 0});
    RyJEDeleteUnusedBonesAction().executeAction();
    QVERIFY(!scene.figure->findBone(QStringLiteral("idle")));
    QCOMPARE(scene.window->statusBar()->currentMessage(), QString());
    scene.figure->setObject(nullptr);
    RyJEDeleteUnusedBonesAction().executeAction();
    QCOMPARE(scene.window->statusBar()->currentMessage(),
             QStringLiteral("Nothing removed: without a skin no bone counts as unused."));
    QCOMPARE(int(scene.figure->getAllBones().size()), 5);
}

void RyGoneWhileOpenTest::windows_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("search");
    for (const char *action : {"create", "drawing", "attributes", "reparent", "unused"})
        QTest::newRow(action) << action << "";
    QTest::newRow("reparent, refused") << "reparent"
                                       << "lFoot";
    QTest::newRow("reparent, level") << "reparent"
                                     << "figure";
}

void RyGoneWhileOpenTest::windows()
{
    QFETCH(QString, action);
    QFETCH(QString, search);
    RySkinnedScene scene;
    scene.window->getViewportMgr()->setActiveTool(scene.windowTool);
    ryScene()->setSelection({scene.lShin});
    QCoreApplication::sendPostedEvents();
    const QString before = scene.dump();
    RyDialogDriver driver;
    QPointer<QDialog> last;
    if (!search.isEmpty())
        driver.setField(QStringLiteral("NodeDlgSearchLEdit"), search);
    connect(&driver, &RyDialogDriver::opened, &driver, [&](QDialog *dialog) {
        last = dialog;
        if (search.isEmpty() || qobject_cast<QMessageBox *>(dialog))
            scene.window.reset();
    });
    if (action == "create")
        RyJECreateBoneAction().executeAction();
    else if (action == "drawing")
        RyJECustomColorsAction().executeAction();
    else if (action == "attributes")
        RyJESelectedNodesAttributesEditAction().executeAction();
    else if (action == "reparent")
        RyJEReparentBoneAction().executeAction();
    else
        RyJEDeleteUnusedBonesAction().executeAction();
    QVERIFY(!scene.window);
    QVERIFY(!last);
    QCOMPARE(int(driver.records().size()), search.isEmpty() ? 1 : 2);
    QCOMPARE(scene.dump(), before);
}

/// What opens over a dialog that happens to be open, and what over the main window in any case.
void RyGoneWhileOpenTest::parentsOfBoxes()
{
    RySkinnedScene scene;
    QDialog open(scene.window.get());
    open.setModal(true);
    open.show();
    RyDialogDriver driver;
    RyJEDeleteUnusedBonesAction().executeAction(); // nothing is selected
    ryScene()->setSelection({scene.hip});
    RyJEDeleteUnusedBonesAction().executeAction();
    ryScene()->selectAllNodes(false);
    RyJEDeleteBoneAction().executeAction();
    RyJEDuplicateBonesAction().executeAction();
    RyJECreateBoneAction().executeAction();
    RyJEReparentBoneAction().executeAction();
    QStringList parents;
    for (const RyDialogRecord &box : driver.boxes())
        parents.append(box.parent == &open ? "dialog" : box.parent == scene.window.get() ? "window" : "none");
    QCOMPARE(parents, QStringList({"dialog", "dialog", "window", "window", "window", "window"}));
}

RY_TEST(RyGoneWhileOpenTest)

#include "tst_goneWhileOpen.moc"
