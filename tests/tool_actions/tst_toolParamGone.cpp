#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

#include <functional>

using Param = RyLegacyJointParam;
using Edit = std::function<void(RyParametricToolScene &)>;
Q_DECLARE_METATYPE(Edit)

namespace {

/// The left hand with its bend about Y, and a drag of a handle of it under way.
struct Fixture : RyParametricToolScene
{
    Fixture()
    {
        select(doll.lHand);
        tool->setParam(doll.param(doll.lHand, "jointy"));
        param = tool->currentParam();
        partner = tool->partnerParam();
        ryUndoStack()->clearAll();
    }
    void startDrag()
    {
        press(30, {400, 300});
        move({430, 310});
    }
    template<typename Change>
    static void step(Change change)
    {
        RyUndoStackHold hold;
        change();
        hold.accept(QStringLiteral("Edit"));
    }

    Param *param;
    Param *partner;
};

} // namespace

/// The tool's parameter and its partners go away and come back.
class RyToolParamGoneTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<RyLegacyJointParam *>("RyLegacyJointParam*"); }
    void parameterGoes_data();
    void parameterGoes();
    void deletedUnrecorded_data();
    void deletedUnrecorded();
    void creationIsUndone();
    void partnerGoesAndComesBack_data();
    void partnerGoesAndComesBack();
    void scalePartnerFollowsTheDriver();
    void nodeHangsElsewhere();
    void removedNodeIsSilent();
    void sceneIsCleared();
    void dragEndsBefore_data();
    void dragEndsBefore();
    void statusTextFollows();
};

static void addWays()
{
    QTest::addColumn<Edit>("edit");
    QTest::newRow("leaves its joint") << Edit([](RyParametricToolScene &scene) {
        scene.doll.joint(scene.doll.lHand)->removeJointParam(scene.tool->currentParam());
    });
    QTest::newRow("joint leaves its binding") << Edit(
        [](RyParametricToolScene &scene) { scene.doll.binding->removeJoint(scene.doll.joint(scene.doll.lHand)); });
    QTest::newRow("joint gets another bone")
        << Edit([](RyParametricToolScene &scene) { scene.doll.joint(scene.doll.lHand)->setBone(scene.doll.rTip); });
    QTest::newRow("binding leaves the object") << Edit(
        [](RyParametricToolScene &scene) { scene.doll.figure->getObject()->removeModifier(scene.doll.binding); });
    QTest::newRow("figure loses its object")
        << Edit([](RyParametricToolScene &scene) { scene.doll.figure->setObject(nullptr); });
    QTest::newRow("bone deleted") << Edit([](RyParametricToolScene &scene) { deleteBone(scene.doll.lHand); });
    QTest::newRow("bone leaves the figure")
        << Edit([](RyParametricToolScene &scene) { scene.prop->addNodeChild(scene.doll.lHand); });
    QTest::newRow("figure removed") << Edit(
        [](RyParametricToolScene &scene) { ryScene()->removeNode(scene.doll.figure); });
    QTest::newRow("figure becomes a prop")
        << Edit([](RyParametricToolScene &scene) { RySkeleton::convertFigureToProp(scene.doll.figure, "stiff"); });
}

void RyToolParamGoneTest::parameterGoes_data()
{
    addWays();
}

void RyToolParamGoneTest::parameterGoes()
{
    QFETCH(Edit, edit);
    Fixture f;
    const QString before = RyParametricToolScene::wholeDump();
    QSignalSpy told(f.tool, SIGNAL(paramChanged(RyLegacyJointParam *)));
    Fixture::step([&] { edit(f); });
    QCoreApplication::processEvents();
    QVERIFY(!f.tool->currentParam() && !f.tool->partnerParam() && !f.tool->bendPartnerParam());
    QVERIFY(!told.isEmpty());
    QVERIFY(!told.last().first().value<RyLegacyJointParam *>());
    QCOMPARE(f.tool->cachedAngleB(), 0.0f);
    const QString after = RyParametricToolScene::wholeDump();
    ryUndoStack()->undo();
    ryScene()->setSelection({f.doll.lHand});
    QCoreApplication::processEvents();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    f.tool->setParam(f.param);
    QCOMPARE(f.tool->currentParam(), f.param);
    QCOMPARE(f.tool->partnerParam(), f.partner);
    ryUndoStack()->redo();
    QCoreApplication::processEvents();
    QVERIFY(!f.tool->currentParam() && !f.tool->partnerParam());
    QCOMPARE(RyParametricToolScene::wholeDump().contains("lHand"), after.contains("lHand"));
    ryUndoStack()->undo();
}

void RyToolParamGoneTest::deletedUnrecorded_data()
{
    addWays();
}

void RyToolParamGoneTest::deletedUnrecorded()
{
    QFETCH(Edit, edit);
    Fixture f;
    const QPointer<Param> param(f.param);
    QSignalSpy told(f.tool, SIGNAL(paramChanged(RyLegacyJointParam *)));
    edit(f);
    QCoreApplication::processEvents();
    QVERIFY(!f.tool->currentParam() && !f.tool->partnerParam());
    QVERIFY(!told.isEmpty());
    // Taking another one afterwards disconnects nothing that is gone.
    f.select(f.rThigh);
    QVERIFY(!f.tool->currentParam());
}

void RyToolParamGoneTest::creationIsUndone()
{
    Fixture f;
    auto *made = new RyLegacyBendParam("made", 0, f.doll.lHand);
    Fixture::step([&] { f.doll.joint(f.doll.lHand)->addJointParam(made); });
    f.tool->setParam(made);
    QCOMPARE(f.tool->currentParam(), static_cast<Param *>(made));
    ryUndoStack()->undo();
    QVERIFY(!f.tool->currentParam());
    ryUndoStack()->redo();
    QVERIFY(!f.tool->currentParam());
    f.tool->setParam(made);
    QCOMPARE(f.tool->currentParam(), static_cast<Param *>(made));
}

void RyToolParamGoneTest::partnerGoesAndComesBack_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::newRow("leaves its joint") << Edit([](RyParametricToolScene &scene) {
        scene.doll.joint(scene.doll.lArm)->removeJointParam(scene.tool->partnerParam());
    });
    QTest::newRow("within an edit of the binding") << Edit([](RyParametricToolScene &scene) {
        scene.doll.binding->beginEdit();
        scene.doll.joint(scene.doll.lArm)->removeJointParam(scene.tool->partnerParam());
        QVERIFY(!scene.tool->partnerParam());
        scene.doll.binding->finishEdit();
    });
    QTest::newRow("joint leaves its binding") << Edit(
        [](RyParametricToolScene &scene) { scene.doll.binding->removeJoint(scene.doll.joint(scene.doll.lArm)); });
    QTest::newRow("another driver") << Edit(
        [](RyParametricToolScene &scene) { scene.tool->partnerParam()->setDriver(scene.doll.rTip); });
    QTest::newRow("no driver") << Edit(
        [](RyParametricToolScene &scene) { scene.tool->partnerParam()->setDriver(nullptr); });
    QTest::newRow("another axis") << Edit([](RyParametricToolScene &scene) { scene.tool->partnerParam()->setAxis(0); });
    QTest::newRow("another parent") << Edit(
        [](RyParametricToolScene &scene) { scene.doll.rArm->addNodeChild(scene.doll.lHand); });
    QTest::newRow("no parent bone") << Edit(
        [](RyParametricToolScene &scene) { scene.doll.figure->addNodeChild(scene.doll.lHand); });
}

void RyToolParamGoneTest::partnerGoesAndComesBack()
{
    QFETCH(Edit, edit);
    Fixture f;
    QSignalSpy told(f.tool, SIGNAL(paramChanged(RyLegacyJointParam *)));
    const auto isSound = [&] {
        const RyLegacyJoint *above = f.doll.binding->findJoint(f.doll.lHand->getNodeParent());
        const Param *wanted = above ? above->findParam(Param::Bend, f.doll.lHand, 1) : nullptr;
        return f.tool->currentParam() == f.param && f.tool->partnerParam() == wanted &&
               f.tool->currentNodeParent() == f.doll.lHand->getNodeParent();
    };
    Fixture::step([&] { edit(f); });
    QVERIFY(f.tool->partnerParam() != f.partner);
    QVERIFY(isSound());
    QCoreApplication::processEvents();
    QVERIFY(!told.isEmpty());
    QCOMPARE(told.last().first().value<RyLegacyJointParam *>(), f.param);
    for (int i = 0; i < 2; ++i) {
        told.clear();
        ryUndoStack()->undo();
        QCOMPARE(f.tool->partnerParam(), f.partner);
        QVERIFY(isSound());
        QCoreApplication::processEvents();
        QVERIFY(!told.isEmpty());
        ryUndoStack()->redo();
        QCoreApplication::processEvents();
        QVERIFY(f.tool->partnerParam() != f.partner);
        QVERIFY(isSound());
    }
    // What has left the joint is not written any more.
    const QString before = ryParamText(*f.partner);
    f.tool->setStaticD(-1.0f, 0);
    if (!f.partner->getJoint())
        QCOMPARE(ryParamText(*f.partner), before);
}

void RyToolParamGoneTest::scalePartnerFollowsTheDriver()
{
    Fixture f;
    f.tool->setParam(f.doll.param(f.doll.lHand, "lArm_smoox"));
    QCOMPARE(f.tool->bendPartnerParam(), f.doll.param(f.doll.lArm, "lHand_smoox"));
    QVERIFY(f.tool->paramDrivenByParent());
    f.doll.lArm->setName("upper");
    QCOMPARE(f.tool->bendPartnerParam()->getName(), QString("lHand_smoox"));
    // Hung elsewhere the bone is still the driver, and no longer the parent.
    Fixture::step([&] { f.doll.chest->addNodeChild(f.doll.lHand); });
    QVERIFY(!f.tool->paramDrivenByParent());
    QCOMPARE(f.tool->bendPartnerParam()->getJoint()->getBone(), f.doll.lArm);
    ryUndoStack()->undo();
    QVERIFY(f.tool->paramDrivenByParent());
    Fixture::step([&] { f.doll.joint(f.doll.lArm)->removeJointParam(f.tool->bendPartnerParam()); });
    QVERIFY(!f.tool->bendPartnerParam());
    ryUndoStack()->undo();
    QVERIFY(f.tool->bendPartnerParam());
}

void RyToolParamGoneTest::nodeHangsElsewhere()
{
    // Without a parameter too.
    Fixture f;
    f.tool->setParam(nullptr);
    Fixture::step([&] { f.doll.rArm->addNodeChild(f.doll.lHand); });
    QCOMPARE(f.tool->currentNodeParent(), static_cast<RyNode *>(f.doll.rArm));
    ryUndoStack()->undo();
    QCOMPARE(f.tool->currentNodeParent(), static_cast<RyNode *>(f.doll.lArm));
    f.manager->setActiveTool(nullptr);
    f.doll.rArm->addNodeChild(f.doll.lHand);
    QVERIFY(!f.tool->currentNodeParent());
}

void RyToolParamGoneTest::removedNodeIsSilent()
{
    Fixture f;
    QSignalSpy params(f.tool, SIGNAL(paramChanged(RyLegacyJointParam *)));
    QSignalSpy nodes(f.tool, SIGNAL(nodeChanged(RyNode *)));
    Fixture::step([&] { ryScene()->removeNode(f.doll.figure); });
    QVERIFY(!f.tool->currentNode());
    QCOMPARE(params.count() + nodes.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(nodes.count(), 1);
    QCOMPARE(params.count(), 1);
    // What is remembered was the choice of the person.
    QCOMPARE(f.tool->rememberedAxis(), 1);
    ryUndoStack()->undo();
    f.select(f.doll.rHand);
    QCOMPARE(f.tool->currentParam(), f.doll.param(f.doll.rHand, "jointy"));
}

void RyToolParamGoneTest::sceneIsCleared()
{
    Fixture f;
    const QPointer<Param> param(f.param);
    QSignalSpy params(f.tool, SIGNAL(paramChanged(RyLegacyJointParam *)));
    ryScene()->clear();
    QVERIFY(!param);
    QVERIFY(!f.tool->currentParam());
    QCoreApplication::processEvents();
    QCOMPARE(params.count(), 1);
    f.tool->setParam(nullptr);
    QCOMPARE(params.count(), 1);
}

void RyToolParamGoneTest::dragEndsBefore_data()
{
    addWays();
    QTest::newRow("partner goes") << Edit([](RyParametricToolScene &scene) {
        scene.doll.joint(scene.doll.lArm)->removeJointParam(scene.tool->partnerParam());
    });
    QTest::newRow("none is chosen") << Edit([](RyParametricToolScene &scene) { scene.tool->setParam(nullptr); });
    QTest::newRow("another one is chosen") << Edit(
        [](RyParametricToolScene &scene) { scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointz")); });
}

void RyToolParamGoneTest::dragEndsBefore()
{
    QFETCH(Edit, edit);
    Fixture f;
    const QString before = RyParametricToolScene::wholeDump();
    f.startDrag();
    QVERIFY(f.tool->isDragging());
    Fixture::step([&] { edit(f); });
    QVERIFY(!f.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(ryUndoStack()->count(), 2);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    QCOMPARE(f.param->editLevel(), 0);
    QCOMPARE(f.partner->editLevel(), 0);
    QCoreApplication::processEvents();
    f.move({470, 330});
    f.release();
    QCOMPARE(ryUndoStack()->count(), 2);
    ryUndoStack()->undo();
    ryUndoStack()->undo();
    ryScene()->setSelection({f.doll.lHand});
    QCoreApplication::processEvents();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
}

void RyToolParamGoneTest::statusTextFollows()
{
    Fixture f;
    f.tool->setBoneCreationActive(true);
    QVERIFY(!f.tool->getStatusText().contains("Ctrl"));
    QSignalSpy changes(f.tool, &RyViewTool::statusTextChanged);
    QSignalSpy hovers(f.tool, &RyViewTool::hoverRequested);
    f.tool->setParam(nullptr);
    QVERIFY(f.tool->getStatusText().contains("Ctrl"));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(hovers.count(), 1);
    f.tool->setParam(f.param);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(hovers.count(), 2);
    // In the middle of a change of the scene nothing is drawn to find what is under the mouse.
    f.doll.binding->removeJoint(f.doll.joint(f.doll.lHand));
    QVERIFY(f.tool->getStatusText().contains("Ctrl"));
    QCOMPARE(changes.count(), 3);
    QCOMPARE(hovers.count(), 2);
    QCoreApplication::processEvents();
    QCOMPARE(hovers.count(), 3);
}

RY_TEST(RyToolParamGoneTest)

#include "tst_toolParamGone.moc"
