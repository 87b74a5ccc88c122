#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/hierarchyLevel.h"
#include "pluginsource/RyJointTools/operations/reparentBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QDir>
#include <QTreeWidget>

namespace {

const QString figureBoneWarning =
    QStringLiteral("warning|Selection Error|A bone from a weight mapped figure must be selected to continue.|Ok|Ok|Ok");
const QString levelWarning = QStringLiteral(
    "warning|Reparenting Warning|The bone you have selected is not at the same level in the hierarchy. This can have "
    "unexpected results. Would you like to continue?|Ok,Cancel|Ok|Cancel");
const QString loopWarning =
    QStringLiteral("warning|Selection Error|A bone cannot become a child of itself or of a bone below it.|Ok|Ok|Ok");
const QString otherFigureWarning = QStringLiteral("warning|Selection Error|A bone cannot move to another figure: "
                                                  "the skin of its own figure moves vertices by it.|Ok|Ok|Ok");
const QString levelTitle = QStringLiteral("Reparenting Warning");

/// Home folder with a rename script, for as long as it lives.
struct Home
{
    explicit Home(const QByteArray &script)
    {
        qputenv("RYHOST_HOME", folder.path().toLocal8Bit());
        if (script.isEmpty())
            return;
        const QString place = folder.path() + QStringLiteral("/scripts/support/Velmor/OstraToolkit");
        QDir().mkpath(place);
        QFile file(place + QStringLiteral("/ryRenameNode.rsx"));
        if (file.open(QIODevice::WriteOnly))
            file.write(script);
    }
    ~Home() { qunsetenv("RYHOST_HOME"); }
    QTemporaryDir folder;
};

} // namespace

/// Reparenting and renaming.
class RyNodeActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void levels_data();
    void levels();
    void reparents();
    void refusesLoops();
    void refusesOtherSkeletons();
    void actionNeedsABoneOfAFigure_data();
    void actionNeedsABoneOfAFigure();
    void pickerOffersTheFigure();
    void actionAsksAboutLevels_data();
    void actionAsksAboutLevels();
    void presentParentMakesItTheLastChild();
    void picksAgainAfterARefusal();
    void actionLeavesUndoAndBindingsAlone();
    void renameRunsTheScript();
    void renameWithTheHostsScript();
    void renameWithoutAScript();
    void enabling();
};

void RyNodeActionsTest::levels_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("same");
    // root - a - a1 - a11 - a111
    //          - a2
    //      - b - b1 - b11
    // root2 - c;  top (no skeleton) - t1
    QTest::newRow("siblings at the top") << "a"
                                         << "b" << true;
    QTest::newRow("the same parent") << "a1"
                                     << "a1" << true;
    QTest::newRow("siblings further down") << "a1"
                                           << "a2" << true;
    QTest::newRow("cousins") << "a1"
                             << "b1" << true;
    QTest::newRow("one deeper") << "a"
                                << "a1" << false;
    QTest::newRow("one higher") << "a1"
                                << "a" << false;
    QTest::newRow("the skeleton itself") << "a"
                                         << "root" << false;
    QTest::newRow("from the skeleton") << "root"
                                       << "a" << false;
    QTest::newRow("from skeleton to skeleton") << "root"
                                               << "root2" << true;
    QTest::newRow("top bones of two skeletons") << "a"
                                                << "c" << false;
    QTest::newRow("far apart") << "a111"
                               << "b" << false;
    QTest::newRow("nothing") << "a"
                             << "" << false;
    QTest::newRow("from nothing to the skeleton") << ""
                                                  << "root" << true;
    QTest::newRow("without a skeleton") << "t1"
                                        << "a" << false;
    QTest::newRow("without a skeleton, both") << "top"
                                              << "top" << true;
}

void RyNodeActionsTest::levels()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    RyToolScene scene;
    const auto add = [](const char *name, RyNode *node, const char *parent) {
        node->setName(QString::fromLatin1(name));
        if (RyNode *above = ryScene()->findNode(QString::fromLatin1(parent)))
            above->addNodeChild(node);
        ryScene()->addNode(node);
    };
    add("root", new RyFigure, "");
    for (const auto &[name, parent] :
         {std::pair("a", "root"), std::pair("a1", "a"), std::pair("a11", "a1"), std::pair("a111", "a11"),
          std::pair("a2", "a"), std::pair("b", "root"), std::pair("b1", "b"), std::pair("b11", "b1")}) {
        add(name, new RyBone, parent);
    }
    add("root2", new RySkeleton, "");
    add("c", new RyBone, "root2");
    add("top", new RyNode, "");
    add("t1", new RyBone, "top");
    QTEST(areAtTheSameLevel(ryScene()->findNode(from), ryScene()->findNode(to)), "same");
}

void RyNodeActionsTest::reparents()
{
    RySkinnedScene scene;
    const RyVec3 place = scene.lFoot->getOrigin();
    reparentBone(scene.lFoot, scene.rThigh);
    QCOMPARE(scene.lFoot->getNodeParent(), static_cast<RyNode *>(scene.rThigh));
    QCOMPARE(scene.lShin->getNumNodeChildren(), 0);
    QCOMPARE(scene.lFoot->getOrigin(), place);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
    // To where it is: it becomes the last child.
    reparentBone(scene.lThigh, scene.hip);
    QCOMPARE(scene.hip->getNodeChild(1), static_cast<RyNode *>(scene.lThigh));
    reparentBone(scene.lFoot, nullptr);
    QVERIFY(!scene.lFoot->getNodeParent());
    QCOMPARE(scene.lFoot->getScene(), ryScene());
    reparentBone(scene.lFoot, scene.figure);
    QCOMPARE(scene.lFoot->getNodeParent(), static_cast<RyNode *>(scene.figure));
    reparentBone(nullptr, scene.figure);
    // A bone that only its parent held is not lost on the way.
    const QPointer<RyBone> unregistered(new RyBone);
    scene.hip->addNodeChild(unregistered);
    reparentBone(unregistered, scene.lFoot);
    QVERIFY(unregistered);
    QCOMPARE(unregistered->getNodeParent(), static_cast<RyNode *>(scene.lFoot));
}

void RyNodeActionsTest::refusesLoops()
{
    RyToolScene scene;
    const QString before = scene.dump();
    for (RyNode *below : {scene.lThigh, scene.lShin, scene.lFoot})
        reparentBone(scene.lThigh, below);
    QCOMPARE(scene.dump(), before);
}

/// A figure with a bone that hangs on a bone of the scene's figure.
static RyBone *addWornBone(RyToolScene &scene)
{
    auto *worn = new RyFigure;
    worn->setName(QStringLiteral("worn"));
    scene.rThigh->addNodeChild(worn);
    ryScene()->addNode(worn);
    return RyToolScene::makeBone(worn, "wornBone", {}, {0, 1, 0});
}

void RyNodeActionsTest::refusesOtherSkeletons()
{
    RySkinnedScene scene;
    RyBone *wornBone = addWornBone(scene);
    const QString before = scene.dump();
    for (RyNode *node : {static_cast<RyNode *>(wornBone), wornBone->getNodeParent(), scene.prop}) {
        QCOMPARE(findReparentObstacle(scene.lFoot, node), ReparentObstacle::OtherSkeleton);
        reparentBone(scene.lFoot, node);
    }
    reparentBone(wornBone, scene.rThigh);
    QCOMPARE(scene.dump(), before);
    // Below itself comes first, and without a skeleton there is nothing to leave.
    QCOMPARE(findReparentObstacle(scene.rThigh, wornBone), ReparentObstacle::Loop);
    reparentBone(wornBone, nullptr);
    QCOMPARE(findReparentObstacle(wornBone, scene.rThigh), ReparentObstacle::None);
    reparentBone(wornBone, scene.rThigh);
    QCOMPARE(wornBone->getNodeParent(), static_cast<RyNode *>(scene.rThigh));
}

void RyNodeActionsTest::actionNeedsABoneOfAFigure_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("nothing") << "";
    QTest::newRow("the figure") << "figure";
    QTest::newRow("a prop") << "prop";
    QTest::newRow("a bone of another skeleton") << "bone";
}

void RyNodeActionsTest::actionNeedsABoneOfAFigure()
{
    QFETCH(QString, selected);
    RyWindowScene scene;
    auto *skeleton = new RySkeleton;
    ryScene()->addNode(skeleton);
    RyToolScene::makeBone(skeleton, "bone", {}, {0, 1, 0});
    ryScene()->setSelection({selected.isEmpty() ? nullptr : ryScene()->findNode(selected)});
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    RyJEReparentBoneAction().executeAction();
    QCOMPARE(boxes.facts, QStringList(figureBoneWarning));
    QCOMPARE(boxes.parents, QList<QWidget *>({scene.window.get()}));
    QCOMPARE(scene.dump(), before);
}

void RyNodeActionsTest::pickerOffersTheFigure()
{
    RyWindowScene scene;
    ryScene()->setSelection({scene.lFoot});
    const QString before = scene.dump();
    RyDialogDriver driver;
    driver.setAnswer(QStringLiteral("NodeDlg"), QStringLiteral("Cancel"));
    QStringList offered;
    bool single = false;
    connect(&driver, &RyDialogDriver::opened, &driver, [&](QDialog *dialog) {
        auto *tree = dialog->findChild<QTreeWidget *>();
        single = tree->selectionMode() == QAbstractItemView::SingleSelection;
        for (QTreeWidgetItemIterator item(tree); *item; ++item)
            offered.append((*item)->text(0));
    });
    RyJEReparentBoneAction().executeAction();
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(driver.records()[0].className, QStringLiteral("RyNodeDlg"));
    QCOMPARE(driver.records()[0].parent.data(), static_cast<QWidget *>(scene.window.get()));
    QCOMPARE(offered, QStringList({"figure", "hip", "lThigh", "lShin", "lFoot", "rThigh"}));
    QVERIFY(single);
    QCOMPARE(scene.dump(), before);
}

void RyNodeActionsTest::actionAsksAboutLevels_data()
{
    QTest::addColumn<QString>("bone");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("parent");
    QTest::newRow("same level") << "lShin"
                                << "rThigh"
                                << ""
                                << ""
                                << "rThigh";
    QTest::newRow("deeper, Ok") << "rThigh"
                                << "lShin"
                                << "Ok" << levelWarning << "lShin";
    QTest::newRow("deeper, Cancel") << "rThigh"
                                    << "lShin"
                                    << "Cancel" << levelWarning << "hip";
    QTest::newRow("to the figure") << "lShin"
                                   << "figure"
                                   << "Ok" << levelWarning << "figure";
    QTest::newRow("below itself") << "lThigh"
                                  << "lFoot"
                                  << "" << loopWarning << "hip";
    QTest::newRow("itself") << "lThigh"
                            << "lThigh"
                            << "" << loopWarning << "hip";
}

void RyNodeActionsTest::actionAsksAboutLevels()
{
    QFETCH(QString, bone);
    QFETCH(QString, to);
    QFETCH(QString, answer);
    QFETCH(QString, message);
    RyWindowScene scene;
    RyNode *moved = ryScene()->findNode(bone);
    ryScene()->setSelection({moved});
    const QString before = scene.dump();
    RyDialogDriver driver;
    driver.setField(QStringLiteral("NodeDlgSearchLEdit"), to);
    if (!answer.isEmpty())
        driver.setAnswer(levelTitle, answer);
    RyJEReparentBoneAction().executeAction();
    QCOMPARE(driver.errors(), QStringList());
    QStringList messages;
    for (const RyDialogRecord &box : driver.boxes()) {
        messages.append(QStringList({box.iconName(), box.title, box.text, box.buttons.join(','), box.defaultButton,
                                     box.escapeButton})
                            .join('|'));
        QCOMPARE(box.parent.data(), static_cast<QWidget *>(scene.window.get()));
    }
    QCOMPARE(messages.join('/'), message);
    QTEST(moved->getNodeParent()->getName(), "parent");
    if (answer == "Cancel")
        QCOMPARE(scene.dump(), before);
}

void RyNodeActionsTest::presentParentMakesItTheLastChild()
{
    RySkinnedScene scene;
    scene.pose();
    scene.lThigh->getScaleControl()->setValue(1.2f);
    const RyNode *after = RyToolScene::makeBone(scene.hip, "tail", {0, 100, -4}, {0, 90, -12});
    ryScene()->setSelection({scene.lThigh}); // the first of three children
    const std::vector<RyNode *> children = scene.hip->nodeChildrenIterator();
    const std::vector<RyBoneBinding *> bindings = scene.skin->bindings();
    const std::vector<RyVec3> shown = scene.shown();
    const RyVec3 end = scene.lThigh->getWSEndPoint();
    const QString before = scene.dump();
    RyDialogDriver driver;
    driver.setField(QStringLiteral("NodeDlgSearchLEdit"), QStringLiteral("hip"));
    RyUndoStackHold hold;
    RyJEReparentBoneAction().executeAction();
    hold.accept(QStringLiteral("Around it"));
    QCOMPARE(int(driver.records().size()), 1);
    const std::vector<RyNode *> moved = {children[1], const_cast<RyNode *>(after), scene.lThigh};
    QCOMPARE(scene.hip->nodeChildrenIterator(), moved);
    QCOMPARE(scene.lThigh->getWSEndPoint(), end);
    QCOMPARE(scene.shown(), shown);
    QCOMPARE(scene.skin->bindings(), bindings);
    QCOMPARE(ryScene()->getPrimarySelection(), static_cast<RyNode *>(scene.lThigh));
    const QString done = scene.dump();
    QVERIFY(done != before);
    ryUndoStack()->undo();
    QCOMPARE(scene.hip->nodeChildrenIterator(), children);
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), done);
}

void RyNodeActionsTest::picksAgainAfterARefusal()
{
    RyWindowScene scene;
    addWornBone(scene);
    ryScene()->setSelection({scene.lShin});
    RyDialogDriver driver;
    QStringList picks = {QStringLiteral("wornBone"), QStringLiteral("lFoot"), QStringLiteral("rThigh")};
    connect(&driver, &RyDialogDriver::opened, &driver, [&](QDialog *dialog) {
        if (qobject_cast<QMessageBox *>(dialog))
            return;
        driver.setField(QStringLiteral("NodeDlgSearchLEdit"), picks.takeFirst());
    });
    RyJEReparentBoneAction().executeAction();
    QCOMPARE(driver.errors(), QStringList());
    QStringList opened;
    for (const RyDialogRecord &record : driver.records()) {
        opened.append(record.kind == RyDialogRecord::MessageBox
                          ? QStringList({record.iconName(), record.title, record.text, record.buttons.join(','),
                                         record.defaultButton, record.escapeButton})
                                .join('|')
                          : record.className);
    }
    QCOMPARE(opened, QStringList({"RyNodeDlg", otherFigureWarning, "RyNodeDlg", loopWarning, "RyNodeDlg"}));
    QCOMPARE(scene.lShin->getNodeParent(), static_cast<RyNode *>(scene.rThigh));
}

void RyNodeActionsTest::actionLeavesUndoAndBindingsAlone()
{
    RySkinnedScene scene;
    {
        RyUndoStackHold hold;
        scene.rThigh->setEndPoint({1, 2, 3});
        hold.accept(QStringLiteral("Earlier"));
    }
    ryScene()->setSelection({scene.lShin});
    const std::vector<RyBoneBinding *> bindings = scene.skin->bindings();
    RyDialogDriver driver;
    driver.setField(QStringLiteral("NodeDlgSearchLEdit"), QStringLiteral("rThigh"));
    RyJEReparentBoneAction action;
    QVERIFY(action.isEnabled());
    action.trigger();
    QCOMPARE(scene.lShin->getNodeParent(), static_cast<RyNode *>(scene.rThigh));
    QCOMPARE(ryUndoStack()->count(), 1);
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.skin->bindings(), bindings);
    QCOMPARE(ryScene()->getPrimarySelection(), static_cast<RyNode *>(scene.lShin));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyNodeActionsTest::renameRunsTheScript()
{
    RyWindowScene scene;
    const Home home("if (getNumSelectedNodes() == 1) selectAllNodes(true); else selectAllNodes(false);");
    ryScene()->setSelection({scene.lShin});
    RyJERenameNodeAction().executeAction();
    QVERIFY(!scene.window->getScriptEngine()->hasFailed());
    // Once: a second run would have deselected them.
    QCOMPARE(ryScene()->getNumSelectedNodes(), int(ryScene()->getNodes().size()));
}

void RyNodeActionsTest::renameWithTheHostsScript()
{
    RyWindowScene scene;
    qputenv("RYHOST_HOME", RY_SOURCE_DIR "/resources");
    ryScene()->setSelection({scene.prop, scene.lShin});
    const QString before = scene.dump();
    RyDialogDriver driver;
    driver.setField(QStringLiteral("name"), QStringLiteral("calf"));
    driver.setField(QStringLiteral("label"), QStringLiteral("Left Calf"));
    RyJERenameNodeAction action;
    action.trigger();
    qunsetenv("RYHOST_HOME");
    QCOMPARE(driver.errors(), QStringList());
    QCOMPARE(int(driver.records().size()), 1);
    QCOMPARE(scene.lShin->getName(), QStringLiteral("calf"));
    QCOMPARE(scene.lShin->getLabel(), QStringLiteral("Left Calf"));
    QCOMPARE(ryUndoStack()->count(), 1);
    const QString after = scene.dump();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyNodeActionsTest::renameWithoutAScript()
{
    RyWindowScene scene;
    ryScene()->setSelection({scene.lShin});
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    {
        const Home home({});
        RyJERenameNodeAction().executeAction();
    }
    {
        const Home home("this is no program");
        RyJERenameNodeAction().executeAction();
    }
    QCOMPARE(boxes.facts, QStringList());
    QCOMPARE(scene.dump(), before);
}

void RyNodeActionsTest::enabling()
{
    RyToolScene scene;
    const RyJERenameNodeAction rename;
    const RyJEReparentBoneAction reparent;
    const RyJESelectedNodesAttributesEditAction attributes;
    QString enabled;
    for (RyNode *node : {static_cast<RyNode *>(nullptr), scene.prop, static_cast<RyNode *>(scene.lFoot),
                         static_cast<RyNode *>(nullptr)}) {
        ryScene()->setSelection({node});
        enabled += QString::number(rename.isEnabled()) + QString::number(reparent.isEnabled()) +
                   QString::number(attributes.isEnabled()) + ' ';
    }
    QCOMPARE(enabled, QStringLiteral("011 111 111 011 "));
    for (const QMetaObject *type : {reparent.metaObject(), attributes.metaObject()})
        QCOMPARE(type->indexOfSlot("selectionChanged()"), -1);
    QVERIFY(rename.metaObject()->indexOfSlot("selectionChanged()") >= 0);
}

RY_TEST(RyNodeActionsTest)

#include "tst_nodeActions.moc"
