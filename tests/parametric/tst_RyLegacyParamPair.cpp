#include "support/RyTest.h"

#include "ParamArm.h"

#include "rycore/parametric/RyLegacyParamPair.h"

#include <QSignalSpy>

/// Both sides of a joint edited as one.
class RyLegacyParamPairTest : public QObject
{
    Q_OBJECT

private slots:
    void pairsTheSameValues()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        const RyLegacyParamPair pair(bend);
        QCOMPARE(pair.partner(), static_cast<RyLegacyJointParam *>(copy));
        using Values = std::vector<RyFloatProperty *>;
        for (size_t i = 0; i < 8; ++i)
            QCOMPARE(pair.both(bend->controllers()[i]), Values({bend->controllers()[i], copy->controllers()[i]}));
        for (size_t i = 0; i < 10; ++i) {
            RyFloatProperty *dynamic = bend->getDynamicSphere()->controls()[i];
            RyFloatProperty *fixed = bend->getStaticSphere()->controls()[i];
            QCOMPARE(pair.both(dynamic), Values({dynamic, copy->getDynamicSphere()->controls()[i]}));
            QCOMPARE(pair.both(fixed), Values({fixed, copy->getStaticSphere()->controls()[i]}));
        }
        QCOMPARE(pair.both(f.elbow->getEndXControl()), Values({f.elbow->getEndXControl()}));
    }

    void zonesOfTwoScalesAreMirrored()
    {
        const ParamArm f;
        RyLegacySmoothScale *own = f.scaleOf(f.elbow, "arm_smoox");
        RyLegacySmoothScale *other = f.scaleOf(f.arm, "elbow_smoox");
        const RyLegacyParamPair pair(own);
        QCOMPARE(pair.both(own->getLoEndController()).back(), other->getHiStartController());
        QCOMPARE(pair.both(own->getLoStartController()).back(), other->getHiEndController());
        QCOMPARE(pair.both(own->getHiStartController()).back(), other->getLoEndController());
        QCOMPARE(pair.both(own->getHiEndController()).back(), other->getLoStartController());
        RyFloatProperty *turn = own->getStaticSphere()->getZRotControl();
        QCOMPARE(pair.both(turn).back(), other->getStaticSphere()->getZRotControl());
    }

    void anotherKindIsNoPartner()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyTwistParam *twist = f.twistOf(f.arm, "elbow_twistx");
        const unsigned before = twist->flags();
        const RyLegacyParamPair pair(bend, twist);
        QVERIFY(!pair.partner());
        QCOMPARE(int(pair.both(bend->controllers()[0]).size()), 1);
        QVERIFY(pair.setFlag(RyLegacyJointParam::ApplyMatrices, true));
        QVERIFY(bend->applyMatrices());
        QCOMPARE(twist->flags(), before);
        const RyLegacyParamPair none(nullptr, twist);
        QVERIFY(!none.partner() && !none.setFlag(RyLegacyJointParam::ApplyMatrices, true));
        QCOMPARE(twist->flags(), before);
    }

    void flagsOfBoth()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        const RyLegacyParamPair pair(bend);
        const bool flipped = copy->isFlipped();
        bend->setApplyBulges(true);
        copy->setApplyBulges(false);
        QVERIFY(!pair.isFlagSet(RyLegacyJointParam::ApplyBulges, true));
        QVERIFY(!pair.isFlagSet(RyLegacyJointParam::ApplyBulges, false));
        QSignalSpy changes(f.binding, &RyLegacyBinding::bindingChanged);
        QVERIFY(pair.setFlag(RyLegacyJointParam::ApplyBulges, true));
        QVERIFY(bend->applyBulges() && copy->applyBulges());
        QVERIFY(!pair.setFlag(RyLegacyJointParam::ApplyBulges, true));
        QVERIFY(pair.setFlag(RyLegacyJointParam::ApplyBulges, false));
        QVERIFY(!bend->applyBulges() && !copy->applyBulges());
        QCOMPARE(changes.count(), 2);
        QCOMPARE(copy->isFlipped(), flipped);
    }
};

RY_TEST(RyLegacyParamPairTest)

#include "tst_RyLegacyParamPair.moc"
