#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"

using Param = RyLegacyJointParam;
using Values = RyBendAngles::Values;

namespace {

float radiansOf(float degrees)
{
    return float(double(degrees) * RyFastMath::RadiansPerDegree);
}

void compare(const Values &found, const Values &wanted)
{
    for (size_t i = 0; i < found.size(); ++i)
        QVERIFY2(qAbs(found[i] - wanted[i]) < 1e-4f, qPrintable(QString("%1 %2").arg(i).arg(found[i])));
}

/// A bend of the left hand is current, with angles as an artist leaves them.
struct Fixture : RyParametricToolScene
{
    static constexpr Values Start{112.3f, 37.7f, -41.9f, -97.1f};

    Fixture()
    {
        bend = qobject_cast<RyLegacyBendParam *>(doll.param(doll.lHand, "jointy"));
        copy = qobject_cast<RyLegacyBendParam *>(doll.param(doll.lArm, "lHand_jointy"));
        for (RyLegacyBendParam *each : {bend, copy})
            put(*each, Start);
        select(doll.lHand);
        tool->setParam(bend);
        ryUndoStack()->clearAll();
    }
    static void put(const RyLegacyBendParam &param, const Values &degrees)
    {
        for (size_t i = 0; i < 4; ++i)
            param.controllers()[i]->setValue(degrees[i]);
    }
    /// What the tool has seen last, in degrees.
    Values cached() const
    {
        const float radians[] = {tool->cachedAngleA(), tool->cachedAngleB(), tool->cachedAngleC(),
                                 tool->cachedAngleD()};
        Values degrees{};
        for (size_t i = 0; i < 4; ++i)
            degrees[i] = float(double(radians[i]) * RyFastMath::DegreesPerRadian);
        return degrees;
    }
    /// Runs an edit as one step.
    template<typename Edit>
    static void step(Edit edit)
    {
        RyUndoStackHold hold;
        edit();
        hold.accept(QStringLiteral("Edit"));
    }

    RyLegacyBendParam *bend;
    RyLegacyBendParam *copy;
};

} // namespace

/// What follows when values of the tool's parameter change.
class RyToolParamValuesTest : public QObject
{
    Q_OBJECT

private slots:
    void anglesAreCached();
    void slotsPushNeighbours();
    void slotsWithoutPushing();
    void slotsNeedABend();
    void typedAnglePushes();
    void typedAngleWithoutPushing();
    void sliderBringsNeighboursBack();
    void undoAndRedoPushNothing();
    void wholeEditsStayAsTheyAre();
    void otherParametersAreNotFollowed();
    void restrictedAxes_data();
    void restrictedAxes();
    void unrestrictedAxes();
    void restrictedAxesInUndoAndCancel();
    void connectionsAreMadeOnce();
};

void RyToolParamValuesTest::anglesAreCached()
{
    Fixture f;
    compare(f.cached(), Fixture::Start);
    f.tool->setParam(f.doll.param(f.doll.lHand, "twistx"));
    compare(f.cached(), {0, 0, 0, 0});
    f.tool->setParam(f.bend);
    compare(f.cached(), Fixture::Start);
    f.tool->setParam(nullptr);
    compare(f.cached(), {0, 0, 0, 0});
}

void RyToolParamValuesTest::slotsPushNeighbours()
{
    Fixture f;
    const QString before = RyParametricToolScene::wholeDump();
    Fixture::step([&] { f.tool->setStaticA(radiansOf(20.0f), 1); });
    compare(f.bend->angleValues(), {20.0f, 20.0f, -41.9f, -97.1f});
    compare(f.copy->angleValues(), f.bend->angleValues());
    compare(f.cached(), f.bend->angleValues());
    const QString after = RyParametricToolScene::wholeDump();
    Fixture::step([&] { f.tool->setDynamicB(radiansOf(-60.0f), 0); });
    compare(f.bend->angleValues(), {20.0f, -60.0f, -60.0f, -97.1f});
    Fixture::step([&] { f.tool->setDynamicC(radiansOf(40.0f), 2); });
    compare(f.bend->angleValues(), {40.0f, 40.0f, 40.0f, -97.1f});
    Fixture::step([&] { f.tool->setStaticD(radiansOf(50.0f), 0); });
    compare(f.bend->angleValues(), {50.0f, 50.0f, 50.0f, 50.0f});
    compare(f.copy->angleValues(), f.bend->angleValues());
    for (int i = 0; i < 3; ++i)
        ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), after);
    compare(f.cached(), {20.0f, 20.0f, -41.9f, -97.1f});
    ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    compare(f.cached(), Fixture::Start);
}

void RyToolParamValuesTest::slotsWithoutPushing()
{
    Fixture f;
    f.tool->setPushNeighborAngles(false);
    f.copy->getStaticAngleDController()->setValue(-120.5f);
    f.tool->setDynamicB(radiansOf(140.0f), 1);
    compare(f.bend->angleValues(), {112.3f, 140.0f, -41.9f, -97.1f});
    compare(f.copy->angleValues(), {112.3f, 140.0f, -41.9f, -120.5f});
    compare(f.cached(), f.bend->angleValues());
}

void RyToolParamValuesTest::slotsNeedABend()
{
    Fixture f;
    const QString before = RyParametricToolScene::wholeDump();
    f.tool->setParam(f.doll.param(f.doll.lHand, "twistx"));
    f.tool->setStaticA(1.0f, 0);
    f.tool->setParam(nullptr);
    f.tool->setDynamicB(1.0f, 0);
    f.tool->setDynamicC(1.0f, 1);
    f.tool->setStaticD(1.0f, 2);
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
}

void RyToolParamValuesTest::typedAnglePushes()
{
    Fixture f;
    const QString before = RyParametricToolScene::wholeDump();
    // As a field does: the partner's property, then the parameter's.
    Fixture::step([&] {
        f.copy->getDynamicAngleBController()->adjustValue(-77.7f);
        f.bend->getDynamicAngleBController()->adjustValue(-77.7f);
    });
    QCOMPARE(f.bend->angleValues(), (Values{112.3f, -77.7f, -77.7f, -97.1f}));
    QCOMPARE(f.copy->angleValues(), f.bend->angleValues());
    ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    // The partner alone is none of the tool's.
    f.copy->getDynamicAngleBController()->adjustValue(-77.7f);
    QCOMPARE(f.bend->angleValues(), Fixture::Start);
    QCOMPARE(f.copy->angleValues(), (Values{112.3f, -77.7f, -41.9f, -97.1f}));
}

void RyToolParamValuesTest::typedAngleWithoutPushing()
{
    Fixture f;
    f.tool->setPushNeighborAngles(false);
    f.bend->getDynamicAngleCController()->setValue(171.3f);
    QCOMPARE(f.bend->angleValues(), (Values{112.3f, 37.7f, 171.3f, -97.1f}));
    QCOMPARE(f.copy->angleValues(), f.bend->angleValues());
}

void RyToolParamValuesTest::sliderBringsNeighboursBack()
{
    Fixture f;
    const QString before = RyParametricToolScene::wholeDump();
    RyFloatProperty *slid = f.bend->getDynamicAngleBController();
    {
        RyUndoStackHold hold;
        for (const float degrees : {0.0f, -60.0f, -130.0f, 150.0f, 37.7f})
            slid->adjustValue(degrees);
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        // Another angle begins where it is by then.
        slid->adjustValue(-60.0f);
        f.bend->getStaticAngleAController()->adjustValue(100.0f);
        slid->adjustValue(20.0f);
        QCOMPARE(f.bend->angleValues(), (Values{100.0f, 20.0f, -60.0f, -97.1f}));
        hold.cancel();
    }
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    // So does one in a later step, and one that no step holds.
    for (const bool held : {true, false}) {
        Fixture::put(*f.bend, Fixture::Start);
        for (const float degrees : {-60.0f, 37.7f}) {
            if (held)
                Fixture::step([&] { slid->adjustValue(degrees); });
            else
                slid->adjustValue(degrees);
        }
        QCOMPARE(f.bend->angleValues(), (Values{112.3f, 37.7f, -60.0f, -97.1f}));
    }
}

void RyToolParamValuesTest::undoAndRedoPushNothing()
{
    Fixture f;
    f.tool->setPushNeighborAngles(false);
    const QString before = RyParametricToolScene::wholeDump();
    Fixture::step([&] { f.tool->setDynamicB(radiansOf(140.0f), 1); });
    const QString crossed = RyParametricToolScene::wholeDump();
    f.tool->setPushNeighborAngles(true);
    for (int i = 0; i < 2; ++i) {
        ryUndoStack()->undo();
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        compare(f.cached(), Fixture::Start);
        ryUndoStack()->redo();
        QCOMPARE(RyParametricToolScene::wholeDump(), crossed);
        compare(f.cached(), {112.3f, 140.0f, -41.9f, -97.1f});
    }
}

void RyToolParamValuesTest::wholeEditsStayAsTheyAre()
{
    Fixture f;
    // The other way round, which leads each angle past its neighbours.
    f.bend->setAngles(radiansOf(-91.0f), radiansOf(-136.0f), radiansOf(133.0f), radiansOf(88.0f));
    compare(f.bend->angleValues(), {-91.0f, -136.0f, 133.0f, 88.0f});
    compare(f.cached(), f.bend->angleValues());
    // Cancelling leads back to angles that had crossed.
    const Values crossed{10.5f, 140.25f, -41.9f, 60.0f};
    f.tool->setPushNeighborAngles(false);
    Fixture::put(*f.bend, crossed);
    f.tool->setPushNeighborAngles(true);
    f.bend->beginEdit();
    f.bend->setAngles(1.5f, 1.0f, 0.5f, 0.0f);
    f.bend->cancelEdit();
    QCOMPARE(f.bend->angleValues(), crossed);
    compare(f.cached(), crossed);
    const RyUndoStackLock lock;
    f.bend->getStaticAngleAController()->setValue(-100.0f);
    QCOMPARE(f.bend->angleValues(), (Values{-100.0f, 140.25f, -41.9f, 60.0f}));
    compare(f.cached(), f.bend->angleValues());
}

void RyToolParamValuesTest::otherParametersAreNotFollowed()
{
    Fixture f;
    f.tool->setRestrictRotationAxes(true);
    f.tool->setParam(f.doll.param(f.doll.lHand, "jointz"));
    f.bend->getDynamicAngleBController()->setValue(-77.7f);
    QCOMPARE(f.bend->angleValues(), (Values{112.3f, -77.7f, -41.9f, -97.1f}));
    f.bend->getDynamicSphere()->getXRotControl()->setValue(5.0f);
    f.bend->getDynamicSphere()->getYRotControl()->setValue(6.0f);
    QCOMPARE(f.bend->getDynamicSphere()->getXRotControl()->getValue(), 5.0f);
}

void RyToolParamValuesTest::restrictedAxes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("partner");
    QTest::addColumn<bool>("dynamic");
    for (const bool dynamic : {true, false}) {
        const QByteArray sphere = dynamic ? "dynamic" : "static";
        QTest::newRow("bend, " + sphere) << "jointy"
                                         << "lHand_jointy" << dynamic;
        QTest::newRow("twist, " + sphere) << "twistx"
                                          << "lHand_twistx" << dynamic;
        QTest::newRow("smooth scale, " + sphere) << "lArm_smoox"
                                                 << "lHand_smoox" << dynamic;
    }
}

void RyToolParamValuesTest::restrictedAxes()
{
    QFETCH(QString, name);
    QFETCH(QString, partner);
    QFETCH(bool, dynamic);
    Fixture f;
    Param *param = f.doll.joint(f.doll.lHand)->findParam(name);
    Param *other = f.doll.joint(f.doll.lArm)->findParam(partner);
    const auto sphereOf = [dynamic](const Param *p) { return dynamic ? p->getDynamicSphere() : p->getStaticSphere(); };
    const auto type = [&](RyFloatProperty *(RyLegacyJointSphere::*control)() const, float degrees) {
        // As a field does, the partner first.
        for (const Param *each : {other, param})
            (sphereOf(each)->*control)()->adjustValue(degrees);
    };
    const auto turnsOf = [&](const Param *p) {
        return QString("%1 %2 %3")
            .arg(sphereOf(p)->getXRotControl()->getValue())
            .arg(sphereOf(p)->getYRotControl()->getValue())
            .arg(sphereOf(p)->getZRotControl()->getValue());
    };
    f.tool->setParam(param);
    f.tool->setRestrictRotationAxes(true);
    type(&RyLegacyJointSphere::getZRotControl, 31.5f);
    type(&RyLegacyJointSphere::getXRotControl, 12.5f);
    QCOMPARE(turnsOf(param), QString("12.5 0 31.5"));
    const QString before = RyParametricToolScene::wholeDump();
    const int redraws = f.tool->drawnDataChangeCount();
    Fixture::step([&] { type(&RyLegacyJointSphere::getYRotControl, -7.25f); });
    QVERIFY(f.tool->drawnDataChangeCount() > redraws);
    for (const Param *each : {param, other})
        QCOMPARE(turnsOf(each), QString("0 -7.25 31.5"));
    const QString after = RyParametricToolScene::wholeDump();
    ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    ryUndoStack()->redo();
    QCOMPARE(RyParametricToolScene::wholeDump(), after);
    type(&RyLegacyJointSphere::getXRotControl, 3.0f);
    for (const Param *each : {param, other})
        QCOMPARE(turnsOf(each), QString("3 0 31.5"));
    type(&RyLegacyJointSphere::getXRotControl, 0.0f);
    QCOMPARE(turnsOf(param), QString("0 0 31.5"));
}

void RyToolParamValuesTest::unrestrictedAxes()
{
    Fixture f;
    RyLegacyJointSphere *sphere = f.bend->getStaticSphere();
    sphere->getXRotControl()->setValue(12.5f);
    const int redraws = f.tool->drawnDataChangeCount();
    sphere->getYRotControl()->setValue(-7.0f);
    QVERIFY(f.tool->drawnDataChangeCount() > redraws);
    QCOMPARE(sphere->getXRotControl()->getValue(), 12.5f);
    // Restricting does nothing at once, and nothing to the other sphere.
    f.tool->setRestrictRotationAxes(true);
    QCOMPARE(sphere->getXRotControl()->getValue(), 12.5f);
    f.bend->getDynamicSphere()->getYRotControl()->setValue(3.0f);
    QCOMPARE(sphere->getXRotControl()->getValue(), 12.5f);
    QCOMPARE(sphere->getYRotControl()->getValue(), -7.0f);
}

void RyToolParamValuesTest::restrictedAxesInUndoAndCancel()
{
    Fixture f;
    RyLegacyJointSphere *sphere = f.bend->getDynamicSphere();
    const QString before = RyParametricToolScene::wholeDump();
    Fixture::step([&] {
        sphere->getXRotControl()->setValue(12.5f);
        sphere->getYRotControl()->setValue(-7.0f);
    });
    const QString after = RyParametricToolScene::wholeDump();
    f.tool->setRestrictRotationAxes(true);
    ryUndoStack()->undo();
    QCOMPARE(RyParametricToolScene::wholeDump(), before);
    ryUndoStack()->redo();
    QCOMPARE(RyParametricToolScene::wholeDump(), after);
    f.bend->beginEdit();
    sphere->getXRotControl()->setValue(1.0f);
    sphere->getYRotControl()->setValue(2.0f);
    f.bend->cancelEdit();
    QCOMPARE(RyParametricToolScene::wholeDump(), after);
}

void RyToolParamValuesTest::connectionsAreMadeOnce()
{
    Fixture f;
    const auto redrawsOf = [&](float degrees) {
        const int redraws = f.tool->drawnDataChangeCount();
        f.bend->getDynamicSphere()->getXRotControl()->setValue(degrees);
        return f.tool->drawnDataChangeCount() - redraws;
    };
    const int once = redrawsOf(4.0f);
    for (int i = 0; i < 3; ++i)
        QVERIFY(QMetaObject::invokeMethod(f.tool, "updateParamConnections"));
    QCOMPARE(redrawsOf(5.0f), once);
    QVERIFY(QMetaObject::invokeMethod(f.tool, "removeParamConnections"));
    compare(f.cached(), {0, 0, 0, 0});
    f.bend->getDynamicAngleBController()->setValue(-77.7f);
    QCOMPARE(f.bend->angleValues(), (Values{112.3f, -77.7f, -41.9f, -97.1f}));
    Fixture::put(*f.bend, {110.5f, 35.5f, -40.5f, -95.5f});
    QVERIFY(QMetaObject::invokeMethod(f.tool, "updateParamConnections"));
    compare(f.cached(), f.bend->angleValues());
    f.bend->getDynamicAngleBController()->setValue(-99.0f);
    QCOMPARE(f.bend->angleValues()[3], -99.0f);
    QCOMPARE(redrawsOf(6.0f), once);
}

RY_TEST(RyToolParamValuesTest)

#include "tst_toolParamValues.moc"
