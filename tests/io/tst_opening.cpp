#include "CharacterScene.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QSet>

namespace {

struct SceneCounts
{
    size_t splits = 0;
    size_t vertices = 0;
    size_t facets = 0;
    size_t groups = 0;
    size_t influences = 0; // most at one vertex
};

SceneCounts countsOf(const RyScene &scene)
{
    SceneCounts counts;
    for (const RyNode *node : scene.getNodes()) {
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
        if (!shape)
            continue;
        const RyFacetMesh &mesh = *shape->getFacetMesh();
        counts.vertices += size_t(mesh.getNumVertices());
        counts.facets += size_t(mesh.getNumFacets());
        counts.groups += size_t(mesh.getNumFaceGroups());
        if (shape->getParts()) {
            for (const RyMeshPart &part : shape->getParts()->parts)
                counts.splits += part.vertexOfSplit.size();
        }
        std::vector<size_t> ofVertex(size_t(mesh.getNumVertices()), 0);
        if (const auto *skin = node->getObject()->findModifier<RySkinBinding>()) {
            for (const RyBoneBinding *binding : skin->bindings()) {
                const RyWeightMap &map = *binding->getWeights();
                for (int i = 0; i < map.getNumAffected(); ++i)
                    counts.influences = std::max(counts.influences, ++ofVertex[size_t(map.getAffectedIndices()[i])]);
            }
        }
    }
    return counts;
}

} // namespace

class OpeningTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void characters_data()
    {
        QTest::addColumn<int>("vertices");
        QTest::addColumn<int>("faces");
        QTest::addColumn<int>("joints");
        QTest::addColumn<int>("influences");
        QTest::addColumn<int>("figures");
        QTest::addColumn<double>("unit");
        QTest::addColumn<double>("height");
        // Counts of the files. The mesh of the tentacles stands in the scene once for each of 84 skins, whose joints
        // grow from four roots.
        QTest::newRow("CesiumMan.glb") << 3273 << 4672 << 19 << 4 << 1 << 100.0 << 150.7;
        QTest::newRow("RiggedSimple.gltf") << 160 << 188 << 2 << 2 << 1 << 0.0 << 0.0;
        QTest::newRow("Fox.glb") << 1728 << 576 << 24 << 4 << 1 << 1.0 << 78.7;
        QTest::newRow("kaykit_knight.glb") << 7024 << 6952 << 41 << 4 << 1 << 100.0 << 0.0;
        QTest::newRow("mh_default_rig.glb") << 14517 << 26756 << 163 << 9 << 1 << 100.0 << 0.0;
        QTest::newRow("mh_large.glb") << 214050 << 428096 << 53 << 4 << 1 << 100.0 << 0.0;
        QTest::newRow("quad_10_influences.glb") << 4 << 2 << 10 << 10 << 0 << 0.0 << 0.0;
        QTest::newRow("hand_flat_hierarchy.glb") << 1360 << 2314 << 25 << 4 << 0 << 0.0 << 0.0;
        QTest::newRow("tentacle_84_skins.glb") << 84 * 40 << 84 * 76 << 840 << 1 << 4 << 0.0 << 0.0;
    }
    void characters()
    {
        QFETCH(int, vertices);
        QFETCH(int, faces);
        QFETCH(int, joints);
        QFETCH(int, influences);
        QFETCH(int, figures);
        QFETCH(double, unit);
        QFETCH(double, height);
        const QString path = ryModel(QLatin1String(QTest::currentDataTag()));
        if (path.isEmpty())
            QSKIP("the character is not here");
        const CharacterScene character(path);
        for (const QString &message : character.messages)
            qInfo("message: %s", qUtf8Printable(message));
        const SceneCounts counts = countsOf(character.scene);
        qInfo("%zu of %zu vertices after welding, %.4g cm high, unit %g, %zu figures", counts.vertices, counts.splits,
              character.height, character.unit(), character.scene.getSkeletons().size());
        QCOMPARE(counts.splits, size_t(vertices));
        QCOMPARE(counts.facets, size_t(faces));
        QCOMPARE(character.bones().size(), size_t(joints));
        QCOMPARE(counts.influences, size_t(influences));
        // An independent reading counts the same.
        const GltfCounts own = character.file.counts();
        QCOMPARE(counts.splits, own.vertices);
        QCOMPARE(counts.facets, own.triangles);
        QCOMPARE(character.bones().size(), own.joints);
        if (figures > 0)
            QCOMPARE(character.scene.getSkeletons().size(), size_t(figures));
        if (unit > 0.0)
            QCOMPARE(character.unit(), unit);
        if (height > 0.0)
            QVERIFY(std::fabs(character.height - height) < 0.5);

        for (const RySkeleton *skeleton : character.scene.getSkeletons()) {
            QSet<QString> names;
            for (const RyBone *bone : skeleton->getAllBones()) {
                QVERIFY(!bone->getName().isEmpty());
                names.insert(bone->getName());
            }
            QCOMPARE(size_t(names.size()), skeleton->getAllBones().size());
        }
        // The scene shows what the file says.
        const double error = largestDistance(character.shown(), positionsOf(character.file, character.unit()));
        qInfo("shown as the file says within %.3g of its height", error / character.height);
        QVERIFY(error <= 1e-5 * character.height);
        // Nothing of the opening stands in the history, and a second opening is the same scene.
        QCOMPARE(ryUndoStack()->count(), 0);
        const CharacterScene again(path);
        QCOMPARE(rySceneDump(again.scene), rySceneDump(character.scene));
    }

    /// The names stand as in the file, whatever they hold, where they are not taken.
    void namesOfTheFile()
    {
        for (const QString &name : characterNames()) {
            const QString path = ryModel(name);
            if (path.isEmpty())
                QSKIP("the characters are not here");
            const CharacterScene character(path);
            for (const RyBone *bone : character.bones()) {
                const std::string own = character.file.nodeName(character.nodeOf(bone));
                if (!own.empty())
                    QVERIFY2(bone->getName().startsWith(QString::fromStdString(own)), qUtf8Printable(bone->getName()));
                const int parent = character.file.parent(character.nodeOf(bone));
                if (qobject_cast<RyBone *>(bone->getNodeParent()))
                    QCOMPARE(character.nodeOf(bone->getNodeParent()), parent);
            }
        }
    }

    /// Origins of the bones are the places of the joints at bind.
    void jointsStandAtBind()
    {
        for (const QString &name : characterNames()) {
            const QString path = ryModel(name);
            if (path.isEmpty())
                QSKIP("the characters are not here");
            const CharacterScene character(path);
            const RestFrames rest(character.file);
            double worst = 0.0;
            for (const RyBone *bone : character.bones()) {
                const Eigen::Vector3d expected =
                    rest.world.at(character.nodeOf(bone)).topRightCorner<3, 1>() * character.unit();
                const RyVec3 origin = bone->getOrigin();
                worst = std::max(worst, (Eigen::Vector3d(origin.x, origin.y, origin.z) - expected).norm());
                QVERIFY(bone->getOrigin(true) == origin);
                QVERIFY(bone->getEndPoint(true) == bone->getEndPoint());
                QVERIFY(bone->getEndPoint() != origin);
            }
            qInfo("%s: joints within %.3g of the height", qUtf8Printable(name), worst / character.height);
            QVERIFY(worst <= 1e-6 * character.height);
        }
    }

    void objects_data()
    {
        QTest::addColumn<int>("vertices");
        QTest::addColumn<int>("faces");
        QTest::addColumn<int>("groups");
        QTest::newRow("mh_base.obj") << 19158 << 18486 << 139;
        QTest::newRow("blob_17_groups.obj") << 450 << 480 << 17;
    }
    void objects()
    {
        QFETCH(int, vertices);
        QFETCH(int, faces);
        QFETCH(int, groups);
        const QString path = ryModel(QLatin1String(QTest::currentDataTag()));
        if (path.isEmpty())
            QSKIP("the character is not here");
        RyScene scene;
        QString error;
        QVERIFY2(RySceneFile::open(&scene, path, &error), qPrintable(error));
        const SceneCounts counts = countsOf(scene);
        QCOMPARE(counts.vertices, size_t(vertices));
        QCOMPARE(counts.facets, size_t(faces));
        QCOMPARE(counts.groups, size_t(groups));
        QCOMPARE(int(scene.getNodes().size()), 1);
        const float height = scene.getNodes().front()->getBoundingBox().getExtents().y;
        qInfo("%.4g cm high, unit %g", double(height), scene.getOrigin()->unitFactor());
        QVERIFY(height >= 54.0f && height <= 540.0f);
        QTemporaryDir folder;
        const QString saved = folder.filePath(QStringLiteral("saved.obj"));
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        QCOMPARE(bytesOf(saved), bytesOf(path));
    }

    void chosenUnit()
    {
        const QString path = ryModel(QStringLiteral("Fox.glb"));
        if (path.isEmpty())
            QSKIP("the character is not here");
        RyScene scene;
        QString error;
        RySceneFile::Options options;
        options.unit = 2.0;
        QVERIFY2(RySceneFile::open(&scene, path, options, &error), qPrintable(error));
        const float height = scene.getSkeletons().front()->getBoundingBox().getExtents().y;
        QVERIFY(height > 120.0f && height < 200.0f);
        // The choice is kept in the file.
        QTemporaryDir folder;
        const QString saved = folder.filePath(QStringLiteral("saved.glb"));
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        RyScene again;
        QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
        QCOMPARE(again.getOrigin()->unitFactor(), 2.0);
        QCOMPARE(rySceneDump(again), rySceneDump(scene));
    }

    void merging()
    {
        const QString path = ryModel(QStringLiteral("RiggedSimple.gltf"));
        if (path.isEmpty())
            QSKIP("the character is not here");
        RyScene &scene = *ryScene();
        QString error;
        QVERIFY2(RySceneFile::open(&scene, path, &error), qPrintable(error));
        const size_t nodes = scene.getNodes().size();
        RySceneFile::Options options;
        options.merge = true;
        QVERIFY2(RySceneFile::open(&scene, path, options, &error), qPrintable(error));
        QCOMPARE(scene.getNodes().size(), 2 * nodes);
        QSet<QString> names;
        for (const RyNode *top : scene.getTopLevelNodes())
            names.insert(top->getName());
        QCOMPARE(size_t(names.size()), scene.getTopLevelNodes().size());
        const QString merged = rySceneDump(scene);
        // Both come back from one file.
        QTemporaryDir folder;
        const QString saved = folder.filePath(QStringLiteral("both.glb"));
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        QVERIFY2(RySceneFile::open(&scene, saved, &error), qPrintable(error));
        QCOMPARE(scene.getSkeletons().size(), size_t(2));
        QCOMPARE(scene.getNodes().size(), 2 * nodes);
        scene.clear();
    }
};

RY_TEST(OpeningTest)
#include "tst_opening.moc"
