#include "parametric/ArmFixture.h"
#include "rycore/parametric/RyLegacyDeformer.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <QObject>

#include <array>
#include <cmath>

namespace {

using Point = std::array<double, 3>;

Point image(const RyLegacyDeformer &deformer, const RyLegacyPose &pose, const Point &p, int owner)
{
    Point out;
    deformer.mapPoint(pose, owner, p.data(), out.data());
    return out;
}

double apart(const Point &a, const Point &b)
{
    return std::sqrt(std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2));
}

} // namespace

/// Points close to each other stay close, wherever weights change their formula: a surface never tears. Distances in
/// the pose fall with the distances at rest; a jump would not.
class LegacyContinuityTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nowhereAJump_data();
    void nowhereAJump();

private:
    void zones(ArmFixture &arm, const QByteArray &kind);
    Point place(RyRandom &random, const QByteArray &where) const;
};

void LegacyContinuityTest::initTestCase()
{
    ryTestSeed();
}

void LegacyContinuityTest::nowhereAJump_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("where");
    QTest::addColumn<double>("twist");
    QTest::addColumn<double>("bend");
    for (const char *kind : {"angles", "spheres", "twist zone", "smooth zones", "bulges", "no child's zone"}) {
        for (const char *where : {"group border", "axis line", "twist axis", "cut", "rays", "spheres", "zones"}) {
            for (const double bend : {45.0, 90.0})
                QTest::addRow("%s, %s, %g", kind, where, bend) << QByteArray(kind) << QByteArray(where) << 60.0 << bend;
        }
    }
}

void LegacyContinuityTest::zones(ArmFixture &arm, const QByteArray &kind)
{
    if (kind == "spheres") {
        const auto spheres = [](RyLegacyJointParam *param) {
            RyMatrix4 inner;
            inner.scale(RyVec3(8, 7, 7));
            inner.translate(RyVec3(35, 0, 0));
            RyMatrix4 outer;
            outer.scale(RyVec3(25, 14, 14));
            outer.translate(RyVec3(36, 1, 0));
            param->setMatrices(inner, outer, false);
            param->setApplyMatrices(true);
        };
        arm.changeBoth<RyLegacyBendParam>(1, 1, spheres);
        arm.changeBoth<RyLegacyBendParam>(1, 2, spheres);
        arm.changeBoth<RyLegacyTwistParam>(1, 0, spheres);
    } else if (kind == "twist zone") {
        arm.changeBoth<RyLegacyTwistParam>(1, 0, [](RyLegacyTwistParam *twist) {
            twist->setStart(27);
            twist->setEnd(41);
            twist->setApplyBlend(true);
        });
    } else if (kind == "smooth zones") {
        auto *p = qobject_cast<RyLegacySmoothScale *>(arm.joints[1]->findParam("p"));
        p->setHiStart(-4);
        p->setHiEnd(5);
        p->setApplyZones(true);
        arm.bones[1]->getYScaleControl()->setValue(1.4f);
        arm.bones[1]->setInheritScale(false);
        arm.bones[0]->getZScaleControl()->setValue(0.7f);
    } else if (kind == "bulges") {
        for (const int axis : {1, 2}) {
            arm.changeBoth<RyLegacyBendParam>(1, axis, [](RyLegacyBendParam *bend) {
                bend->setApplyBulges(true);
                for (int i = 4; i < 8; ++i)
                    bend->controllers()[size_t(i)]->setValue(0.1f * float(i - 3));
            });
        }
    } else if (kind == "no child's zone") {
        // One bend alone: the other axes follow its mean.
        for (size_t joint = 0; joint < 2; ++joint)
            arm.joints[joint]->removeJointParam(
                arm.joints[joint]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 1));
    }
}

/// On purpose where weights change their formula. The second bone stands at x = 30 and is turned about X by its
/// orientation.
Point LegacyContinuityTest::place(RyRandom &random, const QByteArray &where) const
{
    const auto number = [&](double low, double high) { return random.number(low, high); };
    const double turn = 0.5;
    const auto fromAxes = [&](double x, double y, double z) {
        // multVec of a quaternion turns by minus its angle
        return Point{30 + x, y * std::cos(turn) + z * std::sin(turn), z * std::cos(turn) - y * std::sin(turn)};
    };
    if (where == "group border")
        return {30, number(-4, 4), number(-4, 4)};
    if (where == "axis line")
        return random.chance(0.5) ? fromAxes(0, number(-4, 4), 0) : fromAxes(0, 0, number(-4, 4));
    if (where == "twist axis")
        return {number(20, 45), 0, 0};
    if (where == "cut")
        return random.chance(0.5) ? fromAxes(number(-8, 0), 0, number(-4, 4))
                                  : fromAxes(number(-8, 0), number(-4, 4), 0);
    if (where == "rays") {
        const double angle = (random.chance(0.5) ? 45 : 90) * (random.chance(0.5) ? 1 : -1) * M_PI / 180;
        const double r = number(0, 6);
        return random.chance(0.5) ? fromAxes(r * std::cos(angle), r * std::sin(angle), number(-4, 4))
                                  : fromAxes(r * std::cos(angle), number(-4, 4), r * std::sin(angle));
    }
    if (where == "spheres") {
        double d[3] = {number(-1, 1), number(-1, 1), number(-1, 1)};
        const double size = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
        return random.chance(0.5) ? fromAxes(5 + 8 * d[0] / size, 7 * d[1] / size, 7 * d[2] / size)
                                  : fromAxes(6 + 25 * d[0] / size, 1 + 14 * d[1] / size, 14 * d[2] / size);
    }
    const double planes[4] = {27, 41, -4, 5};
    return {planes[random.integer(0, 3)], number(-4, 4), number(-4, 4)};
}

void LegacyContinuityTest::nowhereAJump()
{
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, where);
    QFETCH(double, twist);
    QFETCH(double, bend);
    ArmFixture arm;
    zones(arm, kind);
    arm.bones[1]->getXRotControl()->setValue(float(twist));
    arm.bones[1]->getYRotControl()->setValue(float(bend));
    arm.bones[1]->getZRotControl()->setValue(float(bend));
    arm.bones[1]->getYTransControl()->setValue(2);
    RyLegacyDeformer deformer;
    deformer.setRig(RyLegacyRig::of(*arm.binding, *arm.skeleton), arm.mesh->getPositions());
    const RyLegacyPose pose(deformer.rig(), RyLegacyRig::controlsOf(*arm.skeleton));
    // Its group reaches to the bone's own origin; the hand plays no part.
    const auto owner = [](const Point &p) { return p[0] < 30 ? 0 : 1; };
    double most[3] = {};
    RyRandom random;
    for (int i = 0; i < 400; ++i) {
        const Point at = place(random, where);
        Point way{random.number(-1, 1), random.number(-1, 1), random.number(-1, 1)};
        const double size = std::sqrt(way[0] * way[0] + way[1] * way[1] + way[2] * way[2]);
        double distance = 1e-3;
        for (double &farthest : most) {
            Point a = at;
            Point b = at;
            for (size_t k = 0; k < 3; ++k) {
                a[k] -= distance / 2 * way[k] / size;
                b[k] += distance / 2 * way[k] / size;
            }
            farthest =
                std::max(farthest, apart(image(deformer, pose, a, owner(a)), image(deformer, pose, b, owner(b))));
            distance /= 10;
        }
    }
    QVERIFY2(most[0] < 0.5 && most[1] < most[0] / 5 && most[2] < most[1] / 5,
             qPrintable(QString("%1, %2, %3").arg(most[0]).arg(most[1]).arg(most[2])));
}

RY_TEST(LegacyContinuityTest)
#include "tst_legacyContinuity.moc"
