#include "parametric/ArmFixture.h"
#include "rycore/parametric/RyLegacyDeformer.h"

#include <QObject>

namespace {

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

} // namespace

/// Only what an edit or a motion changes is worked out anew, and it is what a figure without any past shows.
class LegacyUpdatesTest : public QObject
{
    Q_OBJECT

private slots:
    void onlyWhatAMovedBoneMoves();
    void changesSayWhatMoved();
    void onlyWeightsOfAChangedParameter();
    void followsEveryEdit_data();
    void followsEveryEdit();
    void parametersComeAndGo();
};

void LegacyUpdatesTest::onlyWhatAMovedBoneMoves()
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
    QCOMPARE(ArmFixture::apart(after, madeAnew(arm)), 0.0);
    // What follows from far below comes along.
    arm.bones[0]->getZRotControl()->setValue(25);
    QCOMPARE(ArmFixture::apart(arm.deformed(), madeAnew(arm)), 0.0);
}

void LegacyUpdatesTest::changesSayWhatMoved()
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

void LegacyUpdatesTest::onlyWeightsOfAChangedParameter()
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
    QCOMPARE(ArmFixture::apart(arm.deformed(), madeAnew(arm)), 0.0);
}

void LegacyUpdatesTest::followsEveryEdit_data()
{
    QTest::addColumn<QByteArray>("edit");
    for (const char *edit : {"angle", "flag", "sphere", "axis", "driver", "origin", "orientation", "order", "inherit",
                             "positions", "groups", "pairs", "bone", "parent"})
        QTest::newRow(edit) << QByteArray(edit);
}

void LegacyUpdatesTest::followsEveryEdit()
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
    QCOMPARE(ArmFixture::apart(after, madeAnew(arm)), 0.0);
    // A bone in front of all owns what had no owner, and that was nothing. Without its group a bone moves the same
    // vertices by the equal parameters on its parent's joint.
    QCOMPARE(ArmFixture::apart(after, before) > 0.01, edit != "bone" && edit != "groups");
}

void LegacyUpdatesTest::parametersComeAndGo()
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
    QCOMPARE(ArmFixture::apart(without, madeAnew(arm)), 0.0);
    QVERIFY(ArmFixture::apart(without, whole) > 0.01);
    arm.joints[1]->addJointParam(bend);
    QCOMPARE(ArmFixture::apart(arm.deformed(), whole), 0.0);
    arm.binding->removeJoint(arm.joints[1]);
    QCOMPARE(ArmFixture::apart(arm.deformed(), madeAnew(arm)), 0.0);
}

RY_TEST(LegacyUpdatesTest)
#include "tst_legacyUpdates.moc"
