#include "CharacterScene.h"
#include "FigureSketch.h"
#include "RigEdits.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

using nlohmann::json;

/// What stays in a file when bones or their weights go.
class RemovedBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// A camera and an empty node on a bone outlive it in their places; a mark of its end does not.
    void whatHangsOnABone()
    {
        FigureSketch sketch;
        sketch.tree["cameras"] = {{{"type", "perspective"}, {"perspective", {{"yfov", 0.8}, {"znear", 0.1}}}}};
        sketch.tree["nodes"][2]["children"] = {4, 6};
        sketch.tree["nodes"].push_back({{"name", "socket"}, {"translation", {0.1, 0.2, 0}}, {"children", {5}}});
        sketch.tree["nodes"].push_back({{"name", "eye"}, {"translation", {0, 0.3, 0}}, {"camera", 0}});
        sketch.tree["nodes"].push_back({{"name", "mark_end"}, {"translation", {0, 1, 0}}});
        CharacterScene scene(sketch.write(path("before")));
        RigEdits::deleteBone(scene.scene, scene.bones()[1]);
        save(scene, "after");
        CharacterScene again(path("after"));
        QCOMPARE(again.bones().size(), size_t(1));
        for (const char *name : {"socket", "eye"}) {
            QVERIFY((again.file.worldPosition(again.file.node(name)) - scene.file.worldPosition(scene.file.node(name)))
                        .norm() < 1e-6);
            int top = again.file.node(name);
            while (again.file.parent(top) >= 0)
                top = again.file.parent(top);
            QCOMPARE(top, 0); // still below the root of the scene
        }
    }

    /// Nothing hangs on it: the node hangs nowhere, and its channels leave the clips with the samplers that only they
    /// used. A clip that drove nothing else goes as well.
    void clipsOfARemovedBone()
    {
        FigureSketch sketch;
        const int times = sketch.add<float>({0.0f, 1.0f}, 5126, "SCALAR");
        sketch.tree["accessors"].back()["min"] = {0.0};
        sketch.tree["accessors"].back()["max"] = {1.0};
        const int turns = sketch.add<float>({0, 0, 0, 1, 0, 1, 0, 0}, 5126, "VEC4");
        const int moves = sketch.add<float>({0, 1, 0, 0, 1.5f, 0}, 5126, "VEC3");
        const auto channel = [](int sampler, int node, const char *path) {
            return json{{"sampler", sampler}, {"target", {{"node", node}, {"path", path}}}};
        };
        const json turn{{"input", times}, {"output", turns}};
        const json move{{"input", times}, {"output", moves}};
        sketch.tree["animations"] = {
            {{"name", "nod"}, {"samplers", {turn}}, {"channels", {channel(0, 2, "rotation")}}},
            {{"name", "walk"},
             {"samplers", {move, turn, move, turn, turn}},
             {"channels",
              {channel(0, 2, "translation"), channel(1, 2, "rotation"), channel(2, 1, "translation"),
               channel(1, 1, "rotation"), channel(3, 0, "rotation")}}},
            {{"name", "stand"}, {"samplers", {turn}}, {"channels", {channel(0, 1, "rotation")}}}};
        CharacterScene scene(sketch.write(path("before")));
        RigEdits::deleteBone(scene.scene, scene.bones()[1]);
        const QStringList messages = save(scene, "after");
        QCOMPARE(messages.filter(QStringLiteral("gone with them: nod")).size(), 1);
        QCOMPARE(messages.filter(QStringLiteral("taken out of the clips: walk")).size(), 1);
        const GltfEvaluator file(path("after").toStdString());
        const json &clips = file.tree()["animations"];
        QCOMPARE(clips.size(), size_t(2));
        const json walk{
            {"name", "walk"},
            // The last one was nobody's before.
            {"samplers", {turn, move, turn, turn}},
            {"channels", {channel(1, 1, "translation"), channel(0, 1, "rotation"), channel(2, 0, "rotation")}}};
        QCOMPARE(clips[0], walk);
        QCOMPARE(clips[1], sketch.tree["animations"][2]);
        for (size_t i = 0; i < sketch.tree["accessors"].size(); ++i)
            QCOMPARE(file.tree()["accessors"][i], sketch.tree["accessors"][i]);
        QVERIFY(!file.tree()["nodes"][1].contains("children"));
        QCOMPARE(file.tree()["nodes"].size(), sketch.tree["nodes"].size());
        QCOMPARE(file.joints(0), std::vector<int>({1}));
    }

    /// The only clip: the format knows no empty list of clips.
    void theOnlyClip()
    {
        FigureSketch sketch;
        sketch.addTurningClip(2);
        CharacterScene scene(sketch.write(path("before")));
        RigEdits::deleteBone(scene.scene, scene.bones()[1]);
        QCOMPARE(save(scene, "after").filter(QStringLiteral("animation 0")).size(), 1);
        QVERIFY(!GltfEvaluator(path("after").toStdString()).tree().contains("animations"));
    }

    /// A bone that stays in its place as a plain node goes on moving with its clip.
    void theClipOfABoneThatHoldsACamera()
    {
        FigureSketch sketch;
        sketch.tree["cameras"] = {{{"type", "perspective"}, {"perspective", {{"yfov", 0.8}, {"znear", 0.1}}}}};
        sketch.tree["nodes"][2]["camera"] = 0;
        sketch.addTurningClip(2);
        CharacterScene scene(sketch.write(path("before")));
        RigEdits::deleteBone(scene.scene, scene.bones()[1]);
        save(scene, "after");
        QCOMPARE(GltfEvaluator(path("after").toStdString()).tree()["animations"], sketch.tree["animations"]);
    }

    /// A vertex that follows no bone any more.
    void verticesThatFollowNothing()
    {
        FigureSketch sketch;
        CharacterScene scene(sketch.write(path("before")));
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(scene.bones()[0]);
        skin->removeBoneBinding(skin->findBoneBinding(scene.bones()[0]));
        skin->normalize(0, RySkinBinding::AllWeights, false);
        QCOMPARE(save(scene, "after").filter(QStringLiteral("follow no bone")).size(), 1);
    }

    /// A figure without any bone: its mesh is drawn as before and comes back as a thing of its own.
    void theLastBone_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("sketch") << QString();
        QTest::newRow("fox") << QStringLiteral("Fox.glb");
    }
    void theLastBone()
    {
        QFETCH(QString, name);
        if (!name.isEmpty() && ryModel(name).isEmpty())
            QSKIP("the character is not here");
        CharacterScene scene(name.isEmpty() ? FigureSketch().write(path("before")) : ryModel(name));
        const QString saved = name.isEmpty() ? path("after") : m_folder.filePath(QStringLiteral("after.glb"));
        const CharacterScene::Positions before = positionsOf(scene.file, scene.unit());
        const CharacterScene::Positions atRest = scene.atRest();
        while (!scene.bones().empty())
            scene.scene.removeNode(scene.bones()[0]);
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error, &messages), qPrintable(error));
        QCOMPARE(messages.filter(QStringLiteral("has no bones left")).size(), 1);
        QVERIFY(largestDistance(before, positionsOf(GltfEvaluator(saved.toStdString()), scene.unit())) <= 1e-9);
        CharacterScene again(saved);
        QVERIFY(again.bones().empty());
        const double moved = largestDistance(again.atRest(), atRest);
        QVERIFY2(moved <= 1e-5 * scene.height, qPrintable(QString::number(moved)));
        const QString twice = m_folder.filePath(QStringLiteral("twice.") + saved.section(QLatin1Char('.'), -1));
        QVERIFY2(RySceneFile::save(&again.scene, twice, &error), qPrintable(error));
        QVERIFY(bytesOf(twice) == bytesOf(saved));
        const RyValidation valid = ryValidate(saved);
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

    /// Files of other versions may have marked the joints alone: they open, and half a skin that is marked comes back.
    void marksOnJoints_data()
    {
        QTest::addColumn<bool>("half");
        QTest::newRow("all") << false;
        QTest::newRow("half") << true;
    }
    void marksOnJoints()
    {
        QFETCH(bool, half);
        FigureSketch sketch;
        const json mark{{"RYHOST_rigging", {{"version", 1}, {"removed", true}}}};
        sketch.tree["nodes"][half ? 2 : 0]["extras"] = mark;
        if (half)
            sketch.tree["nodes"][1].erase("children");
        sketch.tree["scenes"][0]["nodes"] = half ? json{0, 3} : json{3};
        CharacterScene scene(sketch.write(path("marked")));
        QCOMPARE(scene.bones().size(), size_t(half ? 2 : 0));
        QCOMPARE(scene.origin().figures.size(), size_t(1));
        QCOMPARE(scene.origin().figures[0].vertexCount, 18);
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    /// Saves, opens again and compares, saves again and compares. Gives the messages.
    QStringList save(CharacterScene &scene, const char *name)
    {
        QString error;
        QStringList messages;
        const QString dump = rySceneDump(scene.scene);
        [&] {
            QVERIFY2(RySceneFile::save(&scene.scene, path(name), &error, &messages), qPrintable(error));
            CharacterScene again(path(name));
            QVERIFY(sameDumps(rySceneDump(again.scene), dump));
            QVERIFY2(RySceneFile::save(&again.scene, path("twice"), &error), qPrintable(error));
            QVERIFY(bytesOf(path("twice")) == bytesOf(path(name)));
            const RyValidation valid = ryValidate(path(name));
            if (valid.available)
                QVERIFY2(valid.errors == 0, qPrintable(valid.report));
        }();
        return messages;
    }

    QTemporaryDir m_folder;
};

RY_TEST(RemovedBonesTest)
#include "tst_removed_bones.moc"
