#include "support/RyTest.h"

#include "RyControlScene.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/operations/createControlBones.h"
#include "pluginsource/RyJointTools/operations/deleteBone.h"

namespace {

constexpr auto WithRoots = RyControlBoneMode::SelectedAndChildren;
constexpr auto BelowRoots = RyControlBoneMode::ChildrenOfSelected;

const QString prefix = QStringLiteral("cb_");

QString namesOf(const std::vector<RyBone *> &bones)
{
    QStringList names;
    for (const RyBone *bone : bones)
        names.append(bone->getName());
    return names.join(' ');
}

/// "hip", "lThigh/lShin": the way down from the figure.
QStringList tree(const RySkeleton *skeleton)
{
    QStringList ways;
    for (const RyNode *bone : skeleton->getAllBones()) {
        QString way = bone->getName();
        for (const RyNode *above = bone->getNodeParent(); above != skeleton; above = above->getNodeParent())
            way.prepend(above->getName() + '/');
        ways.append(way);
    }
    return ways;
}

float largestDifference(const RyAffine &a, const RyAffine &b)
{
    float largest = 0.0f;
    for (const RyVec3 &point : {RyVec3(10, 90, 5), RyVec3(40, 20, -30), RyVec3(-60, 150, 70), RyVec3(0, 0, 0)})
        largest = std::max(largest, (a.mapPoint(point) - b.mapPoint(point)).length());
    return largest;
}

} // namespace

/// Bones that pose other bones.
class RyCreateControlBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void bonesToControl_data();
    void bonesToControl();
    void bonesOfOneSkeleton();
    void controlLooksLikeItsBone();
    void hierarchy();
    void belowTheParentWhereThatWasSkipped();
    void links();
    void nothingMoves_data();
    void nothingMoves();
    void posingAControlPosesItsBone();
    void controlsStayOnTheirBones();
    void limitsHoldForTheOwnShare();
    void faceGroupsMove();
    void deletedControlsGiveTheirGroupsBack();
    void withoutASelectionMap();
    void bulgeNamesAreRefreshed();
    void skipped();
    void comesBack();
};

void RyCreateControlBonesTest::bonesToControl_data()
{
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<QString>("all");
    QTest::addColumn<QString>("below");
    QTest::newRow("nothing") << QStringList() << ""
                             << "";
    QTest::newRow("leaf") << QStringList{"lFoot"} << "lFoot"
                          << "";
    QTest::newRow("branch") << QStringList{"lThigh"} << "lThigh lShin lFoot"
                            << "lShin lFoot";
    QTest::newRow("top") << QStringList{"hip"} << "hip lThigh lShin lFoot rThigh"
                         << "lThigh lShin lFoot rThigh";
    QTest::newRow("in order of selection") << QStringList{"rThigh", "lShin"} << "rThigh lShin lFoot"
                                           << "lFoot";
    QTest::newRow("one above another") << QStringList{"lFoot", "lThigh"} << "lThigh lShin lFoot"
                                       << "lShin lFoot";
    QTest::newRow("what is no bone") << QStringList{"figure", "prop", "lFoot"} << "lFoot"
                                     << "";
}

void RyCreateControlBonesTest::bonesToControl()
{
    QFETCH(QStringList, selected);
    RyToolScene scene;
    std::vector<RyNode *> nodes;
    for (const QString &name : selected)
        nodes.push_back(ryScene()->findNode(name));
    QTEST(namesOf(listBonesToControl(nodes, scene.figure, WithRoots)), "all");
    QTEST(namesOf(listBonesToControl(nodes, scene.figure, BelowRoots)), "below");
}

/// A figure that hangs on a bone of another one is no part of that.
void RyCreateControlBonesTest::bonesOfOneSkeleton()
{
    RyToolScene scene;
    auto *worn = new RyFigure;
    scene.lShin->addNodeChild(worn);
    RyBone *strap = RyToolScene::makeBone(worn, "strap", {1, 2, 3}, {2, 4, 6});
    RyToolScene::makeBone(strap, "buckle", {2, 4, 6}, {2, 5, 7});
    const std::vector<RyNode *> nodes{scene.lShin, strap};
    QCOMPARE(namesOf(listBonesToControl(nodes, scene.figure, WithRoots)), QStringLiteral("lShin lFoot"));
    QCOMPARE(namesOf(listBonesToControl(nodes, worn, WithRoots)), QStringLiteral("strap buckle"));
    QCOMPARE(namesOf(listBonesToControl(nodes, nullptr, WithRoots)), QString());
}

void RyCreateControlBonesTest::controlLooksLikeItsBone()
{
    RyControlScene scene;
    ryScene()->setSelection({scene.rThigh});
    QCOMPARE(createControlBones({scene.lThigh, scene.lFoot}, prefix), 2);
    for (const RyBone *bone : {scene.lThigh, scene.lFoot}) {
        const RyBone *control = scene.control(bone);
        QVERIFY(control);
        QCOMPARE(control->getLabel(), prefix + bone->getLabel());
        QCOMPARE(control->getRotationOrder(), bone->getRotationOrder());
        for (const bool byDefault : {true, false}) {
            QCOMPARE(control->getOrigin(byDefault), bone->getOrigin(byDefault));
            QCOMPARE(control->getEndPoint(byDefault), bone->getEndPoint(byDefault));
            QCOMPARE(control->getOrientation(byDefault), bone->getOrientation(byDefault));
        }
        QCOMPARE(control->getOrientYControl()->getValue(), bone->getOrientYControl()->getValue());
        QCOMPARE(control->getOrientYControl()->getDefaultValue(), bone->getOrientYControl()->getDefaultValue());
        QCOMPARE(control->inheritsScale(), bone->inheritsScale());
        QVERIFY(!control->isPosed() && control->isSelectable() && !control->isHidden());
        QCOMPARE(control->getScene(), ryScene());
        QVERIFY(!scene.binding(control));
    }
    QVERIFY(scene.lThigh->getOrigin() != scene.lThigh->getOrigin(true));
    QVERIFY(scene.lFoot->getEndPoint() != scene.lFoot->getEndPoint(true));
    QVERIFY(!scene.lThigh->inheritsScale() && scene.lFoot->inheritsScale());
    QCOMPARE(scene.control(scene.lFoot)->getLabel(), QStringLiteral("cb_Left Foot"));
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>{scene.rThigh});
}

void RyCreateControlBonesTest::hierarchy()
{
    RyControlScene scene;
    QCOMPARE(createControlBones({scene.lThigh, scene.lShin, scene.lFoot}, prefix), 3);
    QCOMPARE(tree(scene.figure),
             QStringList({"hip", "hip/lThigh", "hip/lThigh/lShin", "hip/lThigh/lShin/lFoot", "hip/rThigh",
                          "hip/cb_lThigh", "hip/cb_lThigh/cb_lShin", "hip/cb_lThigh/cb_lShin/cb_lFoot"}));
    QCOMPARE(createControlBones({scene.hip}, prefix), 1);
    QCOMPARE(scene.control(scene.hip)->getNodeParent(), scene.figure);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

/// Also where the parent has a control bone from earlier.
void RyCreateControlBonesTest::belowTheParentWhereThatWasSkipped()
{
    RyControlScene scene;
    QCOMPARE(createControlBones({scene.lThigh}, prefix), 1);
    QCOMPARE(createControlBones({scene.lThigh, scene.lShin, scene.lFoot}, prefix), 2);
    QCOMPARE(scene.control(scene.lShin)->getNodeParent(), scene.lThigh);
    QCOMPARE(scene.control(scene.lFoot)->getNodeParent(), scene.control(scene.lShin));
}

void RyCreateControlBonesTest::links()
{
    RyControlScene scene;
    createControlBones({scene.lThigh, scene.lShin}, prefix);
    for (const RyBone *bone : {scene.lThigh, scene.lShin}) {
        const RyBone *control = scene.control(bone);
        const std::vector<RyFloatProperty *> controlled = RyControlScene::poseOf(bone);
        const std::vector<RyFloatProperty *> controllers = RyControlScene::poseOf(control);
        for (size_t i = 0; i < controlled.size(); ++i) {
            QCOMPARE(controlled[i]->getControllerLinks().size(), size_t(1));
            QCOMPARE(controlled[i]->getControllerLinks()[0]->getController(), controllers[i]);
            QVERIFY(controllers[i]->getControllerLinks().empty());
            QCOMPARE(controllers[i]->getControlledLinks().size(), size_t(1));
        }
        QVERIFY(bone->getOriginXControl()->getControllerLinks().empty());
        QVERIFY(bone->getOrientZControl()->getControllerLinks().empty());
    }
    for (const RyFloatProperty *each : RyControlScene::poseOf(scene.lFoot))
        QVERIFY(each->getControllerLinks().empty());
}

void RyCreateControlBonesTest::nothingMoves_data()
{
    QTest::addColumn<int>("maps");
    QTest::newRow("general map") << int(RySkinnedScene::General);
    QTest::newRow("local maps") << int(RySkinnedScene::Local);
    QTest::newRow("both") << int(RySkinnedScene::Both);
}

void RyCreateControlBonesTest::nothingMoves()
{
    QFETCH(int, maps);
    RyControlScene scene{RySkinnedScene::Maps(maps)};
    const std::vector<RyVec3> shown = scene.shown();
    std::vector<float> own, resulting;
    for (const RyBone *bone : scene.figure->getAllBones()) {
        for (const RyFloatProperty *each : RyControlScene::poseOf(bone)) {
            own.push_back(each->getRawValue());
            resulting.push_back(each->getValue());
        }
    }
    const std::vector<RyBone *> bones = scene.figure->getAllBones();
    QCOMPARE(createControlBones(bones, prefix), 5);
    QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
    size_t at = 0;
    for (const RyBone *bone : bones) {
        for (const RyFloatProperty *each : RyControlScene::poseOf(bone)) {
            QCOMPARE(each->getRawValue(), own[at]);
            QCOMPARE(each->getValue(), resulting[at++]);
        }
    }
}

/// What is done to controls shows as if it had been done to their bones.
void RyCreateControlBonesTest::posingAControlPosesItsBone()
{
    const float amounts[] = {2.0f, -3.0f, 5.0f, 21.0f, -34.0f, 13.0f, 0.2f, -0.1f, 0.3f, 0.15f};
    std::vector<RyVec3> wanted, before;
    {
        RyControlScene direct;
        before = direct.shown();
        for (const RyBone *bone : {direct.hip, direct.lShin}) {
            const std::vector<RyFloatProperty *> pose = RyControlScene::poseOf(bone);
            for (size_t i = 0; i < pose.size(); ++i)
                pose[i]->setValue(pose[i]->getValue() + amounts[i]);
        }
        wanted = direct.shown();
        QVERIFY(ryLargestWay(wanted, before) > 10.0f);
    }
    RyControlScene scene;
    createControlBones(scene.figure->getAllBones(), prefix);
    for (const RyBone *bone : {scene.hip, scene.lShin}) {
        const std::vector<RyFloatProperty *> pose = RyControlScene::poseOf(scene.control(bone));
        for (size_t i = 0; i < pose.size(); ++i)
            pose[i]->setValue(pose[i]->getValue() + amounts[i]);
    }
    QVERIFY(ryLargestWay(scene.shown(), wanted) < 1e-3f);
    for (const RyBone *bone : {scene.hip, scene.lShin})
        scene.control(bone)->clearPose();
    QCOMPARE(ryLargestWay(scene.shown(), before), 0.0f);
}

/// Of bones that are not posed themselves.
void RyCreateControlBonesTest::controlsStayOnTheirBones()
{
    RyControlScene scene;
    const std::vector<RyBone *> bones = scene.figure->getAllBones();
    for (RyBone *bone : bones)
        bone->clearPose();
    createControlBones(bones, prefix);
    float number = 3.0f;
    for (const RyBone *bone : bones) {
        const RyBone *control = scene.control(bone);
        control->getXRotControl()->setValue(number *= -1.7f);
        control->getZRotControl()->setValue(number);
        control->getYTransControl()->setValue(0.1f * number);
        control->getXScaleControl()->setValue(1.4f);
        control->getScaleControl()->setValue(0.8f);
    }
    for (const RyBone *bone : bones) {
        QVERIFY(largestDifference(bone->worldMap(), RyAffine()) > 1.0f);
        QVERIFY(largestDifference(bone->worldMap(), scene.control(bone)->worldMap()) < 1e-3f);
    }
}

void RyCreateControlBonesTest::limitsHoldForTheOwnShare()
{
    RyControlScene scene;
    RyFloatProperty *turn = scene.lShin->getXRotControl();
    turn->setMin(-10.0f);
    turn->setMax(60.0f);
    turn->setIsClamped(true);
    createControlBones({scene.lShin}, prefix);
    QVERIFY(!scene.control(scene.lShin)->getXRotControl()->isClamped());
    scene.control(scene.lShin)->getXRotControl()->setValue(20.0f);
    QCOMPARE(turn->getValue(), 75.0f);
    QVERIFY(turn->isClamped());
    turn->setValue(80.0f);
    QCOMPARE(turn->getRawValue(), 60.0f);
}

void RyCreateControlBonesTest::faceGroupsMove()
{
    RyControlScene scene;
    const RySelectionMap *map = scene.figure->getSelectionMap();
    QCOMPARE(createControlBones({scene.lThigh, scene.lShin, scene.lFoot}, prefix), 3);
    QCOMPARE(map->findGroupForNode(scene.control(scene.lShin)), QStringLiteral("group of lShin"));
    QCOMPARE(map->findGroupForNode(scene.control(scene.lFoot)), QStringLiteral("group of lFoot"));
    QCOMPARE(map->findGroupForNode(scene.lShin), QString());
    QCOMPARE(map->findGroupForNode(scene.lFoot), QString());
    QCOMPARE(map->findGroupForNode(scene.control(scene.lThigh)), QString()); // it had none
    QCOMPARE(map->findGroupForNode(scene.hip), QStringLiteral("group of hip"));
    QCOMPARE(map->getNumPairs(), 4);
}

void RyCreateControlBonesTest::deletedControlsGiveTheirGroupsBack()
{
    RyControlScene scene;
    const RySelectionMap *map = scene.figure->getSelectionMap();
    QCOMPARE(createControlBones({scene.lThigh, scene.lShin, scene.lFoot, scene.hip}, prefix), 4);
    scene.figure->getSelectionMap()->addPair(QStringLiteral("sole"), scene.lFoot, false);
    deleteBone(scene.control(scene.lShin));
    QCOMPARE(map->findGroupForNode(scene.lShin), QStringLiteral("group of lShin"));
    deleteBone(scene.control(scene.lFoot));
    QCOMPARE(map->findGroupForNode(scene.lFoot), QStringLiteral("sole")); // it got another one meanwhile
    deleteBone(scene.control(scene.lThigh));
    QCOMPARE(map->findGroupForNode(scene.lThigh), QString()); // it had none
    // What turns about one axis alone is no control bone.
    RyBone *control = scene.control(scene.hip);
    const RyFloatProperty *turn = scene.hip->getYRotControl();
    RyERCLink::remove(turn->getControllerLinks().front());
    deleteBone(control);
    QCOMPARE(map->findGroupForNode(scene.hip), QString());
    QCOMPARE(map->getNumPairs(), 3);
}

void RyCreateControlBonesTest::withoutASelectionMap()
{
    RyControlScene scene;
    scene.figure->setSelectionMap(nullptr);
    QCOMPARE(createControlBones({scene.lFoot}, prefix), 1);
    QVERIFY(!scene.figure->getSelectionMap());
}

void RyCreateControlBonesTest::bulgeNamesAreRefreshed()
{
    RyControlScene scene;
    const RyBulgeBinding *bulge = scene.binding(scene.lThigh)->getBulgeBinding(0);
    scene.lThigh->setName(QStringLiteral("upperLeg"));
    for (int axis = 0; axis < 3; ++axis) {
        RyFloatProperty *named = scene.binding(scene.lThigh)->getBulgeBinding(axis)->getPosLeftBulgeController();
        named->setName(QStringLiteral("old"));
    }
    QCOMPARE(createControlBones({scene.lThigh}, prefix), 1);
    QCOMPARE(bulge->getPosLeftBulgeController()->getName(), QStringLiteral("upperLeg_bulgeXPosLeft"));
    for (int axis = 0; axis < 3; ++axis) {
        const RyBulgeBinding *each = scene.binding(scene.lThigh)->getBulgeBinding(axis);
        QCOMPARE(each->getPosLeftBulgeController()->getName(),
                 QStringLiteral("upperLeg_bulge%1PosLeft").arg(QChar('X' + axis)));
    }
}

void RyCreateControlBonesTest::skipped()
{
    RyControlScene scene;
    scene.hip->setName(QStringLiteral("cb_hip"));
    scene.lThigh->setName(QStringLiteral("CB_lThigh"));
    scene.rThigh->setName(QStringLiteral("cb_lShin"));
    const QString before = scene.dump();
    QCOMPARE(createControlBones({scene.hip, scene.lShin, scene.rThigh}, prefix), 0);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(createControlBones({scene.hip, scene.lThigh, scene.lShin, scene.lFoot}, prefix), 2);
    QVERIFY(scene.figure->findBone(QStringLiteral("cb_CB_lThigh")));
    QVERIFY(scene.control(scene.lFoot));
    QCOMPARE(scene.control(scene.lFoot)->getNodeParent(), scene.lShin);
    const QString once = scene.dump();
    QCOMPARE(createControlBones({scene.hip, scene.lThigh, scene.lShin, scene.lFoot}, prefix), 0);
    QCOMPARE(scene.dump(), once);
}

void RyCreateControlBonesTest::comesBack()
{
    RyControlScene scene;
    const std::vector<RyVec3> shown = scene.shown();
    checkUndoInHold([&] { createControlBones(scene.figure->getAllBones(), prefix); });
    // Once more, with poses of controls in between.
    {
        RyUndoStackHold hold;
        scene.control(scene.lThigh)->getYRotControl()->setValue(40.0f);
        hold.accept(QStringLiteral("Pose"));
    }
    const std::vector<RyVec3> posed = scene.shown();
    QVERIFY(ryLargestWay(posed, shown) > 1.0f);
    for (int round = 0; round < 2; ++round) {
        ryUndoStack()->undo();
        ryUndoStack()->undo();
        QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
        QCOMPARE(ryFaultsOf(scene.figure), QString());
        ryUndoStack()->redo();
        ryUndoStack()->redo();
        QCOMPARE(ryLargestWay(scene.shown(), posed), 0.0f);
        QCOMPARE(ryFaultsOf(scene.figure), QString());
    }
}

RY_TEST(RyCreateControlBonesTest)

#include "tst_createControlBones.moc"
