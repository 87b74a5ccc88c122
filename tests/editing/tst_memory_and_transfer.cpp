#include "support/RyTest.h"

#include "EditingStage.h"
#include "HeldPoses.h"
#include "checkStates.h"
#include "io/CharacterScene.h"
#include "support/checkUndo.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/math/RyAffine.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <QFileInfo>

#include <random>

namespace {

std::vector<RyFloatProperty *> riggingOf(const RyNode *node)
{
    return {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(),
            node->getEndXControl(),    node->getEndYControl(),    node->getEndZControl(),
            node->getOrientXControl(), node->getOrientYControl(), node->getOrientZControl()};
}

std::vector<float> valuesOf(const RySkeleton *skeleton, bool byDefault)
{
    std::vector<float> values;
    for (const RyBone *bone : skeleton->getAllBones()) {
        for (const RyFloatProperty *each : riggingOf(bone))
            values.push_back(byDefault ? each->getDefaultValue() : each->getValue());
    }
    return values;
}

/// Where a bone is drawn, in the space of its figure: its points and the ends of its axes.
std::vector<RyVec3> drawn(const RyBone &bone)
{
    const RyNode &figure = *bone.getSkeleton();
    const RyAffine toFigure = figure.worldMap().inverse();
    const RyQuat turned = bone.getOrientation() * bone.getWSRot() * figure.getWSRot().inverse();
    std::vector<RyVec3> points = {toFigure.mapPoint(bone.getWSPos()), toFigure.mapPoint(bone.getWSEndPoint())};
    for (int axis = 0; axis < 3; ++axis)
        points.push_back(turned.multVec(RyVec3::axis(axis)));
    return points;
}

std::vector<RyVec3> atRest(const RyBone &bone)
{
    std::vector<RyVec3> points = {bone.getOrigin(), bone.getEndPoint()};
    for (int axis = 0; axis < 3; ++axis)
        points.push_back(bone.getOrientation().multVec(RyVec3::axis(axis)));
    return points;
}

/// The names in quotes before `text`, in alphabetical order.
QStringList namedIn(const QStringList &messages, const QString &text)
{
    QStringList names;
    for (const QString &message : messages) {
        if (message.contains(QLatin1Char('"') + text))
            names.append(message.section(QLatin1Char('"'), 1, 1));
    }
    names.sort();
    return names;
}

float heightOf(const RySkeleton &skeleton)
{
    float low = 1e30f, high = -1e30f;
    for (const RyBone *bone : skeleton.getAllBones()) {
        for (int axis = 0; axis < 3; ++axis) {
            low = std::min(low, bone->getOrigin()[axis]);
            high = std::max(high, bone->getOrigin()[axis]);
        }
    }
    return high - low;
}

} // namespace

/// Memorizing, restoring, donors and transfers with the built plug-in, on characters from files, with the tool's modes
/// off and on.
class MemoryAndTransferTest : public QObject
{
    Q_OBJECT

private slots:
    void memorizedAndRestored_data() { characters(); }
    void memorizedAndRestored();
    void throughADonor_data() { characters(); }
    void throughADonor();
    void acrossRestorePoints_data() { characters(); }
    void acrossRestorePoints();

private:
    void characters()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("modes");
        QStringList files = {QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"),
                             QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb")};
        for (const char *name : {"CesiumMan.glb", "Fox.glb", "kaykit_knight.glb", "mh_default_rig.glb"})
            files.append(ryModel(QLatin1String(name)).isEmpty() ? QLatin1String(name) : ryModel(QLatin1String(name)));
        for (const QString &path : qAsConst(files)) {
            for (const bool modes : {false, true})
                QTest::addRow("%s, modes %s", qPrintable(QFileInfo(path).fileName()), modes ? "on" : "off")
                    << path << modes;
        }
    }
    /// Puts bones elsewhere, and poses them.
    static void disturb(const RySkeleton *skeleton, std::mt19937 &random)
    {
        std::uniform_real_distribution<float> number(-1.0f, 1.0f);
        const float step = 0.05f * heightOf(*skeleton);
        for (RyBone *bone : skeleton->getAllBones()) {
            const std::vector<RyFloatProperty *> rigging = riggingOf(bone);
            for (size_t i = 0; i < rigging.size(); ++i)
                rigging[i]->setValue(rigging[i]->getValue() + (i < 6 ? step : 40.0f) * number(random));
            bone->getXRotControl()->setValue(30.0f * number(random));
            bone->getZRotControl()->setValue(30.0f * number(random));
            bone->getYScaleControl()->setValue(1.0f + 0.2f * number(random));
        }
    }
    static void setModes(EditingStage &stage, bool on)
    {
        for (const char *mode : {"RyJETogglePropagateTranslationAction", "RyJEToggleAutoSnapEndPointsAction",
                                 "RyJEToggleAutoAlignNodeAction"}) {
            if (on)
                QCOMPARE(stage.run(mode), QString());
        }
    }
};

void MemoryAndTransferTest::memorizedAndRestored()
{
    QFETCH(QString, path);
    QFETCH(bool, modes);
    if (!QFileInfo::exists(path))
        QSKIP("This machine does not have the character.");
    EditingStage stage(path);
    std::mt19937 random(ryTestSeed());
    RySkeleton *skeleton = ryScene()->getSkeletons().front();
    disturb(skeleton, random);
    RyBone *bone = skeleton->getAllBones().back();
    stage.select({skeleton->getAllBones().front(), bone});
    setModes(stage, modes);
    const int points = ryRestorePoints()->count();

    const std::vector<float> current = valuesOf(skeleton, false);
    QVERIFY(current != valuesOf(skeleton, true));
    QString before = stage.dump();
    QCOMPARE(stage.run("RyJEMemorizeFigureRiggingPropertiesAction"), QString());
    QVERIFY(valuesOf(skeleton, true) == current);
    QVERIFY(valuesOf(skeleton, false) == current);
    checkLastStep(before);

    disturb(skeleton, random);
    QVERIFY(valuesOf(skeleton, false) != current);
    before = stage.dump();
    QCOMPARE(stage.run("RyJERestoreFigureRiggingPropertiesAction"), QString());
    QVERIFY(valuesOf(skeleton, false) == current);
    checkLastStep(before);

    disturb(skeleton, random);
    const RyVec3 origin = bone->getOrigin();
    before = stage.dump();
    QCOMPARE(stage.run("RyJERestoreNodeRiggingPropertiesAction"), QString());
    QCOMPARE(bone->getOrigin(), bone->getOrigin(true));
    QVERIFY(bone->getOrigin() != origin);
    checkLastStep(before);
    disturb(skeleton, random);
    before = stage.dump();
    QCOMPARE(stage.run("RyJEMemorizeNodeRiggingPropertiesAction"), QString());
    QCOMPARE(bone->getOrigin(true), bone->getOrigin());
    checkLastStep(before);
    QCOMPARE(ryRestorePoints()->count(), points); // nothing happened that undo does not take back
}

/// The skeleton is taken off, posed, scaled and put elsewhere, and the figure takes its bones from there.
void MemoryAndTransferTest::throughADonor()
{
    QFETCH(QString, path);
    QFETCH(bool, modes);
    if (!QFileInfo::exists(path))
        QSKIP("This machine does not have the character.");
    EditingStage stage(path);
    std::mt19937 random(ryTestSeed());
    RySkeleton *skeleton = ryScene()->getSkeletons().front();
    disturb(skeleton, random);
    stage.select({skeleton->getAllBones().front()});
    setModes(stage, modes);
    QString before = stage.dump();
    const QString refusal = stage.run("RyJECreateDonorFigureAction");
    if (!qobject_cast<RyFigure *>(skeleton)) {
        QVERIFY(refusal.contains(QStringLiteral("A weight mapped figure must be selected to continue.")));
        QCOMPARE(stage.dump(), before);
        return;
    }
    QCOMPARE(refusal, QString());
    auto *donor = qobject_cast<RyFigure *>(ryScene()->findNode(QStringLiteral("Donor_") + skeleton->getName()));
    QVERIFY(donor);
    QVERIFY(valuesOf(donor, false) == valuesOf(skeleton, false));
    QVERIFY(valuesOf(donor, true) == valuesOf(skeleton, true));
    checkLastStep(before);

    donor = qobject_cast<RyFigure *>(ryScene()->findNode(QStringLiteral("Donor_") + skeleton->getName()));
    disturb(donor, random);
    donor->getYRotControl()->setValue(70);
    donor->getXTransControl()->setValue(200);
    donor->getXScaleControl()->setValue(1.4f);
    RyBone *renamed = donor->getAllBones().back();
    const QString lost = renamed->getName();
    renamed->setName(QStringLiteral("nobody"));
    stage.select({donor, skeleton->getAllBones().back()});
    std::map<QString, std::vector<RyVec3>> wanted;
    for (const RyBone *bone : donor->getAllBones())
        wanted[bone->getName()] = drawn(*bone);
    wanted[lost] = atRest(*skeleton->findBone(lost));
    const std::vector<float> defaults = valuesOf(skeleton, true);
    before = stage.dump();
    RyMessageLog::global().clear();
    QCOMPARE(stage.run("RyJETransferWSRiggingAction"), QString());
    QVERIFY(valuesOf(skeleton, true) == defaults);
    QVERIFY2(RyMessageLog::global().messages().filter(QStringLiteral("there: 1. ") + lost).size() == 1,
             qPrintable(lost));
    const float height = heightOf(*donor);
    for (const RyBone *bone : skeleton->getAllBones()) {
        const std::vector<RyVec3> now = atRest(*bone);
        const std::vector<RyVec3> &then = wanted.at(bone->getName());
        for (size_t i = 0; i < now.size(); ++i)
            QVERIFY2((now[i] - then[i]).length() <= 1e-5f * (i < 2 ? height : 1.0f), qPrintable(bone->getName()));
    }
    checkLastStep(before);

    // Saved with the donor it comes back, and the file is a good one.
    ryScene()->setSelection({});
    const QTemporaryDir folder;
    const QString saved = folder.filePath("saved.glb");
    QString error;
    QStringList said;
    QVERIFY2(RySceneFile::save(ryScene(), saved, &error, &said), qPrintable(error));
    CharacterScene again(saved);
    // A joint that a clip drives cannot hold shear, which a pose scale may need; saving names it then.
    const HeldPoses held(*ryScene(), again);
    QCOMPARE(namedIn(said, QStringLiteral(" is animated and cannot hold the shear")), held.sheared());
    QCOMPARE(held.firstDifference(), QString());
    held.applyTo(*ryScene());
    QVERIFY(sameDumps(rySceneDump(again.scene), stage.dump()));
    checkSavedFile(saved);
}

/// What comes after a restore point is taken back by it, the bones that a later command deleted included.
void MemoryAndTransferTest::acrossRestorePoints()
{
    QFETCH(QString, path);
    QFETCH(bool, modes);
    if (!QFileInfo::exists(path))
        QSKIP("This machine does not have the character.");
    EditingStage stage(path);
    std::mt19937 random(ryTestSeed());
    RySkeleton *skeleton = ryScene()->getSkeletons().front();
    disturb(skeleton, random);
    stage.select({skeleton->getAllBones().back()});
    setModes(stage, modes);
    const QString before = stage.dump();
    QVERIFY(ryRestorePoints()->take(QStringLiteral("Here")));
    QCOMPARE(stage.run("RyJERestoreFigureRiggingPropertiesAction"), QString());
    if (qobject_cast<RyFigure *>(skeleton)) {
        QCOMPARE(stage.run("RyJECreateDonorFigureAction"), QString());
        RyNode *donor = ryScene()->findNode(QStringLiteral("Donor_") + skeleton->getName());
        donor->getXTransControl()->setValue(7);
        disturb(qobject_cast<RySkeleton *>(donor), random);
        stage.select({donor, skeleton->getAllBones().back()});
        QCOMPARE(stage.run("RyJETransferWSRiggingAction"), QString());
    }
    QCOMPARE(stage.run("RyJEMemorizeFigureRiggingPropertiesAction"), QString());
    QCOMPARE(stage.run("RyJEDeleteBoneAction"), QString());
    checkRestoring(QStringLiteral("Here"), before);
}

RY_TEST(MemoryAndTransferTest)

#include "tst_memory_and_transfer.moc"
