#include "ClipEdits.h"
#include "ClipSketch.h"
#include "PlayedFile.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>
#include <QTemporaryDir>

/// A clip that was shown, or shows, is seen by nobody who edits or saves.
class NoTraceTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void savedFiles_data() { addFiles(); }
    /// The same bytes in all formats; the clip stays, and nothing is drawn anew for it.
    void savedFiles()
    {
        QFETCH(QString, name);
        CharacterScene character(pathOf(name));
        ClipChoice choice;
        ClipEdits::named("tree and rest").edit(character, m_random, choice);
        character.bones().front()->getXRotControl()->setValue(33.0f);
        const auto clips = character.scene.getClips();
        RyClipPlayer &player = *character.scene.getClipPlayer();
        for (const char *ending : {"glb", "gltf", "obj"}) {
            const QString stem = m_folder.filePath(QStringLiteral("saved"));
            const QByteArray plain = bytesOf(save(character, stem, ending));
            player.show(clips.back(), clips.back()->end());
            const RyAffine map = character.bones().back()->worldMap();
            QSignalSpy drawn(&character.scene, &RyScene::drawnDataChanged);
            const QByteArray shown = bytesOf(save(character, stem, ending));
            QVERIFY(player.isShowing());
            QVERIFY(character.bones().back()->worldMap() == map);
            QCOMPARE(drawn.count(), 0);
            player.stop();
            QVERIFY2(!plain.isEmpty() && plain == shown, ending);
        }
    }

    void sessions_data() { addFiles(); }
    /// The same work with and without clips in between ends in the same scene and the same file.
    void sessions()
    {
        QFETCH(QString, name);
        QString dumps[2], texts[2];
        QByteArray bytes[2];
        const unsigned seed = unsigned(m_random());
        const QString path = pathOf(name);
        for (const bool withClips : {false, true}) {
            CharacterScene character(path);
            m_random.seed(seed);
            const auto show = [&] {
                const auto clips = character.scene.getClips();
                if (withClips)
                    character.scene.getClipPlayer()->show(clips.front(), 0.3);
                QCOMPARE(character.scene.getClipPlayer()->isShowing(), withClips);
            };
            ryUndoStack()->clearAll();
            work(character, show);
            dumps[withClips] = rySceneDump(character.scene);
            show();
            QCOMPARE(rySceneDump(character.scene), dumps[withClips]);
            texts[withClips] = QStringLiteral("%1 of %2").arg(ryUndoStack()->index()).arg(ryUndoStack()->count());
            const QString saved = save(character, m_folder.filePath(QStringLiteral("session")), "gltf");
            bytes[withClips] = bytesOf(saved);
            CharacterScene again(saved);
            character.scene.selectAllNodes(false);
            QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(character.scene)));
        }
        QCOMPARE(dumps[1], dumps[0]);
        QCOMPARE(texts[1], texts[0]);
        QVERIFY(bytes[1] == bytes[0]);
    }

    /// Where bones have maps for each of their axes, files know one map, and so do clips.
    void localMaps()
    {
        ClipSketch sketch(m_random);
        sketch.bind();
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        CharacterScene character(sketch.write(m_folder.filePath(QStringLiteral("local.gltf"))));
        for (RyBone *bone : character.bones()) {
            bone->getXRotControl()->setValue(40.0f);
            bone->getZRotControl()->setValue(-25.0f);
            RyBoneBinding *binding = RySkinBinding::findSkinFromNode(bone)->findBoneBinding(bone);
            const RyWeightMap &general = *binding->getWeights();
            for (int axis = 0; axis < 3; ++axis) {
                auto *map = new RyWeightMap(general.getName());
                map->setAffected(
                    general.getNumWeights(),
                    {general.getAffectedIndices(), general.getAffectedIndices() + general.getNumAffected()},
                    {general.getAffectedWeights(), general.getAffectedWeights() + general.getNumAffected()});
                binding->setLocalWeights(map, axis);
            }
            binding->setWeights(nullptr);
        }
        const CharacterScene::Positions posed = character.shown();
        QCOMPARE(PlayedFile(character.scene, character.origin(), character.file).check(), QString());
        QVERIFY(largestDistance(character.shown(), posed) == 0.0);
    }

private:
    void addFiles()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("sketch") << QString();
        for (const char *name : {"CesiumMan.glb", "Fox.glb", "RiggedSimple.gltf"}) {
            if (!ryModel(name).isEmpty())
                QTest::newRow(name) << QString::fromLatin1(name);
        }
    }
    QString pathOf(const QString &name)
    {
        if (!name.isEmpty())
            return ryModel(name);
        ClipSketch sketch(m_random);
        sketch.bind();
        sketch.pose();
        const size_t clip = sketch.addClip("all");
        sketch.driveAll(clip, "LINEAR");
        sketch.drive(clip, ClipSketch::Prop, "translation", "LINEAR");
        return sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf")));
    }
    static QString save(CharacterScene &character, const QString &stem, const char *ending)
    {
        const QString path = stem + QLatin1Char('.') + QLatin1String(ending);
        QString error;
        if (!RySceneFile::save(&character.scene, path, &error))
            throw std::runtime_error(error.toStdString());
        return path;
    }
    /// Edits, undo, redo and selection, each while a clip shows where there is one.
    template<typename Show>
    void work(CharacterScene &character, const Show &show)
    {
        const auto step = [&](auto edit) {
            RyUndoStackHold hold;
            edit();
            hold.accept(QStringLiteral("edit"));
        };
        ClipChoice choice;
        show();
        step([&] { ClipEdits::named("some of both").edit(character, m_random, choice); });
        show();
        step([&] { ClipEdits::named("split").edit(character, m_random, choice); });
        show();
        ryUndoStack()->undo();
        show();
        ryUndoStack()->redo();
        show();
        character.bones().front()->select(true);
        RyBone *last = character.bones().back();
        step([&] { character.bones().front()->addNodeChild(last, true); }); // it stays in the world
        show();
        ryUndoStack()->undo();
        show();
        character.bones().back()->getYRotControl()->setValue(12.0f);
        show();
        character.scene.getClipPlayer()->stop();
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(NoTraceTest)
#include "tst_no_trace.moc"
