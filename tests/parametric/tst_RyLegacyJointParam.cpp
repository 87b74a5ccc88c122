#include "parametric/ParamArm.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/mesh/RyWeightMap.h"
#include "support/RyTest.h"

#include <QSignalSpy>

namespace {

RyMatrix4 sphereAt(const RyVec3 &centre, const RyVec3 &scale)
{
    RyMatrix4 matrix;
    matrix.scale(scale);
    matrix.rotate(RyQuat(RyVec3(1, -2, 0.5f), 0.7f));
    matrix.translate(centre);
    return matrix;
}

} // namespace

/// What a parameter keeps, which of it comes back, and edits that take its partner along.
class RyLegacyJointParamTest : public QObject
{
    Q_OBJECT

private:
    /// Undo leads back, redo forth again.
    static void checkStep(const ParamArm &f, const std::function<void()> &edit)
    {
        const QString before = ryBindingText(*f.binding);
        {
            RyUndoStackHold hold;
            edit();
            hold.accept("Edit");
        }
        const QString after = ryBindingText(*f.binding);
        QVERIFY(after != before);
        ryUndoStack()->undo();
        QCOMPARE(ryBindingText(*f.binding), before);
        ryUndoStack()->redo();
        QCOMPARE(ryBindingText(*f.binding), after);
    }

private slots:
    void newOnesHaveTheFlagsOfTheirKind()
    {
        const RyLegacyBendParam bend;
        QVERIFY(bend.applyAngles() && !bend.applyBulges() && !bend.applyMatrices() && !bend.isFlipped());
        QCOMPARE(bend.getAxis(), 0);
        QVERIFY(!bend.getDriver() && !bend.getJoint() && bend.getName().isEmpty());
        for (RyFloatProperty *bulge : {bend.getPosLeftBulgeController(), bend.getPosRightBulgeController(),
                                       bend.getNegLeftBulgeController(), bend.getNegRightBulgeController()})
            QCOMPARE(bulge->getValue(), 0.0f);
        const RyLegacyTwistParam twist;
        QVERIFY(!twist.applyBlend() && !twist.applyMatrices());
        const RyLegacySmoothScale scale;
        QVERIFY(!scale.applyZones() && !scale.applyMatrices());
        const RyLegacyCurve curve;
        QCOMPARE(curve.getAxis(), 3);
        QCOMPARE(int(bend.type()), 0);
        QCOMPARE(int(scale.type()), 1);
        QCOMPARE(int(twist.type()), 2);
        QCOMPARE(int(curve.type()), 3);
        for (const RyLegacyJointParam *param : std::initializer_list<const RyLegacyJointParam *>{&bend, &twist}) {
            QCOMPARE(param->getDynamicMatrix(), RyMatrix4());
            QCOMPARE(param->getStaticMatrix(), RyMatrix4());
        }
    }

    void slidersReachBeyondTheUsualLimits()
    {
        const RyLegacyTwistParam twist;
        const RyLegacySmoothScale scale;
        for (const RyLegacyJointParam *param : std::initializer_list<const RyLegacyJointParam *>{&twist, &scale}) {
            for (RyFloatProperty *zone : param->controllers()) {
                QCOMPARE(zone->getMin(), -24384.0f);
                QCOMPARE(zone->getMax(), 24384.0f);
                QVERIFY(!zone->isClamped());
                zone->setValue(30000);
                QCOMPARE(zone->getValue(), 30000.0f);
            }
        }
        const RyLegacyBendParam bend;
        for (size_t i = 0; i < 4; ++i) {
            RyFloatProperty *angle = bend.controllers()[i];
            QCOMPARE(angle->getMin(), -180.0f);
            QCOMPARE(angle->getMax(), 180.0f);
            QVERIFY(!angle->isClamped());
            angle->setValue(200);
            QCOMPARE(angle->getValue(), 200.0f);
        }
    }

    void anglesAreRadiansOutsideTheControllers()
    {
        RyLegacyBendParam bend;
        bend.setAngles(3.0f, 0.25f, -1.125f, -3.1f);
        float a, b, c, d;
        bend.getAngles(a, b, c, d);
        QVERIFY(qAbs(a - 3.0f) < 1e-6f && qAbs(b - 0.25f) < 1e-6f);
        QVERIFY(qAbs(c + 1.125f) < 1e-6f && qAbs(d + 3.1f) < 1e-6f);
        QVERIFY(qAbs(bend.getStaticAngleAController()->getValue() - 171.887339f) < 1e-4f);
        QVERIFY(qAbs(bend.getDynamicAngleCController()->getValue() + 64.457752f) < 1e-4f);
        for (int i = -180; i <= 180; ++i) {
            const auto radians = float(i * RyFastMath::RadiansPerDegree);
            bend.setStaticD(radians);
            QVERIFY(qAbs(bend.getStaticD() - radians) < 1e-6f);
            QVERIFY(qAbs(bend.getStaticAngleDController()->getValue() - float(i)) < 1e-4f);
        }
        bend.setStaticA(1);
        bend.setDynamicB(2);
        bend.setDynamicC(3);
        bend.setStaticD(4);
        QVERIFY(qAbs(bend.getStaticA() - 1) < 1e-6f && qAbs(bend.getDynamicB() - 2) < 1e-6f);
        QVERIFY(qAbs(bend.getDynamicC() - 3) < 1e-6f && qAbs(bend.getStaticD() - 4) < 1e-6f);
    }

    void anglesAreResultingValues()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyFloatProperty *controller = f.hand->getXTransControl();
        QVERIFY(RyERCLink::create(controller, bend->getDynamicAngleBController()));
        controller->setValue(controller->getDefaultValue() + 10);
        bend->setDynamicB(0.5f);
        QVERIFY(qAbs(bend->getDynamicB() - 0.5f) < 1e-6f);
        QVERIFY(qAbs(bend->getDynamicAngleBController()->getRawValue() - 18.6478890f) < 1e-4f);
    }

    void everySetterIsOneStep()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyTwistParam *twist = f.twistOf(f.elbow, "twistx");
        RyLegacySmoothScale *scale = f.scaleOf(f.elbow, "arm_smoox");
        const std::vector<std::function<void()>> edits = {
            [&] { bend->setAxis(0); },
            [&] { bend->setDriver(f.hand); },
            [&] { bend->setDriver(nullptr); },
            [&] { bend->setFlipped(true); },
            [&] { bend->setApplyMatrices(true); },
            [&] { bend->setApplyAngles(false); },
            [&] { bend->setApplyBulges(true); },
            [&] { bend->setStaticA(3); },
            [&] { bend->setDynamicB(2); },
            [&] { bend->setDynamicC(-2); },
            [&] { bend->setStaticD(-3); },
            [&] { bend->setAngles(2, 1, -1, -2); },
            [&] { bend->getPosLeftBulgeController()->setValue(0.1f); },
            [&] { bend->getPosRightBulgeController()->setValue(0.2f); },
            [&] { bend->getNegLeftBulgeController()->setDefaultValue(0.3f); },
            [&] { bend->getNegRightBulgeController()->setValue(0.4f); },
            [&] {
                bend->setDynamicMatrix(sphereAt({1, 2, 3}, {2, 3, 4}));
            },
            [&] {
                bend->setStaticMatrix(sphereAt({4, 5, 6}, {3, 4, 5}));
            },
            [&] {
                bend->setMatrices(sphereAt({7, 8, 9}, {1, 2, 3}), sphereAt({1, 0, 1}, {9, 8, 7}), false);
            },
            [&] {
                bend->setMatrices(sphereAt({1, 8, 9}, {1, 2, 3}), sphereAt({2, 0, 1}, {9, 8, 7}), true);
            },
            [&] { bend->setName("other"); },
            [&] { twist->setApplyBlend(true); },
            [&] { twist->setStart(40); },
            [&] { twist->setEnd(10); },
            [&] { scale->setApplyZones(true); },
            [&] { scale->setHiValid(false); },
            [&] { scale->setLoValid(true); },
            [&] { scale->setHiStart(4); },
            [&] { scale->setHiEnd(3); },
            [&] { scale->setLoStart(2); },
            [&] { scale->setLoEnd(1); },
            [&] { scale->copyValuesFrom(*f.scaleOf(f.hand, "elbow_smoox")); },
        };
        for (const auto &edit : edits)
            checkStep(f, edit);
        for (size_t i = 0; i < edits.size(); ++i)
            ryUndoStack()->undo();
        QCOMPARE(bend->getDriver(), f.elbow);
        QCOMPARE(bend->getAxis(), 1);
    }

    void valuesAreThoseOfTheirControllers()
    {
        RyLegacyTwistParam twist;
        twist.setStart(40);
        twist.setEnd(10);
        QCOMPARE(twist.getBlendStartPostionController()->getValue(), 40.0f);
        QCOMPARE(twist.getBlendEndPostionController()->getValue(), 10.0f);
        RyLegacySmoothScale scale;
        scale.setHiStart(4);
        scale.setHiEnd(3);
        scale.setLoStart(2);
        scale.setLoEnd(1);
        QCOMPARE(scale.getHiStartController()->getValue(), 4.0f);
        QCOMPARE(scale.getHiEndController()->getValue(), 3.0f);
        QCOMPARE(scale.getLoStartController()->getValue(), 2.0f);
        QCOMPARE(scale.getLoEndController()->getValue(), 1.0f);
        QVERIFY(scale.getHiStart() == 4 && scale.getHiEnd() == 3 && scale.getLoStart() == 2 && scale.getLoEnd() == 1);
    }

    void axesOutsideTheKindAreRefused()
    {
        RyLegacyBendParam bend("bend", 1);
        RyLegacyCurve curve("curve", 5);
        for (const int axis : {-1, 3, 6})
            bend.setAxis(axis);
        QCOMPARE(bend.getAxis(), 1);
        curve.setAxis(6);
        QCOMPARE(curve.getAxis(), 5);
        curve.setAxis(0);
        QCOMPARE(curve.getAxis(), 0);
    }

    void partnersStandOnBothSidesOfAJoint()
    {
        const ParamArm f;
        for (const char *name : {"twistx", "jointy", "jointz"}) {
            RyLegacyJointParam *own = f.jointOf(f.elbow)->findParam(QString(name));
            RyLegacyJointParam *copy = f.jointOf(f.arm)->findParam(QString("elbow_") + name);
            QCOMPARE(own->findPartner(), copy);
            QCOMPARE(copy->findPartner(), own);
        }
        RyLegacySmoothScale *lower = f.scaleOf(f.elbow, "arm_smoox");
        RyLegacySmoothScale *upper = f.scaleOf(f.arm, "elbow_smoox");
        QCOMPARE(lower->findPartner(), upper);
        QCOMPARE(upper->findPartner(), lower);
        // One that its own bone drives is not its own partner.
        upper->setDriver(f.arm);
        QVERIFY(!upper->findPartner());
        // The first bone has no joint above it.
        QVERIFY(!f.bendOf(f.arm, "jointy")->findPartner());
        RyLegacyBendParam *own = f.bendOf(f.elbow, "jointy");
        own->setAxis(0);
        QVERIFY(!own->findPartner()); // none about that axis
        own->setAxis(1);
        own->setDriver(nullptr);
        QVERIFY(!own->findPartner());
        const RyLegacyBendParam loose("loose", 1, f.elbow);
        QVERIFY(!loose.findPartner());
    }

    void editIsOneAnnouncementAndOneStep()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        const QString before = ryBindingText(*f.binding);
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        QSignalSpy ofBend(bend, &RyLegacyJointParam::paramChanged);
        QSignalSpy ofCopy(copy, &RyLegacyJointParam::paramChanged);
        {
            RyUndoStackHold hold;
            bend->beginEdit();
            QCOMPARE(copy->editLevel(), 1);
            bend->beginEdit(); // nested
            for (int i = 0; i < 5; ++i) {
                bend->setStaticA(1 + 0.1f * float(i));
                copy->setStaticA(1 + 0.1f * float(i));
                bend->getDynamicSphere()->getXTransControl()->setValue(float(i));
            }
            bend->setApplyMatrices(true);
            bend->finishEdit();
            QVERIFY(changed.isEmpty() && ofBend.isEmpty() && ofCopy.isEmpty());
            bend->finishEdit();
            hold.accept("Drag");
        }
        QCOMPARE(copy->editLevel(), 0);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(ofBend.size(), 1);
        QCOMPARE(ofCopy.size(), 1);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->entryCount(0), 4); // two angles, one coordinate, the flags
        ryUndoStack()->undo();
        QCOMPARE(ryBindingText(*f.binding), before);
        bend->finishEdit(); // without begin
        QCOMPARE(copy->editLevel(), 0);
    }

    void editThatChangesNothingIsSilent()
    {
        const ParamArm f;
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        f.scaleOf(f.elbow, "arm_smoox")->beginEdit();
        f.scaleOf(f.elbow, "arm_smoox")->finishEdit();
        f.scaleOf(f.elbow, "arm_smoox")->beginEdit();
        f.scaleOf(f.elbow, "arm_smoox")->cancelEdit();
        QVERIFY(changed.isEmpty());
    }

    void cancelRestoresParameterAndPartner()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        copy->getStaticSphere()->getScaleControl()->setValue(3);
        const QString before = ryBindingText(*f.binding);
        RyUndoStackHold hold;
        bend->beginEdit();
        bend->beginEdit();
        for (RyLegacyBendParam *param : {bend, copy}) {
            param->setAxis(2);
            param->setFlipped(!param->isFlipped());
            param->setApplyMatrices(true);
            param->setAngles(1, 2, 3, 4);
            param->getPosLeftBulgeController()->setValue(0.5f);
            param->getNegRightBulgeController()->setDefaultValue(0.25f);
            param->setMatrices(sphereAt({7, 8, 9}, {1, 2, 3}), sphereAt({1, 0, 1}, {9, 8, 7}), true);
            param->getStaticSphere()->getScaleControl()->setValue(9);
        }
        QVERIFY(ryBindingText(*f.binding) != before);
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        bend->cancelEdit();
        QCOMPARE(ryBindingText(*f.binding), before);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(bend->editLevel(), 0);
        QCOMPARE(copy->editLevel(), 0);
        bend->setStaticA(0.3f);
        const QString later = ryBindingText(*f.binding);
        bend->cancelEdit(); // a second time: nothing
        copy->cancelEdit();
        QCOMPARE(ryBindingText(*f.binding), later);
        hold.cancel();
        QCOMPARE(ryBindingText(*f.binding), before);
    }

    void cancelledHoldAndCancelledEditFitTogether()
    {
        const ParamArm f;
        RyLegacyTwistParam *twist = f.twistOf(f.arm, "elbow_twistx");
        const QString before = ryBindingText(*f.binding);
        RyUndoStackHold hold;
        twist->beginEdit();
        twist->setStart(3);
        twist->setApplyBlend(true);
        hold.cancel();
        QCOMPARE(ryBindingText(*f.binding), before);
        twist->cancelEdit();
        QCOMPARE(ryBindingText(*f.binding), before);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void partnerInAnEditOfItsOwnIsLeftAlone()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        copy->setStaticA(1);
        copy->beginEdit();
        QCOMPARE(bend->editLevel(), 1);
        bend->beginEdit();
        bend->finishEdit();
        copy->setStaticA(2);
        QCOMPARE(bend->editLevel(), 1);
        copy->cancelEdit();
        QCOMPARE(bend->editLevel(), 0);
        QCOMPARE(copy->getStaticA(), 1.0f);
        // One that became the partner while its edit was open.
        bend->setAxis(0);
        copy->beginEdit();
        QCOMPARE(bend->editLevel(), 0);
        bend->setAxis(1);
        copy->setStaticA(2);
        bend->beginEdit();
        bend->cancelEdit();
        QCOMPARE(copy->editLevel(), 1);
        QCOMPARE(copy->getStaticA(), 2.0f);
        copy->finishEdit();
    }

    void removedPartnerEndsNoEdit()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        bend->beginEdit();
        f.jointOf(f.arm)->removeJointParam(bend->findPartner()); // deleted
        bend->setStaticA(0.3f);
        bend->finishEdit();
        QVERIFY(qAbs(bend->getStaticA() - 0.3f) < 1e-6f);
        QCOMPARE(bend->editLevel(), 0);
    }

    void copiesHaveAllButTheJoint()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        bend->setMatrices(sphereAt({7, 8, 9}, {1, 2, 3}), sphereAt({1, 0, 1}, {9, 8, 7}), true);
        bend->setAngles(1, 0.5f, -1, -2);
        bend->setApplyBulges(true);
        bend->setAxis(0);
        f.scaleOf(f.elbow, "arm_smoox")->setLoValid(true);
        for (const RyLegacyJointParam *param : f.jointOf(f.elbow)->params()) {
            const std::unique_ptr<RyLegacyJointParam> copy(param->copy());
            QCOMPARE(ryParamText(*copy), ryParamText(*param));
            QVERIFY(!copy->getJoint());
        }
        const RyLegacyCurve curve("plane", 4, f.hand);
        const std::unique_ptr<RyLegacyJointParam> copy(curve.copy());
        QCOMPARE(ryParamText(*copy), ryParamText(curve));
        // Values go between those of one kind only.
        RyLegacyTwistParam twist("twist", 1, f.arm);
        const QString before = ryParamText(twist);
        twist.copyValuesFrom(*bend);
        QCOMPARE(ryParamText(twist), before);
    }

    void driverThatIsGoneIsNull()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "hand_jointy");
        {
            RyUndoStackHold hold;
            bend->setDriver(nullptr);
            f.elbow->removeNodeChild(f.hand);
            hold.accept("Remove");
        }
        ryUndoStack()->undo(); // the step kept the bone
        QCOMPARE(bend->getDriver(), f.hand);
        ryUndoStack()->clearAll();
        f.elbow->removeNodeChild(f.hand);
        QVERIFY(!bend->getDriver());
        QVERIFY(!bend->findPartner());
        QVERIFY(!f.binding->joints()[2]->getBone());
    }

    void revisionGrowsWithEveryChange()
    {
        const ParamArm f;
        RyLegacyTwistParam *twist = f.twistOf(f.elbow, "twistx");
        quint64 last = twist->revision();
        const auto grew = [&] { return std::exchange(last, twist->revision()) < twist->revision(); };
        twist->setStart(1);
        QVERIFY(grew());
        twist->setApplyBlend(true);
        QVERIFY(grew());
        twist->setDriver(f.hand);
        QVERIFY(grew());
        twist->getStaticSphere()->getZRotControl()->setValue(4);
        QVERIFY(grew());
        twist->setStart(1);
        QVERIFY(!grew());
        twist->beginEdit();
        twist->setEnd(3);
        QVERIFY(grew()); // at once: what is drawn within an edit follows
        twist->cancelEdit();
        QVERIFY(grew());
    }
};

RY_TEST(RyLegacyJointParamTest)
#include "tst_RyLegacyJointParam.moc"
