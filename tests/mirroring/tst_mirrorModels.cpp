#include "support/RyTest.h"

#include "RyFilledMirrorDialog.h"
#include "RySidedScene.h"

#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/pairing/RyBonePairing.h"
#include "rycore/io/RySceneFile.h"
#include "support/RyRandom.h"

#include <cmath>
#include <map>

namespace {

/// A real character in the application's scene, with its tool.
struct ModelScene : RyWindowScene
{
    explicit ModelScene(const QString &path)
    {
        ryScene()->clear();
        QString error;
        if (!RySceneFile::open(ryScene(), path, &error))
            qFatal("%s", qPrintable(error));
        for (RySkeleton *each : ryScene()->getSkeletons()) {
            if (!skeleton || each->getAllBones().size() > skeleton->getAllBones().size())
                skeleton = each;
        }
        size = RyBonePairing(*skeleton, 0).size();
    }

    bool isLeft(const RyBonePairing &pairing, const RyNode *node) const
    {
        return pairing.sideOf(node) == RySide::Left && pairing.oppositeOf(node);
    }

    /// Makes both sides differ: current values, defaults and orders of rotation.
    void scramble()
    {
        const auto way = [this] { return random.vector(0.03 * double(size)); };
        for (RyBone *bone : skeleton->getAllBones()) {
            bone->setOrigin(bone->getOrigin() + way(), random.chance(0.5));
            bone->setEndPoint(bone->getEndPoint() + way(), random.chance(0.5));
            bone->setOrientation(RyQuat(random.vector(), float(random.number(-3, 3))), random.chance(0.5));
            windowTool->changeRotationOrder(bone, RyRotationOrder(random.integer(0, 5)));
        }
    }

    void mirror(const char *direction)
    {
        ryScene()->setSelection({skeleton});
        RyFilledMirrorDialog dialog(windowTool);
        QVERIFY(dialog.accepts("Root Recursive", QString::fromLatin1(direction)));
    }

    RySkeleton *skeleton = nullptr;
    float size = 0.0f;
    RyRandom random;
};

} // namespace

/// Mirror Joints on real characters.
class RyMirrorModelsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { RyMessageLog::global().setEcho(false); }
    void cleanupTestCase() { RyMessageLog::global().setEcho(true); }
    void leftToRight_data();
    void leftToRight();
    void mirroredPose_data();
    void mirroredPose();
};

void RyMirrorModelsTest::leftToRight_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("mannequin") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
    QTest::newRow("parametric") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb");
    for (const char *name : {"CesiumMan.glb", "Fox.glb", "kaykit_knight.glb", "mh_default_rig.glb", "mh_large.glb"})
        QTest::newRow(name) << ryModel(QString::fromLatin1(name));
}

void RyMirrorModelsTest::leftToRight()
{
    QFETCH(QString, path);
    if (path.isEmpty())
        QSKIP("the character is not on this machine");
    ModelScene scene(path);
    scene.scramble();
    const RyBonePairing pairing(*scene.skeleton, 0);
    QMap<const RyNode *, std::vector<float>> before;
    for (const RyBone *bone : scene.skeleton->getAllBones())
        before[bone] = valuesOf(bone);
    ryUndoStack()->clearAll();
    ryScene()->setSelection({scene.skeleton});
    const QString dumpBefore = scene.dump();

    scene.mirror("Left to Right");
    int pairs = 0;
    for (const RyNode *bone : scene.skeleton->getAllBones()) {
        if (!scene.isLeft(pairing, bone)) {
            if (!pairing.oppositeOf(bone))
                QCOMPARE(valuesOf(bone), before[bone]);
            continue;
        }
        ++pairs;
        QCOMPARE(valuesOf(bone), before[bone]);
        for (const bool byDefault : {false, true}) {
            const double error = reflectionError(bone, pairing.oppositeOf(bone), 0, byDefault, double(scene.size));
            QVERIFY2(error < 1e-5 * double(scene.size), qPrintable(bone->getName()));
        }
    }
    QCOMPARE(pairs, int(pairing.pairs().size()));
    QVERIFY(pairs > 5);
    const QString dumpAfter = scene.dump();
    QVERIFY(dumpAfter != dumpBefore);

    scene.mirror("Right to Left");
    QCOMPARE(scene.dump(), dumpAfter);
    ryUndoStack()->undo();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), dumpBefore);
}

void RyMirrorModelsTest::mirroredPose_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("mannequin") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
    QTest::newRow("parametric") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb");
}

/// The two sides of a mirrored rig move a symmetric surface alike: turns about the mirror axis are the same on either
/// side, those about the others opposite.
void RyMirrorModelsTest::mirroredPose()
{
    QFETCH(QString, path);
    ModelScene scene(path);
    scene.mirror("Left to Right");
    const RyBonePairing pairing(*scene.skeleton, 0);
    RyObject *object = scene.skeleton->getObject();
    const std::vector<RyVec3> rest = object->getDeformedPositions();
    const auto poseAll = [&](bool isLeft) {
        for (const RyBonePairing::Pair &pair : pairing.pairs()) {
            RyNode *left = pairing.sideOf(pair.first) == RySide::Left ? pair.first : pair.second;
            RyNode *node = isLeft ? left : pairing.oppositeOf(left);
            const float turn = isLeft ? 1.0f : -1.0f;
            node->getXRotControl()->setValue(11.0f);
            node->getYRotControl()->setValue(turn * -14.0f);
            node->getZRotControl()->setValue(turn * 17.0f);
        }
    };
    poseAll(true);
    const std::vector<RyVec3> left = object->getDeformedPositions();
    for (RyNode *node : scene.skeleton->getAllBones())
        node->clearPose();
    poseAll(false);
    const std::vector<RyVec3> right = object->getDeformedPositions();

    // Vertices whose reflection is a vertex too.
    std::map<std::array<long, 3>, size_t> places;
    const auto keyOf = [&](const RyVec3 &v, float sign) {
        return std::array{std::lround(sign * v[0] * 500), std::lround(v[1] * 500), std::lround(v[2] * 500)};
    };
    for (size_t i = 0; i < rest.size(); ++i)
        places[keyOf(rest[i], 1.0f)] = i;
    size_t matched = 0, moved = 0, far = 0;
    for (size_t i = 0; i < rest.size(); ++i) {
        const auto other = places.find(keyOf(rest[i], -1.0f));
        if (other == places.end())
            continue;
        ++matched;
        RyVec3 across = right[other->second];
        across[0] = -across[0];
        moved += (left[i] - rest[i]).length() > 0.01f * scene.size ? 1 : 0;
        far += (left[i] - across).length() > 1e-3f * scene.size ? 1 : 0;
    }
    QVERIFY2(matched > rest.size() / 2, QByteArray::number(quint64(matched)));
    QVERIFY(moved > 100);
    QVERIFY2(far == 0, QByteArray::number(quint64(far)) + " of " + QByteArray::number(quint64(matched)));
}

RY_TEST(RyMirrorModelsTest)
#include "tst_mirrorModels.moc"
