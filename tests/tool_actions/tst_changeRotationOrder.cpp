#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/changeRotationOrder.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderActions.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "support/checkUndo.h"

#include <QStatusBar>

namespace {

QList<float> anglesOf(const RyLegacyJointParam *param)
{
    QList<float> angles;
    for (size_t i = 0; i < 4; ++i)
        angles << param->controllers()[i]->getValue();
    return angles;
}

QList<float> sphereOf(const RyLegacyJointParam *param)
{
    QList<float> values;
    for (const RyFloatProperty *control : param->getStaticSphere()->controls())
        values << control->getValue();
    return values;
}

void setSphere(const RyLegacyJointParam *param, const QList<float> &values)
{
    for (int i = 0; i < values.size(); ++i)
        param->getStaticSphere()->controls()[size_t(i)]->setValue(values[i]);
}

} // namespace

/// Joint parameters follow a rotation order.
class RyChangeRotationOrderTest : public QObject
{
    Q_OBJECT

private slots:
    void namesAndAxes()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        doll.joint(doll.lArm)->addJointParam(new RyLegacyCurve("own curve", 3, doll.lArm));
        doll.joint(doll.chest)->addJointParam(new RyLegacyCurve("arm curve", 4, doll.lArm));
        const QString right = ryParamText(*doll.joint(doll.rArm));
        const QStringList handRest = legacyParamsOf(doll.joint(doll.lHand)).mid(4);
        QCOMPARE(changeRotationOrder(doll.lArm, RyRotationOrder(RyRotationOrder::ZYX)), OrderChange::Done);
        QCOMPARE(doll.lArm->getRotationOrder(), RyRotationOrder(RyRotationOrder::ZYX));
        // XYZ to ZYX: the twist goes to Z, the second axis stays, the third goes to X.
        QCOMPARE(legacyParamsOf(doll.joint(doll.lArm)),
                 QStringList({"twistz Z lArm", "jointy Y lArm", "jointx X lArm", "chest_smooy Y chest",
                              "lHand_twistx X lHand", "lHand_jointy Y lHand", "lHand_jointz Z lHand",
                              "lHand_smoox X lHand", "own curve XY lArm"}));
        QCOMPARE(legacyParamsOf(doll.joint(doll.chest)).filter("lArm"),
                 QStringList({"lArm_twistz Z lArm", "lArm_jointy Y lArm", "lArm_jointx X lArm", "lArm_smooz Z lArm",
                              "arm curve XY lArm"}));
        QCOMPARE(legacyParamsOf(doll.joint(doll.lHand)).mid(0, 4),
                 QStringList({"twistx X lHand", "jointy Y lHand", "jointz Z lHand", "lArm_smooz Z lArm"}));
        QCOMPARE(legacyParamsOf(doll.joint(doll.lHand)).mid(4), handRest);
        QCOMPARE(ryParamText(*doll.joint(doll.rArm)), right);
    }

    void planesOfCurves_data()
    {
        QTest::addColumn<int>("order");
        QTest::addColumn<QString>("plane");
        QTest::newRow("XZY") << int(RyRotationOrder::XZY) << "YZ";
        QTest::newRow("YXZ") << int(RyRotationOrder::YXZ) << "XZ";
        QTest::newRow("YZX") << int(RyRotationOrder::YZX) << "XZ";
        QTest::newRow("ZXY") << int(RyRotationOrder::ZXY) << "XY";
        QTest::newRow("ZYX") << int(RyRotationOrder::ZYX) << "XY";
    }
    void planesOfCurves()
    {
        QFETCH(int, order);
        QFETCH(QString, plane);
        RyParametricToolScene scene;
        scene.doll.joint(scene.doll.chest)->addJointParam(new RyLegacyCurve("curve", 3, scene.doll.lArm));
        changeRotationOrder(scene.doll.lArm, RyRotationOrder(order));
        QCOMPARE(legacyParamsOf(scene.doll.joint(scene.doll.chest)).last(), "curve " + plane + " lArm");
    }

    void nothingForNullOrTheSameOrder()
    {
        RyParametricToolScene scene;
        const QString before = RyParametricToolScene::wholeDump();
        int signalled = 0;
        const QObject listener;
        connect(scene.tool, &RyJointEditorTool::nodeChanged, &listener, [&] { ++signalled; });
        QCOMPARE(changeRotationOrder(nullptr, RyRotationOrder(3)), OrderChange::None);
        QCOMPARE(changeRotationOrder(scene.doll.lArm, RyRotationOrder(0)), OrderChange::None);
        scene.tool->changeRotationOrder(nullptr, RyRotationOrder(3));
        scene.tool->changeRotationOrder(scene.doll.lArm, RyRotationOrder(0));
        QCOMPARE(signalled, 0);
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        // A node without joints has an order all the same.
        QCOMPARE(changeRotationOrder(scene.prop, RyRotationOrder(3)), OrderChange::Done);
        QCOMPARE(changeRotationOrder(scene.lShin, RyRotationOrder(3)), OrderChange::Done);
        QCOMPARE(scene.lShin->getRotationOrder().order(), 3);
    }

    void anglesOfANewBoneFollow()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        QCOMPARE(anglesOf(doll.param(doll.rHand, "jointy")), QList<float>({-90, -135, 135, 90}));
        changeRotationOrder(doll.rHand, RyRotationOrder(RyRotationOrder::YZX));
        // The end point lies above the floor: along +Y.
        for (const RyLegacyJointParam *param : {doll.param(doll.rHand, "jointz"), doll.param(doll.rHand, "jointx"),
                                                doll.param(doll.rArm, "rHand_jointx")}) {
            QCOMPARE(anglesOf(param), QList<float>({180, 135, 45, 0}));
            QCOMPARE(param->controllers()[0]->getDefaultValue(), 180.0f);
        }
        changeRotationOrder(doll.rHand, RyRotationOrder(RyRotationOrder::XYZ));
        QCOMPARE(anglesOf(doll.param(doll.rHand, "jointy")), QList<float>({-90, -135, 135, 90}));
    }

    void anglesByDirectionFollowByDirection()
    {
        RyParametricToolScene scene;
        auto *leg = new RyBone;
        leg->setName(QStringLiteral("leg"));
        leg->setRotationOrder(RyRotationOrder(RyRotationOrder::YXZ));
        leg->setOrigin({20, 90, 30}, true);
        leg->setEndPoint({15, 50, 20}, true);
        scene.doll.chest->addNodeChild(leg);
        ryScene()->addNode(leg);
        RyLegacyJointMaker(leg, RyLegacyJointMaker::Side::ByDirection).make(scene.doll.chest, true);
        QCOMPARE(anglesOf(scene.doll.param(leg, "jointx")), QList<float>({0, -45, -135, 180}));
        changeRotationOrder(leg, RyRotationOrder(RyRotationOrder::ZXY));
        QCOMPARE(anglesOf(scene.doll.param(leg, "jointx")), QList<float>({90, 45, -45, -90}));
    }

    void otherAnglesStay()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        auto *bend = dynamic_cast<RyLegacyBendParam *>(doll.param(doll.lArm, "jointz"));
        bend->getStaticAngleAController()->setValue(70);
        QCOMPARE(changeRotationOrder(doll.lArm, RyRotationOrder(RyRotationOrder::YZX)), OrderChange::AnglesKept);
        QCOMPARE(anglesOf(bend), QList<float>({70, 45, -45, -90}));
        QCOMPARE(bend->getAxis(), 0);
        // The other bend followed.
        QCOMPARE(anglesOf(doll.param(doll.lArm, "jointz")), QList<float>({180, 135, 45, 0}));
        // Angles that do not count are not worth telling of.
        bend->setApplyAngles(false);
        QCOMPARE(changeRotationOrder(doll.lArm, RyRotationOrder(RyRotationOrder::XYZ)), OrderChange::Done);
    }

    void spheresOfReaxedParameters()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        RyLegacyJointParam *twist = doll.param(doll.lArm, "twistx");
        RyLegacyJointParam *second = doll.param(doll.lArm, "jointy");
        RyLegacyJointParam *third = doll.param(doll.lArm, "jointz");
        RyLegacyJointParam *copy = doll.param(doll.chest, "lArm_jointz");
        const QList<float> values{1, 2, 3, 10, 20, 30, 5, 1.5f, 1.25f, 0.75f};
        for (const RyLegacyJointParam *param : {twist, second, third, copy})
            setSphere(param, values);
        third->getStaticSphere()->getZRotControl()->setDefaultValue(33);
        changeRotationOrder(doll.lArm, RyRotationOrder(RyRotationOrder::ZYX));
        const QList<float> moved{1, 2, 3, 30, 20, 10, 5, 0.75f, 1.25f, 1.5f};
        QCOMPARE(sphereOf(twist), moved);
        QCOMPARE(sphereOf(second), values);
        QCOMPARE(sphereOf(third), moved);
        QCOMPARE(sphereOf(copy), moved);
        QCOMPARE(third->getStaticSphere()->getXRotControl()->getDefaultValue(), 33.0f);
    }

    void nothingMovesAtRest_data()
    {
        QTest::addColumn<int>("order");
        for (int order = RyRotationOrder::XYZ; order <= RyRotationOrder::ZYX; ++order)
            QTest::addRow("%s", qPrintable(RyRotationOrder(order).name())) << order;
    }
    void nothingMovesAtRest()
    {
        QFETCH(int, order);
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        for (RyBone *bone : {doll.chest, doll.lArm, doll.lHand, doll.lTip, doll.rArm, doll.rHand, doll.rTip}) {
            for (RyFloatProperty *turn : {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()})
                turn->setValue(0);
        }
        for (RyLegacyJointParam *param : doll.joint(doll.lArm)->params()) {
            param->setFlags(param->flags() | RyLegacyJointParam::ApplyMatrices | RyLegacyJointParam::ApplyBulges |
                            RyLegacyJointParam::ApplyBlend | RyLegacyJointParam::ApplyZones);
            for (RyFloatProperty *value : param->controllers())
                value->setValue(value->getValue() + 0.2f);
        }
        const std::vector<RyVec3> rest = doll.mesh()->getPositions();
        // Once posed, so that what was worked out before the change is there.
        doll.lArm->getZRotControl()->setValue(50);
        const std::vector<RyVec3> posed = doll.figure->getObject()->getDeformedPositions();
        QVERIFY(posed != rest);
        doll.lArm->getZRotControl()->setValue(0);
        changeRotationOrder(doll.lArm, RyRotationOrder(order));
        QVERIFY(doll.figure->getObject()->getDeformedPositions() == rest);
        // And a pose is that of a figure that was never in another order.
        doll.lArm->getZRotControl()->setValue(50);
        const std::vector<RyVec3> after = doll.figure->getObject()->getDeformedPositions();
        RyLegacyDeformer fresh;
        fresh.setRig(RyLegacyRig::of(*doll.binding, *doll.figure), rest);
        std::vector<RyVec3> expected;
        fresh.deform(rest, RyLegacyRig::controlsOf(*doll.figure), expected);
        QVERIFY(after == expected);
    }

    void isUndoable()
    {
        RyParametricToolScene scene;
        setSphere(scene.doll.param(scene.doll.lArm, "jointy"), {1, 2, 3, 10, 20, 30, 5, 1.5f, 1.25f, 0.75f});
        const QString before = RyParametricToolScene::wholeDump();
        checkUndoInHold([&] { changeRotationOrder(scene.doll.lArm, RyRotationOrder(RyRotationOrder::YZX)); });
        const QString after = RyParametricToolScene::wholeDump();
        ryUndoStack()->undo();
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        ryUndoStack()->redo();
        QCOMPARE(RyParametricToolScene::wholeDump(), after);
    }

    void toolTellsOfTheNodeLast()
    {
        RyParametricToolScene scene;
        scene.select(scene.doll.lArm);
        QStringList calls;
        const QObject listener;
        connect(scene.doll.lArm, &RyNode::rotationOrderChanged, &listener, [&] { calls << "order"; });
        connect(scene.doll.binding, &RyLegacyBinding::bindingChanged, &listener, [&] { calls << "joints"; });
        connect(scene.tool, &RyJointEditorTool::nodeChanged, &listener,
                [&](RyNode *node) { calls << node->getName(); });
        scene.tool->changeRotationOrder(scene.doll.lArm, RyRotationOrder(RyRotationOrder::ZYX));
        QCOMPARE(calls, QStringList({"joints", "order", "lArm"}));
        // Of another node it tells nothing.
        scene.select(scene.doll.lHand);
        calls.clear();
        scene.tool->changeRotationOrder(scene.doll.lArm, RyRotationOrder(RyRotationOrder::XYZ));
        QCOMPARE(calls, QStringList({"joints", "order"}));
    }

    void actionsGoThroughTheTool()
    {
        RyParametricToolScene scene;
        scene.window->getViewportMgr()->setActiveTool(scene.windowTool);
        ryScene()->setSelection({scene.doll.lArm});
        QCoreApplication::sendPostedEvents();
        scene.doll.param(scene.doll.lArm, "jointz")->controllers()[1]->setValue(44);
        const QString before = RyParametricToolScene::wholeDump();
        RyJERotationOrderYZXAction().executeAction();
        QVERIFY(scene.doll.param(scene.doll.lArm, "twisty"));
        QCOMPARE(scene.window->statusBar()->currentMessage(),
                 QStringLiteral("The bend angles stay as they were. \"Fit Zones to Bone\" turns them along the bone."));
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        // Without a window there is no tool.
        scene.window.reset();
        RyJERotationOrderYZXAction().executeAction();
        QCOMPARE(scene.doll.lArm->getRotationOrder().order(), int(RyRotationOrder::YZX));
        QVERIFY(!scene.doll.param(scene.doll.lArm, "twisty"));
    }
};

RY_TEST(RyChangeRotationOrderTest)
#include "tst_changeRotationOrder.moc"
