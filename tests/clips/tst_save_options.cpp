#include "ClipSessions.h"
#include "ClipSketch.h"
#include "RigEdits.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>

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
        for (const bool isBeside : {true, false})
            addCopy(character, figure->findBone(QStringLiteral("left arm")), isBeside);
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
        double told = 0.0;
        const QRegularExpression shares(QStringLiteral("\\(([0-9.e-]+) %\\)"));
        for (auto share = shares.globalMatch(messages.first()); share.hasNext();)
            told = std::max(told, share.next().captured(1).toDouble());
        all.frames = 3000; // key times are among them
        const ClipDifference seen = largestClipDifference(character.file, GltfEvaluator(saved().toStdString()), all);
        // Two digits, and heights of the mesh; the comparison takes those of what the file shows.
        const double moved =
            0.01 * told * RyGltfReach().heightOf(*character.scene.getSkeletons()[0]) / character.height;
        QVERIFY2(moved <= 1.06 * seen.distance && moved >= 0.4 * seen.distance,
                 qPrintable(QStringLiteral("%1 %, %2").arg(told).arg(seen.text())));
    }

    /// Two bones of equal weights move a vertex by what both of them have, as long as that is no more than full.
    void equalWeights()
    {
        CharacterScene character(sketch());
        RyBone *arm = character.scene.getSkeletons()[0]->findBone(QStringLiteral("left arm"));
        RyBone *copy = addCopy(character, arm, true);
        const RySkinBinding *skin = RySkinBinding::findSkinFromNode(arm);
        for (RyBone *bone : {arm, copy}) {
            RyWeightMap *map = skin->findBoneBinding(bone)->getWeights();
            map->beginEdit();
            for (int i = 0; i < map->getNumWeights(); ++i)
                map->getWeights()[i] = quint16(map->getWeights()[i] / 2);
            map->finishEdit();
        }
        // What halving lost.
        RyWeightMap *rest = skin->findBoneBinding(arm->getNodeParent())->getWeights();
        rest->beginEdit();
        for (int i = 0; i < rest->getNumWeights(); ++i)
            rest->getWeights()[i] = quint16(rest->getWeights()[i] + RyWeightMap::FullWeight - sumOfWeights(skin, i));
        rest->finishEdit();
        const RyGltfInfluences influences(arm->getSkeleton(), rest->getNumWeights());
        int shared = 0;
        for (int vertex = 0; vertex < rest->getNumWeights(); ++vertex) {
            for (const RyGltfInfluences::Influence &influence : influences.of(vertex)) {
                const RyNode *bone = influences.bones()[influence.bone];
                QCOMPARE(int(influence.weight), weightOf(skin, bone, vertex));
                shared += bone == copy;
            }
        }
        QVERIFY(shared > 20);
    }

    /// A bone and its copies share to the last unit what it has: the weights of others stay what they were.
    void sharedWeights()
    {
        CharacterScene character(sketch());
        RyBone *arm = character.scene.getSkeletons()[0]->findBone(QStringLiteral("left arm"));
        const RySkinBinding *skin = RySkinBinding::findSkinFromNode(arm);
        const int count = skin->findBoneBinding(arm)->getWeights()->getNumWeights();
        const std::vector<RyBone *> copies{arm, addCopy(character, arm, true), addCopy(character, arm, false)};
        const RyGltfInfluences influences(arm->getSkeleton(), count);
        int shared = 0;
        for (int vertex = 0; vertex < count; ++vertex) {
            int sum = 0;
            for (const RyGltfInfluences::Influence &influence : influences.of(vertex)) {
                const RyNode *bone = influences.bones()[influence.bone];
                if (std::find(copies.begin(), copies.end(), bone) == copies.end())
                    QCOMPARE(int(influence.weight), weightOf(skin, bone, vertex));
                else
                    sum += influence.weight;
            }
            QCOMPARE(sum, weightOf(skin, arm, vertex));
            shared += sum > 0 && sum < RyWeightMap::FullWeight;
        }
        QVERIFY(shared > 20);
    }

private:
    static int weightOf(const RySkinBinding *skin, const RyNode *bone, int vertex)
    {
        return skin->findBoneBinding(bone)->getWeights()->getWeights()[vertex];
    }
    static int sumOfWeights(const RySkinBinding *skin, int vertex)
    {
        int sum = 0;
        for (const RyBoneBinding *binding : skin->bindings())
            sum += binding->getWeights()->getWeights()[vertex];
        return sum;
    }
    /// A bone with all weights of another one, beside or below it.
    static RyBone *addCopy(CharacterScene &character, RyBone *bone, bool isBeside)
    {
        auto *copy = new RyBone;
        copy->setName(bone->getSkeleton()->getUniqueBoneName(bone->getName()));
        copy->setOrigin(bone->getOrigin() * 0.6f + bone->getEndPoint() * 0.4f, true);
        copy->setEndPoint(bone->getEndPoint(), true);
        copy->setOrientation(bone->getOrientation(), true);
        character.scene.addNode(copy);
        (isBeside ? bone->getNodeParent() : bone)->addNodeChild(copy);
        copyWeights(copy, bone);
        return copy;
    }
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
