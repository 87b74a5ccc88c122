#include "CharacterScene.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QDir>
#include <QElapsedTimer>

namespace {

size_t splitsOf(const RyScene &scene)
{
    size_t count = 0;
    for (const RyNode *node : scene.getNodes()) {
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
        if (!shape || !shape->getParts())
            continue;
        for (const RyMeshPart &part : shape->getParts()->parts)
            count += part.vertexOfSplit.size();
    }
    return count;
}

} // namespace

/// Malformed and odd files of other people.
class HostileTest : public QObject
{
    Q_OBJECT

private slots:
    void all_data()
    {
        QTest::addColumn<QString>("file");
        if (ryModelsPath().isEmpty())
            return;
        const QDir folder(ryModelsPath() + QStringLiteral("/hostile"));
        for (const QString &name : folder.entryList({"*.gltf", "*.glb", "*.obj"}, QDir::Files, QDir::Name))
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
    void all()
    {
        if (ryModelsPath().isEmpty())
            QSKIP("the files are not here");
        QFETCH(QString, file);
        const QString name = QLatin1String(QTest::currentDataTag());
        RyScene &scene = *ryScene();
        prepare(scene);
        const QString before = rySceneDump(scene);
        const int steps = ryUndoStack()->count();
        QElapsedTimer timer;
        timer.start();
        QString error;
        QStringList messages;
        const bool opened = RySceneFile::open(&scene, file, &error, &messages);
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
        if (!opened) {
            QCOMPARE(rySceneDump(scene), before);
            QCOMPARE(ryUndoStack()->count(), steps);
            QVERIFY2(error.contains(name), qPrintable(error));
            QVERIFY2(error.size() > name.size() + 10, qPrintable(error));
        } else {
            QCOMPARE(ryUndoStack()->count(), 0);
            for (const RyBone *bone : bonesOf(scene)) {
                for (const RyVec3 &point :
                     {bone->getOrigin(), bone->getEndPoint(), bone->getWSPos(), bone->getWSEndPoint()})
                    QVERIFY(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
            }
            for (const RyNode *node : scene.getNodes()) {
                if (!node->getObject())
                    continue;
                for (const RyVec3 &point : node->getObject()->getDeformedPositions())
                    QVERIFY(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
            }
            // What could be opened can be saved, untouched and edited, and opened again.
            QTemporaryDir folder;
            const QString saved = folder.filePath(name);
            QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
            for (RyBone *bone : bonesOf(scene))
                bone->adjustEndPoint(bone->getEndPoint() + RyVec3(1, 0, 0));
            if (!bonesOf(scene).empty())
                bonesOf(scene).back()->adjustOrigin(bonesOf(scene).back()->getOrigin() + RyVec3(0, 1, 0));
            const QString edited = rySceneDump(scene);
            QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
            QVERIFY2(RySceneFile::open(&scene, saved, &error), qPrintable(error));
            QCOMPARE(rySceneDump(scene).count(QStringLiteral("\nnode ")), edited.count(QStringLiteral("\nnode ")));
        }
        qInfo("%s", opened ? qPrintable(QStringLiteral("opens: %1 bones, %2 vertices; %3")
                                            .arg(bonesOf(scene).size())
                                            .arg(splitsOf(scene))
                                            .arg(messages.join(QStringLiteral("; ")).left(200)))
                           : qPrintable(error.mid(error.lastIndexOf(QLatin1Char('/')) + 1)));
        scene.clear();
    }

    void mustOpen_data()
    {
        QTest::addColumn<int>("bones");
        // One joint of the file with the duplicate is no joint any more, but stands between two.
        const std::pair<const char *, int> rows[] = {{"dv_fox_no_ibm", 24},
                                                     {"dv_fox_skeleton_not_joint_nonuniform", 24},
                                                     {"dv_fox_two_skins_one_skeleton", 24},
                                                     {"dv_fox_duplicate_joint", 24},
                                                     {"dv_fox_zero_weights", 24},
                                                     {"dv_fox_odd_and_equal_names", 24},
                                                     {"dv_fox_deep_5000_nodes", 24},
                                                     {"dv_fox_zero_scale_joint", 24},
                                                     {"dv_fox_singular_ibm", 24}};
        for (const auto &[name, bones] : rows)
            QTest::newRow(name) << bones;
    }
    void mustOpen()
    {
        QFETCH(int, bones);
        const QString path = ryModel(QStringLiteral("hostile/%1.glb").arg(QLatin1String(QTest::currentDataTag())));
        if (path.isEmpty())
            QSKIP("the file is not here");
        RyScene scene;
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::open(&scene, path, &error, &messages), qPrintable(error));
        // Two skins with the one mesh show it twice.
        const bool isTwice = qstrcmp(QTest::currentDataTag(), "dv_fox_two_skins_one_skeleton") == 0;
        QCOMPARE(splitsOf(scene), size_t(isTwice ? 2 * 1728 : 1728));
        const std::vector<RyBone *> found = bonesOf(scene);
        qInfo("%zu bones; %s", found.size(), qPrintable(messages.join(QStringLiteral("; "))));
        QCOMPARE(int(found.size()), bones);
        QSet<QString> names;
        for (const RyBone *bone : found)
            names.insert(bone->getName());
        QCOMPARE(size_t(names.size()), found.size());
    }

    void mustBeRefused_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *name :
             {"dv_fox_node_cycle.glb", "dv_fox_huge_count.glb", "dv_fox_offset_overflow.glb",
              "dv_fox_truncated_half.glb", "dv_fox_truncated_json.glb", "dv_fox_deep_json.gltf",
              "kv_glb_empty_file.glb", "kv_json_invalid_syntax.gltf", "gt_BoxDraco_required_ext.gltf"})
            QTest::newRow(name) << QStringLiteral("hostile/") + QLatin1String(name);
    }
    void mustBeRefused()
    {
        QFETCH(QString, file);
        const QString path = ryModel(file);
        if (path.isEmpty())
            QSKIP("the file is not here");
        RyScene scene;
        QString error;
        QVERIFY(!RySceneFile::open(&scene, path, &error));
        QVERIFY2(error.contains(QLatin1String(QTest::currentDataTag())), qPrintable(error));
    }

    void filesThatAreNone()
    {
        QTemporaryDir folder;
        RyScene &scene = *ryScene();
        prepare(scene);
        const QString before = rySceneDump(scene);
        QFile empty(folder.filePath(QStringLiteral("empty.gltf")));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        QFile other(folder.filePath(QStringLiteral("letter.txt")));
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.close();
        for (const QString &path :
             {folder.filePath(QStringLiteral("nothing.glb")), folder.path(), empty.fileName(), other.fileName()}) {
            QString error;
            QVERIFY(!RySceneFile::open(&scene, path, &error));
            QVERIFY2(error.contains(path), qPrintable(error));
            QCOMPARE(rySceneDump(scene), before);
        }
        QString error;
        QVERIFY(!RySceneFile::save(&scene, folder.filePath(QStringLiteral("scene.txt")), &error));
        QVERIFY(error.contains(QStringLiteral("scene.txt")));
        QVERIFY(!RySceneFile::save(&scene, folder.filePath(QStringLiteral("none/scene.glb")), &error));
        QVERIFY(error.contains(QStringLiteral("scene.glb")));
        QCOMPARE(rySceneDump(scene), before);
        RyScene nothing;
        QVERIFY(!RySceneFile::save(&nothing, folder.filePath(QStringLiteral("nothing.glb")), &error));
        QVERIFY(!QFileInfo::exists(folder.filePath(QStringLiteral("nothing.glb"))));
        scene.clear();
    }

private:
    static std::vector<RyBone *> bonesOf(const RyScene &scene)
    {
        std::vector<RyBone *> bones;
        for (const RySkeleton *skeleton : scene.getSkeletons())
            skeleton->getAllBones(bones);
        return bones;
    }
    /// A scene with something in it and a step to undo.
    static void prepare(RyScene &scene)
    {
        ryUndoStack()->clearAll();
        scene.clear();
        auto *bone = new RyBone;
        scene.addNode(bone);
        RyUndoStackHold hold;
        bone->adjustOrigin({1, 2, 3});
        hold.accept(QStringLiteral("Move"));
        bone->select(true);
    }
};

RY_TEST(HostileTest)
#include "tst_hostile.moc"
