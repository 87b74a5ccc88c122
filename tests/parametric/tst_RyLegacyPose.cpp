#include "parametric/ArmFixture.h"
#include "rycore/math/RyAffine.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyDeformer.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <QObject>

#include <cmath>

namespace {

/// A skeleton of bones anywhere, of which some do not inherit scale, in any pose; no joints.
struct AnySkeleton
{
    AnySkeleton(RyRandom &random, int count, bool chain, double inherits)
    {
        skeleton = RyRef<RySkeleton>(new RySkeleton);
        for (int i = 0; i < count; ++i) {
            auto *bone = new RyBone;
            bone->setName(QString("bone%1").arg(i));
            RyNode *parent = i == 0 ? static_cast<RyNode *>(skeleton.get())
                                    : bones[size_t(chain ? i - 1 : random.integer(0, i - 1))];
            parent->addNodeChild(bone);
            bone->setOrigin(random.vector(20), true);
            bone->setOrigin(random.vector(20));
            bone->setEndPoint(random.vector(20));
            bone->setOrientation(RyQuat(random.vector(1), float(random.number(-3, 3))));
            bone->setRotationOrder(RyRotationOrder(random.integer(0, 5)));
            bone->setInheritScale(random.chance(inherits));
            for (RyFloatProperty *control : {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()})
                control->setValue(float(random.number(-120, 120)));
            for (RyFloatProperty *control :
                 {bone->getXTransControl(), bone->getYTransControl(), bone->getZTransControl()})
                control->setValue(float(random.number(-5, 5)));
            for (RyFloatProperty *control : {bone->getXScaleControl(), bone->getYScaleControl(),
                                             bone->getZScaleControl(), bone->getScaleControl()})
                control->setValue(float(random.number(0.7, 1.4)));
            bones.push_back(bone);
        }
        skeleton->getXRotControl()->setValue(33);
        skeleton->getScaleControl()->setValue(0.6f);
    }

    RyRef<RySkeleton> skeleton;
    std::vector<RyBone *> bones;
};

/// How far the deformer and the maps of nodes are apart, on points of every bone.
double apartFromNodes(RyRandom &random, const AnySkeleton &any)
{
    const RyLegacyBinding binding;
    RyLegacyRig rig = RyLegacyRig::of(binding, *any.skeleton);
    const std::vector<RyBone *> inOrder = any.skeleton->getAllBones();
    std::vector<RyVec3> rest;
    rig.owners.clear();
    for (size_t b = 0; b < inOrder.size(); ++b) {
        rig.bones[b].hasGroup = true;
        for (int i = 0; i < 5; ++i) {
            rest.push_back(random.vector(30));
            rig.owners.push_back(int(b));
        }
    }
    RyLegacyDeformer deformer;
    deformer.setRig(rig, rest);
    std::vector<RyVec3> out;
    deformer.deform(rest, RyLegacyRig::controlsOf(*any.skeleton), out);
    double most = 0.0;
    for (size_t v = 0; v < rest.size(); ++v) {
        const RyVec3 right = inOrder[size_t(rig.owners[v])]->figureMap().mapPoint(rest[v]);
        most = std::max(most, double((out[v] - right).length()) / (60.0 + right.length()));
    }
    return most;
}

RyLegacyFractions anyFractions(RyRandom &random)
{
    return {{random.number(0, 1), random.number(0, 1), random.number(0, 1)}, random.number(0, 1), random.number(0, 1)};
}

} // namespace

class LegacyPoseTest : public QObject
{
    Q_OBJECT

private slots:
    void allFractionsAreTheLocalMap();
    void noFractionsAreTheIdentity();
    void partOfEachControl();
    void bonesBelowEachOther();
    void chainWithoutInheritedScale();
    void treeWithSomeInheritance();
    void siblingsAreAdded();
    void controlsOfAPlayedClip();
    void normalsOfAScale();
    void bulgePushesFromTheLine();
};

void LegacyPoseTest::allFractionsAreTheLocalMap()
{
    RyRandom random;
    for (int i = 0; i < 50; ++i) {
        const AnySkeleton any(random, 1, true, 0.5);
        const RyLegacyRig rig = RyLegacyRig::of(RyLegacyBinding(), *any.skeleton);
        const RyLegacyPose pose(rig, RyLegacyRig::controlsOf(*any.skeleton));
        const RyAffine map = any.bones[0]->getLocalMap();
        const double p[3] = {random.number(-9, 9), random.number(-9, 9), random.number(-9, 9)};
        double ours[3];
        double theirs[3];
        pose.mapPoint({{0, RyLegacyFractions::all()}}, p, ours);
        map.mapPoint(p, theirs);
        for (int k = 0; k < 3; ++k)
            QVERIFY(std::fabs(ours[k] - theirs[k]) < 2e-5);
    }
}

void LegacyPoseTest::noFractionsAreTheIdentity()
{
    RyRandom random;
    const AnySkeleton any(random, 4, false, 0.5);
    const RyLegacyRig rig = RyLegacyRig::of(RyLegacyBinding(), *any.skeleton);
    const RyLegacyPose pose(rig, RyLegacyRig::controlsOf(*any.skeleton));
    const double p[3] = {3, 4, -5};
    double out[3];
    pose.mapPoint({{3, {}}, {2, {}}, {1, {}}, {0, {}}}, p, out);
    for (int k = 0; k < 3; ++k)
        QVERIFY(std::fabs(out[k] - p[k]) < 1e-5);
}

void LegacyPoseTest::partOfEachControl()
{
    // Fractions stand for smaller controls.
    RyRandom random;
    for (int i = 0; i < 50; ++i) {
        const AnySkeleton any(random, 1, true, 1);
        const RyLegacyRig rig = RyLegacyRig::of(RyLegacyBinding(), *any.skeleton);
        std::vector<RyLegacyControls> controls = RyLegacyRig::controlsOf(*any.skeleton);
        const RyLegacyPose pose(rig, controls);
        const RyLegacyFractions part = anyFractions(random);
        for (size_t k = 0; k < 3; ++k) {
            controls[0].turn[k] *= part.turn[k];
            controls[0].translation[k] *= part.translation;
            controls[0].scale[k] = 1 + part.scale * (controls[0].scale[k] - 1);
        }
        const RyLegacyPose smaller(rig, controls);
        const double p[3] = {random.number(-9, 9), random.number(-9, 9), random.number(-9, 9)};
        double a[3];
        double b[3];
        pose.mapPoint({{0, part}}, p, a);
        smaller.mapPoint({{0, RyLegacyFractions::all()}}, p, b);
        for (int k = 0; k < 3; ++k)
            QVERIFY(std::fabs(a[k] - b[k]) < 1e-9);
    }
}

void LegacyPoseTest::bonesBelowEachOther()
{
    RyRandom random;
    for (int i = 0; i < 20; ++i)
        QVERIFY(apartFromNodes(random, AnySkeleton(random, 8, false, 1)) < 1e-5);
}

void LegacyPoseTest::chainWithoutInheritedScale()
{
    RyRandom random;
    for (int i = 0; i < 20; ++i)
        QVERIFY(apartFromNodes(random, AnySkeleton(random, 4, true, 0)) < 1e-5);
}

void LegacyPoseTest::treeWithSomeInheritance()
{
    RyRandom random;
    for (int i = 0; i < 50; ++i)
        QVERIFY(apartFromNodes(random, AnySkeleton(random, 8, false, 0.5)) < 1e-5);
}

void LegacyPoseTest::siblingsAreAdded()
{
    RyRandom random;
    RyLegacyRig rig;
    for (int i = 0; i < 3; ++i) {
        RyLegacyRig::Bone bone;
        bone.parent = i == 0 ? -1 : 0;
        bone.origin = random.vector();
        bone.orientation = RyQuat(random.vector(1), 1);
        rig.bones.push_back(bone);
    }
    std::vector<RyLegacyControls> controls(3);
    for (size_t i = 1; i < 3; ++i)
        controls[i].turn = {0.5, -0.7, 1.1};
    const RyLegacyPose pose(rig, controls);
    const RyLegacyFractions part = anyFractions(random);
    const double p[3] = {1, 2, 3};
    double one[3];
    double other[3];
    double both[3];
    double exchanged[3];
    pose.mapPoint({{1, part}}, p, one);
    pose.mapPoint({{2, part}}, p, other);
    pose.mapPoint({{2, part}, {1, part}}, p, both);
    pose.mapPoint({{1, part}, {2, part}, {0, part}}, p, exchanged);
    for (int k = 0; k < 3; ++k) {
        QVERIFY(std::fabs(both[k] - (one[k] + other[k] - p[k])) < 1e-12);
        QVERIFY(std::fabs(exchanged[k] - both[k]) < 1e-12);
    }
}

void LegacyPoseTest::controlsOfAPlayedClip()
{
    RyRandom random;
    for (int i = 0; i < 20; ++i) {
        // What poses make, played; turns and equal scales, which controls can say.
        const AnySkeleton any(random, 6, false, 0.5);
        for (RyBone *bone : any.bones) {
            for (RyFloatProperty *control :
                 {bone->getXScaleControl(), bone->getYScaleControl(), bone->getZScaleControl()})
                control->setValue(1);
        }
        std::vector<RyAffine> maps;
        for (const RyBone *bone : any.bones)
            maps.push_back(bone->figureMap());
        for (size_t b = 0; b < any.bones.size(); ++b)
            any.bones[b]->setPlayedMap(&maps[b]);
        for (RyBone *bone : any.bones)
            bone->clearPose();
        const double apart = apartFromNodes(random, any);
        for (RyBone *bone : any.bones)
            bone->setPlayedMap(nullptr);
        QVERIFY2(apart < 2e-5, qPrintable(QString::number(apart)));
    }
}

void LegacyPoseTest::normalsOfAScale()
{
    RyLegacyRig rig;
    rig.bones.emplace_back();
    rig.bones[0].orientation = RyQuat(RyVec3(1, 2, 3), 0.8f);
    std::vector<RyLegacyControls> controls(1);
    controls[0].scale = {2, 0.5, -1.5};
    controls[0].turn = {0.3, 0.4, 0.5};
    const RyLegacyPose pose(rig, controls);
    const RyAffine points = pose.mapOf({{0, RyLegacyFractions::all()}});
    const RyAffine normals = pose.normalMapOf({{0, RyLegacyFractions::all()}});
    // What is square to a normal stays square to its image.
    RyRandom random;
    for (int i = 0; i < 20; ++i) {
        const RyVec3 normal = random.vector(1);
        const RyVec3 along = normal.cross(random.vector(1));
        QVERIFY(std::fabs(points.mapDirection(along).dot(normals.mapDirection(normal))) < 1e-5);
    }
}

void LegacyPoseTest::bulgePushesFromTheLine()
{
    RyLegacyRig rig;
    rig.bones.emplace_back();
    rig.bones[0].origin = {1, 2, 3};
    rig.bones[0].end = {1, 2, 13};
    RyLegacyRig::Param bend;
    bend.axis = 1;
    bend.driver = 0;
    bend.values = {0, 0, 0, 0, 0.1f, 0.2f, 0.3f, 0.4f};
    const auto pushed = [&](double turn, double share) {
        std::vector<RyLegacyControls> controls(1);
        controls[0].turn[1] = turn;
        const double rest[3] = {4, 6, 9};
        double p[3] = {4, 6, 9};
        RyLegacyPose(rig, controls).bulgeOf(bend).push(share, rest, p);
        return std::array<double, 3>{p[0] - 4, p[1] - 6, p[2] - 9};
    };
    const auto isBy = [](const std::array<double, 3> &push, double factor) {
        return std::fabs(push[0] - 3 * factor) < 1e-6 && std::fabs(push[1] - 4 * factor) < 1e-6 && push[2] == 0;
    };
    const double quarter = RyFastMath::Pi / 2;
    QVERIFY(isBy(pushed(quarter, 1), 0.1));
    QVERIFY(isBy(pushed(quarter, -1), 0.2));
    QVERIFY(isBy(pushed(-quarter, 1), 0.3));
    QVERIFY(isBy(pushed(-quarter, -1), 0.4));
    QVERIFY(isBy(pushed(quarter / 2, 0.5), 0.025));
}

RY_TEST(LegacyPoseTest)
#include "tst_RyLegacyPose.moc"
