#include "support/RyTest.h"

#include "RyParamDragScene.h"

#include "rycore/parametric/RyLegacyBinding.h"

/// What holds of every drag of a joint parameter's handles, from the press of the mouse to undo.
class RyParamDragsTest : public QObject
{
    Q_OBJECT

private slots:
    void oneStep_data();
    void oneStep();
    void outAndBack_data();
    void outAndBack();
    void outAndBackWhereSidesDiffer_data();
    void outAndBackWhereSidesDiffer();
    void cancel_data();
    void cancel();
    void restrictedAxes();
    void kindsThatDoNotMatch();
    void missingPartner_data();
    void missingPartner();
    void partnerOfAnotherKind();
    void otherIds();
    void valuesAreRecordedOnce();
    void announcedOncePerDrag();
    void paramGoesMeanwhile();
    void seenFromTheEdge_data();
    void seenFromTheEdge();
    void axisAtTheEye_data();
    void axisAtTheEye();

private:
    static void addIds()
    {
        QTest::addColumn<int>("id");
        for (int id = 5; id <= 40; ++id)
            QTest::addRow("%d", id) << id;
    }
    static QString valuesOf(const RyLegacyJointParam &param)
    {
        QString text;
        for (const RyFloatProperty *property : param.controllers())
            text += QString::number(double(property->getRawValue()), 'g', 9) + ' ';
        for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
            for (const RyFloatProperty *property : sphere->controls())
                text += QString::number(double(property->getRawValue()), 'g', 9) + ' ';
        }
        return text;
    }
    /// Rays at places where no handle is seen edge-on.
    static void lookAt(RyParamDragScene &scene)
    {
        scene.viewport->getCamera()->lookAt({70, 170, 240}, scene.doll.lHand->getWSPos());
    }
    static const QPoint from, to, further;
};

const QPoint RyParamDragsTest::from(420, 290);
const QPoint RyParamDragsTest::to(500, 205);
const QPoint RyParamDragsTest::further(330, 371);

void RyParamDragsTest::oneStep_data()
{
    addIds();
}

void RyParamDragsTest::oneStep()
{
    QFETCH(int, id);
    RyParamDragScene scene;
    lookAt(scene);
    RyLegacyJointParam *param = scene.editFor(id);
    const RyLegacyJointParam *partner = scene.counterpart();
    QCOMPARE(static_cast<const RyLegacyJointParam *>(param->findPartner()), partner);
    const QString before = scene.dump();
    scene.press(id, from);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(param->editLevel(), 0);
    scene.move(to);
    QCOMPARE(param->editLevel(), 1);
    QCOMPARE(partner->editLevel(), 1);
    const QString changed = scene.dump();
    QVERIFY(changed != before);
    scene.move(further);
    scene.move(to);
    // However the mouse came there.
    QCOMPARE(scene.dump(), changed);
    scene.release(to);
    QCOMPARE(scene.dump(), changed);
    QCOMPARE(param->editLevel(), 0);
    QCOMPARE(partner->editLevel(), 0);
    QCOMPARE(param->getJoint()->getBinding()->editLevel(), 0);
    QCOMPARE(scene.doll.lHand->editLevel(), 0);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    if (param->type() != RyLegacyJointParam::SmoothScale)
        QCOMPARE(valuesOf(*partner), valuesOf(*param));
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), changed);
}

void RyParamDragsTest::outAndBack_data()
{
    addIds();
}

void RyParamDragsTest::outAndBack()
{
    QFETCH(int, id);
    for (const bool pushes : {true, false}) {
        RyParamDragScene scene;
        lookAt(scene);
        scene.tool->setPushNeighborAngles(pushes);
        scene.editFor(id);
        const QString before = scene.dump();
        scene.press(id, from);
        scene.move(to);
        QVERIFY(scene.dump() != before);
        scene.move({13, 580});
        scene.move(from);
        QCOMPARE(scene.dump(), before);
        scene.release();
        QCOMPARE(scene.dump(), before);
    }
}

void RyParamDragsTest::outAndBackWhereSidesDiffer_data()
{
    addIds();
}

void RyParamDragsTest::outAndBackWhereSidesDiffer()
{
    QFETCH(int, id);
    RyParamDragScene scene;
    lookAt(scene);
    scene.editFor(id);
    for (RyFloatProperty *property : scene.counterpart()->controllers())
        property->setValue(property->getValue() * 0.9f + 1.0f);
    for (RyFloatProperty *property : scene.counterpart()->getDynamicSphere()->controls())
        property->setValue(property->getValue() * 0.9f + 1.0f);
    for (RyFloatProperty *property : scene.counterpart()->getStaticSphere()->controls())
        property->setValue(property->getValue() * 1.1f + 1.0f);
    const QString before = scene.dump();
    scene.press(id, from);
    scene.move(to);
    QVERIFY(scene.dump() != before);
    scene.move(from);
    QCOMPARE(scene.dump(), before);
    scene.release();
}

void RyParamDragsTest::cancel_data()
{
    addIds();
}

void RyParamDragsTest::cancel()
{
    QFETCH(int, id);
    RyParamDragScene scene;
    lookAt(scene);
    RyLegacyJointParam *param = scene.editFor(id);
    const RyLegacyJointParam *partner = scene.counterpart();
    const QString before = scene.dump();
    const float cached[4] = {scene.tool->cachedAngleA(), scene.tool->cachedAngleB(), scene.tool->cachedAngleC(),
                             scene.tool->cachedAngleD()};
    scene.press(id, from);
    scene.move(further);
    scene.move(to);
    QVERIFY(scene.dump() != before);
    scene.press(id, to, Qt::RightButton);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(param->editLevel(), 0);
    QCOMPARE(partner->editLevel(), 0);
    QCOMPARE(param->getJoint()->getBinding()->editLevel(), 0);
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.tool->cachedAngleA(), cached[0]);
    QCOMPARE(scene.tool->cachedAngleB(), cached[1]);
    QCOMPARE(scene.tool->cachedAngleC(), cached[2]);
    QCOMPARE(scene.tool->cachedAngleD(), cached[3]);
    scene.release(to);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyParamDragsTest::restrictedAxes()
{
    for (int id = 5; id <= 10; ++id) {
        RyParamDragScene scene;
        lookAt(scene);
        scene.tool->setRestrictRotationAxes(true);
        scene.editFor(id);
        const QString before = scene.dump();
        scene.drag(id, from, to);
        QCOMPARE(scene.dump(), before);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
        scene.tool->setRestrictRotationAxes(false);
        scene.drag(id, from, to);
        QVERIFY(scene.dump() != before);
    }
    RyParamDragScene scene;
    lookAt(scene);
    scene.tool->setRestrictRotationAxes(true);
    scene.editFor(11);
    const QString before = scene.dump();
    scene.drag(11, from, to);
    QVERIFY(scene.dump() != before);
}

void RyParamDragsTest::kindsThatDoNotMatch()
{
    using Type = RyLegacyJointParam::Type;
    for (const Type type : {Type::Bend, Type::Twist, Type::SmoothScale}) {
        for (int id = 29; id <= 38; ++id) {
            const Type own = id <= 32 ? Type::Bend : id <= 34 ? Type::Twist : Type::SmoothScale;
            if (own == type)
                continue;
            RyParamDragScene scene;
            lookAt(scene);
            RyLegacyJointParam *param = scene.edit(type);
            const QString before = scene.dump();
            scene.press(id, from);
            scene.move(to);
            QCOMPARE(param->editLevel(), 1);
            QCOMPARE(scene.dump(), before);
            scene.release(to);
            QCOMPARE(param->editLevel(), 0);
            QCOMPARE(ryUndoStack()->count(), 1);
        }
    }
    // Without a parameter.
    for (int id = 5; id <= 40; ++id) {
        RyParamDragScene scene;
        lookAt(scene);
        scene.select(scene.doll.lHand);
        QVERIFY(!scene.tool->currentParam());
        const QString before = scene.dump();
        scene.drag(id, from, to);
        QCOMPARE(scene.dump(), before);
        QCOMPARE(scene.doll.lHand->editLevel(), 0);
    }
}

void RyParamDragsTest::missingPartner_data()
{
    addIds();
}

void RyParamDragsTest::missingPartner()
{
    QFETCH(int, id);
    RyParamDragScene scene;
    lookAt(scene);
    RyLegacyJointParam *own = scene.editFor(id);
    scene.counterpart()->getJoint()->removeJointParam(scene.counterpart());
    scene.tool->setParam(nullptr);
    scene.tool->setParam(own);
    QVERIFY(!scene.counterpart() || scene.counterpart()->type() != own->type());
    const QString before = scene.dump();
    const QString values = valuesOf(*own);
    scene.drag(id, from, to);
    QVERIFY(valuesOf(*own) != values);
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
}

void RyParamDragsTest::partnerOfAnotherKind()
{
    RyParamDragScene scene;
    lookAt(scene);
    RyLegacyJointParam *bend = scene.edit(RyLegacyJointParam::Bend);
    // Of the same axis as the bend, and found before its counterpart.
    RyLegacyJoint *above = scene.doll.joint(scene.doll.lArm);
    RyLegacyJointParam *twist = above->findParam(RyLegacyJointParam::Twist, scene.doll.lHand, -1);
    above->removeJointParam(scene.counterpart());
    twist->setAxis(bend->getAxis());
    QCOMPARE(scene.tool->partnerParam(), twist);
    scene.tool->setPushNeighborAngles(false); // or all rays come together
    const QString before = valuesOf(*twist);
    for (int id = 5; id <= 40; ++id) {
        if (id >= 33 && id <= 38)
            continue;
        const QString own = valuesOf(*bend);
        scene.drag(id, from, to);
        QVERIFY2(valuesOf(*bend) != own, qPrintable(QString::number(id)));
        QCOMPARE(valuesOf(*twist), before);
    }
}

void RyParamDragsTest::otherIds()
{
    for (int id : {3, 4, 47, 250}) {
        RyParamDragScene scene;
        scene.edit(RyLegacyJointParam::Bend);
        QCOMPARE(scene.dragOf(id)->dragVector(RyLine3({1, 2, 3}, {4, 6, 9})), RyVec3());
        if (HandleId::isBone(id))
            continue;
        const QString before = scene.dump();
        scene.press(id, from);
        scene.move(to);
        scene.release(to);
        QCOMPARE(scene.dump(), before);
    }
}

void RyParamDragsTest::valuesAreRecordedOnce()
{
    const auto entriesOfADrag = [](int id, int moves) {
        RyParamDragScene scene;
        lookAt(scene);
        scene.editFor(id);
        scene.press(id, from);
        for (int i = 1; i <= moves; ++i)
            scene.move({400 + i % 120, 300 - i % 90});
        scene.move(to);
        scene.release();
        return ryUndoStack()->count() == 1 ? ryUndoStack()->entryCount(0) : -1;
    };
    QCOMPARE(entriesOfADrag(12, 1), 2); // one value on either side
    QCOMPARE(entriesOfADrag(12, 200), 2);
    QCOMPARE(entriesOfADrag(40, 200), 6);
    QCOMPARE(entriesOfADrag(33, 200), 2);
}

void RyParamDragsTest::announcedOncePerDrag()
{
    for (int id : {6, 12, 20, 30, 39}) {
        RyParamDragScene scene;
        lookAt(scene);
        RyLegacyJointParam *param = scene.editFor(id);
        int own = 0;
        int others = 0;
        connect(param, &RyLegacyJointParam::paramChanged, [&] { ++own; });
        connect(scene.counterpart(), &RyLegacyJointParam::paramChanged, [&] { ++others; });
        scene.drag(id, from, to);
        QCOMPARE(own, 1);
        QCOMPARE(others, 1);
    }
}

void RyParamDragsTest::paramGoesMeanwhile()
{
    for (int id : {5, 12, 17, 40, 29, 33, 35}) {
        RyParamDragScene scene;
        lookAt(scene);
        RyLegacyJointParam *param = scene.editFor(id);
        scene.press(id, from);
        scene.move(to);
        param->getJoint()->removeJointParam(param);
        scene.move(further);
        scene.release(further);
        QVERIFY(!scene.tool->isDragging());
    }
}

void RyParamDragsTest::seenFromTheEdge_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("orthographic");
    for (int id : {5, 6, 7, 8, 9, 10, 29, 30, 31, 32}) {
        QTest::addRow("%d", id) << id << false;
        QTest::addRow("%d, orthographic", id) << id << true;
    }
}

void RyParamDragsTest::seenFromTheEdge()
{
    QFETCH(int, id);
    QFETCH(bool, orthographic);
    RyParamDragScene scene;
    const RyLegacyJointParam *param = scene.editFor(id);
    const bool isAngle = id >= 29;
    const int axis = isAngle ? param->getAxis() : (id - 5) % 3;
    const Vec anchor = isAngle ? toVec(scene.driver().getWSPos()) : scene.center(id <= 7);
    const auto direction = [&](int k) {
        return unit(isAngle ? scene.direction(RyParamDragScene::axis(k))
                            : scene.onSphere(id <= 7, RyParamDragScene::axis(k)) - anchor);
    };
    const QString before = scene.dump();
    const QString said =
        QStringLiteral("This handle turns in a plane seen from its edge and moves nothing; turn the view");
    for (const double degrees : {0.0, 1.2, -1.2, 2.5}) {
        const double angle = degrees * M_PI / 180.0;
        const Vec way = direction((axis + 1) % 3) * std::cos(angle) + direction(axis) * std::sin(angle);
        scene.viewport->getCamera()->lookAt(RyParamDragScene::fromVec(anchor + way * 200.0),
                                            RyParamDragScene::fromVec(anchor),
                                            RyParamDragScene::fromVec(direction(axis)));
        scene.viewport->getCamera()->setOrthographic(orthographic);
        const QPoint pressed = scene.pixelOf(RyParamDragScene::fromVec(anchor + direction((axis + 2) % 3) * 5.0));
        scene.press(id, pressed);
        const bool isAtEdge = std::abs(degrees) < 1.5;
        QCOMPARE(scene.tool->getStatusText().contains(said), isAtEdge);
        scene.move(pressed + QPoint(40, 3));
        scene.move(pressed + QPoint(-90, 20));
        QCOMPARE(scene.dump() == before, isAtEdge);
        QCOMPARE(scene.tool->getStatusText().contains(said), isAtEdge);
        scene.press(id, pressed, Qt::RightButton);
        QCOMPARE(scene.dump(), before);
    }
}

void RyParamDragsTest::axisAtTheEye_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("orthographic");
    for (int id : {11, 12, 13, 14, 15, 16, 17, 18, 22, 23, 27, 33, 34, 35, 36, 37, 38, 39, 40}) {
        QTest::addRow("%d", id) << id << false;
        QTest::addRow("%d, orthographic", id) << id << true;
    }
}

void RyParamDragsTest::axisAtTheEye()
{
    QFETCH(int, id);
    QFETCH(bool, orthographic);
    RyParamDragScene scene;
    const RyLegacyJointParam *param = scene.editFor(id);
    const RyHandle *handle = RyHandleTable::find(id);
    const bool isDynamic = handle->target == RyHandle::DynamicSphere;
    const Vec anchor = handle->kind == RyHandle::Zone ? toVec(scene.driver().getWSPos()) : scene.center(isDynamic);
    Vec along{};
    if (handle->kind == RyHandle::Zone) {
        along = scene.direction(RyParamDragScene::axis(param->getAxis()));
    } else if (handle->kind == RyHandle::AxisArrow) {
        along = scene.direction(RyParamDragScene::axis(handle->axis));
    } else {
        for (int k = 0; k < 3; ++k) {
            if (handle->axis < 0 || handle->axis == k)
                along = along + unit(scene.onSphere(isDynamic, RyParamDragScene::axis(k)) - anchor);
        }
    }
    along = unit(along);
    const Vec aside = unit(cross(along, Vec{0.3, 0.8, -0.52}));
    const QString before = scene.dump();
    const QString said = QStringLiteral("This axis points at the eye and moves nothing; turn the view");
    for (const double degrees : {0.0, 1.3, 178.8, 6.0}) {
        const double angle = degrees * M_PI / 180.0;
        const Vec way = along * std::cos(angle) + aside * std::sin(angle);
        scene.viewport->getCamera()->lookAt(RyParamDragScene::fromVec(anchor + way * 200.0),
                                            RyParamDragScene::fromVec(anchor), RyParamDragScene::fromVec(aside));
        scene.viewport->getCamera()->setOrthographic(orthographic);
        const QPoint pressed = scene.pixelOf(RyParamDragScene::fromVec(anchor + along * 5.0));
        scene.press(id, pressed);
        const bool isAtEye = degrees != 6.0;
        QCOMPARE(scene.tool->getStatusText().contains(said), isAtEye);
        scene.move(pressed + QPoint(3, 5));
        scene.move(pressed + QPoint(-60, 30));
        QCOMPARE(scene.dump() == before, isAtEye);
        scene.press(id, pressed, Qt::RightButton);
        QCOMPARE(scene.dump(), before);
    }
}

RY_TEST(RyParamDragsTest)

#include "tst_paramDrags.moc"
