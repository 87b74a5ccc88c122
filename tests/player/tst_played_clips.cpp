#include "ClipComparison.h"
#include "ClipEdits.h"
#include "ClipSketch.h"
#include "MergedScene.h"
#include "PlayedFile.h"
#include "RigEdits.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// What a scene shows while clips of its files show: what other readers make of the files.
class PlayedClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void characters_data() { addCharacters({"", "origins and orientations"}); }
    void characters() { playAfterEdits(); }
    void editedTrees_data() { addCharacters({"split", "sibling", "duplicate", "child", "delete", "tree and rest"}); }
    void editedTrees() { playAfterEdits(); }

    void sketches_data()
    {
        QTest::addColumn<QString>("interpolation");
        QTest::addColumn<QString>("kind");
        for (const char *interpolation : {"STEP", "LINEAR", "CUBICSPLINE"}) {
            for (const char *kind : {"plain", "posed", "scaled", "uneven", "stretched bind", "two skins", "prop"})
                QTest::addRow("%s %s", interpolation, kind)
                    << QString::fromLatin1(interpolation) << QString::fromLatin1(kind);
        }
    }
    void sketches()
    {
        QFETCH(QString, interpolation);
        QFETCH(QString, kind);
        const std::string how = interpolation.toStdString();
        ClipSketch sketch(m_random);
        sketch.bind(kind == QLatin1String("stretched bind") ? Eigen::Vector3d(2.0, 2.0, 2.0) : Eigen::Vector3d::Ones());
        if (kind == QLatin1String("posed"))
            sketch.pose();
        if (kind == QLatin1String("two skins"))
            sketch.addSecondSkin();
        const size_t clip = sketch.addClip("all");
        sketch.driveAll(clip, how);
        if (kind == QLatin1String("scaled") || kind == QLatin1String("uneven")) {
            for (const int joint : ClipSketch::joints())
                sketch.drive(clip, joint, "scale", how, kind == QLatin1String("uneven"));
        }
        if (kind == QLatin1String("prop")) {
            sketch.drive(clip, ClipSketch::Prop, "rotation", how);
            sketch.drive(sketch.addClip("prop alone"), ClipSketch::Prop, "translation", how);
        }
        const size_t arm = sketch.addClip("one arm");
        sketch.drive(arm, ClipSketch::LeftArm, "rotation", how);
        CharacterScene character(sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf"))));
        QCOMPARE(PlayedFile(character.scene, character.origin(), character.file).check(), QString());
        ClipChoice choice;
        ClipEdits::named("tree and rest").edit(character, m_random, choice);
        PlayedFile edited(character.scene, character.origin(), character.file);
        edited.comparesHeads = false; // they were moved
        QCOMPARE(edited.check(), QString());
    }

    /// A clip that drives one bone holds all bones of its figure, however they are posed; one that drives a prop alone
    /// leaves them their poses.
    void posesAndClips()
    {
        ClipSketch sketch(m_random);
        sketch.bind();
        sketch.drive(sketch.addClip("arm"), ClipSketch::LeftArm, "rotation", "LINEAR");
        sketch.drive(sketch.addClip("prop"), ClipSketch::Prop, "rotation", "LINEAR");
        CharacterScene character(sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf"))));
        const auto clips = character.scene.getClips();
        for (RyBone *bone : character.bones())
            bone->getZRotControl()->setValue(20.0f);
        RySkeleton *figure = character.scene.getSkeletons().front();
        QCOMPARE(clips[0]->subjects(character.scene), std::vector<RyNode *>{figure});
        const RyNode *prop = character.origin().nodes.back().sceneNode;
        QCOMPARE(prop->getName(), QStringLiteral("stick"));
        QCOMPARE(clips[1]->subjects(character.scene), std::vector<RyNode *>{const_cast<RyNode *>(prop)});
        PlayedFile played(character.scene, character.origin(), character.file);
        RyClipPlayer &player = *character.scene.getClipPlayer();
        player.show(clips[0], clips[0]->end());
        QCOMPARE(played.checkFrame(0, clips[0]->end()), QString());
        player.show(clips[1], clips[1]->end());
        for (const RyBone *bone : character.bones())
            QVERIFY(!bone->isPlayed());
        QVERIFY(prop->isPlayed());
        // What hangs elsewhere than in the file follows that alone.
        auto *stick = const_cast<RyNode *>(prop);
        QVERIFY(character.bones().front()->addNodeChild(stick));
        player.show(clips[1], clips[1]->end());
        QVERIFY(!stick->isPlayed());
        player.stop();
    }

    void weightGivers_data()
    {
        QTest::addColumn<bool>("isHungElsewhere");
        QTest::addColumn<bool>("isGiverDeleted");
        for (const bool isHungElsewhere : {false, true}) {
            for (const bool isGiverDeleted : {false, true})
                QTest::addRow("%s, %s", isHungElsewhere ? "hung elsewhere" : "in place",
                              isGiverDeleted ? "giver deleted" : "giver there")
                    << isHungElsewhere << isGiverDeleted;
        }
    }
    /// New bones go on as those that gave them their weights, wherever they hang and whether those are there or not.
    void weightGivers()
    {
        QFETCH(bool, isHungElsewhere);
        QFETCH(bool, isGiverDeleted);
        ClipSketch sketch(m_random);
        sketch.bind();
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        const QString path = sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf")));
        CharacterScene character(path), untouched(path);
        const auto boneOf = [](const CharacterScene &scene, int node) {
            const std::vector<RyBone *> bones = scene.bones();
            return *std::find_if(bones.begin(), bones.end(), [&](RyBone *b) { return scene.nodeOf(b) == node; });
        };
        RyBone *sibling = RigEdits::addSibling(character.scene, boneOf(character, ClipSketch::LeftArm));
        RyBone *outer = RigEdits::splitBone(character.scene, boneOf(character, ClipSketch::RightArm));
        if (isHungElsewhere) {
            RigEdits::reparent(sibling, boneOf(character, ClipSketch::RightHand), true);
            RigEdits::reparent(outer, boneOf(character, ClipSketch::LeftHand), true);
        }
        if (isGiverDeleted) {
            for (const int giver : {ClipSketch::LeftArm, ClipSketch::RightArm})
                RigEdits::deleteBone(character.scene, boneOf(character, giver));
        }
        ryUndoStack()->clearAll();
        const auto clip = character.scene.getClips().front();
        const auto same = untouched.scene.getClips().front();
        constexpr int Frames = 20;
        for (int frame = 0; frame < Frames; ++frame) {
            const double time = clip->start() + clip->length() * frame / (Frames - 1);
            character.scene.getClipPlayer()->show(clip, time);
            untouched.scene.getClipPlayer()->show(same, time);
            for (const auto &[bone, giver] :
                 {std::pair(sibling, ClipSketch::LeftArm), std::pair(outer, ClipSketch::RightArm)}) {
                for (const RyVec3 &place : {RyVec3(0, 0, 0), RyVec3(100, 0, 0), RyVec3(0, 100, 0), RyVec3(0, 0, 100)}) {
                    const RyVec3 shown = bone->worldMap().mapPoint(place);
                    const RyVec3 wanted = boneOf(untouched, giver)->worldMap().mapPoint(place);
                    QVERIFY2((shown - wanted).length() < 1e-3f, qPrintable(bone->getName()));
                }
            }
        }
    }

    /// In the world a clip goes where its figure goes.
    void movedFigure()
    {
        ClipSketch sketch(m_random);
        sketch.bind();
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        CharacterScene character(sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf"))));
        RySkeleton *figure = character.scene.getSkeletons().front();
        figure->getXTransControl()->setValue(30.0f);
        figure->getYRotControl()->setValue(50.0f);
        figure->getScaleControl()->setValue(1.5f);
        PlayedFile played(character.scene, character.origin(), character.file);
        const RyAffine &map = figure->worldMap();
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column)
                played.toScene.linear()(column, row) = map.m[row][column];
            played.toScene.translation()(row) = map.m[3][row];
        }
        QCOMPARE(played.check(), QString());
    }

    /// Two characters in one scene, the second one on a bone of the first.
    void merged()
    {
        const QString first = ryModel(QStringLiteral("CesiumMan.glb")), second = ryModel(QStringLiteral("Fox.glb"));
        if (first.isEmpty() || second.isEmpty())
            QSKIP("the characters are not here");
        MergedScene merged({first, second});
        QCOMPARE(merged.scene.getClips().size(), size_t(4));
        RySkeleton *fox = merged.figure(1);
        QVERIFY(merged.figure(0)->getAllBones()[9]->addNodeChild(fox));
        const QString path = m_folder.filePath(QStringLiteral("merged.glb"));
        merged.save(path);
        const GltfEvaluator alone(first.toStdString());
        const auto &origins = merged.scene.getOrigins();
        const auto &man = dynamic_cast<const RyGltfOrigin &>(*origins[0]);
        QCOMPARE(PlayedFile(merged.scene, man, alone).check(), QString());
        // The fox plays where it hangs.
        const GltfEvaluator foxAlone(second.toStdString());
        PlayedFile played(merged.scene, dynamic_cast<const RyGltfOrigin &>(*origins[1]), foxAlone);
        const RyAffine &map = fox->worldMap();
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column)
                played.toScene.linear()(column, row) = map.m[row][column];
            played.toScene.translation()(row) = map.m[3][row];
        }
        QCOMPARE(played.check(), QString());
        // Saved as one file it has a node of its own, which clips of the man move.
        CharacterScene again(path);
        QCOMPARE(again.scene.getClips().size(), size_t(4));
        PlayedFile one(again.scene, again.origin(), again.file);
        QCOMPARE(one.check(), QString());
    }

private:
    void addCharacters(const std::vector<const char *> &kinds)
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");
        for (const char *name :
             {"CesiumMan.glb", "RiggedSimple.gltf", "Fox.glb", "kaykit_knight.glb", "tentacle_84_skins.glb"}) {
            for (const char *kind : kinds)
                QTest::addRow("%s %s", name, kind) << QString::fromLatin1(name) << QString::fromLatin1(kind);
        }
    }
    void playAfterEdits()
    {
        QFETCH(QString, name);
        QFETCH(QString, kind);
        if (ryModel(name).isEmpty())
            QSKIP("the character is not here");
        CharacterScene character(ryModel(name));
        ClipChoice choice;
        if (!kind.isEmpty())
            ClipEdits::named(qPrintable(kind)).edit(character, m_random, choice);
        PlayedFile played(character.scene, character.origin(), character.file);
        played.goneNodes = choice.goneNodes;
        played.comparesHeads = kind.isEmpty();
        QCOMPARE(played.check(), QString());
        if (kind.isEmpty())
            return;
        // Heads stand where the saved file has them, which says the same clips anew.
        const QString saved = m_folder.filePath(QStringLiteral("saved.") + name.section(QLatin1Char('.'), -1));
        QString error;
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error), qPrintable(error));
        const GltfEvaluator after(saved.toStdString());
        if (clipCount(after) < clipCount(character.file))
            return; // one drove nothing else than the deleted bones
        PlayedFile heads(character.scene, character.origin(), after);
        heads.comparesVertices = false;
        heads.frames = 4;
        QCOMPARE(heads.check(), QString());
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(PlayedClipsTest)
#include "tst_played_clips.moc"
