#include "parametric/ArmFixture.h"
#include "parametric/RandomRig.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyDeformer.h"

#include <QObject>

#include <cmath>

namespace {

double apart(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    double most = a.size() == b.size() ? 0.0 : 1e30;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i)
        most = std::max(most, double((a[i] - b[i]).length()));
    return most;
}

/// What a binding without any past makes of the arm.
std::vector<RyVec3> madeAnew(const ArmFixture &arm)
{
    RyLegacyDeformer deformer;
    const std::vector<RyVec3> &rest = arm.shape->getCurrentPositions();
    deformer.setRig(RyLegacyRig::of(*arm.binding, *arm.skeleton), rest);
    std::vector<RyVec3> out;
    deformer.deform(rest, RyLegacyRig::controlsOf(*arm.skeleton), out);
    return out;
}

RyVec3 mirrored(const RyVec3 &v)
{
    return {-v.x, v.y, v.z};
}

} // namespace

class LegacyDeformationTest : public QObject
{
    Q_OBJECT

private slots:
    void bitForBitAtRest();
    void comesBackToRest();
    void onlyWhatAMovedBoneMoves();
    void changesSayWhatMoved();
    void onlyWeightsOfAChangedParameter();
    void followsEveryEdit_data();
    void followsEveryEdit();
    void parametersComeAndGo();
    void normalsStandOnTheSurface();
    void furtherNormals();
    void manyVerticesInThreads();
    void mirroredPoses();
    void weightMaps();
    void weightsOfScale();
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
    QVERIFY(apart(arm.deformed(), arm.mesh->getPositions()) > 5);
    for (RyBone *bone : arm.bones)
        bone->clearPose();
    QVERIFY(arm.deformed() == arm.mesh->getPositions());
}

void LegacyDeformationTest::onlyWhatAMovedBoneMoves()
{
    ArmFixture arm;
    arm.pose();
    arm.deformed();
    const std::vector<RyVec3> before = arm.deformed();
    QCOMPARE(arm.binding->deformer().lastTouched(), qint64(0));
    arm.bones[2]->getYRotControl()->setValue(15);
    const std::vector<RyVec3> after = arm.deformed();
    const qint64 touched = arm.binding->deformer().lastTouched();
    int moved = 0;
    for (size_t i = 0; i < after.size(); ++i)
        moved += before[i] != after[i];
    // All of its own third, and the ramps on the other side of the joint.
    QVERIFY(moved > ArmFixture::Around * 15);
    QVERIFY(touched >= moved && touched < ArmFixture::Around * ArmFixture::Rings / 2);
    QCOMPARE(apart(after, madeAnew(arm)), 0.0);
    // What follows from far below comes along.
    arm.bones[0]->getZRotControl()->setValue(25);
    QCOMPARE(apart(arm.deformed(), madeAnew(arm)), 0.0);
}

void LegacyDeformationTest::changesSayWhatMoved()
{
    ArmFixture arm;
    arm.pose();
    RyShapePoints points = arm.object->getDeformedPoints();
    const quint64 revision = points.revision();
    const std::vector<RyVec3> before = *points.positions;
    arm.bones[2]->getZRotControl()->setValue(15);
    points = arm.object->getDeformedPoints();
    std::vector<char> said(before.size(), 0);
    int total = 0;
    for (const RyPointChanges::Range &range : points.changedSince(revision)) {
        for (int i = range.first; i < range.first + range.count && i < int(said.size()); ++i)
            said[size_t(i)] = 1;
        total += range.count;
    }
    for (size_t i = 0; i < before.size(); ++i)
        QVERIFY(said[i] || before[i] == (*points.positions)[i]);
    QVERIFY(total > 0 && total < int(before.size()) * 2 / 3);
    arm.deformed();
    QVERIFY(points.changedSince(points.revision()).empty());
}

void LegacyDeformationTest::onlyWeightsOfAChangedParameter()
{
    ArmFixture arm;
    arm.pose();
    arm.deformed();
    const RyLegacyDeformer &deformer = arm.binding->deformer();
    const auto builds = [&] {
        std::vector<int> all;
        for (int i = 0; i < int(deformer.rig().params.size()); ++i)
            all.push_back(deformer.weightBuilds(i));
        return all;
    };
    const std::vector<int> before = builds();
    arm.bones[1]->getZRotControl()->setValue(20);
    arm.deformed();
    QVERIFY(builds() == before);
    // A parameter of the elbow: its own joint's, behind the four of the first joint.
    auto *bend = qobject_cast<RyLegacyBendParam *>(arm.joints[1]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2));
    bend->setStaticA(2.0f);
    arm.deformed();
    std::vector<int> after = builds();
    int changed = 0;
    for (size_t i = 0; i < after.size(); ++i) {
        changed += after[i] - before[i];
        const RyLegacyRig::Param &param = deformer.rig().params[i];
        QVERIFY(after[i] == before[i] || (param.bone == 1 && param.driver == 1 && param.axis == 2));
    }
    QCOMPARE(changed, 1);
    // The placement of a driver: its bends on both sides.
    arm.bones[2]->setEndPoint({92, 1, 0});
    arm.deformed();
    const std::vector<int> moved = builds();
    for (size_t i = 0; i < moved.size(); ++i) {
        const RyLegacyRig::Param &param = deformer.rig().params[i];
        QCOMPARE(moved[i] - after[i], int(param.driver == 2 && param.type == RyLegacyJointParam::Bend));
    }
    // A vertex at the far end.
    arm.mesh->setVertex(arm.vertex(45, 3), {91, 3, 3});
    arm.deformed();
    const std::vector<int> shaped = builds();
    for (size_t i = 0; i < shaped.size(); ++i) {
        const RyLegacyRig::Param &param = deformer.rig().params[i];
        const bool onThatBone = param.bone == 2 && param.driver == 2;
        QCOMPARE(shaped[i] - moved[i], int(onThatBone && param.type == RyLegacyJointParam::Bend));
    }
    QCOMPARE(apart(arm.deformed(), madeAnew(arm)), 0.0);
}

void LegacyDeformationTest::followsEveryEdit_data()
{
    QTest::addColumn<QByteArray>("edit");
    for (const char *edit : {"angle", "flag", "sphere", "axis", "driver", "origin", "orientation", "order", "inherit",
                             "positions", "groups", "pairs", "bone", "parent"})
        QTest::newRow(edit) << QByteArray(edit);
}

void LegacyDeformationTest::followsEveryEdit()
{
    QFETCH(QByteArray, edit);
    ArmFixture arm;
    arm.pose();
    arm.bones[1]->getYScaleControl()->setValue(1.5f);
    const std::vector<RyVec3> before = arm.deformed();
    auto *bend = qobject_cast<RyLegacyBendParam *>(arm.joints[1]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2));
    if (edit == "angle")
        bend->setDynamicB(0.3f);
    else if (edit == "flag")
        bend->setApplyAngles(false);
    else if (edit == "axis")
        bend->setAxis(0);
    else if (edit == "driver")
        bend->setDriver(nullptr);
    else if (edit == "origin")
        arm.bones[1]->setOrigin({31, 1, 0});
    else if (edit == "orientation")
        arm.bones[1]->setOrientation(RyQuat(RyVec3(0, 1, 0), 0.2f));
    else if (edit == "order")
        arm.bones[1]->setRotationOrder(RyRotationOrder(RyRotationOrder::ZYX));
    else if (edit == "inherit")
        arm.bones[2]->setInheritScale(false);
    else if (edit == "positions")
        arm.mesh->setVertex(arm.vertex(16, 0), {32, 5, 5});
    else if (edit == "groups")
        arm.mesh->removeFaceGroup("group1");
    else if (edit == "pairs")
        arm.map->removePair(2);
    if (edit == "sphere") {
        bend->getStaticSphere()->getScaleControl()->setValue(50);
        bend->getStaticSphere()->getXTransControl()->setValue(30);
        bend->getDynamicSphere()->getScaleControl()->setValue(0.1f);
        bend->setApplyMatrices(true);
    } else if (edit == "bone") {
        auto *bone = new RyBone;
        arm.skeleton->addNodeChild(bone, false, 0);
    } else if (edit == "parent") {
        arm.skeleton->addNodeChild(arm.bones[2]);
    }
    const std::vector<RyVec3> after = arm.deformed();
    QCOMPARE(apart(after, madeAnew(arm)), 0.0);
    // A bone in front of all owns what had no owner, and that was nothing. Without its group a bone moves the same
    // vertices by the equal parameters on its parent's joint.
    QCOMPARE(apart(after, before) > 0.01, edit != "bone" && edit != "groups");
}

void LegacyDeformationTest::parametersComeAndGo()
{
    ArmFixture arm;
    arm.pose();
    const std::vector<RyVec3> whole = arm.deformed();
    RyLegacyJointParam *bend = arm.joints[1]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2);
    const RyRef<RyLegacyJointParam> guard(bend);
    const RyLegacyDeformer &deformer = arm.binding->deformer();
    const int last = int(deformer.rig().params.size()) - 1;
    const auto totalBuilds = [&] {
        int total = 0;
        for (int i = 0; i < int(deformer.rig().params.size()); ++i)
            total += deformer.weightBuilds(i);
        return total;
    };
    const int before = totalBuilds();
    arm.joints[1]->removeJointParam(bend);
    const std::vector<RyVec3> without = arm.deformed();
    QCOMPARE(int(deformer.rig().params.size()), last);
    QVERIFY(totalBuilds() <= before);
    QCOMPARE(apart(without, madeAnew(arm)), 0.0);
    QVERIFY(apart(without, whole) > 0.01);
    arm.joints[1]->addJointParam(bend);
    QCOMPARE(apart(arm.deformed(), whole), 0.0);
    arm.binding->removeJoint(arm.joints[1]);
    QCOMPARE(apart(arm.deformed(), madeAnew(arm)), 0.0);
}

void LegacyDeformationTest::normalsStandOnTheSurface()
{
    ArmFixture arm;
    arm.pose();
    arm.bones[2]->getYScaleControl()->setValue(2);
    const RyShapePoints points = arm.object->getDeformedPoints();
    QVERIFY(points.normals && points.normals->size() == points.positions->size());
    const std::vector<RyVec3> fromSurface = arm.mesh->computeNormals(*points.positions);
    // The last ring follows the last bone wholly, where no fraction changes.
    for (int i = 0; i < ArmFixture::Around; ++i) {
        const auto v = size_t(arm.vertex(43, i));
        QVERIFY((*points.normals)[v].normalized().dot(fromSurface[v]) > 0.98f);
    }
    // In part moved ones: turned as far as their vertex.
    const std::vector<RyVec3> &rest = arm.shape->getNormals()->normals();
    int turned = 0;
    for (size_t v = 0; v < rest.size(); ++v) {
        const float along = (*points.normals)[v].normalized().dot(fromSurface[v]);
        turned += along < 0.9f;
    }
    QVERIFY(turned < ArmFixture::Around * ArmFixture::Rings / 5);
    // Those of one pose in one step and in two.
    const std::vector<RyVec3> kept = *points.normals;
    arm.bones[1]->getZRotControl()->setValue(10);
    arm.object->getDeformedPoints();
    arm.bones[1]->getZRotControl()->setValue(90);
    QCOMPARE(apart(*arm.object->getDeformedPoints().normals, kept), 0.0);
}

void LegacyDeformationTest::furtherNormals()
{
    RyRandom random;
    int moved = 0;
    for (int i = 0; i < 200; ++i) {
        RandomRig figure(random);
        const size_t count = figure.rest.size();
        std::vector<int> vertices;
        std::vector<RyVec3> normals;
        for (size_t v = 0; v < count; ++v)
            normals.push_back(random.vector(1).normalized());
        // The same normals again, in another order: the same results.
        for (size_t v = 0; v < count; v += 2) {
            vertices.insert(vertices.begin(), int(v));
            normals.insert(normals.begin() + std::ptrdiff_t(count), normals[v]);
        }
        RyLegacyDeformer deformer;
        deformer.setRig(figure.rig, figure.rest);
        deformer.setFurtherNormals(vertices);
        deformer.pose(figure.controls, &normals, 1);
        for (int rigs = 0; rigs < 2; ++rigs) {
            QCOMPARE(deformer.normals().size(), normals.size());
            for (size_t f = 0; f < vertices.size(); ++f) {
                const RyVec3 &one = deformer.normals()[count + f];
                const RyVec3 &other = deformer.normals()[size_t(vertices[f])];
                QVERIFY((one - other).length() <= 1e-6f * (1 + other.length()));
                moved += one != normals[count + f];
            }
            // Places of a changed rig are found again.
            figure.rig.bones[0].origin += RyVec3(1, 0, 0);
            deformer.setRig(figure.rig, figure.rest);
            deformer.pose(figure.controls, &normals, 1);
        }
        // Ones that do not fit leave all normals as they are.
        normals.pop_back();
        deformer.pose(figure.controls, &normals, 2);
        QVERIFY(deformer.normals() == normals);
    }
    QVERIFY(moved > 500);
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

void LegacyDeformationTest::weightMaps()
{
    ArmFixture arm;
    RyLegacyJointParam *own = arm.joints[1]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2);
    RyLegacyJointParam *copy = arm.joints[0]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2);
    const RyRef<RyWeightMap> ownMap(own->getWeights(arm.skeleton.get()));
    const RyRef<RyWeightMap> copyMap(copy->getWeights(arm.skeleton.get()));
    QCOMPARE(ownMap->getNumWeights(), arm.mesh->getNumVertices());
    const RyLegacyDeformer &deformer = arm.binding->deformer();
    int partly = 0;
    for (int v = 0; v < arm.mesh->getNumVertices(); ++v) {
        const int ring = v / ArmFixture::Around;
        const quint16 exact = quint16(std::lround(deformer.fractions(1, v).turn[2] * 65535.0));
        // Rings 15 and 30 stand on a border and belong to the lower bone.
        QCOMPARE(ownMap->getWeight(v), ring >= 15 && ring < 30 ? exact : quint16(0));
        QCOMPARE(copyMap->getWeight(v), ring < 15 ? exact : quint16(0));
        partly += exact > 0 && exact < 65535;
    }
    QVERIFY(partly > 5);
    QVERIFY(ownMap->getWeight(arm.vertex(25, 0)) == 65535);
    arm.changeBoth<RyLegacyBendParam>(1, 2, [](RyLegacyBendParam *bend) { bend->setApplyAngles(false); });
    QCOMPARE(own->getWeights(arm.skeleton.get())->getNumAffected(), 15 * ArmFixture::Around);
    QCOMPARE(copy->getWeights(arm.skeleton.get())->getNumAffected(), 0);
    own->setDriver(nullptr);
    QCOMPARE(own->getWeights(arm.skeleton.get())->getNumAffected(), 0);
}

void LegacyDeformationTest::weightsOfScale()
{
    ArmFixture arm;
    auto *p = qobject_cast<RyLegacySmoothScale *>(arm.joints[1]->findParam("p"));
    auto *q = qobject_cast<RyLegacySmoothScale *>(arm.joints[0]->findParam("q"));
    p->setHiStart(-6);
    p->setHiEnd(4);
    p->setApplyZones(true);
    const RyRef<RyWeightMap> ofP(p->getWeights(arm.skeleton.get()));
    const RyRef<RyWeightMap> ofQ(q->getWeights(arm.skeleton.get()));
    const RyLegacyDeformer &deformer = arm.binding->deformer();
    int partly = 0;
    for (int v = 0; v < arm.mesh->getNumVertices(); ++v) {
        const int ring = v / ArmFixture::Around;
        const double n = deformer.fractions(1, v).scale;
        QCOMPARE(ofP->getWeight(v), quint16(ring >= 15 && ring < 30 ? std::lround((1 - n) * 65535) : 0));
        QCOMPARE(ofQ->getWeight(v), quint16(ring < 15 ? std::lround(n * 65535) : 0));
        partly += n > 0 && n < 1;
    }
    QVERIFY(partly > 5);
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
