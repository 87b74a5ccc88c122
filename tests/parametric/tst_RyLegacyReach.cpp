#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/RyLegacyOwners.h"
#include "rycore/parametric/RyLegacyReach.h"
#include "support/RyTest.h"

#include <QObject>

namespace {

using Param = RyLegacyJointParam;
using Side = RyLegacyReach::Side;

/// A tree: 0 root, 1 and 2 below it, 3 below 1, 4 below 3, 5 below 2, 6 another root. All have groups.
RyLegacyRig tree()
{
    RyLegacyRig rig;
    for (const int parent : {-1, 0, 0, 1, 3, 2, -1}) {
        RyLegacyRig::Bone bone;
        bone.parent = parent;
        bone.hasGroup = true;
        rig.bones.push_back(bone);
    }
    rig.owners = {0, 1, 2, 3, 4, 5, 6};
    return rig;
}

int add(RyLegacyRig &rig, int type, int axis, int bone, int driver, unsigned flags)
{
    RyLegacyRig::Param param;
    param.type = type;
    param.axis = axis;
    param.bone = bone;
    param.driver = driver;
    param.flags = flags;
    param.values.resize(8);
    rig.params.push_back(param);
    return int(rig.params.size()) - 1;
}

/// The fractions of a bone on an owner's vertices where these parameters decide, parameter i with the weight
/// 0.1 (i + 1).
RyLegacyFractions fractions(const RyLegacyRig &rig, int driver, int owner, const std::vector<char> &decides)
{
    const RyLegacyReach reach(rig, decides);
    for (const RyLegacySite &site : reach.sitesOf(owner)) {
        if (site.driver == driver)
            return site.fractions([](int param) { return 0.1 * (param + 1); });
    }
    return {{-1, -1, -1}, -1, -1};
}

bool near(double a, double b)
{
    return qAbs(a - b) < 1e-12;
}

} // namespace

class LegacyReachTest : public QObject
{
    Q_OBJECT

private slots:
    void owners();
    void sides();
    void parentsWithoutGroups();
    void ownSide();
    void parentsSide();
    void wholeWithoutZones();
    void twistWithoutZoneTakesTheMean();
    void firstParameterOfAnAxis();
    void parentsShareDecidesOnBothSides();
    void childsShareAlone();
    void nobodyShares();
    void withoutDriver();
};

void LegacyReachTest::owners()
{
    const std::vector<RyLegacyRig::Bone> bones = tree().bones;
    const auto owner = [&](std::vector<int> candidates) { return RyLegacyOwners::common(bones, candidates); };
    QCOMPARE(owner({4}), 4);
    QCOMPARE(owner({1, 4, 3}), 4);
    QCOMPARE(owner({3, 2}), 0);
    QCOMPARE(owner({0, 3, 5}), 0);
    QCOMPARE(owner({4, 1, 5}), 0);
    QCOMPARE(owner({}), 0);
    // Nothing stands above both.
    QCOMPARE(owner({5, 6}), 0);
}

void LegacyReachTest::sides()
{
    const RyLegacyRig rig = tree();
    const RyLegacyReach reach(rig, {});
    QCOMPARE(reach.side(3, 3), Side::Own);
    QCOMPARE(reach.side(0, 4), Side::Whole);
    QCOMPARE(reach.side(3, 1), Side::Parents);
    QCOMPARE(reach.side(4, 1), Side::Nothing);
    QCOMPARE(reach.side(2, 1), Side::Nothing);
    QCOMPARE(reach.side(5, 1), Side::Nothing);
    QCOMPARE(reach.side(6, 1), Side::Nothing);
    const std::vector<RyLegacySite> &sites = reach.sitesOf(0);
    QCOMPARE(sites.size(), size_t(3));
    QCOMPARE(sites[0].driver, 0);
    QCOMPARE(sites[1].driver, 1);
    QCOMPARE(sites[2].driver, 2);
}

void LegacyReachTest::parentsWithoutGroups()
{
    // The root itself need not be without: a converted mesh has its one group there.
    RyLegacyRig rig = tree();
    for (const int bone : {1, 3})
        rig.bones[size_t(bone)].hasGroup = false;
    const RyLegacyReach reach(rig, {});
    QCOMPARE(reach.side(4, 0), Side::Parents);
    QCOMPARE(reach.side(3, 0), Side::Parents);
    QCOMPARE(reach.side(5, 0), Side::Nothing);
    QCOMPARE(reach.sitesOf(0).size(), size_t(5));
    rig.bones[3].hasGroup = true;
    QCOMPARE(RyLegacyReach(rig, {}).side(4, 0), Side::Nothing);
    QCOMPARE(RyLegacyReach(rig, {}).side(3, 0), Side::Parents);
}

void LegacyReachTest::ownSide()
{
    RyLegacyRig rig = tree();
    add(rig, Param::Twist, 0, 3, 3, 0);
    add(rig, Param::Bend, 1, 3, 3, 0);
    add(rig, Param::Bend, 2, 3, 3, 0);
    add(rig, Param::Bend, 2, 3, 4, Param::Flipped); // another driver
    add(rig, Param::Curve, 2, 3, 3, 0);
    const RyLegacyFractions f = fractions(rig, 3, 3, {1, 1, 1, 1, 0});
    QVERIFY(near(f.turn[0], 0.1));
    QVERIFY(near(f.turn[1], 0.2));
    QVERIFY(near(f.turn[2], 0.3));
    QVERIFY(near(f.translation, 0.25));
    QVERIFY(near(f.scale, 0.25));
}

void LegacyReachTest::parentsSide()
{
    RyLegacyRig rig = tree();
    add(rig, Param::Bend, 1, 3, 3, 0);
    add(rig, Param::Bend, 2, 1, 3, Param::Flipped);
    const RyLegacyFractions f = fractions(rig, 3, 1, {1, 1});
    QVERIFY(near(f.turn[2], 0.2));
    QVERIFY(near(f.translation, 0.2));
    // An axis without a parameter follows as the others do.
    QVERIFY(near(f.turn[1], 0.2));
}

void LegacyReachTest::wholeWithoutZones()
{
    RyLegacyRig rig = tree();
    add(rig, Param::Bend, 1, 3, 3, 0);
    add(rig, Param::Bend, 1, 1, 3, Param::Flipped);
    QCOMPARE(fractions(rig, 3, 3, {0, 0}), RyLegacyFractions::all());
    QVERIFY(fractions(rig, 3, 1, {0, 0}).isNone());
    QCOMPARE(fractions(rig, 4, 4, {0, 0}), RyLegacyFractions::all());
    QVERIFY(fractions(rig, 4, 3, {0, 0}).isNone());
    // The flag decides, not the side.
    rig.params[0].flags = Param::Flipped;
    rig.params[1].flags = 0;
    QCOMPARE(fractions(rig, 3, 3, {0, 0}).turn[1], 0.0);
    QCOMPARE(fractions(rig, 3, 1, {0, 0}).turn[1], 1.0);
}

void LegacyReachTest::twistWithoutZoneTakesTheMean()
{
    RyLegacyRig rig = tree();
    add(rig, Param::Twist, 0, 3, 3, 0);
    add(rig, Param::Bend, 1, 3, 3, 0);
    add(rig, Param::Bend, 2, 3, 3, 0);
    QVERIFY(near(fractions(rig, 3, 3, {0, 1, 1}).turn[0], 0.25));
    // Bends without zones do not count.
    QVERIFY(near(fractions(rig, 3, 3, {0, 0, 1}).turn[0], 0.3));
    QVERIFY(near(fractions(rig, 3, 3, {0, 0, 0}).turn[0], 1));
}

void LegacyReachTest::firstParameterOfAnAxis()
{
    RyLegacyRig rig = tree();
    add(rig, Param::Twist, 0, 3, 3, 0);
    add(rig, Param::Bend, 0, 3, 3, 0);
    const RyLegacyFractions f = fractions(rig, 3, 3, {1, 1});
    QVERIFY(near(f.turn[0], 0.1));
    QVERIFY(near(f.translation, 1));
}

void LegacyReachTest::parentsShareDecidesOnBothSides()
{
    RyLegacyRig rig = tree();
    add(rig, Param::SmoothScale, 0, 3, 1, 0); // stands on the child's joint
    add(rig, Param::SmoothScale, 0, 1, 3, 0);
    add(rig, Param::Bend, 1, 3, 3, 0);
    QVERIFY(near(fractions(rig, 3, 3, {1, 1, 1}).scale, 0.9));
    QVERIFY(near(fractions(rig, 3, 1, {1, 1, 1}).scale, 0.9));
}

void LegacyReachTest::childsShareAlone()
{
    RyLegacyRig rig = tree();
    add(rig, Param::SmoothScale, 0, 3, 1, 0);
    add(rig, Param::SmoothScale, 0, 1, 3, 0);
    QVERIFY(near(fractions(rig, 3, 3, {0, 1}).scale, 0.2));
    QVERIFY(near(fractions(rig, 3, 1, {0, 1}).scale, 0.2));
    rig.params.erase(rig.params.begin());
    QVERIFY(near(fractions(rig, 3, 1, {1}).scale, 0.1));
}

void LegacyReachTest::nobodyShares()
{
    RyLegacyRig rig = tree();
    add(rig, Param::SmoothScale, 0, 3, 1, 0);
    add(rig, Param::SmoothScale, 0, 1, 3, 0);
    add(rig, Param::Bend, 1, 3, 3, 0);
    QVERIFY(near(fractions(rig, 3, 3, {0, 0, 1}).scale, 0.3));
    QVERIFY(near(fractions(rig, 3, 1, {0, 0, 1}).scale, 0));
}

void LegacyReachTest::withoutDriver()
{
    RyLegacyRig rig = tree();
    add(rig, Param::Bend, 1, 3, -1, 0);
    add(rig, Param::SmoothScale, 1, 0, -1, 0);
    QCOMPARE(fractions(rig, 3, 3, {1, 1}), RyLegacyFractions::all());
    QCOMPARE(fractions(rig, 0, 0, {1, 1}), RyLegacyFractions::all());
}

RY_TEST(LegacyReachTest)
#include "tst_RyLegacyReach.moc"
