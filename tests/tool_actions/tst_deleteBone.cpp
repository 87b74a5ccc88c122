#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/operations/findSkinsThatBind.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <random>

namespace {

const QString boneMessage = QStringLiteral("information|Selection Error|A bone must be selected to continue.|Ok|Ok|Ok");

/// Replaces the weights of a kind of map: one list per bone, in the order of the skin.
void setWeights(const RySkinBinding *skin, const std::vector<std::vector<quint16>> &weights)
{
    for (size_t i = 0; i < weights.size(); ++i)
        skin->bindings()[i]->setWeights(weights[i].empty() ? nullptr : ryMapOf(weights[i]));
}

} // namespace

/// Deleting a bone, and where its weights go.
class RyDeleteBoneTest : public QObject
{
    Q_OBJECT

private slots:
    void weightsGoToTheNearestBoneAbove();
    void weightsGoPastUnboundAndOtherNodes();
    void weightsOfATopBoneGoToItsBoundChild();
    void weightsWithoutAReceiver();
    void weightsWithoutAParent();
    void weightsWithoutASkeletonAbove();
    void boneThatMovesAnotherFigure();
    void everyKindGoesToItsOwn();
    void childrenMoveUp();
    void deletesInOrder();
    void pairsGo();
    void whatItMovedIsLetGo();
    void deleteWithoutParentOrSkin_data();
    void deleteWithoutParentOrSkin();
    void actionClearsUndoAndSelectsTheParent();
    void actionNeedsABone_data();
    void actionNeedsABone();
    void enabling();
    void deleteAllOneByOne_data();
    void deleteAllOneByOne();
    void unusedNeedsAFigure_data();
    void unusedNeedsAFigure();
    void unusedAsksFirst_data();
    void unusedAsksFirst();
    void unusedEnabling();
};

void RyDeleteBoneTest::weightsGoToTheNearestBoneAbove()
{
    RySkinnedScene scene(RySkinnedScene::General, 3);
    // hip, lThigh, lShin, lFoot, rThigh
    setWeights(scene.skin, {{100, 0, 0}, {65435, 1, 0}, {0, 60000, 65535}, {0, 5534, 0}, {0, 0, 0}});
    ryScene()->setSelection({scene.lShin});
    RyJEDeleteBoneAction().executeAction();
    QCOMPARE(scene.skin->getNumBoneBindings(), 4);
    QCOMPARE(ryWeightsOf(scene.binding(scene.lThigh)->getWeights()), std::vector<int>({65435, 60001, 65535}));
    QCOMPARE(ryWeightsOf(scene.binding(scene.hip)->getWeights()), std::vector<int>({100, 0, 0}));
    QCOMPARE(ryWeightsOf(scene.binding(scene.lFoot)->getWeights()), std::vector<int>({0, 5534, 0}));
}

void RyDeleteBoneTest::weightsGoPastUnboundAndOtherNodes()
{
    RySkinnedScene scene(RySkinnedScene::General, 1);
    setWeights(scene.skin, {{35}, {0}, {500}, {65000}, {0}});
    scene.skin->removeBoneBinding(scene.binding(scene.lThigh));
    // hip - lThigh (unbound) - group - lShin
    auto *group = new RyNode;
    scene.lThigh->addNodeChild(group);
    group->addNodeChild(scene.lShin);
    deleteBone(scene.lShin);
    QCOMPARE(ryWeightsOf(scene.binding(scene.hip)->getWeights()), std::vector<int>({535}));
    QCOMPARE(scene.lFoot->getNodeParent(), group);
}

void RyDeleteBoneTest::weightsOfATopBoneGoToItsBoundChild()
{
    RySkinnedScene scene(RySkinnedScene::General, 2);
    scene.hip->addNodeChild(new RyNode, false, 0);
    setWeights(scene.skin, {{40000, 65535}, {500, 0}, {25035, 0}, {0, 0}, {0, 0}});
    // The first child of the root bone is no bone, and now its first bone is not bound.
    scene.skin->removeBoneBinding(scene.binding(scene.lThigh));
    scene.skin->normalize(0, RySkinBinding::AllWeights, false);
    const int shin = scene.binding(scene.lShin)->getWeights()->getWeight(0);
    ryScene()->setSelection({scene.hip});
    RyJEDeleteBoneAction().executeAction();
    QCOMPARE(ryWeightsOf(scene.binding(scene.rThigh)->getWeights()), std::vector<int>({65535 - shin, 65535}));
    QCOMPARE(ryScene()->getPrimarySelection(), static_cast<RyNode *>(scene.figure));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDeleteBoneTest::weightsWithoutAReceiver()
{
    RySkinnedScene scene(RySkinnedScene::General, 3);
    setWeights(scene.skin, {{0, 65535, 60000}, {30000, 0, 0}, {0, 0, 5535}, {35535, 0, 0}, {0, 0, 0}});
    for (RyBone *child : {scene.lThigh, scene.rThigh})
        scene.skin->removeBoneBinding(scene.binding(child));
    deleteBone(scene.hip);
    QCOMPARE(scene.skin->getNumBoneBindings(), 2);
    // What others move too becomes theirs; what only the bone moved stays unmoved.
    QCOMPARE(ryWeightsOf(scene.binding(scene.lShin)->getWeights()), std::vector<int>({0, 0, 65535}));
    QCOMPARE(ryWeightsOf(scene.binding(scene.lFoot)->getWeights()), std::vector<int>({65535, 0, 0}));
}

void RyDeleteBoneTest::weightsWithoutAParent()
{
    RySkinnedScene scene(RySkinnedScene::General, 1);
    setWeights(scene.skin, {{0}, {5535}, {60000}, {0}, {0}});
    moveWeightsOfDeletedBone(scene.skin, scene.lShin, nullptr);
    QVERIFY(!scene.binding(scene.lShin));
    QCOMPARE(ryWeightsOf(scene.binding(scene.lThigh)->getWeights()), std::vector<int>({65535}));
    const QString before = scene.dump();
    moveWeightsOfDeletedBone(nullptr, nullptr, nullptr);
    moveWeightsOfDeletedBone(scene.skin, nullptr, scene.lThigh);
    moveWeightsOfDeletedBone(scene.skin, scene.lShin, scene.lThigh); // not bound any more
    moveWeightsOfDeletedBone(nullptr, scene.lFoot, scene.lThigh);
    QCOMPARE(scene.dump(), before);
}

void RyDeleteBoneTest::weightsWithoutASkeletonAbove()
{
    // A skin goes on binding a bone that was hung below a loose one. It has a child that is bound too, but the chain
    // above ends without a skeleton: nobody takes the weights.
    RySkinnedScene scene(RySkinnedScene::General, 2);
    setWeights(scene.skin, {{0, 0}, {0, 0}, {65535, 30000}, {0, 35535}, {0, 0}});
    auto *loose = new RyBone;
    ryScene()->addNode(loose);
    loose->addNodeChild(scene.lShin);
    QCOMPARE(findSkinsThatBind(scene.lShin), std::vector<RySkinBinding *>({scene.skin}));
    deleteBone(scene.lShin);
    QCOMPARE(scene.skin->getNumBoneBindings(), 4);
    for (const RyBoneBinding *binding : scene.skin->bindings())
        QVERIFY(binding->getBone());
    QCOMPARE(ryWeightsOf(scene.binding(scene.lFoot)->getWeights()), std::vector<int>({0, 65535}));
    QCOMPARE(ryWeightsOf(scene.binding(scene.lThigh)->getWeights()), std::vector<int>({0, 0}));
}

void RyDeleteBoneTest::boneThatMovesAnotherFigure()
{
    // As after a prop became a figure that inherits the skeleton: the foot moves what the boot has for a mesh.
    RySkinnedScene scene;
    auto *boot = new RyFigure;
    auto *object = new RyObject;
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    boot->setObject(object);
    scene.figure->addNodeChild(boot);
    ryScene()->addNode(boot);
    RyBone *lace = RyToolScene::makeBone(boot, "lace", {}, {0, 1, 0});
    for (const auto &[bone, weight] :
         {std::pair(scene.lFoot, 50000), std::pair(lace, 15535), std::pair(scene.lThigh, 0)}) {
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        binding->setWeights(ryMapOf({quint16(weight)}));
        skin->addBoneBinding(binding);
    }
    QCOMPARE(findSkinsThatBind(scene.lFoot), std::vector<RySkinBinding *>({scene.skin, skin}));
    deleteBone(scene.lFoot);
    QCOMPARE(skin->getNumBoneBindings(), 2);
    QCOMPARE(ryWeightsOf(skin->findBoneBinding(scene.lThigh)->getWeights()), std::vector<int>({50000}));
    QCOMPARE(ryWeightsOf(skin->findBoneBinding(lace)->getWeights()), std::vector<int>({15535}));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
    deleteBone(lace);
    QCOMPARE(skin->getNumBoneBindings(), 1);
    QCOMPARE(ryWeightsOf(skin->findBoneBinding(scene.lThigh)->getWeights()), std::vector<int>({65535}));
}

void RyDeleteBoneTest::everyKindGoesToItsOwn()
{
    RySkinnedScene scene(RySkinnedScene::Both, 2);
    const auto weightsOf = [](const RyBoneBinding *binding) {
        std::vector<std::vector<int>> all;
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            all.push_back(ryWeightsOf(map));
        return all;
    };
    auto expected = weightsOf(scene.binding(scene.lShin));
    const auto deleted = weightsOf(scene.binding(scene.lFoot));
    QCOMPARE(expected.size(), size_t(5));
    for (size_t kind = 0; kind < 5; ++kind) {
        for (size_t v = 0; v < 2; ++v)
            expected[kind][v] += deleted[kind][v];
    }
    deleteBone(scene.lFoot);
    QCOMPARE(weightsOf(scene.binding(scene.lShin)), expected);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDeleteBoneTest::childrenMoveUp()
{
    RySkinnedScene scene;
    auto *pinned = new RyNode;
    pinned->setName(QStringLiteral("pinned"));
    scene.lThigh->addNodeChild(pinned, false, 0);
    RyToolScene::makeBone(scene.lThigh, "second", {}, {0, 1, 0});
    const RyVec3 place = scene.lFoot->getOrigin();
    deleteBone(scene.lThigh);
    QStringList children;
    for (const RyNode *child : scene.hip->nodeChildrenIterator())
        children.append(child->getName());
    QCOMPARE(children, QStringList({"rThigh", "pinned", "lShin", "second"}));
    QCOMPARE(scene.lFoot->getNodeParent(), static_cast<RyNode *>(scene.lShin));
    QCOMPARE(scene.lFoot->getOrigin(), place);
    QVERIFY(!ryScene()->findNode(QStringLiteral("lThigh")));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDeleteBoneTest::deletesInOrder()
{
    RySkinnedScene scene;
    auto *map = new RySelectionMap;
    scene.figure->setSelectionMap(map);
    map->addPair(QStringLiteral("thigh"), scene.lThigh, false);
    ryScene()->setSelection({scene.lThigh});
    QStringList calls;
    QObject listener;
    const auto note = [&calls](const QString &call) {
        if (calls.isEmpty() || calls.last() != call)
            calls.append(call);
    };
    connect(map, &RySelectionMap::mapChanged, &listener, [&] { note("pair"); });
    connect(scene.hip, &RyNode::childrenChanged, &listener, [&] {
        note(scene.lThigh->getNodeParent()          ? "other"
             : scene.hip->getNumNodeChildren() == 1 ? "off"
                                                    : "child to parent");
    });
    connect(scene.skin, &RySkinBinding::skinChanged, &listener, [&] { note("skin"); });
    connect(scene.lThigh, &RyNode::childrenChanged, &listener, [&] { note("child off"); });
    connect(scene.lThigh, &RyNode::aboutToBeRemoved, &listener, [&] { note("remove"); });
    connect(ryScene(), &RyScene::nodeSelectionListChanged, &listener,
            [&] { note("selected " + QString::number(ryScene()->getNumSelectedNodes())); });
    RyJEDeleteBoneAction().executeAction();
    QCOMPARE(calls, QStringList(
                        {"pair", "off", "skin", "child off", "child to parent", "remove", "selected 0", "selected 1"}));
}

void RyDeleteBoneTest::pairsGo()
{
    RySkinnedScene scene;
    auto *map = new RySelectionMap;
    scene.figure->setSelectionMap(map);
    map->addPair(QStringLiteral("a"), scene.lShin, false);
    map->addPair(QStringLiteral("b"), scene.lFoot, false);
    map->addPair(QStringLiteral("c"), scene.lShin, false);
    deleteBone(scene.lShin);
    QCOMPARE(map->getNumPairs(), 1);
    QCOMPARE(map->getPairNode(0), static_cast<RyNode *>(scene.lFoot));
}

/// Also where somebody holds the bone, as a history does.
void RyDeleteBoneTest::whatItMovedIsLetGo()
{
    RySkinnedScene scene;
    scene.pose();
    RyFloatProperty *moved = scene.lShin->getXRotControl();
    RyERCLink::create(scene.rThigh->getXRotControl(), moved);
    RyERCLink::create(scene.hip->getYRotControl(), moved);
    RyERCLink::create(scene.hip->getYRotControl(), scene.rThigh->getYRotControl());
    scene.rThigh->getXRotControl()->setValue(20.0f);
    QCOMPARE(moved->getValue(), 75.0f);
    const RyRef<RyBone> held(scene.rThigh);
    checkUndoInHold([&] { deleteBone(scene.rThigh); });
    QCOMPARE(moved->getValue(), 55.0f);
    QCOMPARE(moved->getControllerLinks().size(), size_t(1));
    ryUndoStack()->undo();
    QCOMPARE(moved->getValue(), 75.0f);
    scene.rThigh->getXRotControl()->setValue(0.0f);
    QCOMPARE(moved->getValue(), 55.0f);
}

void RyDeleteBoneTest::deleteWithoutParentOrSkin_data()
{
    QTest::addColumn<bool>("withSkeleton");
    QTest::addColumn<bool>("withParent");
    QTest::newRow("no skin") << true << true;
    QTest::newRow("no skeleton") << false << true;
    QTest::newRow("no parent") << false << false;
}

void RyDeleteBoneTest::deleteWithoutParentOrSkin()
{
    QFETCH(bool, withSkeleton);
    QFETCH(bool, withParent);
    RySkinnedScene scene;
    RyNode *root = withSkeleton ? new RyFigure : new RyNode;
    ryScene()->addNode(root);
    RyBone *bone = RyToolScene::makeBone(root, "bone", {}, {0, 1, 0});
    const RyBone *child = RyToolScene::makeBone(bone, "child", {}, {0, 1, 0});
    if (!withParent)
        root->removeNodeChild(bone);
    ryScene()->setSelection({bone});
    RyMessageBoxes boxes;
    RyJEDeleteBoneAction().executeAction();
    QCOMPARE(boxes.facts, QStringList());
    QVERIFY(!ryScene()->findNode(QStringLiteral("bone")));
    QCOMPARE(child->getScene(), ryScene());
    QCOMPARE(child->getNodeParent(), withParent ? root : nullptr);
    QCOMPARE(ryScene()->getPrimarySelection(), withParent ? root : nullptr);
    QCOMPARE(scene.skin->getNumBoneBindings(), 5);
    deleteBone(nullptr);
}

void RyDeleteBoneTest::actionClearsUndoAndSelectsTheParent()
{
    RySkinnedScene scene;
    {
        RyUndoStackHold hold;
        scene.rThigh->setEndPoint({1, 2, 3});
        hold.accept(QStringLiteral("Earlier"));
    }
    scene.select(scene.lThigh);
    ryScene()->setSelection({scene.rThigh, scene.prop, scene.lThigh});
    QCoreApplication::sendPostedEvents();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lThigh));
    RyJEDeleteBoneAction action;
    action.trigger();
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!ryUndoStack()->isLocked() && !ryUndoStack()->isHoldOpen());
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>({scene.hip}));
    QVERIFY(action.isEnabled());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.hip));
    // The next edit is recorded again.
    RyUndoStackHold hold;
    scene.hip->setEndPoint({1, 1, 1});
    hold.accept(QStringLiteral("Later"));
    QCOMPARE(ryUndoStack()->entryCount(0), 2);
}

void RyDeleteBoneTest::actionNeedsABone_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<bool>("window");
    QTest::newRow("nothing") << "" << true;
    QTest::newRow("a figure") << "figure" << true;
    QTest::newRow("a prop, without a window") << "prop" << false;
}

void RyDeleteBoneTest::actionNeedsABone()
{
    QFETCH(QString, selected);
    QFETCH(bool, window);
    RySkinnedScene scene;
    if (!window)
        scene.window.reset();
    ryScene()->setSelection({selected.isEmpty() ? nullptr : ryScene()->findNode(selected)});
    {
        RyUndoStackHold hold;
        hold.accept(QStringLiteral("Earlier"));
    }
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    RyJEDeleteBoneAction().executeAction();
    QCOMPARE(boxes.facts, QStringList({boneMessage}));
    QCOMPARE(boxes.parents, QList<QWidget *>({RyApp::getInterface()}));
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 1);
}

void RyDeleteBoneTest::enabling()
{
    RyToolScene scene;
    const RyJEDeleteBoneAction action;
    QString enabled;
    for (RyNode *node : {static_cast<RyNode *>(nullptr), scene.prop, static_cast<RyNode *>(scene.figure),
                         static_cast<RyNode *>(scene.lFoot)}) {
        ryScene()->setSelection({node});
        enabled += QString::number(action.isEnabled()) + QString::number(RyJEDeleteBoneAction().isEnabled());
    }
    QCOMPARE(enabled, QStringLiteral("00000011"));
}

void RyDeleteBoneTest::deleteAllOneByOne_data()
{
    QTest::addColumn<int>("maps");
    QTest::newRow("general") << int(RySkinnedScene::General);
    QTest::newRow("local") << int(RySkinnedScene::Local);
}

void RyDeleteBoneTest::deleteAllOneByOne()
{
    QFETCH(int, maps);
    RySkinnedScene scene{RySkinnedScene::Maps(maps)};
    std::mt19937 random(ryTestSeed());
    while (scene.skin->getNumBoneBindings() > 0) {
        const std::vector<RyBone *> bones = scene.figure->getAllBones();
        QCOMPARE(size_t(scene.skin->getNumBoneBindings()), bones.size());
        ryScene()->setSelection({bones[random() % bones.size()]});
        RyJEDeleteBoneAction().executeAction();
        QCOMPARE(ryFaultsOf(scene.figure), QString());
    }
    QVERIFY(scene.figure->getAllBones().empty());
    // Unmoved, and nothing breaks.
    QCOMPARE(ryLargestWay(scene.shown(), scene.object->getCurrentShape()->getGeometry()->getPositions()), 0.0f);
}

void RyDeleteBoneTest::unusedNeedsAFigure_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("nothing") << "";
    QTest::newRow("a prop") << "prop";
    QTest::newRow("another skeleton") << "legacy";
}

void RyDeleteBoneTest::unusedNeedsAFigure()
{
    QFETCH(QString, selected);
    RySkinnedScene scene;
    auto *legacy = new RySkeleton;
    legacy->setName(QStringLiteral("legacy"));
    ryScene()->addNode(legacy);
    ryScene()->setSelection({selected.isEmpty() ? nullptr : ryScene()->findNode(selected)});
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    RyJEDeleteUnusedBonesAction().executeAction();
    QCOMPARE(boxes.facts,
             QStringList(QStringLiteral(
                 "warning|Selection Error|Please select a Korvex<sup>TM</sup> technology figure.|Ok|Ok|Ok")));
    QCOMPARE(boxes.parents, QList<QWidget *>({RyApp::getDialogParent()}));
    QCOMPARE(scene.dump(), before);
}

void RyDeleteBoneTest::unusedAsksFirst_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("removes");
    QTest::newRow("the default, Yes") << "" << true;
    QTest::newRow("Yes") << "Yes" << true;
    QTest::newRow("No") << "No" << false;
}

void RyDeleteBoneTest::unusedAsksFirst()
{
    QFETCH(QString, answer);
    QFETCH(bool, removes);
    RySkinnedScene scene(RySkinnedScene::General, 1);
    setWeights(scene.skin, {{0}, {0}, {65535}, {0}, {0}});
    ryScene()->setSelection({scene.lShin});
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    if (!answer.isEmpty())
        boxes.setAnswer(QStringLiteral("Remove Unused Bones"), answer);
    RyJEDeleteUnusedBonesAction().executeAction();
    QCOMPARE(boxes.facts,
             QStringList(QStringLiteral(
                 "warning|Remove Unused Bones|This will remove any unused bones in the selected figure.\nThis is "
                 "not undo-able. Do you want to continue?|Yes,No|Yes|No")));
    QCOMPARE(boxes.parents, QList<QWidget *>({RyApp::getDialogParent()}));
    QCOMPARE(ryUndoStack()->count(), 0);
    if (!removes) {
        QCOMPARE(scene.dump(), before);
        return;
    }
    // The foot and the other leg do nothing; hip and thigh carry the shin.
    QStringList left;
    for (const RyBone *bone : scene.figure->getAllBones())
        left.append(bone->getName());
    QCOMPARE(left, QStringList({"hip", "lThigh", "lShin"}));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RyDeleteBoneTest::unusedEnabling()
{
    RyToolScene scene;
    auto *legacy = new RySkeleton;
    ryScene()->addNode(legacy);
    RyJEDeleteUnusedBonesAction action;
    QString enabled;
    for (RyNode *node : {static_cast<RyNode *>(nullptr), scene.prop, static_cast<RyNode *>(legacy),
                         static_cast<RyNode *>(scene.figure), static_cast<RyNode *>(scene.lFoot)}) {
        ryScene()->setSelection({node});
        enabled += QString::number(action.isEnabled()) + QString::number(RyJEDeleteUnusedBonesAction().isEnabled());
    }
    QCOMPARE(enabled, QStringLiteral("0000001111"));
}

RY_TEST(RyDeleteBoneTest)

#include "tst_deleteBone.moc"
