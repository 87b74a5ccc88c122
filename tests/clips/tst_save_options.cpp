#include "ClipSessions.h"
#include "ClipSketch.h"
#include "RigEdits.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// Clips that are left as they are on request, and weights that are more than full.
class SaveOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void jointsOnly()
    {
        CharacterScene character(sketch());
        RyBone *arm = character.scene.getSkeletons()[0]->findBone(QStringLiteral("left arm"));
        arm->adjustOrigin(arm->getOrigin() + RyVec3(3, 1, -2));
        RySceneFile::SaveOptions options;
        options.jointsOnly = true;
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::save(&character.scene, saved(), options, &error, &messages), qPrintable(error));
        QCOMPARE(messages,
                 QStringList{QStringLiteral(
                     "Clips were written as they were and say the old rest of edited joints: all, left arm")});
        const GltfEvaluator after(saved().toStdString());
        QCOMPARE(changedChannel(character.file, after), QString());
        QVERIFY(after.tree()["animations"] == character.file.tree()["animations"]);
        ClipChoice choice;
        choice.frames = 20;
        QVERIFY(largestClipDifference(character.file, after, choice).distance > 1e-3);

        messages.clear();
        QVERIFY2(RySceneFile::save(&character.scene, saved(), &error, &messages), qPrintable(error));
        QCOMPARE(messages, QStringList());
        QVERIFY(largestClipDifference(character.file, GltfEvaluator(saved().toStdString()), choice).distance < 1e-5);
    }

    /// A pose is no edited joint.
    void poseOnly()
    {
        CharacterScene character(sketch());
        character.bones()[2]->getXRotControl()->setValue(31);
        RySceneFile::SaveOptions options;
        for (const bool jointsOnly : {true, false}) {
            options.jointsOnly = jointsOnly;
            QString error;
            QStringList messages;
            QVERIFY2(RySceneFile::save(&character.scene, saved(), options, &error, &messages), qPrintable(error));
            QCOMPARE(messages, QStringList());
            const GltfEvaluator after(saved().toStdString());
            QCOMPARE(changedChannel(character.file, after), QString());
        }
    }

    /// A bone made with a copy of another one's weights, which keeps its own: both share what it had, and the other
    /// bones of a vertex have no less than before.
    void copiedWeights()
    {
        CharacterScene character(sketch());
        RySkeleton *figure = character.scene.getSkeletons()[0];
        for (const bool isBeside : {true, false}) {
            RyBone *arm = figure->findBone(QStringLiteral("left arm"));
            auto *copy = new RyBone;
            copy->setName(figure->getUniqueBoneName(arm->getName()));
            copy->setOrigin(arm->getOrigin() * 0.6f + arm->getEndPoint() * 0.4f, true);
            copy->setEndPoint(arm->getEndPoint(), true);
            copy->setOrientation(arm->getOrientation(), true);
            character.scene.addNode(copy);
            (isBeside ? arm->getNodeParent() : arm)->addNodeChild(copy);
            copyWeights(copy, arm);
        }
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::save(&character.scene, saved(), &error, &messages), qPrintable(error));
        const ClipDifference difference =
            largestClipDifference(character.file, GltfEvaluator(saved().toStdString()), ClipChoice());
        QVERIFY2(difference.distance <= ClipSessions::Tolerance, qPrintable(difference.text()));
    }

    /// How far vertices that followed a deleted bone move elsewhere is measured, clip by clip.
    void deletedBones()
    {
        CharacterScene character(sketch());
        ClipChoice all;
        RigEdits::deleteBone(character.scene, character.bones()[2]);
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::save(&character.scene, saved(), &error, &messages), qPrintable(error));
        messages = messages.filter(QStringLiteral("deleted"));
        QCOMPARE(messages.size(), 1);
        QVERIFY2(messages.first().startsWith(
                     QStringLiteral("Vertices that followed deleted bones move with others in clips, by up to this "
                                    "share of the height elsewhere: all (")),
                 qPrintable(messages.first()));
        QVERIFY(!messages.first().contains(QStringLiteral("right hand"))); // it does not move the bone
        const double told =
            messages.first().section(QStringLiteral("all ("), 1).section(QLatin1Char(' '), 0, 0).toDouble();
        const ClipDifference seen = largestClipDifference(character.file, GltfEvaluator(saved().toStdString()), all);
        QVERIFY2(0.01 * told <= 1.05 * seen.distance && 0.01 * told >= 0.4 * seen.distance,
                 qPrintable(QStringLiteral("%1 %, %2").arg(told).arg(seen.text())));
    }

private:
    QString saved() const { return m_folder.filePath(QStringLiteral("saved.gltf")); }
    QString sketch()
    {
        ClipSketch sketch(m_random);
        sketch.bind();
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        sketch.drive(sketch.addClip("left arm"), ClipSketch::LeftArm, "rotation", "LINEAR");
        sketch.drive(sketch.addClip("right hand"), ClipSketch::RightHand, "rotation", "LINEAR");
        return sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf")));
    }
    static void copyWeights(RyBone *bone, const RyBone *from)
    {
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
        const RyWeightMap &own = *skin->findBoneBinding(from)->getWeights();
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        auto *map = new RyWeightMap(bone->getName());
        map->setNumWeights(own.getNumWeights());
        map->beginEdit();
        for (int i = 0; i < own.getNumAffected(); ++i)
            map->getWeights()[own.getAffectedIndices()[i]] = own.getAffectedWeights()[i];
        map->finishEdit();
        binding->setWeights(map);
        skin->addBoneBinding(binding);
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(SaveOptionsTest)
#include "tst_save_options.moc"
