#include "parametric/ParamArm.h"

#include "rycore/math/RyFastMath.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <limits>

using Values = RyBendAngles::Values;
Q_DECLARE_METATYPE(Values)

namespace {

QString textOf(const Values &values)
{
    return QString("%1 %2 %3 %4").arg(values[0]).arg(values[1]).arg(values[2]).arg(values[3]);
}

float radiansOf(float degrees)
{
    return float(degrees * RyFastMath::RadiansPerDegree);
}

} // namespace

/// The rays of a bend stay in order where one pushes the others.
class RyBendAnglesTest : public QObject
{
    Q_OBJECT

private slots:
    void directionsAreWrapped()
    {
        QCOMPARE(RyBendAngles::wrap(180), 180.0);
        QCOMPARE(RyBendAngles::wrap(-180), 180.0);
        QCOMPARE(RyBendAngles::wrap(190), -170.0);
        QCOMPARE(RyBendAngles::wrap(-550), 170.0);
        QCOMPARE(RyBendAngles::wrapUpward(0), 0.0);
        QCOMPARE(RyBendAngles::wrapUpward(-10), 350.0);
        QCOMPARE(RyBendAngles::wrapUpward(730), 10.0);
    }

    void pushed_data()
    {
        QTest::addColumn<Values>("start");
        QTest::addColumn<int>("index");
        QTest::addColumn<float>("angle");
        QTest::addColumn<QString>("end");
        const Values along{90, 45, -45, -90};
        QTest::newRow("between its neighbours") << along << 1 << 60.0f << "90 60 -45 -90";
        QTest::newRow("A up") << along << 0 << 120.0f << "120 45 -45 -90";
        QTest::newRow("A onto B") << along << 0 << 30.0f << "30 30 -45 -90";
        QTest::newRow("A down past all") << along << 0 << -89.0f << "-89 -89 -89 -90";
        QTest::newRow("B up past A") << along << 1 << 100.0f << "100 100 -45 -90";
        QTest::newRow("B down past C and D") << along << 1 << -100.0f << "90 -100 -100 -100";
        QTest::newRow("C up past B and A") << along << 2 << 100.0f << "100 100 100 -90";
        QTest::newRow("C down past D") << along << 2 << -130.0f << "90 45 -130 -130";
        QTest::newRow("D up past C") << along << 3 << 10.0f << "90 45 10 10";
        QTest::newRow("D down") << along << 3 << -170.0f << "90 45 -45 -170";
        // By the shorter way over the cut.
        QTest::newRow("A over the cut") << along << 0 << -170.0f << "-170 45 -45 -90";
        QTest::newRow("D over the cut") << along << 3 << 170.0f << "90 45 -45 170";
        QTest::newRow("B over the cut") << Values{170, 100, -100, -150} << 1 << -160.0f << "-160 -160 -100 -150";
        // More than a turn: the far end gives way, and what lies before it.
        QTest::newRow("A to D around") << Values{170, 45, -45, -170} << 0 << -160.0f << "-160 45 -45 -160";
        QTest::newRow("D to A around") << Values{170, 45, -45, -170} << 3 << 150.0f << "150 45 -45 150";
        QTest::newRow("A around past D and C") << Values{179, 150, -120, -130} << 0 << -10.0f << "-10 150 -10 -10";
        QTest::newRow("D around past A and B") << Values{130, 120, -150, -179} << 3 << 10.0f << "10 10 -150 10";
        QTest::newRow("B around, A along") << Values{100, 90, -160, -170} << 1 << -100.0f << "-100 -100 -100 -100";
        QTest::newRow("C around, D along") << Values{170, 160, -90, -100} << 2 << 100.0f << "100 100 100 100";
        // Zones that lie across the cut, with the dynamic centre opposite to the axis.
        const Values across{-90, -135, 135, 90};
        QTest::newRow("across, between") << across << 1 << -120.0f << "-90 -120 135 90";
        QTest::newRow("across, B up past A") << across << 1 << -80.0f << "-80 -80 135 90";
        QTest::newRow("across, B over the cut") << across << 1 << 170.0f << "-90 170 135 90";
        QTest::newRow("across, B past C") << across << 1 << 130.0f << "-90 130 130 90";
        QTest::newRow("across, C over the cut past B") << across << 2 << -130.0f << "-90 -130 -130 90";
        QTest::newRow("across, D past C") << across << 3 << 140.0f << "-90 -135 140 140";
        QTest::newRow("across, A down past B") << across << 0 << -140.0f << "-140 -140 135 90";
        // Narrow ones.
        QTest::newRow("narrow, A down") << Values{4, 3, -3, -4} << 0 << -5.0f << "-5 -5 -5 -5";
        QTest::newRow("narrow, D up") << Values{4, 3, -3, -4} << 3 << 3.5f << "4 3.5 3.5 3.5";
        QTest::newRow("to the cut") << along << 0 << 180.0f << "180 45 -45 -90";
        QTest::newRow("to the cut from below") << along << 3 << -180.0f << "90 45 -45 180";
    }

    void pushed()
    {
        QFETCH(Values, start);
        QFETCH(int, index);
        QFETCH(float, angle);
        QFETCH(QString, end);
        RyBendAngles angles(start);
        angles.push(index, double(angle));
        QCOMPARE(textOf(angles.values()), end);
        RyLegacyBendParam bend;
        bend.setAnglePushing(index, radiansOf(angle), true, start);
        const Values got = bend.angleValues();
        const Values wanted = angles.values();
        for (size_t i = 0; i < 4; ++i)
            QVERIFY(qAbs(RyBendAngles::wrap(double(got[i] - wanted[i]))) < 1e-4);
    }

    void parameterAndPartnerAreWritten()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        const QString before = ryBindingText(*f.binding);
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        {
            RyUndoStackHold hold;
            bend->setAnglePushing(1, radiansOf(100), true);
            hold.accept("Angle");
        }
        QCOMPARE(textOf(bend->angleValues()), QString("100 100 -45 -90"));
        QCOMPARE(textOf(copy->angleValues()), QString("100 100 -45 -90"));
        QCOMPARE(changed.size(), 1);
        ryUndoStack()->undo();
        QCOMPARE(ryBindingText(*f.binding), before);
        copy->setAnglePushing(0, radiansOf(120), true);
        QCOMPARE(textOf(bend->angleValues()), QString("120 45 -45 -90"));
        // Without a partner.
        f.bendOf(f.arm, "jointy")->setAnglePushing(0, radiansOf(120), true);
        QCOMPARE(textOf(f.bendOf(f.arm, "jointy")->angleValues()), QString("120 45 -45 -90"));
    }

    void withoutPushingOnlyOneMoves()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        bend->setAnglePushing(1, radiansOf(100), false);
        QCOMPARE(textOf(bend->angleValues()), QString("90 100 -45 -90"));
        bend->setAnglePushing(3, radiansOf(-200), false);
        QCOMPARE(textOf(bend->angleValues()), QString("90 100 -45 -200"));
        QCOMPARE(textOf(f.bendOf(f.arm, "elbow_jointy")->angleValues()), QString("90 100 -45 -200"));
        bend->setAnglePushing(4, 1, true);
        bend->setAnglePushing(-1, 1, false);
        bend->setAnglePushing(0, std::numeric_limits<float>::quiet_NaN(), true);
        QCOMPARE(textOf(bend->angleValues()), QString("90 100 -45 -200"));
    }

    void withoutPushingTheRestOfAnUnlikePartnerStays()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyLegacyBendParam *copy = f.bendOf(f.arm, "elbow_jointy");
        copy->getDynamicAngleCController()->setValue(-12.5f);
        bend->setAnglePushing(1, radiansOf(60), false);
        QCOMPARE(textOf(copy->angleValues()), QString("90 60 -12.5 -90"));
        bend->setAnglePushing(1, radiansOf(50), true);
        QCOMPARE(textOf(copy->angleValues()), QString("90 50 -45 -90"));
    }

    /// Numbers come out as they went in: neither by way of radians nor to the other side of the cut.
    void numbersStay()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        bend->getStaticAngleAController()->setValue(200.0f);
        bend->getDynamicAngleBController()->setValue(45.3f);
        bend->getDynamicAngleCController()->setValue(45.3f);
        bend->getStaticAngleDController()->setValue(-130.0f);
        for (const float degrees : {37.3f, 77.7f, -33.1f, 0.1f}) {
            bend->setAngleValuePushing(2, degrees, true, {200.0f, 45.3f, 45.3f, -130.0f});
            const float pushed = std::max(degrees, 45.3f);
            QCOMPARE(bend->angleValues(), (Values{200.0f, pushed, degrees, -130.0f}));
        }
        bend->setAngleValuePushing(2, 190.0f, true, {200.0f, 45.3f, 45.3f, -130.0f});
        QCOMPARE(bend->angleValues()[2], -170.0f);
    }

    void backAtTheStartNothingIsPushed()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        // B has passed A, and lies on a number that degrees and radians do not share.
        const Values start{10.0f, 40.123459f, -45.0f, 230.0f};
        for (const bool push : {true, false}) {
            bend->setAnglePushing(2, radiansOf(70), push, start);
            QVERIFY(bend->angleValues() != start);
            for (int i = 0; i < 4; ++i) {
                bend->setAnglePushing(i, radiansOf(start[size_t(i)]), push, start);
                QCOMPARE(bend->angleValues(), start);
            }
        }
    }

    void pushedNeighboursComeBackWithinADrag()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        bend->getStaticAngleAController()->setValue(77.7f); // a number that degrees and radians do not share
        const Values start = bend->angleValues();
        for (const float angle : {60.0f, 100.0f, 170.0f, -60.0f, 20.0f})
            bend->setAnglePushing(1, radiansOf(angle), true, start);
        QCOMPARE(bend->angleValues()[0], 77.7f);
        QCOMPARE(bend->angleValues()[2], -45.0f);
        QCOMPARE(bend->angleValues()[3], -90.0f);
        QCOMPARE(textOf(f.bendOf(f.arm, "elbow_jointy")->angleValues()), textOf(bend->angleValues()));
        // The switch may change meanwhile.
        bend->setAnglePushing(1, radiansOf(100), true, start);
        bend->setAnglePushing(1, radiansOf(100), false, start);
        QCOMPARE(bend->angleValues()[0], 77.7f);
    }
};

RY_TEST(RyBendAnglesTest)
#include "tst_RyBendAngles.moc"
