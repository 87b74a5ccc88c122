#include "support/RyTest.h"

#include "EditingStage.h"
#include "checkStates.h"
#include "io/CharacterScene.h"
#include "support/checkUndo.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <random>

namespace {

const QString prefix = QStringLiteral("cb_");

std::vector<RyFloatProperty *> poseOf(const RyNode *node)
{
    return {node->getXTransControl(), node->getYTransControl(), node->getZTransControl(), node->getXRotControl(),
            node->getYRotControl(),   node->getZRotControl(),   node->getScaleControl(),  node->getXScaleControl(),
            node->getYScaleControl(), node->getZScaleControl()};
}

using Points = std::vector<std::vector<RyVec3>>;

/// The vertices of all figures, in the world.
Points shownIn(const RyScene &scene)
{
    Points all;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        if (!skeleton->getObject())
            continue;
        std::vector<RyVec3> points = skeleton->getObject()->getDeformedPositions();
        for (RyVec3 &point : points)
            point = skeleton->worldMap().mapPoint(point);
        all.push_back(std::move(points));
    }
    return all;
}

float largestWay(const Points &a, const Points &b)
{
    float largest = a.size() == b.size() ? 0.0f : 1e30f;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (a[i].size() != b[i].size())
            return 1e30f;
        for (size_t v = 0; v < a[i].size(); ++v)
            largest = std::max(largest, (a[i][v] - b[i][v]).length());
    }
    return largest;
}

std::vector<RyBone *> controlsIn(const RyScene &scene)
{
    std::vector<RyBone *> controls;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        for (RyBone *bone : skeleton->getAllBones()) {
            if (bone->getName().startsWith(prefix))
                controls.push_back(bone);
        }
    }
    return controls;
}

bool hasBoneBelow(const RyBone *bone)
{
    const std::vector<RyNode *> children = bone->nodeChildrenIterator();
    return std::any_of(children.begin(), children.end(),
                       [](const RyNode *child) { return qobject_cast<const RyBone *>(child); });
}

/// All parts of the pose of each bone, more or less. Stretched are those without bones below alone: no file holds the
/// shear of one that takes no part in that.
void addPose(const std::vector<RyBone *> &bones, float height, std::mt19937 &random)
{
    std::uniform_real_distribution<float> number(-1.0f, 1.0f);
    for (const RyBone *bone : bones) {
        const std::vector<RyFloatProperty *> pose = poseOf(bone);
        for (size_t i = 0; i < (hasBoneBelow(bone) ? 7 : pose.size()); ++i) {
            const float reach = i < 3 ? 0.01f * height : i < 6 ? 12.0f : 0.05f;
            pose[i]->setValue(pose[i]->getValue() + reach * number(random));
        }
    }
}

} // namespace

/// Control bones with the built plug-in, on characters from files: posed, saved, opened and posed again.
class ControlBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void throughAFile_data();
    void throughAFile();
    void acrossRestorePoints();

private:
    static void disturb(RySkeleton *skeleton, std::mt19937 &random)
    {
        const float height = skeleton->getBoundingBox().getSize();
        std::uniform_real_distribution<float> number(-1.0f, 1.0f);
        skeleton->getYRotControl()->setValue(25.0f);
        skeleton->getXTransControl()->setValue(0.2f * height);
        skeleton->getScaleControl()->setValue(1.3f);
        const std::vector<RyBone *> bones = skeleton->getAllBones();
        addPose(bones, height, random);
        for (RyBone *bone : bones) {
            bone->setOrigin(bone->getOrigin() +
                            0.01f * height * RyVec3(number(random), number(random), number(random)));
            bone->setInheritScale(number(random) > -0.5f);
            bone->getOrientZControl()->setValue(bone->getOrientZControl()->getValue() + 9.0f * number(random));
        }
    }
};

void ControlBonesTest::throughAFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isDisturbed");
    QStringList files = {QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb")};
    for (const char *name : {"CesiumMan.glb", "Fox.glb", "kaykit_knight.glb", "mh_default_rig.glb", "RiggedSimple.gltf",
                             "quad_10_influences.glb", "hand_flat_hierarchy.glb"})
        files.append(ryModel(QLatin1String(name)).isEmpty() ? QLatin1String(name) : ryModel(QLatin1String(name)));
    for (const QString &path : qAsConst(files)) {
        const QByteArray name = QFileInfo(path).fileName().toUtf8();
        QTest::newRow(name + " as it came") << path << false;
        QTest::newRow(name + " disturbed") << path << true;
    }
}

void ControlBonesTest::throughAFile()
{
    QFETCH(QString, path);
    QFETCH(bool, isDisturbed);
    if (!QFileInfo::exists(path))
        QSKIP("This machine does not have the character.");
    EditingStage stage(path);
    std::mt19937 random(ryTestSeed());
    RySkeleton *skeleton = ryScene()->getSkeletons().front();
    const float height = skeleton->getBoundingBox().getSize();
    if (isDisturbed)
        disturb(skeleton, random);
    const std::vector<RyBone *> bones = skeleton->getAllBones();
    std::vector<RyNode *> tops;
    for (RyNode *child : skeleton->nodeChildrenIterator()) {
        if (qobject_cast<RyBone *>(child))
            tops.push_back(child);
    }
    stage.select(tops);
    const Points before = shownIn(*ryScene());
    const QString dumpBefore = stage.dump();
    const int groups = skeleton->getSelectionMap() ? skeleton->getSelectionMap()->getNumPairs() : 0;
    const int points = ryRestorePoints()->count();

    QCOMPARE(stage.run("RyJECreateControlBonesAction"), QString());
    QCOMPARE(controlsIn(*ryScene()).size(), bones.size());
    QCOMPARE(largestWay(shownIn(*ryScene()), before), 0.0f);
    QCOMPARE(skeleton->getSelectionMap() ? skeleton->getSelectionMap()->getNumPairs() : 0, groups);
    checkLastStep(dumpBefore);
    QCOMPARE(ryRestorePoints()->count(), points); // undo takes all of it back

    // The controls pose their bones by as much as they are posed themselves.
    std::vector<float> wanted;
    addPose(controlsIn(*ryScene()), height, random);
    for (const RyBone *bone : bones) {
        const std::vector<RyFloatProperty *> own = poseOf(bone);
        const std::vector<RyFloatProperty *> pose = poseOf(skeleton->findBone(prefix + bone->getName()));
        for (size_t i = 0; i < own.size(); ++i)
            wanted.push_back(own[i]->getRawValue() + pose[i]->getValue() - pose[i]->getDefaultValue());
    }
    size_t at = 0;
    for (const RyBone *bone : bones) {
        for (const RyFloatProperty *each : poseOf(bone))
            QCOMPARE(each->getValue(), wanted[at++]);
    }
    const Points posed = shownIn(*ryScene());
    QVERIFY(largestWay(posed, before) > 0.01f * height);

    ryScene()->setSelection({});
    const QTemporaryDir folder;
    const QString saved = folder.filePath("saved.glb");
    QString error;
    QVERIFY2(RySceneFile::save(ryScene(), saved, &error), qPrintable(error));
    CharacterScene again(saved);
    QCOMPARE(again.messages.join('\n'), QString());
    QVERIFY(sameDumps(rySceneDump(again.scene), stage.dump()));
    QCOMPARE(largestWay(shownIn(again.scene), posed), 0.0f);
    QVERIFY(largestDistance(again.shown(), positionsOf(again.file, again.unit())) < 1e-5 * height);

    // Every control is a joint of the skin and moves nothing itself.
    const RySkeleton *reopened = again.scene.getSkeletons().front();
    const std::vector<int> &joints = again.file.joints(0);
    const RySkinBinding *skin = RySkinBinding::findSkin(reopened);
    for (const RyBone *bone : controlsIn(again.scene)) {
        if (again.file.skinCount() == 1)
            QVERIFY(std::count(joints.begin(), joints.end(), again.nodeOf(bone)) == 1);
        QVERIFY(skin && !skin->findBoneBinding(bone));
        const RyBone *controlled = reopened->findBone(bone->getName().mid(prefix.size()));
        for (const RyFloatProperty *each : poseOf(controlled))
            QCOMPARE(each->getControllerLinks().size(), size_t(1));
    }

    // Posed by as much as before on both sides, they show the same again.
    std::mt19937 first = random, second = random;
    addPose(controlsIn(*ryScene()), height, first);
    addPose(controlsIn(again.scene), height, second);
    QVERIFY(largestWay(shownIn(again.scene), shownIn(*ryScene())) < 1e-6f * height);
    QVERIFY(largestWay(shownIn(again.scene), posed) > 0.01f * height);

    checkSavedFile(saved);
}

/// A command that leaves no step may take bones away whose controls stay, and the other way round.
void ControlBonesTest::acrossRestorePoints()
{
    EditingStage stage(QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"));
    std::mt19937 random(ryTestSeed());
    RySkeleton *skeleton = ryScene()->getSkeletons().front();
    disturb(skeleton, random);
    RyBone *forearm = skeleton->findBone(QStringLiteral("lForearm"));
    stage.select({forearm});
    QVERIFY(ryRestorePoints()->take(QStringLiteral("Here")));
    const QString before = stage.dump();
    QCOMPARE(stage.run("RyJECreateControlBonesAction"), QString());
    addPose(controlsIn(*ryScene()), skeleton->getBoundingBox().getSize(), random);
    QCOMPARE(stage.run("RyJEDeleteBoneAction"), QString());
    QVERIFY(!skeleton->findBone(QStringLiteral("lForearm")));
    RyBone *hand = skeleton->findBone(QStringLiteral("cb_lHand"));
    QVERIFY(hand);
    stage.select({hand});
    QCOMPARE(stage.run("RyJEDeleteBoneAction"), QString());
    const RyBone *steered = skeleton->findBone(QStringLiteral("lHand"));
    QVERIFY(steered && steered->getXRotControl()->getControllerLinks().empty());
    checkRestoring(QStringLiteral("Here"), before);
}

RY_TEST(ControlBonesTest)

#include "tst_control_bones.moc"
