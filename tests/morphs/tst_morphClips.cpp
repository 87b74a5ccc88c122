#include "MorphFileStage.h"

#include "evaluator/GltfClipEvaluator.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/clips/RyClipPlayer.h"

using nlohmann::json;

/// Clips that drive morphs: what shows lies where another reader says, and values stay.
class MorphClipsTest : public QObject, private MorphFileStage
{
    Q_OBJECT

private slots:
    void init() { file = MorphFile(ryTestSeed()); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void played_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("edited");
        for (const char *kind : {"LINEAR", "STEP", "CUBICSPLINE"}) {
            for (const bool edited : {false, true})
                QTest::addRow("%s%s", kind, edited ? ", edited" : "") << kind << edited;
        }
    }
    void played()
    {
        QFETCH(QString, kind);
        QFETCH(bool, edited);
        useKind(kind.toStdString());
        CharacterScene character(path);
        std::mt19937 random(ryTestSeed());
        if (edited) {
            moveSomeJoints(character, 1.0, random);
            character.bones()[1]->getYRotControl()->setValue(12.0f);
        }
        const QString dump = rySceneDump(character.scene);
        RyClipPlayer &player = *character.scene.getClipPlayer();
        const RyScene::Clips clips = character.scene.getClips();
        QCOMPARE(clips.size(), size_t(1));
        QCOMPARE(clips[0]->end(), 1.0);
        const GltfClipEvaluator wanted(character.file, 0);
        QVERIFY(wanted.leftOut().empty());
        const CharacterScene::Positions before = character.shown();
        for (const double time : {0.0, 0.2, 0.5, 0.77, 1.0}) {
            player.show(clips[0], time);
            const CharacterScene::Positions told =
                positionsOf(character.file, character.unit(), joined(wanted.pose(time)));
            const double apart = largestDistance(character.shown(), told) / character.height;
            QVERIFY2(apart < 1e-5, qPrintable(QStringLiteral("%1 at %2").arg(apart).arg(time)));
        }
        player.stop();
        QVERIFY(largestDistance(character.shown(), before) == 0.0);
        QVERIFY(sameDumps(rySceneDump(character.scene), dump));
    }

    /// A clip that drives nothing else is one.
    void weightsAlone()
    {
        file.sketch.tree["animations"][0]["channels"].erase(1);
        file.sketch.write(path);
        CharacterScene character(path);
        const RyScene::Clips clips = character.scene.getClips();
        QCOMPARE(clips.size(), size_t(1));
        QCOMPARE(clips[0]->subjects(character.scene), std::vector<RyNode *>{figureOf(character.scene)});
        const CharacterScene::Positions before = character.shown();
        RyClipPlayer &player = *character.scene.getClipPlayer();
        player.show(clips[0], 0.5);
        QVERIFY(largestDistance(character.shown(), before) > 0.01 * character.height);
        // It goes with what it moves.
        character.scene.removeNode(figureOf(character.scene));
        QVERIFY(!player.isShowing());
    }

    /// The longest list of targets counts, wherever it stands.
    void firstPrimitiveWithoutTargets()
    {
        file.sketch.tree["meshes"][0]["primitives"][0].erase("targets");
        file.sketch.write(path);
        CharacterScene character(path);
        const RyMorph *morph = morphCalled(*figureOf(character.scene), "shape 1");
        QVERIFY(morph->shownValue() != 0.125f);
        character.scene.getClipPlayer()->show(character.scene.getClips().at(0), 0.0);
        QCOMPARE(morph->shownValue(), 0.125f);
    }

    /// The clip drives the morphs where the mesh stands then, of one node or of two, with clips left as they are as
    /// well.
    void followsItsMesh_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("jointsOnly");
        QTest::addColumn<QString>("head");
        for (const char *kind : {"LINEAR", "STEP", "CUBICSPLINE"}) {
            for (const bool jointsOnly : {false, true}) {
                for (const char *head : {"", "same times", "other times"})
                    QTest::addRow("%s%s, head %s", kind, jointsOnly ? ", joints only" : "", head)
                        << kind << jointsOnly << head;
            }
        }
    }
    void followsItsMesh()
    {
        QFETCH(QString, kind);
        QFETCH(bool, jointsOnly);
        QFETCH(QString, head);
        useKind(kind.toStdString());
        if (!head.isEmpty())
            driveHead(head == "other times");
        CharacterScene character(path);
        std::mt19937 random(ryTestSeed());
        changeValues(character.scene, random);
        RyNode *figure = figureOf(character.scene);
        std::map<QString, std::vector<float>> wanted;
        for (const double time : Times) {
            character.scene.getClipPlayer()->show(character.scene.getClips().at(0), time);
            for (const RyMorph *morph : morphsOf(*figure))
                wanted[morph->getName()].push_back(morph->shownValue());
        }
        character.scene.getClipPlayer()->stop();
        RySkeleton::convertFigureToProp(figureOf(character.scene), "statue");
        RySceneFile::SaveOptions options;
        options.jointsOnly = jointsOnly;
        QString error;
        QStringList messages;
        const QString saved = folder.filePath("statue.glb");
        QVERIFY2(RySceneFile::save(&character.scene, saved, options, &error, &messages), qPrintable(error));
        const bool isLost = head == "other times";
        QCOMPARE(messages.filter("Morphs of meshes that stand on another node now").filter("talk").size(), int(isLost));
        CharacterScene again(saved);
        QVERIFY(GltfClipEvaluator(again.file, 0).leftOut().empty());
        const RyNode *statue = nodeCalled(again.scene, "statue");
        for (size_t i = 0; i < std::size(Times); ++i) {
            again.scene.getClipPlayer()->show(again.scene.getClips().at(0), Times[i]);
            for (const auto &[name, values] : wanted) {
                const bool isOfBody = file.figureMorphs.at(name).front().first == 3;
                if (isOfBody || !isLost)
                    QVERIFY(std::abs(morphCalled(*statue, name)->shownValue() - values[i]) < 1e-6f);
            }
        }
        again.scene.getClipPlayer()->stop();
        QCOMPARE(bytesOf(save(again.scene, "second.glb")), bytesOf(saved));
    }

    void followsItsMeshIntoAFigure()
    {
        json &clip = file.sketch.tree["animations"][0];
        clip["samplers"][0]["output"] = file.sketch.add<float>({0, 0.25f, 0.5f, 1, 1, 0.75f, 0, 0.5f}, 5126, "SCALAR");
        clip["channels"][0]["target"]["node"] = 5;
        file.sketch.write(path);
        CharacterScene character(path);
        RyNode *prop = nodeCalled(character.scene, "prop");
        QVERIFY(RyFigure::convertPropToFigure(prop, "stem", false, false));
        CharacterScene again(save(character.scene, "stem.glb"));
        QVERIFY(GltfClipEvaluator(again.file, 0).leftOut().empty());
        again.scene.getClipPlayer()->show(again.scene.getClips().at(0), 0.5);
        RyNode *figure = nullptr;
        for (RySkeleton *each : again.scene.getSkeletons())
            figure = morphCalled(*each, "shape 1") ? figure : each;
        QVERIFY(figure);
        QCOMPARE(morphCalled(*figure, "Morph 1")->shownValue(), 0.5f);
        QCOMPARE(morphCalled(*figure, "Morph 3")->shownValue(), 0.25f);
        QCOMPARE(morphCalled(*figure, "Morph 4")->shownValue(), 0.75f);
    }

    void damaged_data()
    {
        QTest::addColumn<int>("left");
        QTest::newRow("numbers missing") << 99;
        QTest::newRow("too many") << 101;
    }
    void damaged()
    {
        QFETCH(int, left);
        json &tree = file.sketch.tree;
        const std::vector<float> numbers(size_t(left), 0.5f);
        tree["animations"][0]["samplers"][0]["output"] = file.sketch.add<float>(numbers, 5126, "SCALAR");
        file.sketch.write(path);
        CharacterScene character(path);
        const RyMorph *morph = morphsOf(*figureOf(character.scene))[1];
        const float value = morph->shownValue();
        character.scene.getClipPlayer()->show(character.scene.getClips().at(0), 0.5);
        QVERIFY(character.scene.getClipPlayer()->isShowing());
        QCOMPARE(morph->shownValue(), value);
    }

private:
    /// The weights of the body with this interpolation, of cubic splines with tangents.
    void useKind(const std::string &kind)
    {
        json &sampler = file.sketch.tree["animations"][0]["samplers"][0];
        sampler["interpolation"] = kind;
        const int rows = kind == "CUBICSPLINE" ? 6 : 2;
        std::vector<float> values;
        for (int i = 0; i < rows * MorphFile::BodyTargets; ++i)
            values.push_back(float(i % 11) / 8.0f - 0.25f);
        sampler["output"] = file.sketch.add<float>(values, 5126, "SCALAR");
        file.sketch.write(path);
    }

    static constexpr double Times[] = {0.0, 0.3, 0.5, 1.0};

    /// A second channel, of the head's weights.
    void driveHead(bool atOtherTimes)
    {
        json &clip = file.sketch.tree["animations"][0];
        json sampler = clip["samplers"][0];
        if (atOtherTimes)
            sampler["input"] = file.sketch.add<float>({0.25f, 0.75f}, 5126, "SCALAR");
        const int rows = sampler["interpolation"] == "CUBICSPLINE" ? 6 : 2;
        std::vector<float> values;
        for (int i = 0; i < rows * MorphFile::HeadTargets; ++i)
            values.push_back(float(i % 5) / 16.0f + 0.5f);
        sampler["output"] = file.sketch.add<float>(values, 5126, "SCALAR");
        clip["channels"].push_back(
            {{"sampler", clip["samplers"].size()}, {"target", {{"node", 4}, {"path", "weights"}}}});
        clip["samplers"].push_back(sampler);
        file.sketch.write(path);
    }

    /// Targets of one name are one morph, which the body's channel drives.
    GltfPose joined(GltfPose pose) const
    {
        const std::vector<double> &body = pose.weights.at(3);
        std::vector<double> head(MorphFile::HeadTargets);
        for (const auto &[name, targets] : file.figureMorphs) {
            double value = double(file.starts.at(name));
            for (const auto &[node, number] : targets)
                value = node == 3 ? body[size_t(number)] : value;
            for (const auto &[node, number] : targets) {
                if (node == 4)
                    head[size_t(number)] = value;
            }
        }
        pose.weights[4] = head;
        return pose;
    }
};

RY_TEST(MorphClipsTest)
#include "tst_morphClips.moc"
