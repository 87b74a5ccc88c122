#include "support/RyTest.h"

#include "RyFilledMirrorDialog.h"
#include "RySidedScene.h"
#include "tool_actions/RyMessageBoxes.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/base/RyMessageLog.h"
#include "support/checkUndo.h"

#include <QGridLayout>
#include <QLabel>
#include <QStatusBar>

namespace {

using Dialog = RyFilledMirrorDialog;

QStringList itemsOf(const QComboBox *box)
{
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items << box->itemText(i);
    return items;
}

} // namespace

/// The action Mirror Joints and its dialog.
class RyMirrorDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void looks();
    void warnsWithoutASkeleton();
    void mirrorsASide_data();
    void mirrorsASide();
    void ofTheAxis();
    void ofThePrefixes();
    void emptyStep();
    void prefixesAreResetEachTime();
    void tells();
    void tellsOfOne();
    void withoutTool();
    void actionRunsTheDialog();
    void actionWithoutTool();
    void enabling();
};

void RyMirrorDialogTest::looks()
{
    RySidedScene scene;
    const Dialog dialog(scene.tool);
    QVERIFY(qobject_cast<const RyBasicDialog *>(&dialog));
    QCOMPARE(dialog.objectName(), QStringLiteral("JointEditorMirrorDlg"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Mirror Joint Options"));
    QCOMPARE(itemsOf(dialog.nodes), QStringList({"Selected Only", "Selected Recursive", "Root Recursive"}));
    QCOMPARE(itemsOf(dialog.direction),
             QStringList({"Selected to Opposite", "Opposite to Selected", "Left to Right", "Right to Left"}));
    QCOMPARE(itemsOf(dialog.axis), QStringList({"X", "Y", "Z"}));
    QCOMPARE(dialog.left->text(), QStringLiteral("left;l"));
    QCOMPARE(dialog.right->text(), QStringLiteral("right;r"));
    const auto *grid = dialog.findChild<QGridLayout *>();
    QVERIFY(grid);
    QStringList rows;
    for (int row = 0; row < grid->rowCount(); ++row) {
        const auto *label = qobject_cast<QLabel *>(grid->itemAtPosition(row, 0)->widget());
        const QWidget *field = grid->itemAtPosition(row, 1)->widget();
        QVERIFY(label && label->buddy() == field);
        rows << label->text() + '|' + label->objectName() + '|' + field->objectName();
    }
    QCOMPARE(rows, QStringList({"Nodes :|JointEditorMirrorNodesLbl|JointEditorMirrorNodesCmb",
                                "Direction :|JointEditorMirrorDirectionLbl|JointEditorMirrorDirectionCmb",
                                "Mirror Axis :|JointEditorMirrorAxisLbl|JointEditorMirrorAxisCmb",
                                "Left Node Prefix :|JointEditorMirrorLeftPrefixLbl|JointEditorMirrorLeftPrefixLEdit",
                                "Right Node Prefix :|JointEditorMirrorRightPrefixLbl|"
                                "JointEditorMirrorRightPrefixLEdit"}));
}

void RyMirrorDialogTest::warnsWithoutASkeleton()
{
    RySidedScene scene;
    for (RyNode *selected : {static_cast<RyNode *>(nullptr), scene.prop}) {
        ryScene()->setSelection(selected ? std::vector<RyNode *>{selected} : std::vector<RyNode *>());
        const QString before = scene.dump();
        RyMessageBoxes boxes;
        Dialog dialog(scene.tool);
        QVERIFY(!dialog.accepts());
        QCOMPARE(boxes.said, QStringList("Selection Error|A bone must be selected to continue.|Ok|warning"));
        QCOMPARE(boxes.parents, QList<QWidget *>{RyApp::getDialogParent()});
        QCOMPARE(scene.dump(), before);
    }
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyMirrorDialogTest::mirrorsASide_data()
{
    QTest::addColumn<QString>("primary");
    QTest::addColumn<QString>("nodes");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<QString>("changed");
    const auto row = [](const char *primary, const char *nodes, const char *direction, const char *changed) {
        QTest::addRow("%s, %s, %s", primary, nodes, direction) << primary << nodes << direction << changed;
    };
    row("lThigh", "Selected Only", "Selected to Opposite", "rThigh");
    row("lThigh", "Selected Only", "Opposite to Selected", "lThigh");
    row("rightShin", "Selected Only", "Left to Right", "rightShin");
    row("rightShin", "Selected Only", "Right to Left", "lShin");
    row("lShin", "Selected Recursive", "Left to Right", "rightShin rFoot");
    row("hip", "Selected Recursive", "Right to Left", "lThigh lShin lFoot");
    row("lFoot", "Root Recursive", "Left to Right", "rThigh rightShin rFoot");
    row("rFoot", "Root Recursive", "Selected to Opposite", "lThigh lShin lFoot");
    row("figure", "Root Recursive", "Opposite to Selected", "rThigh rightShin rFoot");
}

void RyMirrorDialogTest::mirrorsASide()
{
    QFETCH(QString, primary);
    QFETCH(QString, nodes);
    QFETCH(QString, direction);
    RySidedScene scene;
    ryScene()->setSelection({ryScene()->findNode(primary)});
    const auto values = scene.values();
    const QString before = scene.dump();
    Dialog dialog(scene.tool);
    QVERIFY(dialog.accepts(nodes, direction));
    QTEST(scene.changedSince(values), "changed");
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Mirror Joints"));
    checkLastStep(before);
}

void RyMirrorDialogTest::ofTheAxis()
{
    for (int axis = 0; axis < 3; ++axis) {
        RySidedScene scene;
        ryScene()->setSelection({scene.lShin});
        Dialog dialog(scene.tool);
        dialog.axis->setCurrentIndex(axis);
        QVERIFY(dialog.accepts());
        QVERIFY(reflectionError(scene.lShin, scene.rShin, axis, false, 100.0) < 1e-4);
    }
}

void RyMirrorDialogTest::ofThePrefixes()
{
    RySidedScene scene;
    scene.rFoot->setName("rowerJaw");
    ryScene()->setSelection({scene.jaw});
    const auto before = scene.values();
    Dialog dialog(scene.tool);
    dialog.right->setText(";right;");
    QVERIFY(dialog.accepts());
    QCOMPARE(scene.changedSince(before), QString());
    dialog.right->setText("right;r");
    QVERIFY(dialog.accepts());
    QVERIFY(reflectionError(scene.jaw, scene.rFoot, 0, true, 100.0) < 1e-4);
}

void RyMirrorDialogTest::emptyStep()
{
    RySidedScene scene;
    ryScene()->setSelection({scene.hip});
    const QString before = scene.dump();
    Dialog dialog(scene.tool);
    QVERIFY(dialog.accepts());
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 1);
}

void RyMirrorDialogTest::prefixesAreResetEachTime()
{
    RySidedScene scene;
    ryScene()->setSelection({scene.hip});
    {
        Dialog dialog(scene.tool);
        dialog.left->setText("sinister");
        QVERIFY(dialog.accepts());
    }
    QCOMPARE(Dialog(scene.tool).left->text(), QStringLiteral("left;l"));
}

void RyMirrorDialogTest::tells()
{
    RySidedScene scene;
    // Marked with a side whose other one it lacks.
    RyBone *toe = RyToolScene::makeBone(scene.lFoot, "lToe", {11, 1, 9}, {11, 1, 14});
    scene.addSkin({scene.lThigh, scene.rThigh, scene.lFoot});
    ryScene()->setSelection({scene.hip});
    RyMessageLog::global().clear();
    Dialog dialog(scene.tool);
    QVERIFY(dialog.accepts("Root Recursive", "Left to Right"));
    QCOMPARE(scene.window->statusBar()->currentMessage(), QStringLiteral("Mirrored 3 bones; 3 have no opposite."));
    QCOMPARE(RyMessageLog::global().messages(),
             QStringList({"Mirrored lThigh to rThigh (by the beginning of its name).",
                          "Mirrored lShin to rightShin (by the beginning of its name), without bulges: the skin does "
                          "not bind both.",
                          "Mirrored lFoot to rFoot (by the beginning of its name), without bulges: the skin does not "
                          "bind both.",
                          "hip has no opposite.", "lToe has no opposite.", "lowerJaw has no opposite."}));
    // Nothing is missing where there is no skin.
    scene.figure->setObject(nullptr);
    RyMessageLog::global().clear();
    QVERIFY(Dialog(scene.tool).accepts("Root Recursive", "Left to Right"));
    QCOMPARE(RyMessageLog::global().messages().mid(1, 2),
             QStringList({"Mirrored lShin to rightShin (by the beginning of its name).",
                          "Mirrored lFoot to rFoot (by the beginning of its name)."}));
    ryScene()->setSelection({toe});
    QVERIFY(Dialog(scene.tool).accepts());
    QCOMPARE(scene.window->statusBar()->currentMessage(), QStringLiteral("Mirrored 0 bones; 1 has no opposite."));
    ryScene()->setSelection({scene.lFoot});
    QVERIFY(Dialog(scene.tool).accepts("Selected Recursive", "Selected to Opposite"));
    QCOMPARE(scene.window->statusBar()->currentMessage(), QStringLiteral("Mirrored 1 bone; 1 has no opposite."));
    // A figure that stands beside the plane.
    for (RyNode *node : scene.bones())
        node->setOrigin(node->getOrigin(true) + RyVec3(30, 0, 0), true);
    RyMessageLog::global().clear();
    QVERIFY(Dialog(scene.tool).accepts("Root Recursive", "Left to Right"));
    QVERIFY(RyMessageLog::global().messages().last().startsWith("The two sides do not lie opposite each other"));
}

void RyMirrorDialogTest::tellsOfOne()
{
    RySidedScene scene;
    scene.addSkin({scene.lThigh, scene.rThigh, scene.lFoot, scene.rFoot});
    scene.lFoot->setName("foot_l");
    scene.rFoot->setName("Foot_R");
    RyMessageLog::global().clear();
    ryScene()->setSelection({scene.lFoot});
    QVERIFY(Dialog(scene.tool).accepts());
    QCOMPARE(scene.window->statusBar()->currentMessage(), QStringLiteral("Mirrored 1 bone."));
    QCOMPARE(RyMessageLog::global().messages(),
             QStringList("Mirrored foot_l to Foot_R (by the side that its name says)."));
    ryScene()->setSelection({scene.hip});
    QVERIFY(Dialog(scene.tool).accepts());
    QCOMPARE(scene.window->statusBar()->currentMessage(), QStringLiteral("Mirrored 0 bones; 1 has no opposite."));
}

void RyMirrorDialogTest::withoutTool()
{
    RySidedScene scene;
    ryScene()->setSelection({scene.lThigh});
    const auto before = scene.values();
    QVERIFY(Dialog(nullptr).accepts());
    QCOMPARE(scene.changedSince(before), QString());
}

void RyMirrorDialogTest::actionRunsTheDialog()
{
    RySidedScene scene;
    ryScene()->setSelection({scene.lThigh});
    RyDialogDriver driver;
    driver.setField("JointEditorMirrorNodesCmb", "Root Recursive");
    driver.setField("JointEditorMirrorDirectionCmb", "Right to Left");
    RyJEMirrorAction action;
    action.executeAction();
    QCOMPARE(int(driver.records().size()), 1);
    QVERIFY(reflectionError(scene.rFoot, scene.lFoot, 0, true, 100.0) < 1e-4);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Mirror Joints"));
}

void RyMirrorDialogTest::actionWithoutTool()
{
    RySidedScene scene;
    ryScene()->setSelection({scene.lThigh});
    scene.window.reset();
    RyDialogDriver driver;
    RyJEMirrorAction().executeAction();
    QVERIFY(driver.records().empty());
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyMirrorDialogTest::enabling()
{
    RySidedScene scene;
    ryScene()->setSelection({});
    RyJEMirrorAction action;
    QCOMPARE(action.text(), QStringLiteral("Mirror Joints..."));
    QVERIFY(!action.isCheckable() && !action.isEnabled());
    for (RyNode *node : {static_cast<RyNode *>(scene.lFoot), static_cast<RyNode *>(scene.figure), scene.prop}) {
        ryScene()->setSelection({node});
        QCOMPARE(action.isEnabled(), node != scene.prop);
    }
}

RY_TEST(RyMirrorDialogTest)
#include "tst_mirrorDialog.moc"
