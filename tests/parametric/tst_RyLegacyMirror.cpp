#include "support/RyTest.h"

#include "ParametricScene.h"
#include "paramTexts.h"

#include "rycore/figure/RyLegacyMirror.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

#include <random>

namespace {

RyVec3 reflected(RyVec3 v, int axis)
{
    v[axis] = -v[axis];
    return v;
}

/// Bone to bone, as the rigging is mirrored before the joints are.
void mirrorRigging(const RyBone *source, RyBone *target, int axis)
{
    target->setRotationOrder(source->getRotationOrder());
    target->setOrigin(reflected(source->getOrigin(), axis));
    target->setEndPoint(reflected(source->getEndPoint(), axis));
    RyVec3 around;
    float angle = 0;
    source->getOrientation().getValue(around, angle);
    target->setOrientation(RyQuat(reflected(around, axis), -angle));
}

/// The direction of a ray of a bend, in figure space.
RyVec3 rayOf(const RyLegacyJointParam *param, int index)
{
    const double t = double(param->controllers()[size_t(index)]->getValue()) * M_PI / 180;
    const float c = float(std::cos(t));
    const float s = float(std::sin(t));
    const RyVec3 ray = param->getAxis() == 0   ? RyVec3(0, s, -c)
                       : param->getAxis() == 1 ? RyVec3(c, 0, s)
                                               : RyVec3(c, s, 0);
    return param->getDriver()->getOrientation().multVec(ray);
}

/// How far a point of figure space is out of a sphere, as a multiple of its radius.
float distanceIn(const RyLegacyJointParam *param, const RyVec3 &point)
{
    const RyBone *driver = param->getDriver();
    const RyVec3 x = driver->getOrientation().inverse().multVec(point - driver->getOrigin()) + driver->getOrigin();
    return param->getStaticMatrix().inverse().multVecMatrix(x).length();
}

/// Values, flags and spheres that an artist might leave, other defaults among them.
void workOn(const RyLegacyJoint *joint, std::mt19937 &random)
{
    std::uniform_int_distribution<int> number(-150, 150);
    for (RyLegacyJointParam *param : joint->params()) {
        for (RyFloatProperty *value : param->controllers()) {
            value->setDefaultValue(float(number(random)));
            value->setValue(float(number(random)));
        }
        for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
            for (size_t i = 0; i < 10; ++i)
                sphere->controls()[i]->setValue(i < 6 ? float(number(random))
                                                      : 1.0f + 0.01f * float(number(random) + 151));
        }
        param->setFlags((param->flags() & RyLegacyJointParam::Flipped) |
                        (unsigned(random()) & 254u & ~unsigned(RyLegacyJointParam::Flipped)));
    }
}

/// Zones, spheres and bulges that bend an arm, as an artist sets them by hand on both sides of a joint.
void shapeZones(RyLegacyJointParam *param, std::mt19937 &random)
{
    const auto number = [&random](double low, double high) {
        return float(std::uniform_real_distribution<double>(low, high)(random));
    };
    const RyVec3 origin = param->getDriver()->getOrigin();
    param->beginEdit();
    const std::vector<RyFloatProperty *> values = param->controllers();
    if (param->type() == RyLegacyJointParam::Bend) {
        const double angles[4] = {110, 30, -30, -110};
        for (size_t i = 0; i < 4; ++i)
            values[i]->setValue(float(angles[i]) + number(-20, 20));
        for (size_t i = 4; i < 8; ++i)
            values[i]->setValue(number(-0.3, 0.3));
    } else {
        for (RyFloatProperty *value : values)
            value->setValue(origin[param->getAxis()] + number(-15, 15));
    }
    param->getDynamicSphere()->getScaleControl()->setValue(number(6, 9));
    param->getStaticSphere()->getScaleControl()->setValue(number(14, 20));
    for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
        for (size_t i = 0; i < 3; ++i)
            sphere->controls()[i]->setValue(origin[int(i)] + number(-4, 4));
        for (size_t i = 3; i < 6; ++i)
            sphere->controls()[i]->setValue(number(-60, 60));
        sphere->getXScaleControl()->setValue(number(0.7, 1.3));
    }
    param->setFlags(param->flags() | RyLegacyJointParam::ApplyAngles | RyLegacyJointParam::ApplyBulges |
                    RyLegacyJointParam::ApplyMatrices | RyLegacyJointParam::ApplyBlend |
                    RyLegacyJointParam::ApplyZones);
    param->finishEdit();
}

/// Turns about the mirror axis stay, the others are reversed; moves along it are.
void mirrorPose(const RyBone *source, RyBone *target, int axis)
{
    const RyFloatProperty *turns[3] = {source->getXRotControl(), source->getYRotControl(), source->getZRotControl()};
    RyFloatProperty *turned[3] = {target->getXRotControl(), target->getYRotControl(), target->getZRotControl()};
    const RyFloatProperty *moves[3] = {source->getXTransControl(), source->getYTransControl(),
                                       source->getZTransControl()};
    RyFloatProperty *moved[3] = {target->getXTransControl(), target->getYTransControl(), target->getZTransControl()};
    for (int k = 0; k < 3; ++k) {
        turned[k]->setValue(k == axis ? turns[k]->getValue() : -turns[k]->getValue());
        moved[k]->setValue(k == axis ? -moves[k]->getValue() : moves[k]->getValue());
    }
    target->getYScaleControl()->setValue(source->getYScaleControl()->getValue());
}

} // namespace

/// Joint parameters of one side of a figure on the other.
class RyLegacyMirrorTest : public QObject
{
    Q_OBJECT

private slots:
    void reflects_data()
    {
        QTest::addColumn<int>("axis");
        QTest::newRow("X") << 0;
        QTest::newRow("Y") << 1;
        QTest::newRow("Z") << 2;
    }
    void anglesOfMoreThanATurn()
    {
        ParametricScene scene;
        scene.makeJoints();
        int bends = 0;
        for (const RyLegacyJointParam *from : scene.joint(scene.lHand)->params()) {
            RyLegacyJointParam *to = scene.joint(scene.rHand)->findParam(from->getName());
            if (!to || from->type() != RyLegacyJointParam::Bend || from->getAxis() != 1)
                continue;
            ++bends;
            from->controllers()[3]->setValue(-400.0f);
            from->controllers()[2]->setValue(0.0f);
            to->controllers()[1]->setValue(1.0f);
            RyLegacyMirror::mirrorJoint(scene.joint(scene.lHand), scene.joint(scene.rHand), 2);
            QCOMPARE(to->controllers()[0]->getValue(), 40.0f);
            QCOMPARE(to->controllers()[1]->getValue(), 0.0f);
            QVERIFY(!std::signbit(to->controllers()[1]->getValue()));
        }
        QVERIFY(bends > 0);
    }
    void reflects()
    {
        QFETCH(int, axis);
        ParametricScene scene;
        scene.makeUntidy();
        for (const auto &[source, target] : {std::pair(scene.lArm, scene.rArm), std::pair(scene.lHand, scene.rHand)})
            mirrorRigging(source, target, axis);
        scene.makeJoints();
        std::mt19937 random(ryTestSeed());
        for (RyBone *bone : {scene.chest, scene.lArm, scene.lHand})
            workOn(scene.joint(bone), random);
        const QString sourceBefore = ryParamText(*scene.joint(scene.lHand)) + ryParamText(*scene.joint(scene.lArm));
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lHand), scene.joint(scene.rHand), axis);
        QCOMPARE(ryParamText(*scene.joint(scene.lHand)) + ryParamText(*scene.joint(scene.lArm)), sourceBefore);

        int compared = 0;
        for (const RyBone *side : {scene.lHand, scene.lArm}) {
            for (const RyLegacyJointParam *from : scene.joint(side)->params()) {
                const bool isHands = from->getDriver() == scene.lHand || from->getName() == "lArm_smoox";
                QString name = from->getName();
                if (name.startsWith('l'))
                    name[0] = 'r';
                const RyLegacyJointParam *to =
                    scene.joint(side == scene.lHand ? scene.rHand : scene.rArm)->findParam(name);
                if (!isHands)
                    continue;
                QVERIFY(to);
                ++compared;
                QCOMPARE(to->isFlipped(), from->isFlipped());
                QCOMPARE(to->applyMatrices(), from->applyMatrices());
                const RyVec3 point(20, 110, 7);
                QVERIFY(std::abs(distanceIn(to, reflected(point, axis)) / distanceIn(from, point) - 1.0f) < 1e-3f);
                if (from->type() == RyLegacyJointParam::Bend) {
                    const bool same = from->getAxis() == axis;
                    for (int i = 0; i < 4; ++i)
                        QVERIFY(ryIsNear(rayOf(to, same ? i : 3 - i), reflected(rayOf(from, i), axis), 1e-4f));
                    // Left and right of the other turn.
                    const size_t crosswise[] = {7, 6, 5, 4};
                    for (size_t i = 0; i < 4; ++i)
                        QCOMPARE(to->controllers()[4 + i]->getValue(),
                                 from->controllers()[same ? 4 + i : crosswise[i]]->getValue());
                } else if (from->type() == RyLegacyJointParam::Twist) {
                    const float sign = from->getAxis() == axis ? -1.0f : 1.0f;
                    for (size_t i = 0; i < 2; ++i) {
                        QCOMPARE(to->controllers()[i]->getValue(), sign * from->controllers()[i]->getValue());
                        QCOMPARE(to->controllers()[i]->getDefaultValue(),
                                 sign * from->controllers()[i]->getDefaultValue());
                    }
                } else {
                    const auto *a = dynamic_cast<const RyLegacySmoothScale *>(from);
                    const auto *b = dynamic_cast<const RyLegacySmoothScale *>(to);
                    const bool along = a->getAxis() == axis;
                    QCOMPARE(b->getHiStart(), along ? -a->getLoStart() : a->getHiStart());
                    QCOMPARE(b->getHiEnd(), along ? -a->getLoEnd() : a->getHiEnd());
                    QCOMPARE(b->getLoStart(), along ? -a->getHiStart() : a->getLoStart());
                    QCOMPARE(b->getLoEnd(), along ? -a->getHiEnd() : a->getLoEnd());
                    QCOMPARE(b->hiValid(), along ? a->loValid() : a->hiValid());
                    QCOMPARE(b->applyZones(), a->applyZones());
                }
            }
        }
        QCOMPARE(compared, 8);
        // And back: what was there.
        RyLegacyMirror::mirrorJoint(scene.joint(scene.rHand), scene.joint(scene.lHand), axis);
        QCOMPARE(ryParamText(*scene.joint(scene.lHand)) + ryParamText(*scene.joint(scene.lArm)), sourceBefore);
    }

    void copiesOfChildrenAreTheChildrens()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        const RyLegacyJointParam *copy = scene.param(scene.rArm, "rHand_jointy");
        scene.param(scene.lArm, "lHand_jointy")->controllers()[0]->setValue(77);
        const QString before = ryParamText(*copy);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lArm), scene.joint(scene.rArm), 0);
        QCOMPARE(ryParamText(*copy), before);
    }

    void tableOfNewBonesTurnsIntoItself()
    {
        ParametricScene scene;
        scene.makeJoints();
        for (const char *name : {"jointy", "jointz"})
            scene.param(scene.rArm, name)->controllers()[2]->setValue(11);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lArm), scene.joint(scene.rArm), 0);
        for (const char *name : {"jointy", "jointz"}) {
            const auto *bend = dynamic_cast<const RyLegacyBendParam *>(scene.param(scene.rArm, name));
            QCOMPARE(bend->controllers()[0]->getValue(), -90.0f);
            QCOMPARE(bend->controllers()[1]->getValue(), -135.0f);
            QCOMPARE(bend->controllers()[2]->getValue(), 135.0f);
            QCOMPARE(bend->controllers()[3]->getValue(), 90.0f);
        }
    }

    void firstLetters_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("same") << "arm_smoox"
                              << "arm_smoox" << true;
        QTest::newRow("l to r") << "larm_smoox"
                                << "rarm_smoox" << true;
        QTest::newRow("L to r") << "Larm_smoox"
                                << "rarm_smoox" << true;
        QTest::newRow("r to l") << "rarm_smoox"
                                << "larm_smoox" << true;
        QTest::newRow("R stays") << "Rarm_smoox"
                                 << "Larm_smoox" << false;
        QTest::newRow("not L") << "larm_smoox"
                               << "Rarm_smoox" << false;
    }
    void firstLetters()
    {
        QFETCH(QString, source);
        QFETCH(QString, target);
        QFETCH(bool, isFound);
        ParametricScene scene;
        scene.makeJoints();
        // Driven by tips, so that only the names tell.
        auto *from = new RyLegacySmoothScale(source, 1, scene.lTip);
        auto *to = new RyLegacySmoothScale(target, 1, scene.rTip);
        from->setHiStart(12.5f);
        scene.joint(scene.lArm)->addJointParam(from);
        scene.joint(scene.rArm)->addJointParam(to);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lArm), scene.joint(scene.rArm), 0);
        QCOMPARE(to->getHiStart() == 12.5f, isFound);
    }

    void parentsOfOtherNames()
    {
        ParametricScene scene;
        scene.lArm->setName(QStringLiteral("leftArm"));
        scene.rArm->setName(QStringLiteral("rightArm"));
        scene.makeJoints();
        auto *from = dynamic_cast<RyLegacySmoothScale *>(scene.param(scene.lHand, "leftArm_smoox"));
        from->setHiStart(31);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lHand), scene.joint(scene.rHand), 0);
        QCOMPARE(dynamic_cast<RyLegacySmoothScale *>(scene.param(scene.rHand, "rightArm_smoox"))->getLoStart(), -31.0f);
    }

    void otherKindsAndNothing()
    {
        ParametricScene scene;
        scene.makeJoints();
        scene.joint(scene.lTip)->addJointParam(new RyLegacyTwistParam("odd", 0, scene.lTip));
        scene.joint(scene.rTip)->addJointParam(new RyLegacyBendParam("odd", 0, scene.rTip));
        const QString odd = ryParamText(*scene.param(scene.rTip, "odd"));
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lTip), scene.joint(scene.rTip), 0);
        QCOMPARE(ryParamText(*scene.param(scene.rTip, "odd")), odd);
        // Values of a bend about another axis are angles of other rays.
        auto *from = new RyLegacyBendParam("tilted", 1, scene.lTip);
        auto *to = new RyLegacyBendParam("tilted", 2, scene.rTip);
        from->setFlags(RyLegacyJointParam::ApplyAngles | RyLegacyJointParam::ApplyBulges);
        from->controllers()[0]->setValue(33);
        from->getStaticSphere()->controls()[0]->setValue(4);
        scene.joint(scene.lTip)->addJointParam(from);
        scene.joint(scene.rTip)->addJointParam(to);
        const QString tilted = ryParamText(*to);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lTip), scene.joint(scene.rTip), 0);
        QCOMPARE(ryParamText(*to), tilted);
        from->setAxis(2);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.lTip), scene.joint(scene.rTip), 0);
        QVERIFY(ryParamText(*to) != tilted);
        const QString before = rySceneDump(*ryScene());
        RyLegacyMirror::mirrorJoint(nullptr, scene.joint(scene.rTip), 0);
        RyLegacyMirror::mirrorJoint(scene.joint(scene.rTip), nullptr, 0);
        QCOMPARE(rySceneDump(*ryScene()), before);
    }

    void mirroredPoseIsSymmetric()
    {
        ParametricScene scene;
        scene.makeUntidy();
        const std::vector<std::pair<RyBone *, RyBone *>> sides = {
            {scene.lArm, scene.rArm}, {scene.lHand, scene.rHand}, {scene.lTip, scene.rTip}};
        for (const auto &[source, target] : sides)
            mirrorRigging(source, target, 0);
        // What the arms hang on is symmetric itself.
        scene.chest->setOrientation(RyQuat({1, 0, 0}, 0.5f));
        scene.makeJoints();
        std::mt19937 random(ryTestSeed());
        for (const auto &[source, target] : sides) {
            for (RyLegacyJointParam *param : scene.joint(source)->params()) {
                const bool isScale = param->type() == RyLegacyJointParam::SmoothScale;
                if (isScale || param->getDriver() == source)
                    shapeZones(param, random);
                RyLegacyJointParam *partner = isScale || param->getDriver() != source ? nullptr : param->findPartner();
                if (partner) {
                    partner->copyValuesFrom(*param);
                    partner->setFlipped(true);
                }
            }
        }
        for (const auto &[source, target] : sides)
            RyLegacyMirror::mirrorJoint(scene.joint(source), scene.joint(target), 0);

        const std::vector<RyVec3> rest = scene.mesh()->getPositions();
        float turn = 30;
        for (const auto &[source, target] : sides) {
            source->getXRotControl()->setValue(turn);
            source->getYRotControl()->setValue(turn - 55);
            source->getZRotControl()->setValue(turn += 15);
            source->getXTransControl()->setValue(1.5f);
            source->getYTransControl()->setValue(-2);
            source->getYScaleControl()->setValue(1.2f);
            mirrorPose(source, target, 0);
        }
        const std::vector<RyVec3> posed = scene.figure->getObject()->getDeformedPositions();
        RyBox3 box;
        for (const RyVec3 &point : posed)
            box.include(point);
        float farthest = 0;
        int partly = 0;
        for (size_t v = 0; v < rest.size(); ++v) {
            // The tubes of the two sides stand in the same order, with their points the other way round.
            const size_t tube = v / 40;
            const size_t otherTube = tube == 0 ? 0 : tube < 4 ? tube + 3 : tube - 3;
            const size_t other = otherTube * 40 + v % 40 / 8 * 8 + (12 - v % 8) % 8;
            QVERIFY(ryIsNear(rest[other], reflected(rest[v], 0), 1e-4f));
            const RyVec3 expected = reflected(posed[other], 0);
            farthest = std::max(farthest, (posed[v] - expected).length() / box.getSize());
            bool follows = false;
            for (const RyBone *bone : scene.figure->getAllBones())
                follows = follows || ryIsNear(bone->figureMap().mapPoint(rest[v]), posed[v], 1e-2f);
            partly += follows ? 0 : 1;
        }
        QVERIFY2(farthest < 1e-5f, qPrintable(QString::number(double(farthest))));
        QVERIFY(partly > 50);
    }

    void isUndoable()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        std::mt19937 random(ryTestSeed());
        workOn(scene.joint(scene.lHand), random);
        checkUndoInHold([&] { RyLegacyMirror::mirrorJoint(scene.joint(scene.lHand), scene.joint(scene.rHand), 0); });
    }
};

RY_TEST(RyLegacyMirrorTest)
#include "tst_RyLegacyMirror.moc"
