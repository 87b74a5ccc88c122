#include "support/RyTest.h"

#include "FigureScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/pairing/RyBonePairing.h"
#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/io/RySceneFile.h"

#include <set>

namespace {

using Stage = RyBonePairing::Stage;

/// A skeleton of bones that are told as "parent/name x y z"; no parent for those below the skeleton. The current
/// values are elsewhere.
struct NamedBones : FigureScene
{
    explicit NamedBones(const QStringList &rows)
    {
        for (const QString &row : rows) {
            const QStringList parts = row.split(' ');
            const QString parentName = parts[0].section('/', 0, -2);
            RyNode *parent = parentName.isEmpty() ? figure : static_cast<RyNode *>(find(parentName));
            RyBone *bone = addBone(parts[0].section('/', -1), parent, -1);
            const RyVec3 origin(parts.value(1).toFloat(), parts.value(2).toFloat(), parts.value(3).toFloat());
            bone->setOrigin(origin, true);
            bone->setEndPoint(origin + RyVec3(0, 10, 0), true);
            bone->setOrigin({3, 1, float(bones.size())});
            bone->getXRotControl()->setValue(20.0f);
            bones[bone->getName()] = bone;
        }
        figure->getYRotControl()->setValue(70.0f);
        figure->getScaleControl()->setValue(0.5f);
    }
    RyBone *find(const QString &name) const { return bones.value(name); }

    /// "lArm-rArm 1" for each pair, then the names of the others.
    QString told(int axis = 0, const RySidePrefixes &prefixes = {}) const
    {
        const RyBonePairing pairing(*figure, axis, prefixes);
        QStringList texts;
        for (const RyBonePairing::Pair &pair : pairing.pairs())
            texts << pair.first->getName() + '-' + pair.second->getName() + ' ' + QString::number(int(pair.stage));
        for (const RyNode *node : pairing.alone())
            texts << node->getName();
        return texts.join(", ");
    }

    QMap<QString, RyBone *> bones;
};

QString nameOf(const RyNode *node)
{
    return node ? node->getName() : QStringLiteral("-");
}

} // namespace

/// Which bone is whose opposite.
class RyBonePairingTest : public QObject
{
    Q_OBJECT

private slots:
    void marks_data();
    void marks();
    void numbers();
    void prefixLists();
    void prefixesBySide();
    void nodeOrderBeforePrefixOrder();
    void stages_data();
    void stages();
    void sides();
    void twoForOne();
    void propsHaveOppositesByPrefix();
    void placesOfOtherAxes();
    void offset();
    void onPlane();
    void models_data();
    void models();
};

void RyBonePairingTest::marks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("all");
    const auto one = [](const char *name, const char *other) {
        QTest::newRow(name) << name << other << other << other;
    };
    one("lForearm", "rForearm");
    one("ArmL", "ArmR");
    one("ArmR1", "ArmL1");
    one("arm_l", "arm_r");
    one("arm.R.001", "arm.L.001");
    one("L_hand", "R_hand");
    one("l", "r");
    one("mixed:LeftHandThumb1", "mixed:RightHandThumb1");
    one("upper-RIGHT-leg", "upper-LEFT-leg");
    one("legLeft2", "legRight2");
    one("joint_R__4_", "joint_L__4_");
    for (const char *none : {"lowerJaw", "Larm", "armlet", "hip", "leftover", "handRPinky", "xl", "ball", ""})
        one(none, none);
    QTest::newRow("two") << "l_leg_l"
                         << "r_leg_l"
                         << "l_leg_r"
                         << "r_leg_r";
    QTest::newRow("three") << "Left.arm.R.l"
                           << "Right.arm.R.l"
                           << "Left.arm.R.r"
                           << "Right.arm.L.r";
}

void RyBonePairingTest::marks()
{
    QFETCH(QString, name);
    using Which = RyNameMarks::Which;
    const RyNameMarks marks(name);
    QTEST(marks.exchanged(Which::First), "first");
    QTEST(marks.exchanged(Which::Last), "last");
    QTEST(marks.exchanged(Which::All), "all");
    QCOMPARE(marks.isEmpty(), marks.exchanged(Which::All) == name);
}

void RyBonePairingTest::numbers()
{
    const auto stem = [](const char *name) { return RyNameMarks::withoutNumber(QString::fromLatin1(name)); };
    QCOMPARE(stem("arm_L_07"), QStringLiteral("arm_L"));
    QCOMPARE(stem("joint_L__4_"), QStringLiteral("joint_L"));
    QCOMPARE(stem("arm.L.001"), QStringLiteral("arm.L"));
    QCOMPARE(stem("arm7"), QStringLiteral("arm7"));
    QCOMPARE(stem("arm_"), QStringLiteral("arm_"));
    QCOMPARE(stem("_12"), QStringLiteral("_12"));
}

void RyBonePairingTest::prefixLists()
{
    QCOMPARE(RySidePrefixes::parse("left;;l;"), QStringList({"left", "l"}));
    QCOMPARE(RySidePrefixes::parse(""), QStringList());
    // The first that fits decides, though only the second would find somebody.
    const NamedBones bones({"leftArm 9", "rArm -7", "reftArm -9", "RIGHTtoe -3 50", "LToe 3", "hip 0"});
    RySidePrefixes prefixes{{"left", "l"}, {"r"}};
    QCOMPARE(bones.told(0, prefixes), QStringLiteral("leftArm-rArm 1, reftArm-leftArm 1, RIGHTtoe, LToe, hip"));
    prefixes.left = QStringList({"l", "left"});
    QCOMPARE(bones.told(0, prefixes), QStringLiteral("leftArm-reftArm 1, rArm-leftArm 1, RIGHTtoe, LToe, hip"));
    QCOMPARE(bones.told(0, {}), QStringLiteral("leftArm-rArm 1, reftArm-leftArm 1, RIGHTtoe-LToe 1, hip"));
    QCOMPARE(bones.told(0, {{}, {}}), QStringLiteral("leftArm, rArm, reftArm, RIGHTtoe, LToe, hip"));
}

void RyBonePairingTest::prefixesBySide()
{
    const NamedBones bones({"hip 0", "hip/lThigh 10", "hip/RTHIGH -12", "hip/lowerJaw 0 20"});
    const RyBonePairing pairing(*bones.figure, 0);
    const RyNode *left = bones.find("lThigh"), *right = bones.find("RTHIGH"), *jaw = bones.find("lowerJaw");
    for (const RySide side : {RySide::None, RySide::Left})
        QCOMPARE(nameOf(pairing.oppositeOf(left, side)), QStringLiteral("RTHIGH"));
    QVERIFY(!pairing.oppositeOf(left, RySide::Right));
    for (const RySide side : {RySide::None, RySide::Right})
        QCOMPARE(nameOf(pairing.oppositeOf(right, side)), QStringLiteral("lThigh"));
    QVERIFY(!pairing.oppositeOf(right, RySide::Left));
    QVERIFY(!pairing.oppositeOf(jaw) && !pairing.oppositeOf(nullptr) && !pairing.oppositeOf(bones.figure));
    // By labels there would be others.
    bones.find("hip")->setLabel("rowerJaw");
    QVERIFY(!RyBonePairing(*bones.figure, 0).oppositeOf(jaw));
}

void RyBonePairingTest::nodeOrderBeforePrefixOrder()
{
    QCOMPARE(NamedBones({"rArm", "rightArm", "lArm"}).told(), QStringLiteral("rArm-lArm 1, rightArm-lArm 1"));
    for (const QString &first : {QStringLiteral("rArm"), QStringLiteral("rightArm")}) {
        const NamedBones bones({first, first == "rArm" ? "rightArm" : "rArm", "lArm"});
        QCOMPARE(nameOf(RyBonePairing(*bones.figure, 0).oppositeOf(bones.find("lArm"))), first);
    }
}

void RyBonePairingTest::stages_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("told");
    QTest::newRow("by mark") << QStringList({"hip", "hip/lowerarm.l 10", "hip/lowerarm.r -10"})
                             << "lowerarm.l-lowerarm.r 2, hip";
    QTest::newRow("without regard to case") << QStringList({"Arm_L 10", "arm_r -10"}) << "Arm_L-arm_r 2";
    QTest::newRow("loose") << QStringList({"root", "root/arm_L_07 10", "root/arm_R_12 -10"})
                           << "arm_L_07-arm_R_12 2, root";
    QTest::newRow("parents say which")
        << QStringList({"up_L_1 9 9", "up_L_1/foot_L_2 9 0", "up_R_3 -9 9", "low_L_4 5 5", "low_L_4/foot_L_5 5 0",
                        "low_R_6 -5 5", "low_R_6/foot_R_7 -9 0", "up_R_3/foot_R_8 -5 0"})
        << "up_L_1-up_R_3 2, foot_L_2-foot_R_8 2, low_L_4-low_R_6 2, foot_L_5-foot_R_7 2";
    QTest::newRow("exact that fits goes first")
        << QStringList({"a", "b", "a/hand_L_1 10", "a/hand_R_1 -20", "a/hand_R_2 -10"})
        << "hand_L_1-hand_R_1 2, a, hand_R_2, b";
    QTest::newRow("loose that fits before exact that does not")
        << QStringList({"a", "b", "a/hand_L_1 10", "b/hand_R_1 -10", "a/hand_R_2 -10"})
        << "hand_L_1-hand_R_2 2, a, b, hand_R_1";
    QTest::newRow("exact that does not fit")
        << QStringList({"a", "b", "a/hand_L 10", "b/hand_R -10"}) << "hand_L-hand_R 2, a, b";
    QTest::newRow("several loose ones that do not fit")
        << QStringList({"a", "b", "a/hand_L_1 10", "b/hand_R_2 -10", "b/hand_R_3 -10"})
        << "a, hand_L_1, b, hand_R_2, hand_R_3";
    QTest::newRow("nearest of several") << QStringList({"a", "a/hand_L_1 10", "a/hand_L_2 20", "a/hand_R_3 -21",
                                                        "a/hand_R_4 -11"})
                                        << "hand_L_1-hand_R_4 2, hand_L_2-hand_R_3 2, a";
    QTest::newRow("both marks") << QStringList({"r_leg_r -3", "l_leg_l 3"}) << "r_leg_r-l_leg_l 2";
    QTest::newRow("place") << QStringList({"spine 0 0", "a 10 0", "b 10 20", "c -10.2 20", "d -10 0.3", "e 0 100"})
                           << "a-d 3, b-c 3, spine, e";
    QTest::newRow("too far off") << QStringList({"a 10 0", "b -10 4", "c 0 100"}) << "a, b, c";
    QTest::newRow("mostly one-sided") << QStringList({"a 10 0", "b -10 0", "c 20 0", "d 30 0", "e 0 100"})
                                      << "a, b, c, d, e";
    QTest::newRow("three of five") << QStringList({"a 10 0", "b -10 0", "c 20 0", "d -20 0", "e 30 0", "f 0 100"})
                                   << "a-b 3, c-d 3, e, f";
    QTest::newRow("marks stay out of places")
        << QStringList({"a_l 10", "b -10", "c 20", "d -20", "e 0 100"}) << "c-d 3, a_l, b, e";
    QTest::newRow("none that hangs on the other") << QStringList({"a 1", "a/b -1", "e 0 100"}) << "a, b, e";
}

void RyBonePairingTest::stages()
{
    QFETCH(QStringList, rows);
    QTEST(NamedBones(rows).told(), "told");
}

void RyBonePairingTest::sides()
{
    const NamedBones bones({"lowerarm.r -10 5", "lowerarm.l 10 5", "lowerJaw 0 30", "tail 0 40", "lid.R 0 60",
                            "p 10 70", "q -10 70", "lThigh 3 80", "rThigh -3 80"});
    const RyBonePairing pairing(*bones.figure, 0);
    const auto side = [&](const char *name) { return int(pairing.sideOf(bones.find(name))); };
    const int left = int(RySide::Left), right = int(RySide::Right), none = int(RySide::None);
    QCOMPARE(side("lowerarm.r"), right);
    QCOMPARE(side("lowerarm.l"), left);
    QCOMPARE(side("lowerJaw"), left);
    QCOMPARE(side("tail"), none);
    QCOMPARE(side("lid.R"), right);
    QCOMPARE(side("p"), left);
    QCOMPARE(side("q"), right);
    QCOMPARE(side("lThigh"), left);
    QCOMPARE(side("rThigh"), right);
    QCOMPARE(int(pairing.sideOf(nullptr)), none);
    QCOMPARE(nameOf(pairing.oppositeOf(bones.find("lowerarm.l"), RySide::Left)), QStringLiteral("lowerarm.r"));
    QVERIFY(!pairing.oppositeOf(bones.find("lowerarm.r"), RySide::Left));
    QVERIFY(!pairing.oppositeOf(bones.find("p"), RySide::Right));
}

void RyBonePairingTest::twoForOne()
{
    const NamedBones bones({"lArm", "rArm", "rightArm"});
    const RyBonePairing pairing(*bones.figure, 0);
    QCOMPARE(nameOf(pairing.mutualOf(bones.find("lArm"))), QStringLiteral("rArm"));
    QCOMPARE(nameOf(pairing.mutualOf(bones.find("rArm"))), QStringLiteral("lArm"));
    QCOMPARE(nameOf(pairing.oppositeOf(bones.find("rightArm"))), QStringLiteral("lArm"));
    QVERIFY(!pairing.mutualOf(bones.find("rightArm")));
}

void RyBonePairingTest::propsHaveOppositesByPrefix()
{
    const NamedBones bones({"lHand 10", "rHand -10"});
    const auto hang = [&](const char *name, const char *hand) {
        auto *prop = new RyNode;
        prop->setName(QString::fromLatin1(name));
        bones.find(hand)->addNodeChild(prop);
    };
    hang("lRing", "lHand");
    hang("rRing", "rHand");
    hang("glove_L", "lHand");
    hang("glove_R", "rHand");
    QCOMPARE(bones.told(), QStringLiteral("lHand-rHand 1, lRing-rRing 1"));
}

void RyBonePairingTest::placesOfOtherAxes()
{
    const NamedBones bones({"front 0 50 10", "rear 0 50 -10", "bar 0 0 0"});
    QCOMPARE(bones.told(2), QStringLiteral("front-rear 3, bar"));
    QCOMPARE(bones.told(0), QStringLiteral("front, rear, bar"));
    const RyBonePairing pairing(*bones.figure, 2);
    QCOMPARE(int(pairing.sideOf(bones.find("front"))), int(RySide::None));
    QVERIFY(!pairing.oppositeOf(bones.find("front"), RySide::Left));
}

void RyBonePairingTest::offset()
{
    const NamedBones bones({"lArm 14", "rArm -10", "lLeg 8", "rLeg -6", "head 0 90"});
    QCOMPARE(RyBonePairing(*bones.figure, 0).meanOffset(), 1.5f);
    QCOMPARE(RyBonePairing(*bones.figure, 0).size(), 100.0f);
    QCOMPARE(RyBonePairing(*NamedBones({"head 0 90"}).figure, 0).meanOffset(), 0.0f);
}

void RyBonePairingTest::onPlane()
{
    const NamedBones bones({"head 0.01 90", "neck 0 80", "l_eye 0 95", "r_eye 0 94", "ear 5 95"});
    bones.find("neck")->setEndPoint({6, 90, 0}, true);
    const RyBonePairing pairing(*bones.figure, 0);
    QVERIFY(pairing.isOnPlane(bones.find("head")));
    for (const char *name : {"neck", "l_eye", "ear"})
        QVERIFY2(!pairing.isOnPlane(bones.find(name)), name);
    QVERIFY(!pairing.isOnPlane(bones.figure));
}

void RyBonePairingTest::models_data()
{
    QTest::addColumn<int>("bones");
    QTest::addColumn<int>("byPrefix");
    QTest::addColumn<int>("byMark");
    QTest::addColumn<int>("byPlace");
    QTest::newRow("CesiumMan.glb") << 19 << 0 << 14 << 0;
    QTest::newRow("Fox.glb") << 24 << 0 << 14 << 0;
    QTest::newRow("kaykit_knight.glb") << 41 << 0 << 36 << 0;
    QTest::newRow("mh_default_rig.glb") << 163 << 0 << 140 << 0;
    QTest::newRow("mh_large.glb") << 53 << 0 << 46 << 0;
    QTest::newRow("RiggedSimple.gltf") << 2 << 0 << 0 << 0;
    QTest::newRow("hand_flat_hierarchy.glb") << 25 << 0 << 0 << 0;
    QTest::newRow("quad_10_influences.glb") << 10 << 0 << 0 << 0;
    QTest::newRow("tentacle_84_skins.glb") << 840 << 0 << 0 << 0;
    if (!QFile::exists(QStringLiteral(RY_BINARY_DIR "/lib/ryforeign")))
        return; // a build without the reader of such files
    QTest::newRow("arnaud.fbx") << 53 << 40 << 0 << 0;
    QTest::newRow("two_armatures.dae") << 4 << 0 << 0 << 0;
}

void RyBonePairingTest::models()
{
    const QString file = ryModel(QTest::currentDataTag());
    if (file.isEmpty())
        QSKIP("the character is not on this machine");
    const FigureScene empty;
    ryScene()->clear();
    QString error;
    QVERIFY2(RySceneFile::open(ryScene(), file, &error), qPrintable(error));
    int bones = 0;
    int found[4] = {};
    for (const RySkeleton *skeleton : ryScene()->getSkeletons()) {
        const RyBonePairing pairing(*skeleton, 0);
        std::set<const RyNode *> seen;
        for (const RyBonePairing::Pair &pair : pairing.pairs()) {
            found[int(pair.stage)] += 2;
            QVERIFY(seen.insert(pair.first).second && seen.insert(pair.second).second);
            QCOMPARE(pairing.mutualOf(pair.first), pair.second);
            // Nobody else stands where the partner should.
            const auto gap = [&](const RyNode *node) {
                RyVec3 across = pair.first->getOrigin(true);
                across[0] = -across[0];
                return (node->getOrigin(true) - across).length();
            };
            for (const RyBone *other : skeleton->getAllBones())
                QVERIFY2(gap(pair.second) <= gap(other) + 0.02f * pairing.size(), qPrintable(pair.first->getName()));
        }
        for (const RyBone *bone : skeleton->getAllBones())
            bones += bone->getSkeleton() == skeleton ? 1 : 0;
        QCOMPARE(pairing.alone().size() + seen.size(), skeleton->getAllBones().size());
    }
    QTEST(bones, "bones");
    QTEST(found[1], "byPrefix");
    QTEST(found[2], "byMark");
    QTEST(found[3], "byPlace");
}

RY_TEST(RyBonePairingTest)
#include "tst_RyBonePairing.moc"
