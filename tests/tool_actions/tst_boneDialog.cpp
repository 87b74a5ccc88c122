#include "support/RyTest.h"

#include "RyFilledBoneDialog.h"
#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/dialogs/RyCreateBoneValidator.h"
#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/ui/RyNodeLabelValidator.h"
#include "rycore/ui/RyNodeNameValidator.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QGridLayout>
#include <QLabel>
#include <QStyle>

/// The action that asks for a child bone, and its dialog.
class RyBoneDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void looks();
    void orders();
    void nameBecomesTheLabel();
    void acceptNeedsBothTexts_data();
    void acceptNeedsBothTexts();
    void settersAndUniqueNames();
    void applyMakesTheBone_data();
    void applyMakesTheBone();
    void alignsWhileThereIsATool_data();
    void alignsWhileThereIsATool();
    void hintWithoutABone();
    void applyBindsWithoutWeights();
    void applyClearsUndoAndSelects();
    void appliesWithoutATool();
    void childOfASkeleton();
    void childWithoutLengthOrSkin();
    void actionWithoutATool();
    void actionWithoutACurrentNode();
    void actionRunsTheDialog();
    void enabling();
};

void RyBoneDialogTest::looks()
{
    RyWindowScene scene;
    RyFilledBoneDialog dialog;
    QCOMPARE(dialog.objectName(), QStringLiteral("JointEditorCreateBoneDlg"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Create Child Bone"));
    QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(scene.window.get()));
    QCOMPARE(dialog.minimumWidth(), 310);
    QCOMPARE(dialog.minimumHeight(), dialog.maximumHeight());
    QCOMPARE(dialog.maximumHeight(), dialog.minimumSizeHint().height());
    QVERIFY(dynamic_cast<RyCreateBoneValidator *>(dialog.getValidator()));

    auto *grid = dialog.findChild<QGridLayout *>();
    QVERIFY(grid);
    QCOMPARE(grid->contentsMargins(), QMargins());
    const int spacing = dialog.style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing);
    QCOMPARE(grid->horizontalSpacing(), spacing);
    QCOMPARE(grid->verticalSpacing(), spacing);
    QCOMPARE(grid->columnStretch(0), 0);
    QCOMPARE(grid->columnStretch(1), 1);
    QStringList rows;
    for (int row = 0; row < grid->rowCount(); ++row) {
        const auto *label = qobject_cast<QLabel *>(grid->itemAtPosition(row, 0)->widget());
        QVERIFY(label);
        QCOMPARE(label->alignment(), Qt::AlignRight | Qt::AlignVCenter);
        QWidget *field = grid->itemAtPosition(row, 1)->widget();
        const auto *edit = qobject_cast<QLineEdit *>(field);
        rows << label->text() << label->objectName() << field->objectName()
             << (edit ? edit->placeholderText() : "combo");
    }
    QCOMPARE(rows, QStringList({"Bone Name :", "JointEditorCreateBoneNameLbl", "JointEditorCreateBoneNameLEdit",
                                "Enter the internal name...", "Bone Label :", "JointEditorCreateBoneLabelLbl",
                                "JointEditorCreateBoneLabelLEdit", "Enter the label displayed to users...",
                                "Rotation Order :", "JointEditorCreateBoneRotationOrderLbl",
                                "JointEditorCreateBoneRotationOrderCmb", "combo"}));
    QVERIFY(qobject_cast<const RyNodeNameValidator *>(dialog.name->validator()));
    QVERIFY(qobject_cast<const RyNodeLabelValidator *>(dialog.label->validator()));
    for (const char *slot : {"nameEditChanged()", "updateAcceptState()"})
        QVERIFY2(RyJEBoneCreationDlg::staticMetaObject.indexOfSlot(slot) >= 0, slot);
}

void RyBoneDialogTest::orders()
{
    RyToolScene scene;
    const RyFilledBoneDialog dialog;
    QStringList items;
    for (int i = 0; i < dialog.order->count(); ++i) {
        items.append(dialog.order->itemText(i) + dialog.order->itemData(i, Qt::UserRole).toString());
        QVERIFY(dialog.order->itemIcon(i).isNull());
        QCOMPARE(dialog.order->itemData(i).type(), QVariant::Int);
    }
    QCOMPARE(items, QStringList({"XYZ0", "XZY1", "YXZ2", "YZX3", "ZXY4", "ZYX5"}));
    QCOMPARE(dialog.order->currentIndex(), 0);
}

void RyBoneDialogTest::nameBecomesTheLabel()
{
    RyToolScene scene;
    RyFilledBoneDialog dialog;
    QTest::keyClicks(dialog.name, "Tail");
    QCOMPARE(dialog.label->text(), QString());
    emit dialog.name->editingFinished();
    QCOMPARE(dialog.label->text(), QStringLiteral("Tail"));
    dialog.label->setText(QStringLiteral("The Tail"));
    dialog.name->setText(QStringLiteral("Tail2"));
    emit dialog.name->editingFinished();
    QCOMPARE(dialog.label->text(), QStringLiteral("The Tail"));
}

void RyBoneDialogTest::acceptNeedsBothTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("accepts");
    QTest::newRow("both") << "Tail"
                          << "The Tail" << true;
    QTest::newRow("nothing") << ""
                             << "" << false;
    QTest::newRow("no label") << "Tail"
                              << "" << false;
    QTest::newRow("no name") << ""
                             << "The Tail" << false;
    QTest::newRow("a name that ends in a blank") << "Tail "
                                                 << "The Tail" << false;
    QTest::newRow("a name with a slash") << "Ta/il"
                                         << "The Tail" << false;
    QTest::newRow("a label of blanks") << "Tail"
                                       << "  " << false;
    QTest::newRow("other signs") << "l_Tail-2"
                                 << "Tail / left (2)" << true;
}

void RyBoneDialogTest::acceptNeedsBothTexts()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    RyToolScene scene;
    RyFilledBoneDialog dialog;
    QVERIFY(!dialog.isAcceptEnabled());
    dialog.fill(name, label);
    QTEST(dialog.isAcceptEnabled(), "accepts");
    dialog.name->clear();
    QVERIFY(!dialog.isAcceptEnabled());
}

void RyBoneDialogTest::settersAndUniqueNames()
{
    RyToolScene scene;
    scene.prop->setLabel(QStringLiteral("A Prop"));
    RyFilledBoneDialog dialog;
    dialog.setBoneName(QStringLiteral("prop"), false);
    dialog.setBoneLabel(QStringLiteral("A Prop"), false);
    QCOMPARE(dialog.getBoneName(), QStringLiteral("prop"));
    QCOMPARE(dialog.getBoneLabel(), QStringLiteral("A Prop"));
    dialog.setBoneName(QString(), false);
    dialog.setBoneLabel(QString(), true);
    QCOMPARE(dialog.getBoneName(), QStringLiteral("prop"));
    dialog.setBoneName(QStringLiteral("prop"), true);
    dialog.setBoneLabel(QStringLiteral("A Prop"), true);
    QCOMPARE(dialog.getBoneName(), QStringLiteral("prop2"));
    QCOMPARE(dialog.getBoneLabel(), QStringLiteral("A Prop 2"));
    // Names of bones do not count.
    dialog.setBoneName(QStringLiteral("hip"), true);
    QCOMPARE(dialog.getBoneName(), QStringLiteral("hip"));
}

void RyBoneDialogTest::applyMakesTheBone_data()
{
    QTest::addColumn<int>("order");
    QTest::addColumn<RyVec3>("end");
    // The parent goes from (1,2,3) to (4,6,15): a way of 13.
    QTest::newRow("XYZ") << 0 << RyVec3(17, 6, 15);
    QTest::newRow("XZY") << 1 << RyVec3(17, 6, 15);
    QTest::newRow("YXZ") << 2 << RyVec3(4, 19, 15);
    QTest::newRow("YZX") << 3 << RyVec3(4, 19, 15);
    QTest::newRow("ZXY") << 4 << RyVec3(4, 6, 28);
    QTest::newRow("ZYX") << 5 << RyVec3(4, 6, 28);
}

void RyBoneDialogTest::applyMakesTheBone()
{
    QFETCH(int, order);
    RyToolScene scene;
    scene.lFoot->setOrigin({1, 2, 3}); // current values count
    scene.lFoot->setEndPoint({4, 6, 15});
    scene.lFoot->setOrientation(RyQuat(RyVec3(0, 1, 0), 0.5f));
    ryScene()->setSelection({scene.lFoot});
    RyFilledBoneDialog dialog(scene.tool);
    dialog.fill(QStringLiteral("toe"), QStringLiteral("Left Toe"));
    dialog.order->setCurrentIndex(order);
    QVERIFY(dialog.accepts());
    const auto *bone = qobject_cast<RyBone *>(scene.lFoot->getNodeChild(0));
    QVERIFY(bone);
    QCOMPARE(bone->getScene(), ryScene());
    QCOMPARE(bone->getName(), QStringLiteral("toe"));
    QCOMPARE(bone->getLabel(), QStringLiteral("Left Toe"));
    QCOMPARE(bone->getRotationOrder().order(), order);
    QVERIFY(!bone->inheritsScale());
    for (bool byDefault : {false, true}) {
        QCOMPARE(bone->getOrigin(byDefault), RyVec3(4, 6, 15));
        QTEST(bone->getEndPoint(byDefault), "end");
    }
    // It lies along its first axis already: aligned means not turned.
    for (int axis = 0; axis < 3; ++axis)
        QVERIFY((bone->getOrientation().multVec(RyVec3::axis(axis)) - RyVec3::axis(axis)).length() < 1e-5f);
}

void RyBoneDialogTest::alignsWhileThereIsATool_data()
{
    QTest::addColumn<bool>("tool");
    QTest::addColumn<bool>("goes");
    QTest::newRow("with a tool") << true << false;
    QTest::newRow("tool that goes") << true << true;
    QTest::newRow("without a tool") << false << false;
}

void RyBoneDialogTest::alignsWhileThereIsATool()
{
    QFETCH(bool, tool);
    QFETCH(bool, goes);
    RyToolScene scene;
    auto other = std::make_unique<RyJointEditorTool>();
    ryScene()->setSelection({scene.lFoot});
    // A new bone lies along its first axis, so that aligning changes no value: it is an edit all the same.
    int edits = 0;
    QObject listener;
    connect(ryScene(), &RyScene::nodeAdded, &listener,
            [&](RyNode *node) { connect(node, &RyNode::riggingChanged, &listener, [&edits] { ++edits; }); });
    RyFilledBoneDialog dialog(tool ? other.get() : nullptr);
    dialog.fill(QStringLiteral("toe"), QStringLiteral("Left Toe"));
    if (goes)
        other.reset();
    QVERIFY(dialog.accepts());
    QCOMPARE(scene.lFoot->getNumNodeChildren(), 1);
    QCOMPARE(edits, tool && !goes ? 1 : 0);
}

void RyBoneDialogTest::hintWithoutABone()
{
    RyToolScene scene;
    const auto hintOf = [](const QDialog &dialog) {
        const auto *hint = dialog.findChild<QLabel *>(QStringLiteral("JointEditorCreateBoneHintLbl"));
        return hint && hint->isVisibleTo(&dialog) ? hint->text() : QString();
    };
    ryScene()->setSelection({scene.lFoot});
    const RyFilledBoneDialog dialog;
    const int height = dialog.maximumHeight();
    QCOMPARE(hintOf(dialog), QString());
    for (RyNode *node : {static_cast<RyNode *>(scene.figure), scene.prop, static_cast<RyNode *>(nullptr)}) {
        ryScene()->setSelection({node});
        const RyFilledBoneDialog other;
        for (const RyFilledBoneDialog *each : {&dialog, &other}) {
            QCOMPARE(hintOf(*each), QStringLiteral("Select a bone: the new bone continues it."));
            QVERIFY(each->minimumHeight() > height);
            QCOMPARE(each->maximumHeight(), each->minimumSizeHint().height());
            QCOMPARE(each->minimumHeight(), each->maximumHeight());
            QCOMPARE(each->minimumWidth(), 310);
        }
    }
    ryScene()->setSelection({scene.lShin});
    QCOMPARE(hintOf(dialog), QString());
    QCOMPARE(dialog.minimumHeight(), height);
    QCOMPARE(dialog.maximumHeight(), height);
}

void RyBoneDialogTest::applyBindsWithoutWeights()
{
    for (const RySkinnedScene::Maps maps : {RySkinnedScene::General, RySkinnedScene::Local, RySkinnedScene::Both}) {
        RySkinnedScene scene(maps);
        ryScene()->setSelection({scene.lFoot});
        const std::vector<RyVec3> before = scene.shown();
        RyFilledBoneDialog dialog(scene.tool);
        dialog.fill(QStringLiteral("toe"), QStringLiteral("Left Toe"));
        QVERIFY(dialog.accepts());
        const RyBoneBinding *binding = scene.skin->bindings().back();
        QCOMPARE(static_cast<RyNode *>(binding->getBone()), scene.lFoot->getNodeChild(0));
        QCOMPARE(int(binding->getAllWeightMaps().size()), maps == RySkinnedScene::General ? 1
                                                          : maps == RySkinnedScene::Local ? 4
                                                                                          : 5);
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            QCOMPARE(ryWeightsOf(map), std::vector<int>(60, 0));
        QCOMPARE(ryLargestWay(scene.shown(), before), 0.0f);
        QCOMPARE(ryFaultsOf(scene.figure), QString());
    }
}

void RyBoneDialogTest::applyClearsUndoAndSelects()
{
    RySkinnedScene scene;
    {
        RyUndoStackHold hold;
        scene.rThigh->setEndPoint({1, 2, 3});
        hold.accept(QStringLiteral("Earlier"));
    }
    ryScene()->setSelection({scene.prop, scene.lFoot});
    RyFilledBoneDialog dialog(scene.tool);
    dialog.fill(QStringLiteral("toe"), QStringLiteral("toe"));
    QCOMPARE(ryUndoStack()->count(), 1);
    QVERIFY(dialog.accepts());
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!ryUndoStack()->isLocked() && !ryUndoStack()->isHoldOpen());
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>({scene.lFoot->getNodeChild(0)}));
}

void RyBoneDialogTest::appliesWithoutATool()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lFoot});
    RyFilledBoneDialog dialog;
    dialog.fill(QStringLiteral("toe"), QStringLiteral("toe"));
    QVERIFY(dialog.accepts());
    const RyNode *bone = scene.lFoot->getNodeChild(0);
    for (bool byDefault : {false, true})
        QCOMPARE(bone->getOrientation(byDefault), RyQuat());
}

void RyBoneDialogTest::childOfASkeleton()
{
    RyToolScene scene;
    scene.figure->setOrigin({0, 1, 0}, true);
    scene.figure->setEndPoint({0, 5, 0}, true);
    const RyBone *bone =
        createChildBone(scene.figure, QStringLiteral("root"), QStringLiteral("Root"), RyRotationOrder(4));
    QVERIFY(bone);
    QVERIFY(bone->inheritsScale());
    QCOMPARE(bone->getNodeParent(), static_cast<RyNode *>(scene.figure));
    QCOMPARE(bone->getEndPoint(), RyVec3(0, 5, 4));
    QVERIFY(!createChildBone(nullptr, QStringLiteral("a"), QStringLiteral("a"), RyRotationOrder()));
}

void RyBoneDialogTest::childWithoutLengthOrSkin()
{
    RyToolScene scene;
    scene.lFoot->setEndPoint(scene.lFoot->getOrigin(), true);
    QStringList calls;
    QObject listener;
    connect(ryScene(), &RyScene::nodeAdded, &listener,
            [&](RyNode *node) { calls.append(node->getNodeParent() ? "added below" : "added"); });
    connect(scene.lFoot, &RyNode::childrenChanged, &listener, [&] { calls.append("child"); });
    const RyBone *bone = createChildBone(scene.lFoot, QStringLiteral("toe"), QStringLiteral("Toe"), RyRotationOrder());
    QVERIFY(bone);
    QCOMPARE(bone->getOrigin(), scene.lFoot->getOrigin());
    QCOMPARE(bone->getEndPoint(), scene.lFoot->getOrigin());
    QCOMPARE(calls, QStringList({"added", "child"}));
    QVERIFY(!RySkinBinding::findSkinFromNode(bone));
}

void RyBoneDialogTest::actionWithoutATool()
{
    RyWindowScene scene;
    ryScene()->setSelection({scene.lFoot});
    RyDialogDriver driver;
    scene.window.reset();
    RyJECreateBoneAction().executeAction();
    scene.window = std::make_unique<RyMainWindow>(ryScene()); // without a tool
    RyJECreateBoneAction().executeAction();
    QCOMPARE(int(driver.records().size()), 0);
    QCOMPARE(int(scene.figure->getAllBones().size()), 5);
}

void RyBoneDialogTest::actionWithoutACurrentNode()
{
    RyWindowScene scene;
    ryScene()->setSelection({scene.lFoot});
    QVERIFY(!scene.windowTool->currentNode());
    RyMessageBoxes boxes;
    RyJECreateBoneAction().executeAction();
    QCOMPARE(boxes.facts,
             QStringList(QStringLiteral("information|Selection Error|A skeleton or bone must be selected to "
                                        "continue.|Ok|Ok|Ok")));
    QCOMPARE(boxes.parents, QList<QWidget *>({scene.window.get()}));
}

void RyBoneDialogTest::actionRunsTheDialog()
{
    RyWindowScene scene;
    scene.window->getViewportMgr()->setActiveTool(scene.windowTool);
    ryScene()->setSelection({scene.lFoot});
    QCoreApplication::sendPostedEvents();
    QCOMPARE(scene.windowTool->currentNode(), static_cast<RyNode *>(scene.lFoot));
    RyJECreateBoneAction action;
    {
        RyDialogDriver driver;
        driver.setField(QStringLiteral("JointEditorCreateBoneNameLEdit"), QStringLiteral("toe"));
        driver.setField(QStringLiteral("JointEditorCreateBoneLabelLEdit"), QStringLiteral("Left Toe"));
        driver.setField(QStringLiteral("JointEditorCreateBoneRotationOrderCmb"), QStringLiteral("YXZ"));
        action.trigger();
        QCOMPARE(driver.errors(), QStringList());
        QCOMPARE(int(driver.records().size()), 1);
        QCOMPARE(driver.records()[0].title, QStringLiteral("Create Child Bone"));
        QCOMPARE(driver.records()[0].parent.data(), static_cast<QWidget *>(scene.window.get()));
    }
    const RyBone *bone = scene.figure->findBoneByLabel(QStringLiteral("Left Toe"));
    QVERIFY(bone);
    QCOMPARE(bone->getName(), QStringLiteral("toe"));
    QCOMPARE(bone->getRotationOrder().order(), 2);
    QVERIFY(!scene.window->findChild<RyJEBoneCreationDlg *>());
    // Cancelling changes nothing.
    const QString before = scene.dump();
    RyDialogDriver driver;
    driver.setAnswer(QStringLiteral("Create Child Bone"), QStringLiteral("Cancel"));
    action.trigger();
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(scene.dump(), before);
}

void RyBoneDialogTest::enabling()
{
    RyToolScene scene;
    auto *skeleton = new RySkeleton;
    ryScene()->addNode(skeleton);
    RyBone *itsBone = RyToolScene::makeBone(skeleton, "bone", {}, {0, 1, 0});
    const RyJECreateBoneAction action;
    QString enabled;
    const std::vector<RyNode *> selections = {nullptr, scene.prop, skeleton, itsBone, scene.figure, scene.lShin};
    for (RyNode *node : selections) {
        ryScene()->setSelection({node});
        enabled += QString::number(action.isEnabled()) + QString::number(RyJECreateBoneAction().isEnabled());
    }
    QCOMPARE(enabled, QStringLiteral("000011111111"));
}

RY_TEST(RyBoneDialogTest)

#include "tst_boneDialog.moc"
