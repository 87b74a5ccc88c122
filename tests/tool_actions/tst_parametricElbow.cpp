#include "support/RyTest.h"

#include "RyParametricArm.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyZoneFit.h"

/// What a limb with a new joint looks like when it is bent by a quarter turn.
class ParametricElbowTest : public QObject
{
    Q_OBJECT

    /// Bends the limb. Nothing dents its outer line, no section gets thin and no edge long; line and surface stay
    /// within so many radii.
    static void checkBent(const RyParametricArm &arm, int axis, float degrees, double farthestOuter, double farthest)
    {
        (axis == 1 ? arm.lower->getYRotControl() : arm.lower->getZRotControl())->setValue(degrees);
        const RyParametricArm::Look look = arm.look();
        const QByteArray text = look.text();
        QVERIFY2(look.nearestOuter >= 1.0 - 1e-4, text);
        QVERIFY2(look.farthestOuter <= farthestOuter, text);
        QVERIFY2(look.farthest <= farthest, text);
        QVERIFY2(look.smallest >= 0.95, text);
        QVERIFY2(look.stretch < 4.0, text);
    }

private slots:
    /// As it is made, without a value touched: an elbow seen from outside.
    void asItIsMade_data()
    {
        QTest::addColumn<int>("axis");
        QTest::addColumn<float>("degrees");
        for (int axis = 1; axis <= 2; ++axis) {
            for (const float degrees : {90.0f, -90.0f})
                QTest::addRow("%c %g", 'X' + axis, double(degrees)) << axis << degrees;
        }
    }
    void asItIsMade()
    {
        QFETCH(int, axis);
        QFETCH(float, degrees);
        const RyParametricArm arm({1, 0, 0});
        QVERIFY(arm.lower);
        checkBent(arm, axis, degrees, 1.15, 1.16);
    }

    /// Limbs that point anywhere, their zones fitted to the bone.
    void fitted_data()
    {
        QTest::addColumn<RyVec3>("along");
        QTest::addColumn<int>("axis");
        QTest::addColumn<float>("degrees");
        const std::pair<const char *, RyVec3> limbs[] = {
            {"left", {1, 0, 0}}, {"right", {-1, 0, 0}}, {"down", {0, -1, 0}}, {"askew", {2, -3, 1}}};
        for (const auto &[name, along] : limbs) {
            for (int axis = 1; axis <= 2; ++axis) {
                for (const float degrees : {90.0f, -90.0f})
                    QTest::addRow("%s %c %g", name, 'X' + axis, double(degrees)) << along << axis << degrees;
            }
        }
    }
    void fitted()
    {
        QFETCH(RyVec3, along);
        QFETCH(int, axis);
        QFETCH(float, degrees);
        RyParametricArm arm(along);
        QVERIFY(arm.lower);
        arm.straighten();
        QVERIFY(RyLegacyZoneFit::fit(arm.lower));
        checkBent(arm, axis, degrees, 1.06, 1.08);
    }
};

RY_TEST(ParametricElbowTest)
#include "tst_parametricElbow.moc"
