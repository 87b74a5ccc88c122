#include "support/RyTest.h"

#include "ParametricScene.h"
#include "paramTexts.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

namespace {

using Side = RyLegacyJointMaker::Side;

RyBone *addBone(RyNode *parent, const RyVec3 &origin, const RyVec3 &end, int order)
{
    auto *bone = new RyBone;
    bone->setName(QStringLiteral("B"));
    bone->setRotationOrder(RyRotationOrder(order));
    bone->setOrigin(origin, true);
    bone->setEndPoint(end, true);
    parent->addNodeChild(bone);
    ryScene()->addNode(bone);
    return bone;
}

RyMatrix4 sphereAt(float size, const RyVec3 &center)
{
    RyMatrix4 matrix(true);
    matrix.scale(size);
    matrix.translate(center);
    return matrix;
}

bool isNear(const RyMatrix4 &a, const RyMatrix4 &b)
{
    for (int i = 0; i < 16; ++i) {
        if (std::abs(a.data()[i] - b.data()[i]) > 1e-3f)
            return false;
    }
    return true;
}

} // namespace

/// What a new joint consists of.
class RyLegacyJointMakerTest : public QObject
{
    Q_OBJECT

private slots:
    void needsABinding()
    {
        ParametricScene scene;
        QVERIFY(!RyLegacyJointMaker(nullptr, Side::ByEndPoint).make(scene.chest, true));
        auto *figure = new RyFigure;
        ryScene()->addNode(figure);
        RyBone *bone = addBone(figure, {}, {1, 0, 0}, 0);
        QVERIFY(!RyLegacyJointMaker(bone, Side::ByEndPoint).make(figure, true));
        figure->setObject(new RyObject);
        QVERIFY(!RyLegacyJointMaker(bone, Side::ByEndPoint).make(figure, true));
        QCOMPARE(bone->getXRotControl()->getLabel(), QStringLiteral("X Rotate"));
        // The bone's own joint is filled only where there is one.
        QVERIFY(!RyLegacyJointMaker(scene.lArm, Side::ByEndPoint).make(scene.chest, false));
        QVERIFY(scene.binding->joints().empty());
    }

    void namesAxesDriversAndFlags()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        QCOMPARE(scene.joint(scene.lArm)->getName(), QStringLiteral("lArm"));
        // The chest turns about Y first, the arm and the hand about X.
        QCOMPARE(legacyParamsOf(scene.joint(scene.chest)),
                 QStringList({"twisty Y chest", "jointx X chest", "jointz Z chest", "lArm_twistx X lArm",
                              "lArm_jointy Y lArm", "lArm_jointz Z lArm", "lArm_smoox X lArm", "rArm_twistx X rArm",
                              "rArm_jointy Y rArm", "rArm_jointz Z rArm", "rArm_smoox X rArm"}));
        QCOMPARE(legacyParamsOf(scene.joint(scene.lHand)),
                 QStringList({"twistx X lHand", "jointy Y lHand", "jointz Z lHand", "lArm_smoox X lArm",
                              "lTip_twistx X lTip", "lTip_jointy Y lTip", "lTip_jointz Z lTip", "lTip_smoox X lTip"}));
        QCOMPARE(legacyParamsOf(scene.joint(scene.lArm)).mid(0, 4),
                 QStringList({"twistx X lArm", "jointy Y lArm", "jointz Z lArm", "chest_smooy Y chest"}));
        using Param = RyLegacyJointParam;
        const unsigned high = Param::HighSide;
        const unsigned low = Param::LowSide;
        const auto flags = [&](const RyBone *bone, const char *name) { return scene.param(bone, name)->flags(); };
        QCOMPARE(flags(scene.lHand, "twistx"), 0u);
        QCOMPARE(flags(scene.lHand, "jointy"), unsigned(Param::ApplyAngles));
        QCOMPARE(flags(scene.lArm, "lHand_twistx"), unsigned(Param::Flipped));
        QCOMPARE(flags(scene.lArm, "lHand_jointz"), Param::Flipped | Param::ApplyAngles);
        // High on the child's side of the left hand, low on that of the right one.
        QCOMPARE(flags(scene.lHand, "lArm_smoox"), high);
        QCOMPARE(flags(scene.lArm, "lHand_smoox"), low);
        QCOMPARE(flags(scene.rHand, "rArm_smoox"), low);
        QCOMPARE(flags(scene.rArm, "rHand_smoox"), high);
        // The two sides of a joint begin alike.
        for (const RyBone *bone : {scene.lHand, scene.rTip}) {
            const RyLegacyJointParam *own = scene.joint(bone)->params()[1];
            const RyLegacyJointParam *copy = own->findPartner();
            QVERIFY(copy && copy->isFlipped());
            QCOMPARE(ryParamText(*copy).section(' ', 8), ryParamText(*own).section(' ', 8));
        }
    }

    void anglesOfTheTable_data()
    {
        QTest::addColumn<int>("order");
        QTest::addColumn<bool>("forward");
        QTest::addColumn<QList<int>>("first");
        QTest::addColumn<QList<int>>("second");
        const QList<int> zero{2, 1, -1, -2};
        const QList<int> half{-2, -3, 3, 2};
        const QList<int> quarter{4, 3, 1, 0};
        const QList<int> threeQuarters{0, -1, -3, 4};
        for (const int order : {RyRotationOrder::XYZ, RyRotationOrder::XZY}) {
            QTest::addRow("X forward %d", order) << order << true << zero << zero;
            QTest::addRow("X backward %d", order) << order << false << half << half;
        }
        for (const int order : {RyRotationOrder::YXZ, RyRotationOrder::YZX}) {
            QTest::addRow("Y forward %d", order) << order << true << quarter << quarter;
            QTest::addRow("Y backward %d", order) << order << false << threeQuarters << threeQuarters;
        }
        for (const int order : {RyRotationOrder::ZXY, RyRotationOrder::ZYX}) {
            QTest::addRow("Z forward %d", order) << order << true << half << quarter;
            QTest::addRow("Z backward %d", order) << order << false << zero << threeQuarters;
        }
    }

    void anglesOfTheTable()
    {
        QFETCH(int, order);
        QFETCH(bool, forward);
        QFETCH(QList<int>, first);
        QFETCH(QList<int>, second);
        ParametricScene scene;
        const int axis = RyRotationOrder(order)[0];
        const RyVec3 end = RyVec3(5, 5, 5) + RyVec3::axis(axis) * (forward ? -5.0f : -5.001f);
        // The end point counts, wherever the origin lies.
        RyBone *bone = addBone(scene.lArm, {6, 6, 6}, end, order);
        const RyLegacyJoint *joint = RyLegacyJointMaker(bone, Side::ByEndPoint).make(scene.lArm, true);
        QCOMPARE(int(joint->params().size()), 4);
        for (size_t i = 0; i < 2; ++i) {
            const auto *bend = dynamic_cast<const RyLegacyBendParam *>(joint->params()[i + 1]);
            QVERIFY(bend && bend->applyAngles() && bend->getAxis() != axis);
            const QList<int> expected = i == 0 ? first : second;
            for (int k = 0; k < 4; ++k) {
                QCOMPARE(bend->controllers()[size_t(k)]->getValue(), 45.0f * float(expected[k]));
                QCOMPARE(bend->controllers()[size_t(k)]->getDefaultValue(), 45.0f * float(expected[k]));
            }
            // The ray in the middle lies along the first axis.
            const double b = expected[1] * M_PI / 4;
            const double mid = b - (b >= expected[2] * M_PI / 4 ? M_PI / 4 : -3 * M_PI / 4 - M_PI);
            const float c = float(std::cos(mid));
            const float s = float(std::sin(mid));
            const RyVec3 ray = bend->getAxis() == 0   ? RyVec3(0, s, -c)
                               : bend->getAxis() == 1 ? RyVec3(c, 0, s)
                                                      : RyVec3(c, s, 0);
            QVERIFY(ryIsNear(ray, RyVec3::axis(axis) * (forward ? 1.0f : -1.0f), 1e-5f));
        }
        const auto *twist = dynamic_cast<const RyLegacyTwistParam *>(joint->params()[0]);
        QVERIFY(twist);
        QCOMPARE(twist->getStart(), forward ? -24384.0f : 24384.0f);
        QCOMPARE(twist->getEnd(), forward ? 24384.0f : -24384.0f);
        const auto *scale = dynamic_cast<const RyLegacySmoothScale *>(joint->params()[3]);
        QVERIFY(scale);
        QCOMPARE(scale->getLoEnd(), -24384.0f);
        QCOMPARE(scale->getLoStart(), -24140.16f);
        QCOMPARE(scale->getHiStart(), 24140.16f);
        QCOMPARE(scale->getHiEnd(), 24384.0f);
        QCOMPARE(scale->hiValid(), forward);
        QCOMPARE(scale->loValid(), !forward);
    }

    void sideByDirectionIsAskedInBoneAxes()
    {
        ParametricScene scene;
        // Its end point has a positive coordinate, but it goes down.
        RyBone *leg = addBone(scene.chest, {5, 90, 0}, {5, 50, 0}, RyRotationOrder::YXZ);
        QVERIFY(RyLegacyJointMaker::goesForward(*leg, 1, Side::ByEndPoint));
        QVERIFY(!RyLegacyJointMaker::goesForward(*leg, 1, Side::ByDirection));
        leg->setOrientation(RyQuat({0, 0, 1}, float(M_PI)), true);
        QVERIFY(RyLegacyJointMaker::goesForward(*leg, 1, Side::ByDirection));
        leg->setOrientation(RyQuat(), true);
        const RyLegacyJoint *joint = RyLegacyJointMaker(leg, Side::ByDirection).make(scene.chest, true);
        QCOMPARE(joint->params()[1]->controllers()[0]->getValue(), 0.0f);
    }

    void spheresWithoutAPair()
    {
        ParametricScene scene;
        scene.makeUntidy();
        RyBone *bone = addBone(scene.lHand, {3, 4, 5}, {3, 4, 25}, 0);
        const RyLegacyJoint *joint = RyLegacyJointMaker(bone, Side::ByEndPoint).make(scene.lHand, true);
        for (const RyLegacyJointParam *param : joint->params()) {
            QVERIFY(isNear(param->getDynamicMatrix(), sphereAt(10, {3, 4, 5})));
            QVERIFY(isNear(param->getStaticMatrix(), sphereAt(10, {3, 4, 5})));
            for (const RyFloatProperty *control : param->getStaticSphere()->controls())
                QCOMPARE(control->getDefaultValue(), control->getValue());
        }
        scene.figure->setSelectionMap(nullptr);
        joint = RyLegacyJointMaker(scene.lTip, Side::ByEndPoint).make(scene.lHand, true);
        const float length = (scene.lTip->getEndPoint() - scene.lTip->getOrigin()).length();
        QVERIFY(isNear(joint->params()[0]->getDynamicMatrix(), sphereAt(length / 2, scene.lTip->getOrigin())));
    }

    void spheresOfAPairEncloseItsGroup()
    {
        ParametricScene scene;
        scene.makeUntidy();
        const RyLegacyJoint *joint = RyLegacyJointMaker(scene.lHand, Side::ByEndPoint).make(scene.lArm, true);
        // The box of the hand's group in its own axes about its origin.
        RyBox3 box;
        const RyFaceGroup *group = scene.mesh()->findFaceGroup(QStringLiteral("lHand"));
        for (int i = 0; i < group->getFacets().count(); ++i) {
            const RyFacet &facet = scene.mesh()->getFacet(group->getFacets().getIndex(i));
            for (const int vertex : facet.vertices) {
                const RyVec3 from = scene.mesh()->getPositions()[size_t(vertex)] - scene.lHand->getOrigin();
                box.include(scene.lHand->getOrientation().inverse().multVec(from) + scene.lHand->getOrigin());
            }
        }
        QVERIFY(!ryIsNear(box.getCenter(), scene.lHand->getBoundingBox().getCenter(), 1.0f));
        QVERIFY(isNear(joint->params()[1]->getDynamicMatrix(), sphereAt(box.getSize() / 2, box.getCenter())));
        QVERIFY(isNear(joint->params()[1]->getStaticMatrix(), sphereAt(box.getSize() / 2, box.getCenter())));
        const RyOrientedBox3 oriented = scene.lHand->getOrientedBoundingBox();
        QVERIFY(ryIsNear(oriented.box.getMin(), box.getMin(), 1e-3f) &&
                ryIsNear(oriented.box.getMax(), box.getMax(), 1e-3f));
        QCOMPARE(oriented.transform, RyMatrix3());
    }

    void onlyANewJointLabelsTheRotations()
    {
        ParametricScene scene;
        auto *joint = new RyLegacyJoint;
        joint->setBone(scene.lHand, true);
        joint->setName(QStringLiteral("mine"));
        scene.binding->addJoint(joint);
        QCOMPARE(RyLegacyJointMaker(scene.lHand, Side::ByEndPoint).make(scene.lArm, false), joint);
        QCOMPARE(int(scene.binding->joints().size()), 1);
        QCOMPARE(int(joint->params().size()), 4);
        QCOMPARE(scene.lHand->getYRotControl()->getLabel(), QStringLiteral("Y Rotate"));
        QVERIFY(RyLegacyJointMaker(scene.lTip, Side::ByEndPoint).make(scene.lHand, true));
        QCOMPARE(scene.lTip->getXRotControl()->getLabel(), QStringLiteral("XRot"));
        QCOMPARE(scene.lTip->getYRotControl()->getLabel(), QStringLiteral("YRot"));
        QCOMPARE(scene.lTip->getZRotControl()->getLabel(), QStringLiteral("ZRot"));
        QCOMPARE(joint->getName(), QStringLiteral("mine"));
    }

    void belowTheFigureAndBelowABoneWithoutAJoint()
    {
        ParametricScene scene;
        const RyLegacyJoint *chest = RyLegacyJointMaker(scene.chest, Side::ByEndPoint).make(scene.figure, true);
        QCOMPARE(legacyParamsOf(chest), QStringList({"twisty Y chest", "jointx X chest", "jointz Z chest"}));
        // The arm has no joint: its share of the scale is told on the hand's side alone.
        const RyLegacyJoint *hand = RyLegacyJointMaker(scene.lHand, Side::ByEndPoint).make(scene.lArm, true);
        QCOMPARE(legacyParamsOf(hand).last(), QStringLiteral("lArm_smoox X lArm"));
        QCOMPARE(int(scene.binding->joints().size()), 2);
    }

    void isUndoable()
    {
        ParametricScene scene;
        scene.makeUntidy();
        RyLegacyJointMaker(scene.lArm, Side::ByEndPoint).make(scene.chest, true);
        int announced = 0;
        const QObject listener;
        connect(scene.binding, &RyLegacyBinding::bindingChanged, &listener, [&] { ++announced; });
        checkUndoInHold([&] {
            RyLegacyJointMaker(scene.lHand, Side::ByEndPoint).make(scene.lArm, true);
            QCOMPARE(announced, 1);
        });
    }
};

RY_TEST(RyLegacyJointMakerTest)
#include "tst_RyLegacyJointMaker.moc"
