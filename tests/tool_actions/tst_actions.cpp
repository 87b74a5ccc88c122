#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "tool/RyWindowScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderActions.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"
#include "rycore/app/RyApp.h"

namespace {

constexpr const char *orderNames[] = {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};

std::unique_ptr<RyAction> makeOrderAction(int order)
{
    switch (order) {
    case 0:
        return std::make_unique<RyJERotationOrderXYZAction>();
    case 1:
        return std::make_unique<RyJERotationOrderXZYAction>();
    case 2:
        return std::make_unique<RyJERotationOrderYXZAction>();
    case 3:
        return std::make_unique<RyJERotationOrderYZXAction>();
    case 4:
        return std::make_unique<RyJERotationOrderZXYAction>();
    default:
        return std::make_unique<RyJERotationOrderZYXAction>();
    }
}

const QString nodeWarning =
    QStringLiteral("Selection Error|A node in the scene must be selected to continue.|Ok|warning");
const QString figureWarning =
    QStringLiteral("Selection Error|A figure in the scene must be selected to continue.|Ok|warning");

} // namespace

/// What the actions that align, snap and set rotation orders do.
class RyActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void rules();
    void enabling_data();
    void enabling();
    void enablingFollowsRemoval();
    void enablingOnRequest();
    void disabledActionRunsNothing();
    void missingSelection_data();
    void missingSelection();
    void alignNodeStep();
    void alignBackwardBone();
    void alignAllFromABone();
    void alignAllInOrder();
    void alignAllWithoutBones();
    void alignAllOfAProp();
    void snapCenterStep();
    void snapCenterOfARoot();
    void snapEndStep();
    void snapEndOfALeaf();
    void rotationOrders_data();
    void rotationOrders();
    void rotationOrderWithoutSelection();
    void metaObjects();
};

void RyActionsTest::cleanup()
{
    QVERIFY(!RyApp::getInterface());
    QVERIFY(!ryUndoStack()->isHoldOpen());
}

void RyActionsTest::rules()
{
    RyToolScene scene;
    auto *legacy = new RySkeleton;
    ryScene()->addNode(legacy);
    RyBone *legacyBone = RyToolScene::makeBone(legacy, "bone", {}, {0, 1, 0});
    auto *pinned = new RyNode;
    scene.hip->addNodeChild(pinned);
    const auto row = [](const RyNode *node) {
        return QString::number(isAnyNode(node)) + QString::number(isSkeletonOrBone(node)) +
               QString::number(isBone(node)) + QString::number(isOfFigure(node));
    };
    QCOMPARE(row(nullptr), QStringLiteral("0000"));
    QCOMPARE(row(scene.prop), QStringLiteral("1000"));
    QCOMPARE(row(pinned), QStringLiteral("1001"));
    QCOMPARE(row(legacy), QStringLiteral("1100"));
    QCOMPARE(row(legacyBone), QStringLiteral("1110"));
    QCOMPARE(row(scene.figure), QStringLiteral("1101"));
    QCOMPARE(row(scene.lFoot), QStringLiteral("1111"));
}

void RyActionsTest::enabling_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("expected"); // nothing, prop, skeleton, bone of one, figure, bone of one
    QTest::newRow("Align Node") << "RyJEAlignNodeAction"
                                << "011111";
    QTest::newRow("Align All Bones") << "RyJEAlignAllBonesAction"
                                     << "001111";
    QTest::newRow("Snap Center Point") << "RyJESnapCenterPointAction"
                                       << "001111";
    QTest::newRow("Snap End Point") << "RyJESnapEndPointAction"
                                    << "001111";
    for (const char *order : orderNames)
        QTest::newRow(order) << QStringLiteral("RyJERotationOrder%1Action").arg(QLatin1String(order)) << "011111";
}

void RyActionsTest::enabling()
{
    QFETCH(QString, action);
    QFETCH(QString, expected);
    RyToolScene scene;
    auto *legacy = new RySkeleton;
    legacy->setName(QStringLiteral("legacy"));
    ryScene()->addNode(legacy);
    RyBone *legacyBone = RyToolScene::makeBone(legacy, "bone", {}, {0, 1, 0});

    const auto makeAction = [&action]() -> std::unique_ptr<RyAction> {
        std::vector<std::unique_ptr<RyAction>> all;
        all.push_back(std::make_unique<RyJEAlignNodeAction>());
        all.push_back(std::make_unique<RyJEAlignAllBonesAction>());
        all.push_back(std::make_unique<RyJESnapCenterPointAction>());
        all.push_back(std::make_unique<RyJESnapEndPointAction>());
        for (int order = 0; order < 6; ++order)
            all.push_back(makeOrderAction(order));
        for (std::unique_ptr<RyAction> &each : all) {
            if (action == QLatin1String(each->metaObject()->className()))
                return std::move(each);
        }
        return {};
    };
    const std::vector<RyNode *> selections = {nullptr, scene.prop, legacy, legacyBone, scene.figure, scene.lShin};
    const std::unique_ptr<RyAction> follower = makeAction();
    QVERIFY(follower);
    QString followed;
    QString constructed;
    for (RyNode *node : selections) {
        ryScene()->setSelection(node ? std::vector<RyNode *>{node} : std::vector<RyNode *>{});
        followed += QString::number(follower->isEnabled());
        constructed += QString::number(makeAction()->isEnabled());
    }
    QCOMPARE(followed, expected);
    QCOMPARE(constructed, expected);
    // And back: what was enabled is disabled again.
    ryScene()->selectAllNodes(false);
    QCOMPARE(QString::number(follower->isEnabled()), expected.left(1));
    // The last node selected decides.
    ryScene()->setSelection({scene.prop, scene.lShin});
    QCOMPARE(QString::number(follower->isEnabled()), expected.mid(5, 1));
    ryScene()->setSelection({scene.lShin, scene.prop});
    QCOMPARE(QString::number(follower->isEnabled()), expected.mid(1, 1));
}

void RyActionsTest::enablingFollowsRemoval()
{
    RyToolScene scene;
    const RyJEAlignNodeAction action;
    ryScene()->setSelection({scene.prop});
    QVERIFY(action.isEnabled());
    ryScene()->removeNode(scene.prop);
    QVERIFY(!action.isEnabled());
    ryScene()->setSelection({scene.hip});
    QVERIFY(action.isEnabled());
    ryScene()->clear();
    QVERIFY(!action.isEnabled());
}

void RyActionsTest::enablingOnRequest()
{
    RyToolScene scene;
    ryScene()->setSelection({});
    RyJEAlignNodeAction align;
    RyJEDeleteBoneAction deleteBone;
    RyJEDeleteUnusedBonesAction deleteUnused;
    std::vector<std::unique_ptr<RyAction>> orders;
    std::vector<RyAction *> actions{&align, &deleteBone, &deleteUnused};
    for (int order = 0; order < 6; ++order)
        actions.push_back(orders.emplace_back(makeOrderAction(order)).get());
    for (RyAction *action : actions) {
        const char *name = action->metaObject()->className();
        QVERIFY2(!action->isEnabled(), name);
        {
            const QSignalBlocker nobodyTells(ryScene());
            ryScene()->setSelection({scene.lShin});
        }
        QVERIFY2(!action->isEnabled(), name);
        QVERIFY2(QMetaObject::invokeMethod(action, "selectionChanged"), name);
        QVERIFY2(action->isEnabled(), name);
        const QSignalBlocker nobodyTells(ryScene());
        ryScene()->setSelection({});
        QVERIFY2(QMetaObject::invokeMethod(action, "selectionChanged"), name);
        QVERIFY2(!action->isEnabled(), name);
    }
}

void RyActionsTest::disabledActionRunsNothing()
{
    RyToolScene scene;
    RyMessageBoxes boxes;
    RyJEAlignNodeAction align;
    RyJERotationOrderZYXAction order;
    align.trigger();
    order.trigger();
    QCoreApplication::processEvents();
    QVERIFY(boxes.said.isEmpty());
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyActionsTest::missingSelection_data()
{
    QTest::addColumn<bool>("window");
    QTest::newRow("with a window") << true;
    QTest::newRow("without") << false;
}

void RyActionsTest::missingSelection()
{
    QFETCH(bool, window);
    RyWindowScene scene;
    if (!window)
        scene.window.reset();
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    RyJEAlignNodeAction().executeAction();
    RyJESnapCenterPointAction().executeAction();
    RyJESnapEndPointAction().executeAction();
    RyJEAlignAllBonesAction().executeAction();
    QCOMPARE(boxes.said, QStringList({nodeWarning, nodeWarning, nodeWarning, figureWarning}));
    for (const QWidget *parent : boxes.parents)
        QCOMPARE(parent, static_cast<const QWidget *>(RyApp::getInterface()));
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyActionsTest::alignNodeStep()
{
    RyToolScene scene;
    RyJEAlignNodeAction action;
    for (RyNode *node : {static_cast<RyNode *>(scene.lThigh), scene.prop}) {
        ryUndoStack()->clearAll();
        node->setOrigin({1, 2, 3}, true);
        node->setEndPoint({1, 2, -8}, true);
        ryScene()->setSelection({node});
        const QString before = scene.dump();
        action.trigger();
        QVERIFY((node->getOrientation().multVec(RyVec3(1, 0, 0)) - RyVec3(0, 0, -1)).length() < 1e-5f);
        QVERIFY((node->getOrientation(true).multVec(RyVec3(1, 0, 0)) - RyVec3(1, 0, 0)).length() < 1e-5f);
        const QString after = scene.dump();
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Align Node"));
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
    }
}

void RyActionsTest::alignBackwardBone()
{
    RyToolScene scene;
    scene.lFoot->setOrigin({10, 8, -1}, true);
    scene.lFoot->setEndPoint({-20, 8, -1}, true);
    scene.lFoot->setOrientation(RyQuat(RyVec3(0, 0, 1), 0.4f));
    ryScene()->setSelection({scene.lFoot});
    RyJEAlignNodeAction().trigger();
    QVERIFY((scene.lFoot->getOrientation().multVec(RyVec3(1, 0, 0)) - RyVec3(1, 0, 0)).length() < 1e-6f);
    QCOMPARE(ryUndoStack()->count(), 1);
}

void RyActionsTest::alignAllFromABone()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lFoot});
    const QString before = scene.dump();
    RyJEAlignAllBonesAction action;
    action.trigger();
    for (const RyBone *bone : scene.figure->getAllBones()) {
        const RyVec3 axis = bone->getOrientation().multVec(RyVec3(1, 0, 0));
        const RyVec3 direction = (bone->getEndPoint() - bone->getOrigin()).normalized();
        QVERIFY2(std::abs(axis.dot(direction)) > 1 - 1e-5f, qPrintable(bone->getName()));
    }
    QCOMPARE(scene.figure->getOrientation(), RyQuat());
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Align All Bones"));
    const QString after = scene.dump();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyActionsTest::alignAllInOrder()
{
    RyToolScene scene;
    RyToolScene::makeBone(scene.figure, "tail", {0, 90, -5}, {0, 85, -40});
    // A bone below something that is no bone is not reached.
    auto *between = new RyNode;
    between->setName(QStringLiteral("between"));
    scene.hip->addNodeChild(between);
    RyBone *hidden = RyToolScene::makeBone(between, "hidden", {0, 1, 0}, {0, 9, 3});
    QStringList aligned;
    QObject listener;
    for (RyBone *bone : scene.figure->getAllBones())
        connect(bone, &RyNode::riggingChanged, &listener, [&aligned, bone] { aligned.append(bone->getName()); });
    ryScene()->setSelection({scene.figure});
    RyJEAlignAllBonesAction().trigger();
    QCOMPARE(aligned, QStringList({"hip", "lThigh", "lShin", "lFoot", "rThigh", "tail"}));
    QCOMPARE(hidden->getOrientation(), RyQuat());
}

void RyActionsTest::alignAllWithoutBones()
{
    RyToolScene scene;
    auto *bare = new RyFigure;
    bare->setName(QStringLiteral("bare"));
    auto *child = new RyNode;
    child->setEndPoint({0, 5, 5}, true);
    bare->addNodeChild(child);
    RyToolScene::makeBone(child, "hidden", {0, 1, 0}, {0, 9, 3});
    ryScene()->addNode(bare);
    ryScene()->setSelection({bare});
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    RyJEAlignAllBonesAction().trigger();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(boxes.said.isEmpty());
}

void RyActionsTest::alignAllOfAProp()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.prop});
    RyMessageBoxes boxes;
    RyJEAlignAllBonesAction().executeAction();
    QCOMPARE(boxes.said, QStringList(figureWarning));
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyActionsTest::snapCenterStep()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lThigh});
    const RyVec3 atRest = scene.lThigh->getOrigin(true);
    const QString before = scene.dump();
    RyJESnapCenterPointAction().trigger();
    QCOMPARE(scene.lThigh->getOrigin(), scene.hip->getEndPoint());
    QCOMPARE(scene.lThigh->getOrigin(true), atRest);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Snap Center Point"));
    const QString after = scene.dump();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyActionsTest::snapCenterOfARoot()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.figure});
    const QString before = scene.dump();
    RyJESnapCenterPointAction().trigger();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyActionsTest::snapEndStep()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.hip});
    const QString before = scene.dump();
    RyJESnapEndPointAction().trigger();
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 95, 0));
    QCOMPARE(scene.hip->getEndPoint(true), RyVec3(0, 112, 1));
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Snap End Point"));
    const QString after = scene.dump();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyActionsTest::snapEndOfALeaf()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lFoot});
    const QString before = scene.dump();
    RyJESnapEndPointAction().trigger();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Snap End Point"));
}

void RyActionsTest::rotationOrders_data()
{
    QTest::addColumn<int>("order");
    QTest::addColumn<bool>("withTool");
    for (int order = 0; order < 6; ++order) {
        QTest::addRow("%s with the tool", orderNames[order]) << order << true;
        QTest::addRow("%s without", orderNames[order]) << order << false;
    }
}

void RyActionsTest::rotationOrders()
{
    QFETCH(int, order);
    QFETCH(bool, withTool);
    RyWindowScene scene;
    if (!withTool)
        scene.window.reset();
    RyBone *bone = scene.lShin;
    bone->setRotationOrder(RyRotationOrder((order + 1) % 6));
    bone->setOrientation(RyQuat(RyVec3(1, 1, 0), 0.5f), true);
    ryScene()->setSelection({scene.prop, bone});
    const QString before = scene.dump();
    const RyVec3 origin = bone->getOrigin();
    const RyVec3 endPoint = bone->getEndPoint();
    const RyQuat orientation = bone->getOrientation();
    int announced = 0;
    QObject listener;
    if (withTool) {
        scene.window->getViewportMgr()->setActiveTool(scene.windowTool); // the node is its own from here on
        connect(scene.windowTool, &RyJointEditorTool::nodeChanged, &listener, [&announced] { ++announced; });
    }

    const std::unique_ptr<RyAction> action = makeOrderAction(order);
    QCOMPARE(action->text(), QString::fromLatin1(orderNames[order]));
    action->trigger();
    QCOMPARE(bone->getRotationOrder().order(), order);
    QCOMPARE(bone->getOrigin(), origin);
    QCOMPARE(bone->getEndPoint(), endPoint);
    QCOMPARE(bone->getOrientation(), orientation);
    QCOMPARE(scene.prop->getRotationOrder().order(), 0);
    QCOMPARE(announced, withTool ? 1 : 0);
    const QString caption = QStringLiteral("Rotation Order ") + QLatin1String(orderNames[order]);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), caption);
    const QString after = scene.dump();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);

    // The same order again changes nothing, and is a step all the same.
    action->trigger();
    QCOMPARE(scene.dump(), after);
    QCOMPARE(ryUndoStack()->count(), 2);
    QCOMPARE(ryUndoStack()->caption(1), caption);
}

void RyActionsTest::rotationOrderWithoutSelection()
{
    RyWindowScene scene;
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    for (int order = 0; order < 6; ++order)
        makeOrderAction(order)->executeAction();
    scene.window.reset();
    for (int order = 0; order < 6; ++order)
        makeOrderAction(order)->executeAction();
    QCOMPARE(scene.dump(), before);
    QVERIFY(boxes.said.isEmpty());
}

void RyActionsTest::metaObjects()
{
    const RyToolScene scene;
    std::vector<std::unique_ptr<RyAction>> following;
    following.push_back(std::make_unique<RyJEAlignNodeAction>());
    following.push_back(std::make_unique<RyJEAlignAllBonesAction>());
    following.push_back(std::make_unique<RyJESnapCenterPointAction>());
    following.push_back(std::make_unique<RyJESnapEndPointAction>());
    for (int order = 0; order < 6; ++order)
        following.push_back(makeOrderAction(order));
    for (const auto &action : following) {
        const QMetaObject *metaObject = action->metaObject();
        const int slot = metaObject->indexOfSlot("selectionChanged()");
        QVERIFY2(slot >= metaObject->methodOffset(), metaObject->className());
        QCOMPARE(metaObject->method(slot).access(), QMetaMethod::Public);
        QVERIFY(!action->isCheckable());
        QCOMPARE(action->objectName(), QString::fromLatin1(metaObject->className()));
    }
}

RY_TEST(RyActionsTest)

#include "tst_actions.moc"
