#include "BakedCharacter.h"
#include "MorphFileStage.h"

#include <nlohmann/json.hpp>

#include "pluginsource/RyJointTools/operations/bakePose.h"
#include "rycore/figure/RyFigure.h"

/// Morphs of baked figures: values stay, deltas turn with their vertices.
class BakedMorphsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void anyValuesShowTheSame_data()
    {
        QTest::addColumn<bool>("isRebound");
        QTest::newRow("as bound") << false;
        QTest::newRow("rebound") << true;
    }
    void anyValuesShowTheSame()
    {
        QFETCH(bool, isRebound);
        MorphFileStage stage;
        if (isRebound)
            stage.useTwoBinds();
        std::mt19937 random(ryTestSeed());
        BakedCharacter character(stage.path);
        character.pose(random);
        const double slack = 2e-5 * character.height;
        std::vector<CharacterScene::Positions> shown;
        const std::vector<std::vector<float>> values = someValues(character, random);
        for (const std::vector<float> &each : values) {
            setValues(character, each);
            shown.push_back(character.shown());
        }
        const QStringList targets = directionsOf(character.file);
        for (RyFigure *figure : character.figures())
            QVERIFY(bakePose(figure));
        QVERIFY2(largestDistance(character.shown(), shown.back()) < slack, "in the pose");
        const QString saved = stage.save(character.scene, "baked.glb");
        const QString dump = rySceneDump(character.scene);
        {
            CharacterScene again(saved);
            stage.checkReopened(again, saved, dump);
        }
        BakedCharacter again(saved);
        for (size_t i = 0; i < values.size(); ++i) {
            setValues(character, values[i]);
            setValues(again, values[i]);
            QVERIFY(largestDistance(character.shown(), shown[i]) < slack);
            QVERIFY(largestDistance(again.shown(), shown[i]) < slack);
        }
        QVERIFY2(directionsOf(again.file) == targets, "all targets have what they had");
    }

private:
    static std::vector<RyMorph *> morphsOf(const CharacterScene &character)
    {
        std::vector<RyMorph *> morphs;
        for (const RyNode *node : character.scene.getNodes()) {
            const RyShape *shape = RyShape::getCurrentShapeForNode(node);
            if (shape)
                morphs.insert(morphs.end(), shape->getMorphs().begin(), shape->getMorphs().end());
        }
        return morphs;
    }
    static std::vector<std::vector<float>> someValues(const CharacterScene &character, std::mt19937 &random)
    {
        std::vector<std::vector<float>> values(4);
        for (std::vector<float> &each : values) {
            for (size_t i = 0; i < morphsOf(character).size(); ++i)
                each.push_back(float(random() % 1000) / 1000.0f);
        }
        return values;
    }
    static void setValues(const CharacterScene &character, const std::vector<float> &values)
    {
        const std::vector<RyMorph *> morphs = morphsOf(character);
        for (size_t i = 0; i < morphs.size(); ++i)
            morphs[i]->getValueControl()->setValue(values.at(i));
    }
    static QStringList directionsOf(const GltfEvaluator &file)
    {
        QStringList names;
        for (const auto &mesh : file.tree()["meshes"]) {
            for (const auto &primitive : mesh["primitives"]) {
                for (const auto &target : primitive.value("targets", nlohmann::json::array())) {
                    for (const auto &[name, accessor] : target.items())
                        names.append(QString::fromStdString(name));
                }
            }
        }
        return names;
    }
};

RY_TEST(BakedMorphsTest)
#include "tst_bakedMorphs.moc"
