#include "CharacterScene.h"
#include "FigureSketch.h"
#include "KeptClips.h"
#include "RigEdits.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <set>

namespace {

using namespace nlohmann::literals;

constexpr int BonesPerFile = 6;

} // namespace

/// What artists do to the bones of a character comes back from its file, and nothing else changes there.
class StructureTest : public QObject
{
    Q_OBJECT

private slots:
    /// A row can be run again by itself.
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void oneKind_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("kind");
        for (const QString &name : characterNames()) {
            for (int kind = 0; kind < int(RigEdits::kinds().size()); ++kind)
                QTest::newRow(qPrintable(name + QLatin1Char(' ') + QLatin1String(RigEdits::kinds()[size_t(kind)].name)))
                    << name << kind;
        }
    }
    void oneKind()
    {
        QFETCH(QString, name);
        QFETCH(int, kind);
        if (ryModel(name).isEmpty())
            QSKIP("the character is not here");
        CharacterScene character(ryModel(name));
        for (int i = 0; i < BonesPerFile; ++i)
            RigEdits::kinds()[size_t(kind)].edit(character.scene, RigEdits::pick(character.bones(), m_random),
                                                 m_random);
        check(character, name, false);
    }

    /// A script can hang what it took out of the scene below a figure again, which does not bring it back.
    void bonesOutsideTheScene()
    {
        const QTemporaryDir folder;
        CharacterScene character(FigureSketch().write(folder.filePath(QStringLiteral("plain.gltf"))));
        RySkeleton *figure = character.scene.getSkeletons().front();
        const RyRef<RyBone> bone(character.bones()[1]);
        character.scene.removeNode(bone.get());
        figure->addNodeChild(bone.get());
        const QString path = folder.filePath(QStringLiteral("saved.gltf"));
        QString error;
        QVERIFY(!RySceneFile::save(&character.scene, path, &error));
        QVERIFY2(error.contains(QStringLiteral("the scene does not fit into its file")), qPrintable(error));
        QVERIFY(!QFile::exists(path));
    }

    /// One after the other on the same bones, posed.
    void allKinds_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : characterNames())
            QTest::newRow(qPrintable(name)) << name;
    }
    void allKinds()
    {
        QFETCH(QString, name);
        if (ryModel(name).isEmpty())
            QSKIP("the character is not here");
        CharacterScene character(ryModel(name));
        turnRandomly(character, m_random);
        for (int i = 0; i < 2 * BonesPerFile; ++i)
            RigEdits::editAtRandom(character.scene, character.bones(), m_random);
        moveSomeJoints(character, 0.1, m_random);
        check(character, name, true);
    }

    /// Vertices that were moved, as a bake of the pose does it, of figures and props.
    void movedVertices_data() { allKinds_data(); }
    void movedVertices()
    {
        QFETCH(QString, name);
        if (ryModel(name).isEmpty())
            QSKIP("the character is not here");
        CharacterScene character(ryModel(name));
        std::uniform_real_distribution<float> shift(-0.01f, 0.01f);
        for (RyNode *node : character.scene.getNodes()) {
            auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
            if (!shape || shape->getFacetMesh()->getNumVertices() == 0)
                continue;
            std::vector<RyVec3> positions = shape->getFacetMesh()->getPositions();
            for (size_t v = positions.size() / 3; v < positions.size(); ++v)
                positions[v] += RyVec3(shift(m_random), shift(m_random), shift(m_random)) * float(character.height);
            shape->getFacetMesh()->setPositions(std::move(positions));
        }
        const QString ending = name.section(QLatin1Char('.'), -1);
        const QString saved = m_folder.filePath(QStringLiteral("moved.") + ending);
        const QString dump = rySceneDump(character.scene);
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error, &messages), qPrintable(error));
        QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));
        const GltfEvaluator file(saved.toStdString());
        const double shown = largestDistance(character.shown(), positionsOf(file, character.unit()));
        QVERIFY2(shown <= 2e-5 * character.height, qPrintable(QString::number(shown / character.height)));
        CharacterScene again(saved);
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        QVERIFY(largestDistance(character.atRest(), again.atRest()) <= 1e-5 * character.height);
        const QString twice = m_folder.filePath(QStringLiteral("twice.") + ending);
        QVERIFY2(RySceneFile::save(&again.scene, twice, &error), qPrintable(error));
        QVERIFY(bytesOf(twice) == bytesOf(saved));
        const RyValidation before = ryValidate(ryModel(name));
        if (before.available)
            QVERIFY2(ryValidate(saved).errors <= before.errors, qPrintable(ryValidate(saved).report));
    }

private:
    void check(CharacterScene &character, const QString &name, bool withValidator)
    {
        const QString ending = name.section(QLatin1Char('.'), -1);
        const QString saved = m_folder.filePath(QStringLiteral("saved.") + ending);
        const QString dump = rySceneDump(character.scene);
        QString error;
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error), qPrintable(error));
        QCOMPARE(rySceneDump(character.scene), dump);

        // What the file shows is what the scene shows, posed and at rest.
        const GltfEvaluator file(saved.toStdString());
        const double tolerance = (file.counts().maxInfluences > 9 ? 2e-5 : 1e-5) * character.height;
        const double posed = largestDistance(character.shown(), positionsOf(file, character.unit()));
        QVERIFY2(posed <= tolerance, qPrintable(QString::number(posed / character.height)));
        keepsTheRest(character.file, file);

        CharacterScene again(saved);
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        QVERIFY2(again.messages.filter(QStringLiteral("left out")).isEmpty(),
                 qPrintable(again.messages.join(QLatin1Char('\n'))));
        const QString twice = m_folder.filePath(QStringLiteral("twice.") + ending);
        QVERIFY2(RySceneFile::save(&again.scene, twice, &error), qPrintable(error));
        QVERIFY(bytesOf(twice) == bytesOf(saved));

        for (RyBone *bone : again.bones())
            bone->clearPose();
        QVERIFY2(RySceneFile::save(&again.scene, twice, &error), qPrintable(error));
        const double rest =
            largestDistance(again.shown(), positionsOf(GltfEvaluator(twice.toStdString()), again.unit()));
        QVERIFY2(rest <= tolerance, qPrintable(QString::number(rest / character.height)));
        if (!withValidator)
            return;
        const RyValidation before = ryValidate(ryModel(name));
        const RyValidation after = ryValidate(saved);
        if (before.available)
            QVERIFY2(after.errors <= before.errors, qPrintable(after.report));
    }

    /// Materials, pictures, clips and everything else that the edits have nothing to do with.
    static void keepsTheRest(const GltfEvaluator &before, const GltfEvaluator &after)
    {
        for (const auto &[key, value] : before.tree().items()) {
            static const std::set<std::string> ours{"nodes",   "meshes", "skins",  "accessors", "bufferViews",
                                                    "buffers", "scenes", "extras", "animations"};
            if (!ours.count(key))
                QVERIFY2(after.tree().value(key, nlohmann::json()) == value, key.c_str());
        }
        QCOMPARE(lostOfClips(before, after), QString());
        const auto &meshes = before.tree().at("meshes");
        for (size_t m = 0; m < meshes.size(); ++m) {
            for (size_t p = 0; p < meshes[m].at("primitives").size(); ++p) {
                nlohmann::json old = meshes[m]["primitives"][p];
                nlohmann::json now = after.tree()["meshes"][m]["primitives"][p];
                for (auto *primitive : {&old, &now}) {
                    primitive->erase("extras");
                    auto &attributes = (*primitive)["attributes"];
                    for (auto attribute = attributes.begin(); attribute != attributes.end();) {
                        const bool isInfluence =
                            attribute.key().rfind("JOINTS_", 0) == 0 || attribute.key().rfind("WEIGHTS_", 0) == 0;
                        attribute = isInfluence ? attributes.erase(attribute) : std::next(attribute);
                    }
                }
                QVERIFY(old == now);
                for (const auto &attribute : old["attributes"])
                    QVERIFY(before.accessorBytes(attribute) == after.accessorBytes(attribute));
            }
        }
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(StructureTest)
#include "tst_structure.moc"
