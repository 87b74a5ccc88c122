#include "support/RyTest.h"

#include "RySidedScene.h"

#include "pluginsource/RyJointTools/operations/listMirrorPairs.h"
#include "pluginsource/RyJointTools/operations/mirrorBones.h"
#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "rycore/base/RyERCLink.h"

namespace {

using Options = MirrorOptions;

QString namesOf(const std::vector<RyNode *> &nodes)
{
    QStringList names;
    for (const RyNode *node : nodes)
        names << node->getName();
    return names.join(' ');
}

} // namespace

/// Which bones a run of Mirror Joints goes through.
class RyMirrorBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void plans_data();
    void plans();
    void writesEachPairOnce();
    void linkedNodes();
    void opensOneRigEdit();
    void tellsOffset();
    void listsPairs();
};

void RyMirrorBonesTest::plans_data()
{
    QTest::addColumn<QString>("primary");
    QTest::addColumn<int>("nodes");
    QTest::addColumn<int>("direction");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("side");
    const auto row = [](const char *primary, Options::Nodes nodes, Options::Direction direction, const char *list,
                        const char *side) {
        QTest::addRow("%s %d %d", primary, int(nodes), int(direction))
            << primary << int(nodes) << int(direction) << list << side;
    };
    row("lThigh", Options::SelectedOnly, Options::SelectedToOpposite, "lThigh", "left");
    row("rThigh", Options::SelectedOnly, Options::SelectedToOpposite, "rThigh", "right");
    row("hip", Options::SelectedOnly, Options::SelectedToOpposite, "hip", "none");
    row("lThigh", Options::SelectedOnly, Options::OppositeToSelected, "rThigh", "right");
    row("rThigh", Options::SelectedOnly, Options::OppositeToSelected, "lThigh", "left");
    row("hip", Options::SelectedOnly, Options::OppositeToSelected, "hip", "none");
    row("lowerJaw", Options::SelectedOnly, Options::OppositeToSelected, "lowerJaw", "right");
    row("lThigh", Options::SelectedOnly, Options::LeftToRight, "lThigh", "left");
    row("rThigh", Options::SelectedOnly, Options::LeftToRight, "lThigh", "left");
    row("hip", Options::SelectedOnly, Options::LeftToRight, "", "left");
    row("lThigh", Options::SelectedOnly, Options::RightToLeft, "rThigh", "right");
    row("rThigh", Options::SelectedOnly, Options::RightToLeft, "rThigh", "right");
    row("hip", Options::SelectedOnly, Options::RightToLeft, "", "right");
    row("rThigh", Options::SelectedRecursive, Options::LeftToRight, "lShin lFoot lThigh", "left");
    row("lThigh", Options::SelectedRecursive, Options::SelectedToOpposite, "lShin lFoot lThigh", "left");
    row("hip", Options::SelectedRecursive, Options::LeftToRight,
        "lThigh lShin lFoot rThigh rightShin rFoot lowerJaw hip", "left");
    row("hip", Options::SelectedRecursive, Options::SelectedToOpposite,
        "lThigh lShin lFoot rThigh rightShin rFoot lowerJaw hip", "none");
    for (const char *primary : {"lFoot", "hip", "figure"}) {
        row(primary, Options::RootRecursive, Options::RightToLeft,
            "hip lThigh lShin lFoot rThigh rightShin rFoot lowerJaw", "right");
    }
    row("figure", Options::RootRecursive, Options::SelectedToOpposite,
        "hip lThigh lShin lFoot rThigh rightShin rFoot lowerJaw", "none");
}

void RyMirrorBonesTest::plans()
{
    QFETCH(QString, primary);
    QFETCH(int, nodes);
    QFETCH(int, direction);
    RySidedScene scene;
    Options options;
    options.nodes = Options::Nodes(nodes);
    options.direction = Options::Direction(direction);
    const RyBonePairing pairing(*scene.figure, 0);
    const MirrorPlan plan = planMirror(ryScene()->findNode(primary), pairing, options);
    QTEST(namesOf(plan.nodes), "list");
    const char *const sides[] = {"none", "left", "right"};
    QTEST(QString::fromLatin1(sides[int(plan.side)]), "side");
}

/// With both sides in the run the first of a pair that comes writes; what it got comes back to the bit.
void RyMirrorBonesTest::writesEachPairOnce()
{
    RySidedScene scene;
    Options options;
    options.nodes = Options::RootRecursive;
    const auto before = scene.values();
    const MirrorReport report = mirrorBones(scene.hip, options, [](RyNode *source, RyNode *target, int axis) {
        mirrorNode(source, target, axis);
        return source->getName() != "lShin";
    });
    QCOMPARE(scene.changedSince(before), QStringLiteral("rThigh rightShin rFoot"));
    QStringList told;
    for (const MirrorReport::Copied &copied : report.copied)
        told << copied.source->getName() + (copied.withoutBulges ? "!" : "-") + copied.target->getName();
    QCOMPARE(told.join(' '), QStringLiteral("lThigh-rThigh lShin!rightShin lFoot-rFoot"));
    QCOMPARE(namesOf(report.skipped), QStringLiteral("hip lowerJaw"));
}

/// Bones that are written later drive those that were written before.
void RyMirrorBonesTest::linkedNodes()
{
    RySidedScene scene;
    RyERCLink::create(scene.rFoot->getOriginYControl(), scene.rThigh->getEndXControl());
    RyERCLink::create(scene.rShin->getEndZControl(), scene.rThigh->getOriginYControl());
    Options options;
    options.nodes = Options::RootRecursive;
    options.direction = Options::LeftToRight;
    mirrorBones(scene.hip, options, [](RyNode *source, RyNode *target, int axis) {
        mirrorNode(source, target, axis);
        return true;
    });
    QVERIFY(reflectionError(scene.lThigh, scene.rThigh, 0, false, 100.0) < 1e-4);
    QVERIFY(reflectionError(scene.lShin, scene.rShin, 0, false, 100.0) < 1e-4);
    QVERIFY(reflectionError(scene.lFoot, scene.rFoot, 0, false, 100.0) < 1e-4);
}

void RyMirrorBonesTest::opensOneRigEdit()
{
    RySidedScene scene;
    int announced = 0;
    for (RyNode *node : scene.bones())
        QObject::connect(node, &RyNode::riggingChanged, scene.tool, [&] { ++announced; });
    Options options;
    options.nodes = Options::RootRecursive;
    options.direction = Options::LeftToRight;
    mirrorBones(scene.hip, options, [&](RyNode *source, RyNode *target, int axis) {
        if (!ryScene()->isInRiggingEdit())
            announced += 100;
        mirrorNode(source, target, axis);
        return announced == 0;
    });
    QCOMPARE(announced, 3);
    QVERIFY(!ryScene()->isInRiggingEdit());
}

void RyMirrorBonesTest::tellsOffset()
{
    RySidedScene scene;
    for (RyNode *node : {scene.lThigh, scene.lShin, scene.lFoot})
        node->setOrigin(node->getOrigin(true) + RyVec3(20, 0, 0), true);
    const RyBonePairing pairing(*scene.figure, 0);
    const MirrorReport report = mirrorBones(scene.hip, {}, [](RyNode *, RyNode *, int) { return true; });
    QVERIFY(report.offset > 0.05f);
    QCOMPARE(report.offset, pairing.meanOffset() / pairing.size());
}

void RyMirrorBonesTest::listsPairs()
{
    RySidedScene scene;
    scene.select(scene.lFoot);
    const QString before = scene.dump();
    const QVariantMap list = scene.tool->mirrorPairs(0);
    QStringList told;
    for (const QVariant &each : list["pairs"].toList()) {
        const QVariantMap pair = each.toMap();
        told << pair["first"].value<RyNode *>()->getName() + '-' + pair["second"].value<RyNode *>()->getName() + ' ' +
                    pair["stage"].toString();
    }
    QCOMPARE(told.join(", "), QStringLiteral("lThigh-rThigh prefix, lShin-rightShin prefix, lFoot-rFoot prefix"));
    QCOMPARE(list["alone"].toList().size(), 2);
    QCOMPARE(list["alone"].toList().front().value<RyNode *>(), static_cast<RyNode *>(scene.hip));
    QCOMPARE(scene.dump(), before);
    for (const int axis : {-1, 3})
        QVERIFY(scene.tool->mirrorPairs(axis)["pairs"].toList().isEmpty());
    QVERIFY(listMirrorPairs(scene.prop, 0)["alone"].toList().isEmpty());
    QVERIFY(listMirrorPairs(nullptr, 0)["pairs"].toList().isEmpty());
}

RY_TEST(RyMirrorBonesTest)
#include "tst_mirrorBones.moc"
