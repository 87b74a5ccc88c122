#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/dialogs/RyCreateBoneValidator.h"
#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"
#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/ui/RyNodeLabelValidator.h"
#include "rycore/ui/RyNodeNameValidator.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

namespace {

const QString suffixQuestion = QStringLiteral(
    "question|Name/Label Suffix Mismatch|The suffix of the Name and Label for the new bone do not match. This can lead to "
    "confusion later. Would you like to continue with the existing values or fix the mismatch?|Yes, Continue,No, Fix "
    "Mismatch|Yes, Continue|");
const QString suffixTitle = QStringLiteral("Name/Label Suffix Mismatch");
const QString one = QStringLiteral("An adjustment has been made. Verify the adjustment and try again.");
const QString several = QStringLiteral("Adjustments have been made. Verify the adjustments and try again.");

QString inputError(const QStringList &messages)
{
    return QStringLiteral("warning|Input Error|%1|Ok|Ok|Ok").arg(messages.join(QStringLiteral("\n\n")));
}

/// The dialog of a scene with fields at hand.
struct Dialog : RyJEBoneCreationDlg
{
    explicit Dialog(RyJointEditorTool *tool = nullptr)
        : RyJEBoneCreationDlg(tool), name(findChild<QLineEdit *>("JointEditorCreateBoneNameLEdit")),
          label(findChild<QLineEdit *>("JointEditorCreateBoneLabelLEdit")),
          order(findChild<QComboBox *>("JointEditorCreateBoneRotationOrderCmb"))
    {
    }
    void fill(const QString &nameText, const QString &labelText)
    {
        name->setText(nameText);
        label->setText(labelText);
    }
    /// Whether accepting closed the dialog.
    bool accepts()
    {
        setResult(-1);
        accept();
        return result() == QDialog::Accepted;
    }
    QLineEdit *name;
    QLineEdit *label;
    QComboBox *order;
};

} // namespace

/// The action that asks for a child bone, its dialog and what lets that close.
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
    void foreignDialog();
    void needsASelectedBone_data();
    void needsASelectedBone();
    void suffixQuestions_data();
    void suffixQuestions();
    void fixesSuffixes_data();
    void fixesSuffixes();
    void conflicts_data();
    void conflicts();
    void applyMakesTheBone_data();
    void applyMakesTheBone();
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
    Dialog dialog;
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
        rows << label->text() << label->objectName() << field->objectName() << (edit ? edit->placeholderText() : "combo");
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
    const Dialog dialog;
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
    Dialog dialog;
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
    QTest::newRow("both") << "Tail" << "The Tail" << true;
    QTest::newRow("nothing") << "" << "" << false;
    QTest::newRow("no label") << "Tail" << "" << false;
    QTest::newRow("no name") << "" << "The Tail" << false;
    QTest::newRow("a name that ends in a blank") << "Tail " << "The Tail" << false;
    QTest::newRow("a name with a slash") << "Ta/il" << "The Tail" << false;
    QTest::newRow("a label of blanks") << "Tail" << "  " << false;
    QTest::newRow("other signs") << "l_Tail-2" << "Tail / left (2)" << true;
}

void RyBoneDialogTest::acceptNeedsBothTexts()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    RyToolScene scene;
    Dialog dialog;
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
    Dialog dialog;
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

void RyBoneDialogTest::foreignDialog()
{
    RyWindowScene scene;
    RyMessageBoxes boxes;
    RyBasicDialog other;
    RyCreateBoneValidator validator;
    QVERIFY(!validator.validate(&other));
    QVERIFY(!validator.validate(nullptr));
    const QString message = QStringLiteral("warning|Unexpected Error|An unexpected error has occurred.|Ok|Ok|Ok");
    QCOMPARE(boxes.facts, QStringList({message, message}));
    QCOMPARE(boxes.parents, QList<QWidget *>({scene.window.get(), scene.window.get()}));
}

void RyBoneDialogTest::needsASelectedBone_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<bool>("accepts");
    QTest::newRow("a bone") << "hip" << true;
    QTest::newRow("the figure") << "figure" << false;
    QTest::newRow("a prop") << "prop" << false;
    QTest::newRow("nothing") << "" << false;
    QTest::newRow("a bone without a skeleton") << "loose" << false;
}

void RyBoneDialogTest::needsASelectedBone()
{
    QFETCH(QString, selected);
    RyToolScene scene;
    auto *loose = new RyBone;
    loose->setName(QStringLiteral("loose"));
    ryScene()->addNode(loose);
    ryScene()->setSelection({selected.isEmpty() ? nullptr : ryScene()->findNode(selected)});
    const size_t nodes = ryScene()->getNodes().size();
    RyMessageBoxes boxes;
    Dialog dialog;
    dialog.fill(QStringLiteral("Tail"), QStringLiteral("Tail"));
    const bool closed = dialog.accepts();
    QTEST(closed, "accepts");
    QCOMPARE(boxes.facts, QStringList());
    QCOMPARE(ryScene()->getNodes().size(), nodes + (closed ? 1 : 0));
}

void RyBoneDialogTest::suffixQuestions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("asks");
    QTest::newRow("none") << "Tail" << "Tail" << false;
    QTest::newRow("name only") << "Tail2" << "Tail" << false;
    QTest::newRow("label only") << "Tail" << "Tail 2" << false;
    QTest::newRow("equal") << "Tail2" << "Tail 2" << false;
    QTest::newRow("different") << "Tail2" << "Tail 3" << true;
    QTest::newRow("equal numbers, other digits") << "Tail02" << "Tail 2" << true;
    QTest::newRow("all digits count as none") << "22" << "Tail 3" << false;
}

void RyBoneDialogTest::suffixQuestions()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    QFETCH(bool, asks);
    RyToolScene scene;
    ryScene()->setSelection({scene.hip});
    RyMessageBoxes boxes;
    Dialog dialog;
    dialog.fill(name, label);
    // The default answer goes on.
    QVERIFY(dialog.accepts());
    QCOMPARE(boxes.facts, asks ? QStringList(suffixQuestion) : QStringList());
    if (asks)
        QCOMPARE(boxes.parents.first(), static_cast<QWidget *>(&dialog));
    const RyBone *bone = scene.figure->findBone(name);
    QVERIFY(bone);
    QCOMPARE(bone->getLabel(), label);
}

void RyBoneDialogTest::fixesSuffixes_data()
{
    QTest::addColumn<QString>("takenName");
    QTest::addColumn<QString>("takenLabel");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    // Filled in: Tail2 and "The Tail 3".
    QTest::newRow("nothing taken: by the name") << "x" << "x" << "Tail2" << "The Tail 2";
    QTest::newRow("label taken: by the label") << "x" << "The Tail 2" << "Tail3" << "The Tail 3";
    QTest::newRow("name taken: by the label") << "Tail2" << "x" << "Tail3" << "The Tail 3";
    QTest::newRow("both taken: as they are") << "Tail3" << "The Tail 2" << "Tail2" << "The Tail 3";
    QTest::newRow("name and its label taken: as they are") << "Tail2" << "The Tail 3" << "Tail2" << "The Tail 3";
}

void RyBoneDialogTest::fixesSuffixes()
{
    QFETCH(QString, takenName);
    QFETCH(QString, takenLabel);
    RyToolScene scene;
    scene.lFoot->setName(takenName);
    scene.lFoot->setLabel(QStringLiteral("Foot"));
    scene.lShin->setLabel(takenLabel);
    // What is unique among top-level nodes does not matter here.
    scene.prop->setName(QStringLiteral("Tail2"));
    scene.prop->setLabel(QStringLiteral("The Tail 2"));
    ryScene()->setSelection({scene.hip});
    RyMessageBoxes boxes;
    boxes.setAnswer(suffixTitle, QStringLiteral("No, Fix Mismatch"));
    Dialog dialog;
    dialog.fill(QStringLiteral("Tail2"), QStringLiteral("The Tail 3"));
    QVERIFY(!dialog.accepts());
    QCOMPARE(boxes.facts, QStringList(suffixQuestion));
    QTEST(dialog.getBoneName(), "name");
    QTEST(dialog.getBoneLabel(), "label");
    QCOMPARE(int(scene.figure->getAllBones().size()), 5);
}

void RyBoneDialogTest::conflicts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("newName");
    QTest::addColumn<QString>("newLabel");
    const QString labeled = QStringLiteral("A bone labeled \"Left Shin\" already exists in \"The Figure\". ");
    const QString named = QStringLiteral("A bone named \"lShin\" already exists in \"The Figure\". ");
    QTest::newRow("none") << "Tail" << "Tail" << QStringList() << "Tail" << "Tail";
    QTest::newRow("label") << "Tail" << "Left Shin" << QStringList({labeled, one}) << "Tail" << "Left Shin 2";
    QTest::newRow("name") << "lShin" << "Tail" << QStringList({named, one}) << "lShin2" << "Tail";
    QTest::newRow("both") << "lShin" << "Left Shin" << QStringList({labeled, named, several}) << "lShin2" << "Left Shin 2";
}

void RyBoneDialogTest::conflicts()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    QFETCH(QStringList, messages);
    RyToolScene scene;
    scene.figure->setLabel(QStringLiteral("The Figure"));
    scene.lShin->setLabel(QStringLiteral("Left Shin"));
    ryScene()->setSelection({scene.hip});
    RyMessageBoxes boxes;
    Dialog dialog;
    dialog.fill(name, label);
    QCOMPARE(dialog.accepts(), messages.isEmpty());
    QCOMPARE(boxes.facts, messages.isEmpty() ? QStringList() : QStringList(inputError(messages)));
    QTEST(dialog.getBoneName(), "newName");
    QTEST(dialog.getBoneLabel(), "newLabel");
    if (messages.isEmpty())
        return;
    QCOMPARE(boxes.parents.first(), static_cast<QWidget *>(&dialog));
    QCOMPARE(int(scene.figure->getAllBones().size()), 5);
    // What it wrote is free.
    QVERIFY(dialog.accepts());
    QCOMPARE(int(scene.figure->getAllBones().size()), 6);
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
    Dialog dialog(scene.tool);
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

void RyBoneDialogTest::applyBindsWithoutWeights()
{
    for (const RySkinnedScene::Maps maps : {RySkinnedScene::General, RySkinnedScene::Local, RySkinnedScene::Both}) {
        RySkinnedScene scene(maps);
        ryScene()->setSelection({scene.lFoot});
        const std::vector<RyVec3> before = scene.shown();
        Dialog dialog(scene.tool);
        dialog.fill(QStringLiteral("toe"), QStringLiteral("Left Toe"));
        QVERIFY(dialog.accepts());
        const RyBoneBinding *binding = scene.skin->bindings().back();
        QCOMPARE(static_cast<RyNode *>(binding->getBone()), scene.lFoot->getNodeChild(0));
        QCOMPARE(int(binding->getAllWeightMaps().size()), maps == RySkinnedScene::General ? 1 : maps == RySkinnedScene::Local ? 4 : 5);
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
    Dialog dialog(scene.tool);
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
    Dialog dialog;
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
    const RyBone *bone = createChildBone(scene.figure, QStringLiteral("root"), QStringLiteral("Root"), RyRotationOrder(4));
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
    QCOMPARE(boxes.facts, QStringList(QStringLiteral("information|Selection Error|A skeleton or bone must be selected to "
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
