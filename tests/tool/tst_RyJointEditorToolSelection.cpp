#include "support/RyTest.h"

#include "RySignalCounter.h"
#include "RyToolScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

namespace {

std::vector<RyFloatProperty *> pointControls(const RyNode *node)
{
    return {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(),
            node->getEndXControl(),    node->getEndYControl(),    node->getEndZControl()};
}

} // namespace

/// How the tool follows the selection and the end of its node.
class RyJointEditorToolSelectionTest : public QObject
{
    Q_OBJECT

private slots:
    void activationTakesTheSelection();
    void deactivationDropsEverything();
    void burstsBecomeOneUpdate();
    void pendingEventDiesWithDeactivation();
    void announcesEveryNode();
    void oldNodeIsForgotten();
    void removedNodeIsDropped();
    void removalChangesTheStatusText();
    void removalEndsTheDrag();
    void removalWithinALaterHold();
    void selectionEndsTheDrag();
    void otherEvents();
    void rotationOrder();
    void toolsDeletedWhileDragging();
    void deletedWhileDragging();
};

void RyJointEditorToolSelectionTest::activationTakesTheSelection()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lShin});
    scene.manager->setActiveTool(scene.tool);
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lShin));
    QCOMPARE(scene.tool->currentNodeParent(), static_cast<RyNode *>(scene.lThigh));
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(11, 50, 2));
    QVERIFY(scene.tool->isActive());
}

void RyJointEditorToolSelectionTest::deactivationDropsEverything()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy nodes(scene.tool, &RyJointEditorTool::nodeChanged);
    scene.manager->setActiveTool(nullptr);
    QVERIFY(!scene.tool->currentNode());
    QVERIFY(!scene.tool->currentNodeParent());
    QVERIFY(!scene.tool->currentParam());
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3());
    QCOMPARE(nodes.count(), 1);
    ryScene()->setSelection({scene.hip});
    QCoreApplication::sendPostedEvents();
    QVERIFY(!scene.tool->currentNode());
    QCOMPARE(nodes.count(), 1);
}

void RyJointEditorToolSelectionTest::burstsBecomeOneUpdate()
{
    RyToolScene scene;
    scene.select(scene.hip);
    QSignalSpy nodes(scene.tool, &RyJointEditorTool::nodeChanged);
    for (int burst = 1; burst <= 2; ++burst) {
        for (int i = 0; i < 5; ++i) {
            ryScene()->setSelection({scene.lShin});
            ryScene()->setSelection({scene.lFoot});
        }
        QVERIFY(scene.tool->isSelectionEventPending());
        QCOMPARE(nodes.count(), burst - 1);
        QCoreApplication::processEvents();
        QCOMPARE(nodes.count(), burst);
        QVERIFY(!scene.tool->isSelectionEventPending());
        QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lFoot));
    }
}

void RyJointEditorToolSelectionTest::pendingEventDiesWithDeactivation()
{
    RyToolScene scene;
    scene.select(scene.hip);
    ryScene()->setSelection({scene.lShin});
    QVERIFY(scene.tool->isSelectionEventPending());
    scene.manager->setActiveTool(nullptr);
    QVERIFY(!scene.tool->isSelectionEventPending());
    QCoreApplication::processEvents();
    QVERIFY(!scene.tool->currentNode());
    scene.manager->setActiveTool(scene.tool);
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lShin));
    ryScene()->setSelection({scene.lFoot});
    QCoreApplication::processEvents();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lFoot));
}

void RyJointEditorToolSelectionTest::announcesEveryNode()
{
    QStringList announced; // outlives the scene, whose end is announced too
    RyToolScene scene;
    connect(scene.tool, &RyJointEditorTool::nodeChanged,
            [&](RyNode *node) { announced.append(node ? node->getName() : QStringLiteral("none")); });
    RySignalCounter parameters;
    connect(scene.tool, SIGNAL(paramChanged(RyLegacyJointParam *)), &parameters, SLOT(count()));
    scene.manager->setActiveTool(scene.tool);
    scene.select(scene.lShin);
    scene.select(scene.figure);
    scene.select(scene.prop);
    ryScene()->selectAllNodes(false);
    QCoreApplication::processEvents();
    // No parameter was ever current, so none is announced.
    QCOMPARE(parameters.counted, 0);
    QCOMPARE(announced, QStringList({"none", "lShin", "figure", "prop", "none"}));
}

void RyJointEditorToolSelectionTest::oldNodeIsForgotten()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    // The hip's end point is not where its children begin: any follow-up would move it.
    scene.select(scene.rThigh);
    scene.tool->setPropagateTranslation(true);
    scene.tool->setAutoSnapEndPoints(true);
    for (RyFloatProperty *control : pointControls(scene.lShin)) {
        control->setValue(control->getValue() + 3.0f);
        QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 112, 1));
    }
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    QCOMPARE(scene.lThigh->getEndPoint(), RyVec3(11, 50, 2));
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(-10, 95, 0));
    // The present one is followed.
    scene.rThigh->getEndXControl()->setValue(-12.0f);
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 95, 0));
}

void RyJointEditorToolSelectionTest::removedNodeIsDropped()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const RyRef<RyNode> kept(scene.lShin);
    QSignalSpy nodes(scene.tool, &RyJointEditorTool::nodeChanged);
    ryScene()->removeNode(scene.lShin);
    QVERIFY(!scene.tool->currentNode());
    QCOMPARE(nodes.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(nodes.count(), 1);
    QVERIFY(!scene.tool->currentNode());

    // What the removed node does is no change of the node that comes after it.
    scene.select(scene.rThigh);
    scene.tool->setAutoSnapEndPoints(true);
    for (RyFloatProperty *control : pointControls(kept.get())) {
        control->setValue(control->getValue() + 3.0f);
        QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 112, 1));
    }
    emit kept->aboutToBeRemoved();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.rThigh));
}

void RyJointEditorToolSelectionTest::removalChangesTheStatusText()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44);
    QVERIFY(!scene.tool->getStatusText().isEmpty());
    QSignalSpy changes(scene.tool, &RyViewTool::statusTextChanged);
    ryScene()->removeNode(scene.lShin);
    QCOMPARE(scene.tool->getStatusText(), QString());
    QCOMPARE(changes.count(), 1);
}

void RyJointEditorToolSelectionTest::removalEndsTheDrag()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    const RyRef<RyNode> kept(scene.lShin);
    scene.press(44, {400, 300});
    scene.move({430, 310});
    ryScene()->removeNode(scene.lShin);
    QVERIFY(!scene.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.lShin->editLevel(), 0);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    QVERIFY(!scene.move({440, 310}));
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 1);
    ryUndoStack()->undo();
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1));
    QVERIFY(scene.dump() != before); // the removal itself was not recorded
}

void RyJointEditorToolSelectionTest::removalWithinALaterHold()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    scene.press(44, {400, 300});
    scene.move({430, 310});
    const QString dragged = scene.dump();
    {
        RyUndoStackHold hold;
        ryScene()->removeNode(scene.lShin);
        hold.accept(QStringLiteral("Remove"));
    }
    const QString removed = scene.dump();
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(ryUndoStack()->count(), 2);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    QCOMPARE(ryUndoStack()->caption(1), QStringLiteral("Remove"));
    ryUndoStack()->undo();
    ryScene()->setSelection({scene.lShin});
    QCOMPARE(scene.dump(), dragged);
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), dragged);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), removed);
}

void RyJointEditorToolSelectionTest::selectionEndsTheDrag()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44);
    scene.press(44, {400, 300});
    scene.move({430, 310});
    const RyVec3 dragged = scene.lShin->getEndPoint();
    // The same node once more is no change.
    ryScene()->setSelection({scene.rThigh});
    ryScene()->setSelection({scene.lShin});
    QCoreApplication::processEvents();
    QVERIFY(scene.tool->isDragging());
    ryScene()->setSelection({scene.rThigh});
    QCoreApplication::processEvents();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.rThigh));
    QVERIFY(!scene.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.lShin->editLevel(), 0);
    QCOMPARE(scene.viewport->toolTip, QString());
    QCOMPARE(scene.lShin->getEndPoint(), dragged);
    QCOMPARE(ryUndoStack()->count(), 1);
    QVERIFY(!scene.move({500, 310}));
    QCOMPARE(scene.lShin->getEndPoint(), dragged);
    QCOMPARE(scene.rThigh->getEndPoint(), RyVec3(-11, 50, 2));
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 1);
    ryUndoStack()->undo();
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1));
}

void RyJointEditorToolSelectionTest::otherEvents()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy nodes(scene.tool, &RyJointEditorTool::nodeChanged);
    QEvent stranger(QEvent::Type(QEvent::registerEventType(-1)));
    scene.tool->event(&stranger);
    QCOMPARE(nodes.count(), 0);
    // QObject knows the first of these and not the second.
    QEvent threadChange(QEvent::ThreadChange);
    QVERIFY(scene.tool->event(&threadChange));
    QEvent show(QEvent::Show);
    QVERIFY(!scene.tool->event(&show));
}

void RyJointEditorToolSelectionTest::rotationOrder()
{
    QList<int> orders; // outlives the scene, whose end is announced too
    RyToolScene scene;
    scene.select(scene.lShin);
    connect(scene.tool, &RyJointEditorTool::nodeChanged,
            [&](RyNode *node) { orders.append(node ? node->getRotationOrder().order() : -1); });
    scene.tool->changeRotationOrder(nullptr, RyRotationOrder(3));
    scene.tool->changeRotationOrder(scene.lShin, RyRotationOrder(0));
    QCOMPARE(orders, QList<int>());
    scene.tool->changeRotationOrder(scene.lShin, RyRotationOrder(5));
    QCOMPARE(scene.lShin->getRotationOrder().order(), 5);
    QCOMPARE(orders, QList<int>{5});
    // Another node may be changed, which is nothing of the current one.
    scene.tool->changeRotationOrder(scene.hip, RyRotationOrder(2));
    QCOMPARE(scene.hip->getRotationOrder().order(), 2);
    QCOMPARE(orders, QList<int>{5});
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
    QCOMPARE(scene.lShin->getOrientation(), RyQuat());
}

void RyJointEditorToolSelectionTest::deletedWhileDragging()
{
    RyToolScene scene;
    ryScene()->setSelection({scene.lShin});
    const QString before = scene.dump();
    // A tool of nobody's: nothing deactivates it before it goes.
    auto tool = std::make_unique<RyJointEditorTool>();
    tool->activated();
    RyJointEditorTool *const managed = std::exchange(scene.tool, tool.get());
    scene.press(44, {400, 300});
    scene.move({430, 310});
    QVERIFY(ryUndoStack()->isHoldOpen());
    QVERIFY(scene.dump() != before);
    scene.tool = managed;
    tool.reset();
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.lShin->editLevel(), 0);
}

void RyJointEditorToolSelectionTest::toolsDeletedWhileDragging()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    scene.press(44, {400, 300});
    scene.move({430, 310});
    QVERIFY(ryUndoStack()->isHoldOpen());
    QVERIFY(scene.dump() != before);
    scene.manager->deleteTools();
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.lShin->editLevel(), 0);
}

RY_TEST(RyJointEditorToolSelectionTest)

#include "tst_RyJointEditorToolSelection.moc"
