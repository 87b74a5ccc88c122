#include "CharacterScene.h"
#include "KeptClips.h"
#include "evaluator/GltfDifferences.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <set>

namespace {

/// The largest error of five random poses: what the scene shows against what the file says for the same turns.
double posesError(CharacterScene &character, std::mt19937 &random)
{
    double worst = 0.0;
    for (int i = 0; i < 5; ++i) {
        turnRandomly(character, random);
        const GltfPose pose = poseFor(character.file, character);
        worst =
            std::max(worst, largestDistance(character.shown(), positionsOf(character.file, character.unit(), pose)));
    }
    return worst / character.height;
}

} // namespace

class SavingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }
    void init() { ryUndoStack()->clearAll(); }

    void unedited_data() { characters(); }
    void unedited()
    {
        const QString path = character();
        if (path.isEmpty())
            QSKIP("the character is not here");
        CharacterScene original(path);
        QVERIFY(save(original.scene, out("same")));
        QCOMPARE(bytesOf(out("same")), bytesOf(path));
        QVERIFY(original.messages.filter(QStringLiteral("cannot")).isEmpty());
    }

    void moved_data() { characters(); }
    void moved()
    {
        const QString path = character();
        if (path.isEmpty())
            QSKIP("the character is not here");
        CharacterScene original(path);
        const QString before = rySceneDump(original.scene);
        const std::vector<RyBone *> touched = moveSomeJoints(original, 0.2, m_random);
        const QString after = rySceneDump(original.scene);
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(original.scene), before);
        ryUndoStack()->redo();
        QCOMPARE(rySceneDump(original.scene), after);

        QVERIFY(save(original.scene, out("moved")));
        QVERIFY(save(original.scene, out("twice")));
        QCOMPARE(bytesOf(out("twice")), bytesOf(out("moved")));
        QVERIFY(ryUndoStack()->isClean());
        checkKeptTree(original.file, GltfEvaluator(out("moved").toStdString()));

        // What the file shows is what the scene shows.
        const GltfEvaluator file(out("moved").toStdString());
        const double shown = largestDistance(original.shown(), positionsOf(file, original.unit())) / original.height;
        // At rest no vertex has moved.
        const double rest =
            largestDistance(original.atRest(), positionsOf(file, original.unit(), RestFrames(file).pose())) /
            original.height;

        CharacterScene reopened(out("moved"));
        const double joints = compareBones(original, reopened);
        const double vertices = largestDistance(original.atRest(), reopened.atRest()) / original.height;
        QVERIFY(sameDumps(rySceneDump(reopened.scene), after));
        QVERIFY(save(reopened.scene, out("again")));
        QCOMPARE(bytesOf(out("again")), bytesOf(out("moved")));

        const double poses = posesError(reopened, m_random);
        qInfo("%zu joints moved; shown within %.3g, at rest %.3g, joints %.3g, vertices %.3g, five poses %.3g of the "
              "height",
              touched.size(), shown, rest, joints, vertices, poses);
        QVERIFY(std::max({shown, rest, joints, vertices}) <= 1e-5);
        // Weights have sixteen bits: ten of them, each rounded, add up to more.
        QVERIFY(poses <= (original.file.counts().maxInfluences > 9 ? 2e-5 : 1e-5));
    }

    /// With the pose cleared the saved file shows the rest.
    void restPose_data() { characters(); }
    void restPose()
    {
        const QString path = character();
        if (path.isEmpty())
            QSKIP("the character is not here");
        CharacterScene original(path);
        moveSomeJoints(original, 0.2, m_random);
        for (RyBone *bone : original.bones())
            bone->clearPose();
        QVERIFY(save(original.scene, out("rest")));
        const GltfEvaluator file(out("rest").toStdString());
        CharacterScene::Positions expected = original.shown();
        const double shown = largestDistance(expected, positionsOf(file, original.unit())) / original.height;
        qInfo("at rest within %.3g of the height", shown);
        QVERIFY(shown <= 1e-5);
        // Skinned vertices are exactly where the mesh has them.
        for (const auto &[part, points] : original.atRest()) {
            const GltfPrimitive *primitive = nullptr;
            for (const GltfPrimitive &each : file.primitives()) {
                if (each.node == part.first && each.primitive == part.second)
                    primitive = &each;
            }
            QVERIFY(primitive);
            if (primitive->skin >= 0)
                QVERIFY(gltfMaxDistance(points, expected.at(part)) <= 1e-5 * original.height);
        }
    }

    /// A new pose of a moved rig goes into the file and comes back.
    void posed_data() { characters(); }
    void posed()
    {
        const QString path = character();
        if (path.isEmpty())
            QSKIP("the character is not here");
        CharacterScene original(path);
        moveSomeJoints(original, 0.2, m_random);
        turnRandomly(original, m_random);
        QVERIFY(save(original.scene, out("posed")));
        const GltfEvaluator file(out("posed").toStdString());
        const double shown = largestDistance(original.shown(), positionsOf(file, original.unit())) / original.height;
        CharacterScene reopened(out("posed"));
        const double again = largestDistance(original.shown(), reopened.shown()) / original.height;
        QVERIFY(reopened.messages.filter(QStringLiteral("left out")).isEmpty());
        const double tips = compareTips(original, reopened);
        QVERIFY(save(reopened.scene, out("again")));
        qInfo("posed within %.3g, reopened %.3g, end points %.3g of the height", shown, again, tips);
        // The rounding of ten 16-bit weights adds up.
        QVERIFY(shown <= (file.counts().maxInfluences > 9 ? 2e-5 : 1e-5));
        QVERIFY(std::max(again, tips) <= 1e-5);
        QCOMPARE(bytesOf(out("again")), bytesOf(out("posed")));
    }

    /// A figure that was moved as a whole comes back where it was left, with its end points; so it does from the scene
    /// alone.
    void movedFigure_data() { characters(); }
    void movedFigure()
    {
        const QString path = character();
        if (path.isEmpty())
            QSKIP("the character is not here");
        CharacterScene original(path);
        moveSomeJoints(original, 0.2, m_random);
        for (RyNode *top : original.scene.getTopLevelNodes()) {
            top->getXTransControl()->setValue(float(0.3 * original.height));
            top->getYRotControl()->setValue(40.0f);
        }
        original.bones().front()->getXRotControl()->setValue(15.0f);
        QVERIFY(save(original.scene, out("away")));
        QString error;
        QVERIFY2(RySceneFile::saveWithoutSource(&original.scene, out("alone"), &error), qPrintable(error));
        const GltfEvaluator file(out("away").toStdString());
        const double shown = largestDistance(original.shown(), positionsOf(file, original.unit())) / original.height;
        CharacterScene reopened(out("away"));
        CharacterScene alone(out("alone"));
        const double again = largestDistance(original.shown(), reopened.shown()) / original.height;
        const double tips = compareTips(original, reopened);
        const double alike = std::max(compareTips(original, alone), compareMeshes(original, alone));
        qInfo("shown within %.3g, reopened %.3g, end points %.3g, from the scene alone %.3g of the height", shown,
              again, tips, alike);
        QVERIFY(reopened.messages.filter(QStringLiteral("left out")).isEmpty());
        QVERIFY(alone.messages.filter(QStringLiteral("left out")).isEmpty());
        QVERIFY(std::max({shown, again, tips, alike}) <= 1e-5);
        QVERIFY(save(reopened.scene, out("again")));
        QCOMPARE(bytesOf(out("again")), bytesOf(out("away")));
    }

    /// From the scene alone: it really holds what the file said.
    void withoutSource_data() { characters(); }
    void withoutSource()
    {
        const QString path = character();
        if (path.isEmpty())
            QSKIP("the character is not here");
        CharacterScene original(path);
        moveSomeJoints(original, 0.2, m_random);
        QString error;
        QVERIFY2(RySceneFile::saveWithoutSource(&original.scene, out("alone"), &error), qPrintable(error));
        QVERIFY2(RySceneFile::saveWithoutSource(&original.scene, out("twice"), &error), qPrintable(error));
        QCOMPARE(bytesOf(out("twice")), bytesOf(out("alone")));

        CharacterScene reopened(out("alone"));
        QCOMPARE(reopened.unit(), original.unit());
        const double joints = compareBones(original, reopened);
        // The meshes are welded now: vertex by vertex, object by object.
        const double shown = compareMeshes(original, reopened);
        const double file =
            largestDistance(reopened.shown(), positionsOf(reopened.file, reopened.unit())) / original.height;
        QVERIFY(save(reopened.scene, out("again")));
        QCOMPARE(bytesOf(out("again")), bytesOf(out("alone")));
        const double poses = posesError(reopened, m_random);
        // The same turns in both scenes.
        double both = 0.0;
        for (int i = 0; i < 3; ++i) {
            copyRandomPose(original, reopened);
            both = std::max(both, compareMeshes(original, reopened));
        }
        qInfo("joints %.3g, shown %.3g, by the file %.3g, five poses %.3g, against the original %.3g of the height",
              joints, shown, file, poses, both);
        QVERIFY(std::max({joints, shown, file, poses}) <= 1e-5);
        QVERIFY(both <= 1e-4);
    }

private:
    static void characters()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : characterNames())
            QTest::newRow(qPrintable(name)) << name;
    }
    static QString character()
    {
        QFETCH(QString, name);
        return ryModel(name);
    }
    /// Path of a file to write, with the ending of the character.
    QString out(const char *name) const
    {
        return m_folder.filePath(QLatin1String(name) +
                                 (QLatin1String(QTest::currentDataTag()).endsWith(QLatin1String(".gltf"))
                                      ? QStringLiteral(".gltf")
                                      : QStringLiteral(".glb")));
    }
    static bool save(RyScene &scene, const QString &path)
    {
        QString error;
        if (RySceneFile::save(&scene, path, &error))
            return true;
        qWarning("%s", qPrintable(error));
        return false;
    }

    /// Only what the edit means was written.
    static void checkKeptTree(const GltfEvaluator &before, const GltfEvaluator &after)
    {
        const std::vector<std::string> differences =
            gltfDifferences(before.tree(), after.tree(),
                            {"/nodes/*/translation", "/nodes/*/rotation", "/nodes/*/scale", "/nodes/*/matrix",
                             "/nodes/*/extras/RYHOST_rigging", "/extras/RYHOST_rigging", "/nodes/*/extras", "/extras",
                             "/skins/*/inverseBindMatrices", "/skins/*/extras", "/accessors", "/bufferViews",
                             "/buffers", "/animations"});
        for (const std::string &difference : differences)
            qWarning("changed: %s", difference.c_str());
        QVERIFY(differences.empty());
        QCOMPARE(lostOfClips(before, after), QString());
        const nlohmann::json &accessors = before.tree().at("accessors");
        std::set<int> written = accessorsOfClips(before);
        for (const nlohmann::json &skin : before.tree().value("skins", nlohmann::json::array()))
            written.insert(skin.value("inverseBindMatrices", -1));
        for (int i = 0; i < int(accessors.size()); ++i) {
            if (!written.count(i))
                QVERIFY(before.accessorBytes(i) == after.accessorBytes(i));
        }
        for (const char *holder : {"nodes", "skins", "materials", "meshes", "images", "animations"}) {
            const nlohmann::json &list = before.tree().value(holder, nlohmann::json::array());
            for (size_t i = 0; i < list.size(); ++i) {
                if (list[i].contains("extras")) {
                    nlohmann::json extras = after.tree().at(holder).at(i).at("extras");
                    if (extras.is_object())
                        extras.erase("RYHOST_rigging");
                    QVERIFY(extras == list[i]["extras"]);
                }
            }
        }
    }

    static double compareBones(const CharacterScene &a, const CharacterScene &b)
    {
        std::map<std::pair<QString, QString>, RyBone *> known;
        for (RyBone *bone : b.bones())
            known[{bone->getSkeleton()->getName(), bone->getName()}] = bone;
        double worst = a.bones().size() == b.bones().size() ? 0.0 : 1e300;
        for (const RyBone *bone : a.bones()) {
            const auto found = known.find({bone->getSkeleton()->getName(), bone->getName()});
            if (found == known.end())
                return 1e300;
            const RyBone *other = found->second;
            worst = std::max(worst, double((bone->getOrigin() - other->getOrigin()).length()) / a.height);
            worst = std::max(worst, double((bone->getEndPoint() - other->getEndPoint()).length()) / a.height);
            if (bone->getRotationOrder() != other->getRotationOrder())
                return 1e300;
            const double turned = 1.0 - std::fabs(double(bone->getOrientation().dot(other->getOrientation())));
            worst = std::max(worst, turned);
        }
        return worst;
    }

    /// Where joints and end points are in the world, and the orders of rotation.
    static double compareTips(const CharacterScene &a, const CharacterScene &b)
    {
        std::map<std::pair<QString, QString>, RyBone *> known;
        for (RyBone *bone : b.bones())
            known[{bone->getSkeleton()->getName(), bone->getName()}] = bone;
        double worst = a.bones().size() == b.bones().size() ? 0.0 : 1e300;
        for (const RyBone *bone : a.bones()) {
            const auto found = known.find({bone->getSkeleton()->getName(), bone->getName()});
            if (found == known.end() || found->second->getRotationOrder() != bone->getRotationOrder())
                return 1e300;
            worst = std::max(worst, double((bone->getWSPos() - found->second->getWSPos()).length()) / a.height);
            worst =
                std::max(worst, double((bone->getWSEndPoint() - found->second->getWSEndPoint()).length()) / a.height);
        }
        return worst;
    }

    static double compareMeshes(CharacterScene &a, CharacterScene &b)
    {
        std::map<QString, RyNode *> known;
        for (RyNode *node : b.scene.getNodes())
            known.emplace(node->getName(), node);
        double worst = 0.0;
        for (RyNode *node : a.scene.getNodes()) {
            if (!node->getObject())
                continue;
            RyNode *other = known.count(node->getName()) ? known[node->getName()] : nullptr;
            if (!other || !other->getObject())
                return 1e300;
            const std::vector<RyVec3> from = node->getObject()->getDeformedPositions();
            const std::vector<RyVec3> to = other->getObject()->getDeformedPositions();
            if (from.size() != to.size())
                return 1e300;
            for (size_t i = 0; i < from.size(); ++i) {
                const RyVec3 away = node->worldMap().mapPoint(from[i]) - other->worldMap().mapPoint(to[i]);
                worst = std::max(worst, double(away.length()));
            }
        }
        return worst / a.height;
    }

    void copyRandomPose(CharacterScene &a, CharacterScene &b)
    {
        turnRandomly(a, m_random);
        std::map<std::pair<QString, QString>, RyBone *> known;
        for (RyBone *bone : b.bones())
            known[{bone->getSkeleton()->getName(), bone->getName()}] = bone;
        for (RyBone *bone : a.bones()) {
            RyVec3 position;
            RyQuat rotation;
            RyMatrix3 scale;
            float general = 1.0f;
            bone->getLocalTransform(position, rotation, scale, general);
            known.at({bone->getSkeleton()->getName(), bone->getName()})
                ->setLocalTransform(position, rotation, scale, general);
        }
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(SavingTest)
#include "tst_saving.moc"
