#include "io/CharacterScene.h"
#include "io/FigureSketch.h"
#include "parametric_files/LegacyArm.h"
#include "recovery/RandomEdits.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QTemporaryDir>

namespace {

/// Through bytes and back.
std::optional<RySceneSnapshot> passedOn(const RyScene &scene, QString *error)
{
    const std::optional<RySceneSnapshot> snapshot = RySceneSnapshot::take(scene, false, error);
    return snapshot ? RySceneSnapshot::fromParts(snapshot->parts(), error) : snapshot;
}

} // namespace

/// A snapshot gives the scene back to the last digit, and taking it changes nothing.
class RySceneSnapshotTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryUndoStack()->setClean();
    }
    void cleanup() { ryUndoStack()->clearAll(); }

    void givesTheSceneBack_data() { addFiles(); }
    void givesTheSceneBack()
    {
        QFETCH(QString, path);
        RyScene scene, again;
        QString error;
        QVERIFY2(RySceneFile::open(&scene, path, &error), qPrintable(error));
        RandomEdits edits(scene, ryTestSeed());
        for (int round = 0; round < 6; ++round) {
            for (int edit = 0; edit < 8; ++edit)
                edits.editOnce();
            const QString dump = rySceneDump(scene);
            const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
            QVERIFY2(snapshot, qPrintable(error));
            QVERIFY2(snapshot->restore(again, path, &error, nullptr), qPrintable(error));
            compare(rySceneDump(again), dump);
            QVERIFY(!ryUndoStack()->isClean());
            QCOMPARE(ryUndoStack()->count(), 0);
        }
    }

    void changesNothing_data() { addFiles(); }
    /// Of two scenes with the same edits, one is looked at after each: the next saves are the same byte for byte.
    void changesNothing()
    {
        QFETCH(QString, path);
        const unsigned seed = ryTestSeed();
        const int count = qEnvironmentVariableIsSet("RY_EDITS") ? qEnvironmentVariableIntValue("RY_EDITS") : 60;
        QTemporaryDir folder;
        QString dumps[2], stacks[2];
        QByteArray bytes[2];
        for (const bool isLookedAt : {false, true}) {
            RyScene scene;
            QString error;
            ryUndoStack()->clearAll();
            QVERIFY2(RySceneFile::open(&scene, path, &error), qPrintable(error));
            RandomEdits edits(scene, seed);
            for (int edit = 0; edit < count; ++edit) {
                edits.editOnce();
                if (isLookedAt)
                    QVERIFY2(RySceneSnapshot::take(scene, false, &error), qPrintable(error));
            }
            dumps[isLookedAt] = rySceneDump(scene);
            stacks[isLookedAt] = QStringLiteral("%1 of %2, %3")
                                     .arg(ryUndoStack()->index())
                                     .arg(ryUndoStack()->count())
                                     .arg(ryUndoStack()->isClean());
            const QString saved = folder.filePath(QStringLiteral("saved.glb"));
            QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
            bytes[isLookedAt] = bytesOf(saved);
        }
        QCOMPARE(dumps[1], dumps[0]);
        QCOMPARE(stacks[1], stacks[0]);
        QVERIFY(bytes[1] == bytes[0]);
    }

    void savesWhatItWouldHaveSaved_data() { addFiles(); }
    /// What was brought back is saved as the scene itself would have been, and nothing of the file is lost.
    void savesWhatItWouldHaveSaved()
    {
        QFETCH(QString, path);
        QTemporaryDir folder;
        RyScene scene, again;
        QString error;
        QVERIFY(RySceneFile::open(&scene, path, &error));
        for (RyNode *node : scene.getNodes()) {
            RyUndoStackHold hold;
            node->setLabel(node->getName() + QStringLiteral(" edited"));
            hold.accept(QStringLiteral("Label"));
        }
        const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
        QVERIFY2(snapshot, qPrintable(error));
        const QString ending =
            QFileInfo(path).suffix() == QLatin1String("gltf") ? QStringLiteral("gltf") : QStringLiteral("glb");
        const QString saved = folder.filePath(QStringLiteral("saved.") + ending);
        const QString recovered = folder.filePath(QStringLiteral("recovered.") + ending);
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        QVERIFY2(snapshot->restore(again, path, &error, nullptr), qPrintable(error));
        QVERIFY2(RySceneFile::save(&again, recovered, &error), qPrintable(error));
        // Normals that a save works out are read back as those of the file, rounded.
        if (QFileInfo(path).suffix() == QLatin1String("obj"))
            QVERIFY(sameDumps(rySceneDump(CharacterScene(recovered).scene), rySceneDump(CharacterScene(saved).scene)));
        else
            QVERIFY(bytesOf(recovered) == bytesOf(saved));
    }

    /// An OBJ file of which only vertices moved keeps every other line.
    void linesOfObjFiles()
    {
        QTemporaryDir folder;
        RyScene scene, again;
        QString error;
        QVERIFY(RySceneFile::open(&scene, sample("hand.obj"), &error));
        auto *mesh =
            qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(scene.getNodes().front()))->getFacetMesh();
        std::vector<RyVec3> positions = mesh->getPositions();
        positions[7] = positions[7] + RyVec3(0.5f, 0.25f, 0.125f);
        mesh->setPositions(std::move(positions));
        const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
        QVERIFY2(snapshot, qPrintable(error));
        QVERIFY2(snapshot->restore(again, sample("hand.obj"), &error, nullptr), qPrintable(error));
        const QString saved = folder.filePath(QStringLiteral("saved.obj"));
        const QString recovered = folder.filePath(QStringLiteral("recovered.obj"));
        QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
        QVERIFY2(RySceneFile::save(&again, recovered, &error), qPrintable(error));
        QVERIFY(bytesOf(saved) != bytesOf(sample("hand.obj")));
        QVERIFY(bytesOf(recovered) == bytesOf(saved));
    }

    /// A figure whose weights were never fitted: none are fitted for a snapshot, and the joints come back.
    void parametricFigures()
    {
        LegacyArm arm;
        arm.makeUntidy();
        QVERIFY(!arm.binding->keptFit());
        const QString dump = rySceneDump(arm.scene);
        QString error;
        const std::optional<RySceneSnapshot> snapshot = passedOn(arm.scene, &error);
        QVERIFY2(snapshot, qPrintable(error));
        QVERIFY(!arm.binding->keptFit());
        RyScene again;
        QVERIFY2(snapshot->restore(again, QStringLiteral("arm"), &error, nullptr), qPrintable(error));
        compare(rySceneDump(again), dump);
        QVERIFY(!LegacyArm::bindingOf(again)->keptFit());
    }

    /// Edited after the weights were fitted, so that those are of another state.
    void parametricFiles()
    {
        RyScene scene, again;
        QString error;
        QVERIFY(RySceneFile::open(&scene, sample("parametric.glb"), &error));
        RyBone *bone = scene.getSkeletons().front()->getAllBones().back();
        bone->adjustOrigin(bone->getOrigin() + RyVec3(1, 2, 3));
        const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
        QVERIFY2(snapshot, qPrintable(error));
        QVERIFY2(snapshot->restore(again, QStringLiteral("arm"), &error, nullptr), qPrintable(error));
        compare(rySceneDump(again), rySceneDump(scene));
        QVERIFY2(!LegacyArm::bindingOf(again)->keptFit(), "the next save would take the fit of an earlier state");
    }

    /// Buffers beside the file are its own and stay there; where they are gone they come from the snapshot.
    void filesBeside()
    {
        QTemporaryDir folder;
        const QString path = writeLinked(folder);
        RyScene scene;
        QString error;
        QVERIFY2(RySceneFile::open(&scene, path, &error), qPrintable(error));
        const QByteArray beside = bytesOf(folder.filePath(QStringLiteral("data.bin")));
        RyBone *bone = scene.getSkeletons().front()->getAllBones().back();
        bone->getXRotControl()->setValue(30.0f);
        const QString dump = rySceneDump(scene);
        const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
        QVERIFY2(snapshot, qPrintable(error));
        for (const bool isGone : {false, true}) {
            if (isGone)
                QVERIFY(QFile::remove(folder.filePath(QStringLiteral("data.bin"))));
            RyScene again;
            QVERIFY2(snapshot->restore(again, path, &error, nullptr), qPrintable(error));
            compare(rySceneDump(again), dump);
            const QString saved = folder.filePath(QStringLiteral("saved.gltf"));
            QVERIFY2(RySceneFile::save(&again, saved, &error), qPrintable(error));
            QCOMPARE(bytesOf(saved).contains("\"data.bin\""), !isGone);
            QVERIFY(isGone || bytesOf(folder.filePath(QStringLiteral("data.bin"))) == beside);
            RyScene opened;
            QVERIFY2(RySceneFile::open(&opened, saved, &error), qPrintable(error));
        }
    }

    /// What several files brought is one scene.
    void mergedFiles()
    {
        RyScene scene, again;
        QString error;
        RySceneFile::Options merge;
        merge.merge = true;
        QVERIFY(RySceneFile::open(&scene, sample("mannequin.glb"), &error));
        QVERIFY2(RySceneFile::open(&scene, sample("hand.obj"), merge, &error), qPrintable(error));
        QVERIFY2(RySceneFile::open(&scene, sample("mannequin.glb"), merge, &error), qPrintable(error));
        scene.getNodes().back()->getXRotControl()->setValue(12.0f);
        const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
        QVERIFY2(snapshot, qPrintable(error));
        QVERIFY2(snapshot->restore(again, QStringLiteral("merged"), &error, nullptr), qPrintable(error));
        compare(rySceneDump(again), rySceneDump(scene));
    }

    /// Selection in its order, the last one primary.
    void selection()
    {
        RyScene scene, again;
        QString error;
        QVERIFY(RySceneFile::open(&scene, sample("mannequin.glb"), &error));
        const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
        scene.setSelection({nodes[5], nodes[2], nodes[3]});
        const std::optional<RySceneSnapshot> snapshot = passedOn(scene, &error);
        QVERIFY2(snapshot && snapshot->restore(again, QString(), &error, nullptr), qPrintable(error));
        QCOMPARE(again.selectedNodeListIterator().size(), size_t(3));
        QCOMPARE(again.getPrimarySelection()->getName(), nodes[3]->getName());
        compare(rySceneDump(again), rySceneDump(scene));
    }

    /// On refusal the scene is what it was.
    void damage()
    {
        RyScene scene;
        QString error;
        QVERIFY(RySceneFile::open(&scene, sample("mannequin.glb"), &error));
        RySceneSnapshot snapshot = *RySceneSnapshot::take(scene, false, &error);
        const QString dump = rySceneDump(scene);
        snapshot.document.tree.chop(100);
        QVERIFY(!snapshot.restore(scene, QString(), &error, nullptr));
        QVERIFY(!error.isEmpty());
        QCOMPARE(rySceneDump(scene), dump);
        RySnapshotParts parts = snapshot.parts();
        std::erase_if(parts, [](const RySnapshotPart &part) { return part.name == "scene"; });
        error.clear();
        QVERIFY(!RySceneSnapshot::fromParts(parts, &error));
        QCOMPARE(error, QStringLiteral("it was made by another version of the program"));
    }

private:
    static QString sample(const char *name)
    {
        return QStringLiteral(RY_SOURCE_DIR "/resources/samples/") + QLatin1String(name);
    }
    static void addFiles()
    {
        QTest::addColumn<QString>("path");
        for (const char *name : {"mannequin.glb", "hand.obj", "parametric.glb"})
            QTest::newRow(name) << sample(name);
        for (const char *name : {"Fox.glb", "RiggedSimple.gltf", "CesiumMan.glb"}) {
            if (!ryModel(QString::fromLatin1(name)).isEmpty())
                QTest::newRow(name) << ryModel(QString::fromLatin1(name));
        }
    }
    static void compare(const QString &dump, const QString &expected)
    {
        if (dump == expected)
            return;
        const QStringList a = dump.split(QLatin1Char('\n')), b = expected.split(QLatin1Char('\n'));
        int shown = 0;
        for (int i = 0; i < std::max(a.size(), b.size()) && shown < 6; ++i) {
            if (a.value(i) != b.value(i)) {
                qWarning("line %d\n  is  %s\n  was %s", i, qPrintable(a.value(i)), qPrintable(b.value(i)));
                ++shown;
            }
        }
        QFAIL("the dumps differ");
    }
    /// A figure whose data stand in a file of their own.
    static QString writeLinked(const QTemporaryDir &folder)
    {
        const FigureSketch sketch;
        const QString path = sketch.write(folder.filePath(QStringLiteral("linked.gltf")));
        nlohmann::ordered_json tree = nlohmann::ordered_json::parse(bytesOf(path).toStdString());
        const std::string uri = tree["buffers"][0]["uri"];
        QFile data(folder.filePath(QStringLiteral("data.bin")));
        data.open(QIODevice::WriteOnly);
        data.write(QByteArray::fromBase64(QByteArray::fromStdString(uri.substr(uri.find(',') + 1))));
        tree["buffers"][0]["uri"] = "data.bin";
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(QByteArray::fromStdString(tree.dump(2)));
        return path;
    }
};

RY_TEST(RySceneSnapshotTest)
#include "tst_RySceneSnapshot.moc"
