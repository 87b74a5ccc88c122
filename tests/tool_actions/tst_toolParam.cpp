#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/undo/RyUndoStackHold.h"

using Param = RyLegacyJointParam;
using Tool = RyJointEditorTool;

namespace {

/// Puts parameters on a joint, before those that it has.
void putFirst(RyLegacyJoint *joint, const std::vector<Param *> &decoys)
{
    std::vector<RyRef<Param>> present;
    for (Param *param : joint->jointParamsIterator()) {
        present.emplace_back(param);
        joint->removeJointParam(param);
    }
    for (Param *decoy : decoys)
        joint->addJointParam(decoy);
    for (const RyRef<Param> &param : present)
        joint->addJointParam(param.get());
}

QString nameOf(const Param *param)
{
    return param ? param->getName() : QStringLiteral("none");
}

/// What the tool tells of its node and parameter, in order.
struct Told
{
    explicit Told(const Tool &tool)
    {
        QObject::connect(&tool, &Tool::nodeChanged, &m_listener,
                         [this](const RyNode *node) { told << (node ? node->getName() : QStringLiteral("no node")); });
        QObject::connect(&tool, &Tool::paramChanged, &m_listener,
                         [this](const Param *param) { told << nameOf(param); });
    }
    QStringList take() { return std::exchange(told, {}); }
    QStringList told;

private:
    QObject m_listener;
};

} // namespace

/// Which parameter the tool takes, and which partners.
class RyToolParamTest : public QObject
{
    Q_OBJECT

private slots:
    void parameterOfTheNode();
    void refusedParameters();
    void sameKindOnTheNextNode_data();
    void sameKindOnTheNextNode();
    void sameAxisAmongDecoys();
    void smoothScaleOfThisSide();
    void withoutAMatchTheLast();
    void nothingOnOtherNodes();
    void nothingChosenStaysSo();
    void forgottenWithTheParameter();
    void postedEventsFollowOnce();
    void partnerAmongDecoys();
    void bendPartnerAmongDecoys();
    void rotationOrderKeepsTheParameter();
    void rotationOrderMovesTheMemory();
    void sameNodeKeepsItsParameter();
    void inactiveToolHasNone();
};

void RyToolParamTest::parameterOfTheNode()
{
    RyParametricToolScene scene;
    scene.select(scene.doll.lHand);
    Told told(*scene.tool);
    Param *param = scene.doll.param(scene.doll.lHand, "jointz");
    const int redraws = scene.tool->drawnDataChangeCount();
    scene.tool->setParam(param);
    QCOMPARE(scene.tool->currentParam(), param);
    QCOMPARE(told.take(), QStringList("jointz"));
    QVERIFY(scene.tool->drawnDataChangeCount() > redraws);
    QCOMPARE(scene.tool->rememberedAxis(), 2);
    QCOMPARE(scene.tool->rememberedType(), int(Param::Bend));
    QVERIFY(!scene.tool->paramDrivenByParent());
    scene.tool->setParam(param);
    QCOMPARE(told.take(), QStringList());
    scene.tool->setParam(nullptr);
    QCOMPARE(told.take(), QStringList("none"));
    QVERIFY(!scene.tool->currentParam() && !scene.tool->partnerParam() && !scene.tool->bendPartnerParam());
    QCOMPARE(scene.tool->rememberedAxis(), -1);
    QCOMPARE(scene.tool->rememberedType(), 0);
    scene.tool->setParam(nullptr);
    QCOMPARE(told.take(), QStringList());
}

void RyToolParamTest::refusedParameters()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    scene.select(doll.lHand);
    scene.tool->setParam(doll.param(doll.lHand, "twistx"));
    Told told(*scene.tool);
    // The copy on the parent's joint is not of this one's.
    scene.tool->setParam(doll.param(doll.lArm, "lHand_twistx"));
    QVERIFY(!scene.tool->currentParam());
    QCOMPARE(told.take(), QStringList("none"));
    QCOMPARE(scene.tool->rememberedAxis(), -1);
    scene.tool->setParam(doll.param(doll.rHand, "twistx"));
    QCOMPARE(told.take(), QStringList());
    // A node without a joint has none.
    scene.select(scene.lShin);
    told.take();
    scene.tool->setParam(doll.param(doll.lHand, "twistx"));
    QVERIFY(!scene.tool->currentParam());
    QCOMPARE(told.take(), QStringList());
}

void RyToolParamTest::sameKindOnTheNextNode_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("next");
    QTest::newRow("twist") << "twistx"
                           << "twistx";
    QTest::newRow("bend Y") << "jointy"
                            << "jointy";
    QTest::newRow("bend Z") << "jointz"
                            << "jointz";
    QTest::newRow("scale by the parent") << "lArm_smoox"
                                         << "rArm_smoox";
    QTest::newRow("scale by the child") << "lTip_smoox"
                                        << "rTip_smoox";
}

void RyToolParamTest::sameKindOnTheNextNode()
{
    QFETCH(QString, chosen);
    QFETCH(QString, next);
    RyParametricToolScene scene;
    scene.select(scene.doll.lHand);
    Param *param = scene.doll.joint(scene.doll.lHand)->findParam(chosen);
    QVERIFY(param);
    scene.tool->setParam(param);
    Told told(*scene.tool);
    scene.select(scene.doll.rHand);
    QCOMPARE(nameOf(scene.tool->currentParam()), next);
    QCOMPARE(told.take(), QStringList({"rHand", next}));
}

void RyToolParamTest::sameAxisAmongDecoys()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    putFirst(doll.joint(doll.rHand),
             {new RyLegacyTwistParam("other driver", 1, doll.rTip), new RyLegacyTwistParam("no driver", 1),
              new RyLegacyBendParam("other axis", 0, doll.rHand), new RyLegacyCurve("plane", 4, doll.rHand),
              new RyLegacyTwistParam("first on Y", 1, doll.rHand)});
    scene.select(doll.lHand);
    scene.tool->setParam(doll.param(doll.lHand, "jointy"));
    scene.select(doll.rHand);
    QCOMPARE(nameOf(scene.tool->currentParam()), QStringLiteral("first on Y"));
    QCOMPARE(scene.tool->rememberedType(), int(Param::Twist));
}

void RyToolParamTest::smoothScaleOfThisSide()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    scene.select(doll.lHand);
    scene.tool->setParam(doll.param(doll.lHand, "lArm_smoox"));
    QVERIFY(scene.tool->paramDrivenByParent());
    // The axis does not count, the driver does; without one it is not the parent.
    putFirst(doll.joint(doll.rHand),
             {new RyLegacySmoothScale("no driver", 0), new RyLegacyTwistParam("twist", 0, doll.rArm),
              new RyLegacySmoothScale("of the child", 0, doll.rTip),
              new RyLegacySmoothScale("by the parent", 2, doll.rArm)});
    scene.select(doll.rHand);
    QCOMPARE(nameOf(scene.tool->currentParam()), QStringLiteral("by the parent"));
    QVERIFY(scene.tool->paramDrivenByParent());
    scene.tool->setParam(doll.param(doll.rHand, "of the child"));
    QVERIFY(!scene.tool->paramDrivenByParent());
    scene.select(doll.lHand);
    QCOMPARE(nameOf(scene.tool->currentParam()), QStringLiteral("lTip_smoox"));
    scene.select(doll.rHand);
    QCOMPARE(nameOf(scene.tool->currentParam()), QStringLiteral("no driver"));
    QVERIFY(!scene.tool->paramDrivenByParent());
    // A parameter of another kind leaves the flag as it was.
    scene.tool->setParam(doll.param(doll.rHand, "by the parent"));
    scene.tool->setParam(doll.param(doll.rHand, "jointz"));
    QVERIFY(scene.tool->paramDrivenByParent());
}

void RyToolParamTest::withoutAMatchTheLast()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    RyLegacyJoint *joint = doll.joint(doll.rHand);
    joint->removeJointParam(doll.param(doll.rHand, "jointz"));
    scene.select(doll.lHand);
    scene.tool->setParam(doll.param(doll.lHand, "jointz"));
    scene.select(doll.rHand);
    QCOMPARE(scene.tool->currentParam(), joint->params().back());
    for (Param *param : joint->jointParamsIterator())
        joint->removeJointParam(param);
    scene.select(doll.lHand);
    scene.select(doll.rHand);
    QVERIFY(!scene.tool->currentParam());
}

void RyToolParamTest::nothingOnOtherNodes()
{
    RyParametricToolScene scene;
    Told told(*scene.tool);
    for (RyNode *node : {static_cast<RyNode *>(scene.figure), static_cast<RyNode *>(scene.lShin), scene.prop,
                         static_cast<RyNode *>(scene.doll.figure)}) {
        scene.select(scene.doll.lHand);
        scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointy"));
        told.take();
        scene.select(node);
        QVERIFY(!scene.tool->currentParam());
        QCOMPARE(told.take(), QStringList({node->getName(), "none"}));
        QCOMPARE(scene.tool->rememberedAxis(), -1);
        scene.select(scene.rThigh);
        QCOMPARE(told.take(), QStringList("rThigh"));
    }
    // No node at all: what was chosen last is remembered.
    scene.select(scene.doll.lHand);
    scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointy"));
    told.take();
    ryScene()->selectAllNodes(false);
    QCoreApplication::processEvents();
    QCOMPARE(told.take(), QStringList({"no node", "none"}));
    QCOMPARE(scene.tool->rememberedAxis(), 1);
    scene.select(scene.doll.rArm);
    QCOMPARE(told.take(), QStringList({"rArm", "jointy"}));
}

void RyToolParamTest::nothingChosenStaysSo()
{
    RyParametricToolScene scene;
    Told told(*scene.tool);
    scene.select(scene.doll.lHand);
    scene.select(scene.doll.rArm);
    QCOMPARE(told.take(), QStringList({"lHand", "rArm"}));
    QVERIFY(!scene.tool->currentParam());
}

void RyToolParamTest::forgottenWithTheParameter()
{
    RyParametricToolScene scene;
    scene.select(scene.doll.lHand);
    scene.tool->setParam(scene.doll.param(scene.doll.lHand, "lArm_smoox"));
    scene.tool->setParam(nullptr);
    QVERIFY(!scene.tool->paramDrivenByParent());
    scene.select(scene.doll.rHand);
    QVERIFY(!scene.tool->currentParam());
}

void RyToolParamTest::postedEventsFollowOnce()
{
    RyParametricToolScene scene;
    scene.select(scene.doll.lHand);
    scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointy"));
    Told told(*scene.tool);
    for (RyNode *node : {scene.doll.lArm, scene.doll.chest, scene.doll.rTip, scene.doll.rArm})
        ryScene()->setSelection({node});
    QCOMPARE(nameOf(scene.tool->currentParam()), QStringLiteral("jointy"));
    QCOMPARE(scene.tool->currentParam()->getJoint()->getBone(), scene.doll.lHand);
    QCOMPARE(told.take(), QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(told.take(), QStringList({"rArm", "jointy"}));
    QCOMPARE(scene.tool->currentParam()->getJoint()->getBone(), scene.doll.rArm);
    // The same node once more changes nothing.
    ryScene()->setSelection({scene.doll.lTip});
    ryScene()->setSelection({scene.doll.rArm});
    QCoreApplication::processEvents();
    QCOMPARE(told.take(), QStringList("rArm"));
}

void RyToolParamTest::partnerAmongDecoys()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    putFirst(doll.joint(doll.lArm),
             {new RyLegacyBendParam("other driver", 1, doll.rHand), new RyLegacyBendParam("own", 1, doll.lArm),
              new RyLegacyBendParam("other axis", 2, doll.lTip), new RyLegacyCurve("plane", 5, doll.lHand)});
    scene.select(doll.lHand);
    scene.tool->setParam(doll.param(doll.lHand, "jointy"));
    QCOMPARE(nameOf(scene.tool->partnerParam()), QStringLiteral("lHand_jointy"));
    QVERIFY(!scene.tool->bendPartnerParam());
    scene.tool->setParam(doll.param(doll.lHand, "jointz"));
    QCOMPARE(nameOf(scene.tool->partnerParam()), QStringLiteral("lHand_jointz"));
    // The first of them, whatever its kind.
    auto *earlier = new RyLegacyTwistParam("earlier", 2, doll.lHand);
    putFirst(doll.joint(doll.lArm), {earlier});
    QCOMPARE(scene.tool->partnerParam(), static_cast<Param *>(earlier));
    doll.joint(doll.lArm)->removeJointParam(earlier);
    QCOMPARE(nameOf(scene.tool->partnerParam()), QStringLiteral("lHand_jointz"));
    // A bone whose parent has no joint.
    scene.select(doll.chest);
    scene.tool->setParam(doll.param(doll.chest, "twisty"));
    QVERIFY(scene.tool->currentParam() && !scene.tool->partnerParam());
}

void RyToolParamTest::bendPartnerAmongDecoys()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    putFirst(doll.joint(doll.lArm),
             {new RyLegacySmoothScale("other driver", 0, doll.chest),
              new RyLegacyBendParam("other kind", 0, doll.lHand), new RyLegacySmoothScale("first", 1, doll.lHand)});
    scene.select(doll.lHand);
    scene.tool->setParam(doll.param(doll.lHand, "lArm_smoox"));
    QCOMPARE(nameOf(scene.tool->bendPartnerParam()), QStringLiteral("first"));
    QCOMPARE(nameOf(scene.tool->partnerParam()), QStringLiteral("other kind"));
    // Of one that a child drives it stands on the child's joint.
    scene.tool->setParam(doll.param(doll.lHand, "lTip_smoox"));
    QCOMPARE(nameOf(scene.tool->bendPartnerParam()), QStringLiteral("lHand_smoox"));
    QCOMPARE(scene.tool->bendPartnerParam()->getJoint()->getBone(), doll.lTip);
    // A driver without a joint, and none.
    doll.binding->removeJoint(doll.joint(doll.lTip));
    QVERIFY(!scene.tool->bendPartnerParam());
    scene.tool->currentParam()->setDriver(nullptr);
    QVERIFY(!scene.tool->bendPartnerParam());
}

void RyToolParamTest::rotationOrderKeepsTheParameter()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    scene.select(doll.lHand);
    Param *param = doll.param(doll.lHand, "jointy");
    scene.tool->setParam(param);
    Param *partner = scene.tool->partnerParam();
    Told told(*scene.tool);
    scene.tool->changeRotationOrder(doll.lHand, RyRotationOrder(RyRotationOrder::ZXY));
    QCOMPARE(scene.tool->currentParam(), param);
    QCOMPARE(param->getAxis(), 0);
    QCOMPARE(scene.tool->partnerParam(), partner);
    QCOMPARE(partner->getAxis(), 0);
    QCOMPARE(told.take(), QStringList("lHand"));
}

void RyToolParamTest::rotationOrderMovesTheMemory()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    scene.select(doll.lHand);
    Param *param = doll.param(doll.lHand, "twistx");
    scene.tool->setParam(param);
    QCOMPARE(scene.tool->rememberedAxis(), 0);
    RyUndoStackHold hold;
    scene.tool->changeRotationOrder(doll.lHand, RyRotationOrder(RyRotationOrder::ZXY));
    hold.accept(QStringLiteral("Order"));
    QCOMPARE(nameOf(param), QStringLiteral("twistz"));
    QCOMPARE(scene.tool->rememberedAxis(), 2);
    scene.select(doll.rHand);
    QCOMPARE(nameOf(scene.tool->currentParam()), QStringLiteral("jointz"));
    scene.select(doll.lHand);
    QCOMPARE(scene.tool->currentParam(), param);
    ryUndoStack()->undo();
    QCOMPARE(scene.tool->currentParam(), param);
    QCOMPARE(scene.tool->rememberedAxis(), 0);
}

/// Though others are like it and stand before it: several children, and one more that the node drives.
void RyToolParamTest::sameNodeKeepsItsParameter()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    putFirst(doll.joint(doll.lHand), {new RyLegacyTwistParam("first on Y", 1, doll.lHand)});
    const std::pair<RyBone *, const char *> all[] = {
        {doll.lHand, "jointy"}, {doll.chest, "lArm_smoox"}, {doll.chest, "rArm_smoox"}};
    for (const auto &[bone, name] : all) {
        scene.select(bone);
        Param *param = doll.param(bone, name);
        QVERIFY2(param, name);
        scene.tool->setParam(param);
        Told told(*scene.tool);
        ryScene()->selectAllNodes(false);
        bone->select(true);
        QCoreApplication::processEvents();
        QCOMPARE(scene.tool->currentParam(), param);
        QCOMPARE(told.take(), QStringList(bone->getName()));
    }
}

void RyToolParamTest::inactiveToolHasNone()
{
    RyParametricToolScene scene;
    scene.select(scene.doll.lHand);
    scene.tool->setParam(scene.doll.param(scene.doll.lHand, "jointy"));
    Told told(*scene.tool);
    ryScene()->setSelection({scene.doll.rHand});
    scene.manager->setActiveTool(nullptr);
    QCOMPARE(told.take(), QStringList({"no node", "none"}));
    QVERIFY(!scene.tool->currentParam() && !scene.tool->partnerParam());
    QCOMPARE(scene.tool->cachedAngleB(), 0.0f);
    QCoreApplication::processEvents();
    QCOMPARE(told.take(), QStringList());
    scene.manager->setActiveTool(scene.tool);
    QCOMPARE(told.take(), QStringList({"rHand", "jointy"}));
}

RY_TEST(RyToolParamTest)

#include "tst_toolParam.moc"
