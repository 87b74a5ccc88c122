#include "support/RyTest.h"

#include "RyControlScene.h"
#include "RyMessageBoxes.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/dialogs/RyJECreateControlBonesDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/figure/RyLegacyFigure.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>

namespace {

const QString warning = QStringLiteral("Selection Error|One or more bone(s) of a weight mapped figure must be selected "
                                       "to continue.|Ok|warning");
const QString modeField = QStringLiteral("JointEditorControlBoneModeCmb");
const QString prefixField = QStringLiteral("JointEditorPrefixLEdit");

QStringList controlsOf(const RySkeleton *skeleton, const QString &prefix = QStringLiteral("cb_"))
{
    QStringList names;
    for (const RyBone *bone : skeleton->getAllBones()) {
        if (bone->getName().startsWith(prefix))
            names.append(bone->getName().mid(prefix.size()));
    }
    return names;
}

} // namespace

/// The menu's way to control bones.
class RyControlBonesActionTest : public QObject
{
    Q_OBJECT

private slots:
    void looks();
    void okNeedsAPrefixThatNamesBeginWith_data();
    void okNeedsAPrefixThatNamesBeginWith();
    void refusesWhatIsNoBoneOfASkin();
    void modes_data();
    void modes();
    void otherPrefix();
    void isOneStep_data();
    void isOneStep();
    void noStepWithoutAControlBone();
    void optionsAreNotKept();
    void cancelChangesNothing();
    void goneWhileOpen_data();
    void goneWhileOpen();
};

void RyControlBonesActionTest::looks()
{
    const RyJECreateControlBonesDlg dialog;
    QCOMPARE(dialog.objectName(), QStringLiteral("JECreateGhostFollowBonesDlg"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Create Control Bone(s)"));
    const auto *prefixLabel = dialog.findChild<QLabel *>(QStringLiteral("JointEditorControlBonePrefixLbl"));
    const auto *modeLabel = dialog.findChild<QLabel *>(QStringLiteral("JointEditorControlBoneModeLbl"));
    const auto *prefix = dialog.findChild<QLineEdit *>(prefixField);
    const auto *mode = dialog.findChild<QComboBox *>(modeField);
    QVERIFY(prefixLabel && modeLabel && prefix && mode);
    QCOMPARE(prefixLabel->text(), QStringLiteral("Prefix :"));
    QCOMPARE(modeLabel->text(), QStringLiteral("Mode :"));
    QCOMPARE(prefix->text(), QStringLiteral("cb_"));
    QCOMPARE(mode->count(), 2);
    QCOMPARE(mode->itemText(0), QStringLiteral("Selected and Children"));
    QCOMPARE(mode->itemText(1), QStringLiteral("Children of Selected"));
    QCOMPARE(mode->currentIndex(), 0);
    QCOMPARE(dialog.getPrefix(), QStringLiteral("cb_"));
    QVERIFY(dialog.getMode() == RyControlBoneMode::SelectedAndChildren);
    const auto *grid = dialog.findChild<QGridLayout *>();
    QCOMPARE(grid->columnStretch(0), 0);
    QCOMPARE(grid->columnStretch(1), 1);
    QCOMPARE(grid->itemAtPosition(0, 0)->widget(), prefixLabel);
    QCOMPARE(grid->itemAtPosition(0, 1)->widget(), prefix);
    QCOMPARE(grid->itemAtPosition(1, 0)->widget(), modeLabel);
    QCOMPARE(grid->itemAtPosition(1, 1)->widget(), mode);
    QCOMPARE(dialog.minimumWidth(), 300);
    QCOMPARE(dialog.minimumHeight(), dialog.maximumHeight());
    QVERIFY(dialog.findChild<QPushButton *>("BasicDialogApplyBtn")->isHidden());
    QVERIFY(dialog.isAcceptEnabled());
}

void RyControlBonesActionTest::okNeedsAPrefixThatNamesBeginWith_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("none") << "" << false;
    QTest::newRow("letter") << "x" << true;
    QTest::newRow("no letter of names") << "cb/" << false;
    QTest::newRow("blank before") << " cb" << false;
    QTest::newRow("blank behind") << "control " << true;
}

void RyControlBonesActionTest::okNeedsAPrefixThatNamesBeginWith()
{
    QFETCH(QString, prefix);
    QFETCH(bool, enabled);
    RyJECreateControlBonesDlg dialog;
    auto *field = dialog.findChild<QLineEdit *>(prefixField);
    field->setText(enabled ? QString() : QStringLiteral("a"));
    QCOMPARE(dialog.isAcceptEnabled(), !enabled);
    field->setText(prefix);
    QCOMPARE(dialog.isAcceptEnabled(), enabled);
    QCOMPARE(dialog.getPrefix(), prefix);
}

void RyControlBonesActionTest::refusesWhatIsNoBoneOfASkin()
{
    RyControlScene scene;
    auto *bare = new RySkeleton;
    RyBone *bareBone = RyToolScene::makeBone(bare, "bare", {0, 1, 0}, {0, 2, 0});
    auto *parametric = new RyLegacyFigure;
    RyBone *parametricBone = RyToolScene::makeBone(parametric, "parametric", {0, 1, 0}, {0, 2, 0});
    for (RySkeleton *each : std::initializer_list<RySkeleton *>{bare, parametric})
        ryScene()->addNode(each);
    RyJECreateControlBonesAction action;
    const QString before = scene.dump();
    for (RyNode *node : {static_cast<RyNode *>(nullptr), scene.prop, static_cast<RyNode *>(scene.figure),
                         static_cast<RyNode *>(bareBone), static_cast<RyNode *>(parametricBone)}) {
        // The bone that was selected first would do.
        ryScene()->setSelection(node ? std::vector<RyNode *>{scene.lFoot, node} : std::vector<RyNode *>());
        RyMessageBoxes boxes;
        action.trigger();
        QCOMPARE(boxes.said, QStringList(warning));
        QCOMPARE(boxes.parents, QList<QWidget *>{RyApp::getDialogParent()});
    }
    ryScene()->setSelection({});
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyControlBonesActionTest::modes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QStringList>("controls");
    QTest::newRow("selected and children")
        << "Selected and Children" << QStringList({"rThigh", "lThigh", "lShin", "lFoot"});
    QTest::newRow("children of selected") << "Children of Selected" << QStringList({"lShin", "lFoot"});
}

/// What else is selected may be anything; bones that are selected are treated once.
void RyControlBonesActionTest::modes()
{
    QFETCH(QString, mode);
    QFETCH(QStringList, controls);
    RyControlScene scene;
    ryScene()->setSelection({scene.prop, scene.rThigh, scene.lFoot, scene.lThigh});
    RyDialogDriver driver;
    driver.setField(modeField, mode);
    RyJECreateControlBonesAction().executeAction();
    QCOMPARE(driver.errors(), QStringList());
    QCOMPARE(driver.unusedFields(), QStringList());
    QCOMPARE(controlsOf(scene.figure), controls);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
    QCOMPARE(scene.window->statusBar()->currentMessage(),
             QStringLiteral("Control bones made: %1. Bones skipped, as they have or are control bones of that prefix: "
                            "0.")
                 .arg(controls.size()));
}

void RyControlBonesActionTest::otherPrefix()
{
    RyControlScene scene;
    ryScene()->setSelection({scene.lShin});
    RyDialogDriver driver;
    driver.setField(prefixField, QStringLiteral("steer "));
    RyJECreateControlBonesAction().executeAction();
    QCOMPARE(driver.errors(), QStringList());
    QCOMPARE(controlsOf(scene.figure, QStringLiteral("steer ")), QStringList({"lShin", "lFoot"}));
}

void RyControlBonesActionTest::isOneStep_data()
{
    QTest::addColumn<bool>("toolModes");
    QTest::newRow("modes of the tool off") << false;
    QTest::newRow("modes of the tool on") << true;
}

/// Neither the bones nor their neighbours are moved by what the tool does to edited ones.
void RyControlBonesActionTest::isOneStep()
{
    QFETCH(bool, toolModes);
    RyControlScene scene;
    for (RyJointEditorTool *tool : {scene.tool, scene.windowTool}) {
        tool->setPropagateTranslation(toolModes);
        tool->setAutoSnapEndPoints(toolModes);
        tool->setAutoAlign(toolModes);
    }
    scene.select(scene.hip);
    ryUndoStack()->clearAll();
    const QString before = scene.dump();
    const std::vector<RyVec3> shown = scene.shown();
    const RyVec3 end = scene.hip->getEndPoint();
    {
        const RyDialogDriver driver;
        RyJECreateControlBonesAction().executeAction();
    }
    QCOMPARE(controlsOf(scene.figure), QStringList({"hip", "lThigh", "lShin", "lFoot", "rThigh"}));
    QCOMPARE(scene.hip->getEndPoint(), end);
    QCOMPARE(scene.control(scene.hip)->getEndPoint(), end);
    QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Create Control Bone(s)..."));
    checkLastStep(before);
    ryUndoStack()->undo();
    QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
}

void RyControlBonesActionTest::noStepWithoutAControlBone()
{
    RyControlScene scene;
    ryScene()->setSelection({scene.lFoot});
    const QString before = scene.dump();
    RyJECreateControlBonesAction action;
    RyDialogDriver driver;
    driver.setField(modeField, QStringLiteral("Children of Selected"));
    action.executeAction();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.window->statusBar()->currentMessage(),
             QStringLiteral("Nothing done: the selected bones have no children."));
    action.executeAction();
    QCOMPARE(ryUndoStack()->count(), 1);
    const QString once = scene.dump();
    action.executeAction(); // all of them have one
    QCOMPARE(scene.dump(), once);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(int(driver.records().size()), 3);
}

void RyControlBonesActionTest::optionsAreNotKept()
{
    RyControlScene scene;
    ryScene()->setSelection({scene.rThigh});
    RyJECreateControlBonesAction action;
    RyDialogDriver driver;
    driver.setField(modeField, QStringLiteral("Children of Selected"));
    driver.setField(prefixField, QStringLiteral("x"));
    action.executeAction();
    action.executeAction();
    QCOMPARE(driver.errors(), QStringList());
    QCOMPARE(controlsOf(scene.figure), QStringList({"rThigh"}));
}

void RyControlBonesActionTest::cancelChangesNothing()
{
    RyControlScene scene;
    ryScene()->setSelection({scene.hip});
    const QString before = scene.dump();
    RyDialogDriver driver;
    driver.setAnswer(QStringLiteral("Create Control Bone(s)"), QStringLiteral("Cancel"));
    RyJECreateControlBonesAction().executeAction();
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(driver.records().front().parent, static_cast<QWidget *>(scene.window.get()));
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!scene.window->findChild<RyJECreateControlBonesDlg *>());
}

void RyControlBonesActionTest::goneWhileOpen_data()
{
    QTest::addColumn<QString>("gone");
    QTest::addColumn<bool>("deleted");
    for (const char *gone : {"lShin", "hip", "figure"}) {
        QTest::addRow("%s removed", gone) << gone << false;
        QTest::addRow("%s deleted", gone) << gone << true;
    }
    QTest::newRow("window") << "window" << true;
}

void RyControlBonesActionTest::goneWhileOpen()
{
    QFETCH(QString, gone);
    QFETCH(bool, deleted);
    RyControlScene scene;
    ryScene()->setSelection({scene.lShin});
    const RyRef<RyNode> held(deleted ? nullptr : ryScene()->findNode(gone));
    QString left;
    RyDialogDriver driver;
    connect(&driver, &RyDialogDriver::opened, &driver, [&] {
        if (RyNode *node = ryScene()->findNode(gone))
            ryScene()->removeNode(node);
        else
            scene.window.reset();
        left = scene.dump();
    });
    RyJECreateControlBonesAction().executeAction();
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(scene.dump(), left);
    QVERIFY(!scene.window || scene.window->statusBar()->currentMessage().isEmpty());
}

RY_TEST(RyControlBonesActionTest)

#include "tst_controlBonesAction.moc"
