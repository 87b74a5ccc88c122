#include "CharacterScene.h"
#include "FigureSketch.h"
#include "KeptClips.h"
#include "RigEdits.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QFileInfo>

using nlohmann::json;

/// Files that are opened, edited and saved again and again.
class FileGrowthTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void sessions_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"mannequin.glb", "CesiumMan.glb", "Fox.glb", "RiggedSimple.gltf"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void sessions()
    {
        QFETCH(QString, name);
        const QString first = name == QLatin1String("mannequin.glb")
                                  ? QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb")
                                  : ryModel(name);
        if (first.isEmpty())
            QSKIP("the character is not here");
        const QString ending = name.section(QLatin1Char('.'), -1);
        const QString path = m_folder.filePath(QStringLiteral("grown.") + ending);
        const GltfEvaluator original(first.toStdString());
        qint64 second = 0;
        size_t secondNodes = 0, mostPlaces = 0;
        for (int session = 1; session <= 10; ++session) {
            CharacterScene scene(session == 1 ? first : path);
            edit(scene, session);
            const QString dump = rySceneDump(scene.scene);
            QString error;
            QVERIFY2(RySceneFile::save(&scene.scene, path, &error), qPrintable(error));
            const CharacterScene again(path);
            QVERIFY(sameDumps(rySceneDump(again.scene), dump));
            QVERIFY(largestDistance(scene.shown(), positionsOf(again.file, scene.unit())) <= 2e-5 * scene.height);
            keepsTheFile(original, again.file);
            const qint64 size = QFileInfo(path).size();
            const json tree = again.file.tree();
            const size_t places = tree["accessors"].size() + tree["bufferViews"].size();
            if (session <= 5) // by then every clip was written once
                mostPlaces = std::max(mostPlaces, places);
            QVERIFY2(places <= mostPlaces, qPrintable(QStringLiteral("%1, %2").arg(places).arg(mostPlaces)));
            if (session == 2) {
                second = size;
                secondNodes = tree["nodes"].size();
            }
            if (session <= 2)
                continue;
            QVERIFY2(tree["nodes"].size() <= secondNodes, tree["nodes"].dump().c_str());
            QVERIFY2(100 * size <= 104 * second,
                     qPrintable(QStringLiteral("session %1: %2, %3").arg(session).arg(size).arg(second)));
        }
        const RyValidation before = ryValidate(first);
        const RyValidation after = ryValidate(path);
        if (before.available)
            QVERIFY2(after.errors <= before.errors, qPrintable(after.report));
    }

    /// Weights alone: from the second file on every file is as large as the one before.
    void weightsOnly()
    {
        const QString path = m_folder.filePath(QStringLiteral("weights.gltf"));
        QString last = FigureSketch().write(m_folder.filePath(QStringLiteral("plain.gltf")));
        qint64 size = 0;
        for (int session = 1; session <= 6; ++session) {
            CharacterScene scene(last);
            RigEdits::shiftWeights(scene.scene, 1000 * session);
            QString error;
            QVERIFY2(RySceneFile::save(&scene.scene, path, &error), qPrintable(error));
            last = path;
            if (session > 2)
                QCOMPARE(QFileInfo(path).size(), size);
            size = QFileInfo(path).size();
        }
    }

    /// What a deleted bone needed goes from the end of the file; what came with the file stays, though nothing uses it.
    void whatGoesAgain()
    {
        FigureSketch sketch;
        sketch.add<float>({1.0f, 2.0f}, 5126, "SCALAR"); // for an extension that nobody knows
        const QString plain = sketch.write(m_folder.filePath(QStringLiteral("plain.gltf")));
        const QString path = m_folder.filePath(QStringLiteral("gone.gltf"));
        QString error;
        CharacterScene scene(plain);
        for (int i = 0; i < 5; ++i)
            RigEdits::addSibling(scene.scene, scene.bones()[1]);
        QVERIFY2(RySceneFile::save(&scene.scene, path, &error), qPrintable(error));
        const qint64 large = json(GltfEvaluator(path.toStdString()).tree())["buffers"].back()["byteLength"];
        CharacterScene again(path);
        QCOMPARE(again.bones().size(), size_t(7));
        for (int i = 0; i < 5; ++i)
            RigEdits::deleteBone(again.scene, again.bones().back());
        QVERIFY2(RySceneFile::save(&again.scene, path, &error), qPrintable(error));
        const GltfEvaluator after(path.toStdString());
        keepsTheFile(GltfEvaluator(plain.toStdString()), after);
        const json now = after.tree();
        QVERIFY2(now["buffers"].back()["byteLength"].get<qint64>() + 5 * 64 <= large, now["buffers"].dump().c_str());
    }

    /// A node that was made goes from the end of the list, and its place among others is filled by the next one; a
    /// node of the file, and one that an extension names, stays where it is.
    void nodesThatGo()
    {
        const QString path = m_folder.filePath(QStringLiteral("nodes.gltf"));
        FigureSketch sketch;
        const size_t own = sketch.tree["nodes"].size();
        CharacterScene scene(sketch.write(m_folder.filePath(QStringLiteral("plain.gltf"))));
        for (const char *name : {"first", "second", "third"})
            RigEdits::addSibling(scene.scene, scene.bones()[1])->setName(QLatin1String(name));
        save(scene, path);
        QCOMPARE(GltfEvaluator(path.toStdString()).tree()["nodes"].size(), own + 3);

        CharacterScene without(path);
        deleteNamed(without, QStringLiteral("first"));
        save(without, path);
        json tree = json::parse(bytesOf(path).toStdString());
        const auto isEmpty = [](const json &node) { return node.size() == 1 && node.contains("extras"); };
        const auto gone = std::find_if(tree["nodes"].begin(), tree["nodes"].end(), isEmpty);
        QVERIFY(gone != tree["nodes"].end());
        const auto place = size_t(gone - tree["nodes"].begin());
        QCOMPARE(tree["nodes"].size(), own + 3);

        // The places of the file's own nodes are never filled.
        for (const bool isNamed : {true, false}) {
            json marked = tree;
            if (isNamed) {
                marked["nodes"][0]["extensions"]["X_unknown"]["numbers"] = {place};
                marked["extensionsUsed"] = {"X_unknown"};
            }
            const QString other = m_folder.filePath(QStringLiteral("named.gltf"));
            QFile file(other);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray::fromStdString(marked.dump())) > 0);
            file.close();
            CharacterScene again(other);
            RigEdits::addSibling(again.scene, again.bones()[1])->setName(QStringLiteral("fourth"));
            save(again, other);
            const json now = GltfEvaluator(other.toStdString()).tree()["nodes"];
            QCOMPARE(now.size(), own + (isNamed ? 4 : 3));
            QCOMPARE(now[place].value("name", std::string()), isNamed ? std::string() : std::string("fourth"));
            QVERIFY(sameDumps(rySceneDump(CharacterScene(other).scene), rySceneDump(again.scene)));
        }

        CharacterScene empty(path);
        for (const char *name : {"second", "third"})
            deleteNamed(empty, QLatin1String(name));
        save(empty, path);
        QCOMPARE(GltfEvaluator(path.toStdString()).tree()["nodes"].size(), own);
        CharacterScene last(path);
        RigEdits::deleteBone(last.scene, last.bones().back());
        save(last, path);
        QCOMPARE(GltfEvaluator(path.toStdString()).tree()["nodes"].size(), own);
    }

    /// An extension may name what is ours as well.
    void whatAnExtensionNames()
    {
        const QString path = m_folder.filePath(QStringLiteral("named.gltf"));
        QString error;
        CharacterScene scene(FigureSketch().write(m_folder.filePath(QStringLiteral("plain.gltf"))));
        RigEdits::addSibling(scene.scene, scene.bones()[1]);
        QVERIFY2(RySceneFile::save(&scene.scene, path, &error), qPrintable(error));
        json tree = json::parse(bytesOf(path).toStdString());
        const size_t binds = tree["skins"][0]["inverseBindMatrices"];
        tree["nodes"][0]["extensions"]["X_unknown"]["numbers"] = {binds};
        tree["extensionsUsed"] = {"X_unknown"};
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray::fromStdString(tree.dump())) > 0);
        file.close();
        const std::string bytes = GltfEvaluator(path.toStdString()).accessorBytes(int(binds));
        CharacterScene again(path);
        RigEdits::addSibling(again.scene, again.bones()[1]);
        QVERIFY2(RySceneFile::save(&again.scene, path, &error), qPrintable(error));
        const GltfEvaluator now(path.toStdString());
        QVERIFY(now.tree()["skins"][0]["inverseBindMatrices"] != json(binds));
        QCOMPARE(now.tree()["accessors"][binds]["type"], json("MAT4"));
    }

private:
    static void save(CharacterScene &scene, const QString &path)
    {
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path, &error), qPrintable(error));
    }

    static void deleteNamed(CharacterScene &scene, const QString &name)
    {
        for (RyBone *bone : scene.bones()) {
            if (bone->getName() == name)
                return RigEdits::deleteBone(scene.scene, bone);
        }
        QFAIL(qPrintable(name));
    }

    static void edit(CharacterScene &scene, int session)
    {
        RigEdits::shiftWeights(scene.scene, 500 + 10 * session);
        const std::vector<RyBone *> bones = scene.bones();
        bones.back()->adjustOrigin(bones.back()->getOrigin() + RyVec3(0.1f, 0, 0.2f));
        for (RyBone *bone : bones) {
            if (bone->getName().startsWith(QLatin1String("made")))
                RigEdits::deleteBone(scene.scene, bone);
        }
        RigEdits::addSibling(scene.scene, scene.bones()[1])->setName(QStringLiteral("made%1").arg(session));
        const RySkeleton *figure = scene.scene.getSkeletons().front();
        auto *mesh = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure))->getFacetMesh();
        if (!mesh->findFaceGroup(QStringLiteral("some")))
            mesh->createFaceGroup(QStringLiteral("some"));
        RyIndexList facets;
        facets.addSortedIndex(session);
        mesh->deselectAllFacets();
        mesh->selectFacetsByIndexList(facets, true);
        mesh->addSelectedFacetsToGroup(QStringLiteral("some"));
        mesh->deselectAllFacets();
    }

    /// The file's own accessors and views stand where they stood in their lists, but for those of clips that were
    /// written anew. Views may begin elsewhere.
    static void keepsTheFile(const GltfEvaluator &before, const GltfEvaluator &after)
    {
        const std::set<int> ofClips = accessorsOfClips(before);
        std::set<int> viewsOfClips;
        for (const int accessor : ofClips)
            viewsOfClips.insert(before.tree()["accessors"][size_t(accessor)].value("bufferView", -1));
        for (const char *key : {"accessors", "bufferViews"}) {
            const json &then = before.tree()[key], &now = after.tree()[key];
            QVERIFY(now.size() >= then.size());
            for (size_t i = 0; i < then.size(); ++i) {
                if ((key == std::string("accessors") ? ofClips : viewsOfClips).count(int(i)))
                    continue;
                QCOMPARE(withoutPlaces(now[i]), withoutPlaces(then[i]));
            }
        }
    }
    /// Without what depends on where numbers stand, and on those that are written in place.
    static json withoutPlaces(json entry)
    {
        for (const char *key : {"min", "max"})
            entry.erase(key);
        if (entry.contains("buffer"))
            entry.erase("byteOffset");
        return entry;
    }

    QTemporaryDir m_folder;
};

RY_TEST(FileGrowthTest)
#include "tst_file_growth.moc"
