#include "parametric/ArmFixture.h"
#include "parametric/RandomRig.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyDeformer.h"

#include <QObject>

namespace {

RyVec3 mirrored(const RyVec3 &v)
{
    return {-v.x, v.y, v.z};
}

} // namespace

/// What joints make of the vertices of a figure: at rest, posed, mirrored, many at once.
class LegacyDeformationTest : public QObject
{
    Q_OBJECT

private slots:
    void bitForBitAtRest();
    void comesBackToRest();
    void manyVerticesInThreads();
    void mirroredPoses();
    void withoutMeshOrVertices();
};

void LegacyDeformationTest::bitForBitAtRest()
{
    ArmFixture arm;
    QVERIFY(arm.deformed() == arm.mesh->getPositions());
    RyRandom random;
    for (int i = 0; i < 50; ++i) {
        RandomRig figure(random);
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        std::vector<RyVec3> out;
        deformer.deform(figure.rest, {}, out);
        QVERIFY(out == figure.rest);
        QVERIFY(deformer.pose({}) == figure.rest);
    }
}

void LegacyDeformationTest::comesBackToRest()
{
    ArmFixture arm;
    arm.pose();
    QVERIFY(ArmFixture::apart(arm.deformed(), arm.mesh->getPositions()) > 5);
    for (RyBone *bone : arm.bones)
        bone->clearPose();
    QVERIFY(arm.deformed() == arm.mesh->getPositions());
}

void LegacyDeformationTest::manyVerticesInThreads()
{
    RyRandom random;
    RandomRig figure(random);
    for (size_t v = 0; v < 50000; ++v) {
        figure.rest.push_back(random.vector(15));
        figure.rig.owners.push_back(random.integer(0, int(figure.rig.bones.size()) - 1));
    }
    RyLegacyDeformer deformer;
    deformer.setRig(figure.rig, figure.rest);
    std::vector<RyVec3> first;
    std::vector<RyVec3> again;
    deformer.deform(figure.rest, figure.controls, first);
    deformer.deform(figure.rest, figure.controls, again);
    QVERIFY(first == again);
    // The same vertices alone.
    RyLegacyRig few = figure.rig;
    few.owners.resize(1000);
    const std::vector<RyVec3> fewRest(figure.rest.begin(), figure.rest.begin() + 1000);
    RyLegacyDeformer small;
    small.setRig(few, fewRest);
    std::vector<RyVec3> out;
    small.deform(fewRest, figure.controls, out);
    first.resize(1000);
    QVERIFY(out == first);
}

/// Mirrored in X, and the second and third bone exchanged: bones 1 and 2 are arms of the bone 0 in the middle.
void LegacyDeformationTest::mirroredPoses()
{
    using Param = RyLegacyJointParam;
    RyRandom random;
    int partly = 0;
    for (int i = 0; i < 200; ++i) {
        RyLegacyRig rig;
        rig.bones.resize(3);
        rig.bones[0].origin = {0, 3, 1};
        rig.bones[0].end = {0, 9, 1};
        RyLegacyRig::Bone &left = rig.bones[1];
        left.parent = 0;
        left.origin = random.vector(6);
        left.end = random.vector(12);
        RyVec3 axis = random.vector(1);
        const float angle = float(random.number(-3, 3));
        left.orientation = RyQuat(axis, angle);
        left.order = RyRotationOrder(random.integer(0, 5));
        rig.bones[2] = left;
        rig.bones[2].origin = mirrored(left.origin);
        rig.bones[2].end = mirrored(left.end);
        rig.bones[2].orientation = RyQuat(mirrored(axis), -angle);
        std::vector<RyLegacyControls> controls(3);
        controls[0].turn[0] = 0.4;
        for (size_t k = 0; k < 3; ++k) {
            const double across = k == 0 ? 1 : -1;
            controls[1].turn[k] = random.number(-1.5, 1.5);
            controls[2].turn[k] = across * controls[1].turn[k];
            controls[1].translation[k] = random.number(-1, 1);
            controls[2].translation[k] = -across * controls[1].translation[k];
            controls[1].scale[k] = controls[2].scale[k] = random.number(0.8, 1.3);
        }
        for (const int joint : {1, 0}) {
            for (int k = 0; k < 3; ++k) {
                RyLegacyRig::Param param;
                param.type = Param::Bend;
                param.flags = Param::ApplyAngles | Param::ApplyBulges | (joint == 0 ? unsigned(Param::Flipped) : 0u);
                param.axis = k;
                param.bone = joint;
                param.driver = 1;
                param.values = {110, 40, -30, -80, 0.1f, 0.2f, -0.1f, 0.3f};
                rig.params.push_back(param);
                param.bone = joint == 0 ? 0 : 2;
                param.driver = 2;
                const std::vector<float> v = param.values;
                if (k == 1 || k == 2) // the plane of these bends holds X
                    param.values = {180 - v[3], 180 - v[2], 180 - v[1], 180 - v[0], v[7], v[6], v[5], v[4]};
                rig.params.push_back(param);
            }
        }
        std::vector<RyVec3> rest;
        for (int v = 0; v < 30; ++v) {
            const int owner = random.integer(0, 1);
            rest.push_back(random.vector(12));
            rig.owners.push_back(owner);
            rest.push_back(mirrored(rest.back()));
            rig.owners.push_back(owner == 0 ? 0 : 2);
        }
        RyLegacyDeformer deformer;
        deformer.setRig(rig, rest);
        std::vector<RyVec3> out;
        deformer.deform(rest, controls, out);
        for (size_t v = 0; v < out.size(); v += 2) {
            QVERIFY2((out[v + 1] - mirrored(out[v])).length() < 1e-5f * 40,
                     qPrintable(QString::number(double((out[v + 1] - mirrored(out[v])).length()))));
            const double m = deformer.fractions(1, int(v)).turn[2];
            partly += m > 0 && m < 1;
        }
    }
    QVERIFY(partly > 500);
}

void LegacyDeformationTest::withoutMeshOrVertices()
{
    ArmFixture arm;
    RyLegacyJointParam *own = arm.joints[1]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2);
    QVERIFY(!own->getWeights(nullptr));
    const RyRef<RySkeleton> bare(new RySkeleton);
    QVERIFY(!own->getWeights(bare.get()));
    arm.mesh->setFacets({});
    arm.mesh->setPositions({});
    QVERIFY(own->getWeights(arm.skeleton.get())->isEmpty());
    QVERIFY(arm.deformed().empty());
    // A figure without bones stays as it is.
    const RyRef<RySkeleton> boneless(new RySkeleton);
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{1, 2, 3}});
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    object->addModifier(new RyLegacyBinding);
    boneless->setObject(object);
    QVERIFY(object->getDeformedPositions() == mesh->getPositions());
}

RY_TEST(LegacyDeformationTest)
#include "tst_legacyDeformation.moc"
