#include "FigureSketch.h"
#include "MergedScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

using json = nlohmann::json;

/// Figures and props of one file on the bones of another, moved, turned and scaled; what is gone; other units.
class HangingTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void knightOnNeck()
    {
        if (ryModel(Man).isEmpty() || ryModel(Knight).isEmpty())
            QSKIP("the character is not here");
        MergedScene merged({ryModel(Man), ryModel(Knight)});
        RyNode *neck = merged.scene.findNode(QStringLiteral("Skeleton_neck_joint_2"));
        QVERIFY(neck->addNodeChild(merged.figure(1)));
        const QString saved = path("knight");
        QCOMPARE(merged.check(saved), QString());
        QVERIFY2(merged.messages.isEmpty(), qPrintable(merged.messages.join(QLatin1Char('\n'))));
        CharacterScene again(saved);
        QCOMPARE(again.scene.getSkeletons().size(), size_t(2));
        QCOMPARE(again.scene.getSkeletons()[1]->getNodeParent()->getName(), neck->getName());
        // Clips drive the same nodes, whose transforms are the file's own.
        const GltfEvaluator knight(ryModel(Knight).toStdString()), file(saved.toStdString());
        const json &animations = file.tree()["animations"];
        QCOMPARE(animations.size(), size_t(77));
        const json &before = knight.tree()["animations"][5]["channels"];
        const json &now = animations[6]["channels"];
        QCOMPARE(now.size(), before.size());
        for (size_t c = 0; c < now.size(); ++c) {
            QCOMPARE(file.tree()["nodes"][now[c]["target"]["node"].get<size_t>()].value("rotation", json()),
                     knight.tree()["nodes"][before[c]["target"]["node"].get<size_t>()].value("rotation", json()));
            QCOMPARE(now[c]["target"]["path"], before[c]["target"]["path"]);
        }
    }

    /// The place of a figure stands in the node that carries it; its own nodes and matrices stay bit for bit.
    void posed_data()
    {
        QTest::addColumn<bool>("hangs");
        QTest::addColumn<double>("scale"); // of the second file's units
        for (const bool hangs : {false, true}) {
            for (const double scale : {1.0, 40.0})
                QTest::addRow("%s %g", hangs ? "on a bone" : "beside", scale) << hangs << scale;
        }
    }
    void posed()
    {
        QFETCH(bool, hangs);
        QFETCH(double, scale);
        FigureSketch first;
        FigureSketch second = animated(scale);
        MergedScene merged({first.write(path("first")), second.write(path("second"))});
        RySkeleton *figure = merged.figure(1);
        RyBone *high = merged.bones()[1];
        high->getZRotControl()->setValue(50.0f);
        high->getScaleControl()->setValue(1.5f);
        if (hangs)
            QVERIFY(high->addNodeChild(figure));
        figure->getXTransControl()->setValue(31.0f);
        figure->getYRotControl()->setValue(-77.0f);
        figure->getZScaleControl()->setValue(0.7f);
        const QString saved = path("saved");
        QCOMPARE(merged.check(saved), QString());
        const GltfEvaluator before(path("second").toStdString()), file(saved.toStdString());
        for (const char *name : {"low two", "high two"})
            QCOMPARE(transformOf(file, name), transformOf(before, name));
        const auto bindsOf = [](const GltfEvaluator &each, size_t skin) {
            return each.accessorBytes(each.tree()["skins"][skin]["inverseBindMatrices"]);
        };
        QVERIFY(bindsOf(file, 1) == bindsOf(before, 0));

        // Moved once more, after it came back, and taken off.
        MergedScene again({saved});
        again.figure(1)->getXTransControl()->setValue(-5.0f);
        QCOMPARE(again.check(path("again")), QString());
        if (!hangs)
            return;
        QVERIFY(again.figure(1)->getNodeParent()->removeNodeChild(again.figure(1), true));
        QCOMPARE(again.check(path("off")), QString());
        QCOMPARE(transformOf(GltfEvaluator(path("off").toStdString()), "low two"), transformOf(before, "low two"));
    }

    /// A figure of the first file, which has a camera beside its bones, on one of the second.
    void firstOnSecond()
    {
        FigureSketch first;
        first.tree["cameras"] = {{{"type", "perspective"}, {"perspective", {{"yfov", 1.0}, {"znear", 0.1}}}}};
        first.tree["nodes"].push_back({{"name", "eye"}, {"camera", 0}, {"translation", {0, 0, 5}}});
        first.tree["nodes"][0]["children"].push_back(4);
        MergedScene merged({first.write(path("first")), animated(3.0).write(path("second"))});
        RyNode *high = merged.scene.findNode(QStringLiteral("high two"));
        QVERIFY(high);
        high->getXRotControl()->setValue(20.0f);
        QVERIFY(high->addNodeChild(merged.figure(0)));
        const QString saved = path("saved");
        QCOMPARE(merged.check(saved), QString());
        const GltfEvaluator file(saved.toStdString());
        QCOMPARE(transformOf(file, "eye"), transformOf(GltfEvaluator(path("first").toStdString()), "eye"));
        QCOMPARE(file.tree()["nodes"][0]["children"], json({4})); // the camera alone
    }

    void propOnBone()
    {
        FigureSketch second = animated(1.0);
        second.tree["meshes"].push_back(second.tree["meshes"][0]);
        for (const char *influence : {"JOINTS_0", "WEIGHTS_0"})
            second.tree["meshes"][1]["primitives"][0]["attributes"].erase(influence);
        second.tree["materials"] = {{{"name", "red"}}};
        second.tree["meshes"][1]["primitives"][0]["material"] = 0;
        second.tree["nodes"].push_back({{"name", "hat"}, {"mesh", 1}, {"rotation", {0.0, 0.6, 0.0, 0.8}}});
        second.tree["scenes"][0]["nodes"].push_back(4);
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("second"))});
        RyNode *hat = merged.scene.findNode(QStringLiteral("hat"));
        QVERIFY(hat && merged.bones()[1]->addNodeChild(hat, true));
        merged.bones()[1]->getXRotControl()->setValue(33.0f);
        QCOMPARE(merged.check(path("saved")), QString());
        // What it came with is gone: nothing of it but the hat and its material comes along.
        merged.scene.removeNode(merged.figure(1));
        QCOMPARE(merged.check(path("alone")), QString());
        const GltfEvaluator file(path("alone").toStdString());
        QCOMPARE(file.tree()["skins"].size(), size_t(1));
        QCOMPARE(file.tree()["meshes"].size(), size_t(2));
        QCOMPARE(file.tree()["materials"], second.tree["materials"]);
        QVERIFY(!file.tree().contains("animations"));
        QCOMPARE(file.tree()["bufferViews"].size(), file.tree()["accessors"].size());
        size_t used = 0, all = 0;
        for (const json &view : file.tree()["bufferViews"])
            used += view["byteLength"].get<size_t>() + 16;
        for (const json &buffer : file.tree()["buffers"])
            all += buffer["byteLength"].get<size_t>();
        QVERIFY2(all <= used, qPrintable(QStringLiteral("%1 of %2").arg(used).arg(all)));
    }

    /// Figures and props on a figure itself, before and between its bones.
    void onTheFigure_data()
    {
        QTest::addColumn<int>("place");
        QTest::newRow("before") << 0;
        QTest::newRow("between") << 1;
    }
    void onTheFigure()
    {
        QFETCH(int, place);
        MergedScene merged({FigureSketch().write(path("first")), animated(3.0).write(path("second"))});
        RySkeleton *figure = merged.figure(0);
        QVERIFY(figure->addNodeChild(merged.figure(1), false, place));
        QVERIFY(figure->addNodeChild(merged.scene.findNode(QStringLiteral("high"))));
        QCOMPARE(merged.check(path("saved")), QString());
    }

    /// A prop from an OBJ file that was there first, with a figure on it or beside it.
    void objFirst_data()
    {
        QTest::addColumn<bool>("hangs");
        QTest::newRow("beside") << false;
        QTest::newRow("on the prop") << true;
    }
    void objFirst()
    {
        QFETCH(bool, hangs);
        QFile obj(path("table", ".obj"));
        QVERIFY(obj.open(QIODevice::WriteOnly));
        obj.write("g top\nv 0 0 0\nv 90 0 0\nv 90 70 0\nv 0 70 0\nv 40 110 5\nf 1 2 3 4\nf 4 3 5\n");
        obj.close();
        MergedScene merged({obj.fileName(), animated(2.0).write(path("first")), FigureSketch().write(path("second"))});
        RyNode *table = merged.scene.findNode(QStringLiteral("table"));
        QVERIFY(table);
        if (hangs)
            QVERIFY(table->addNodeChild(merged.figure(1)));
        table->getYRotControl()->setValue(25.0f);
        merged.save(path("saved"));
        QVERIFY2(merged.messages.isEmpty(), qPrintable(merged.messages.join(QLatin1Char('\n'))));
        CharacterScene again(path("saved"));
        const auto namesOf = [](const RyScene &scene) {
            QStringList names;
            for (const RyNode *node : scene.getNodesInTreeOrder())
                names.append(node->getName() + (node->getNodeParent() ? node->getNodeParent()->getName() : QString()));
            return names;
        };
        QCOMPARE(namesOf(again.scene), namesOf(merged.scene));
        QVERIFY(largestDistance(again.shown(), positionsOf(again.file, again.unit())) <= 2e-5 * again.height);
        const auto *shape = qobject_cast<RyFacetShape *>(
            RyShape::getCurrentShapeForNode(again.scene.findNode(QStringLiteral("table"))));
        QCOMPARE(shape->getFacetMesh()->getFacets()[0].count(), 4);
    }

    /// A figure made from a mesh of no glTF file, on such a mesh.
    void madeFigureOnProp()
    {
        for (const char *name : {"table", "vase"}) {
            QFile obj(path(name, ".obj"));
            QVERIFY(obj.open(QIODevice::WriteOnly));
            obj.write("g top\nv 0 0 0\nv 90 0 0\nv 90 70 0\nv 0 70 0\nf 1 2 3 4\n");
        }
        MergedScene made({path("table", ".obj"), path("vase", ".obj")});
        RyFigure *vase = RyFigure::convertPropToFigure(made.scene.findNode(QStringLiteral("vase")),
                                                       QStringLiteral("foot"), false, false);
        QVERIFY(made.scene.findNode(QStringLiteral("table"))->addNodeChild(vase));
        vase->getYTransControl()->setValue(70.0f);
        made.save(path("made"));
        CharacterScene again(path("made"));
        QCOMPARE(again.scene.getSkeletons().size(), size_t(1));
        QCOMPARE(again.scene.getSkeletons()[0]->getNodeParent()->getName(), QStringLiteral("table"));
        QVERIFY(again.scene.getSkeletons()[0]->getObject());
        QVERIFY(largestDistance(again.shown(), positionsOf(again.file, again.unit())) <= 2e-5 * again.height);
    }

    /// What was removed brings nothing: no nodes, no bytes, no clips.
    void removed_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("first") << 0;
        QTest::newRow("second") << 1;
        QTest::newRow("third") << 2;
    }
    void removed()
    {
        QFETCH(int, number);
        const QStringList paths{FigureSketch().write(path("a")), animated(2.0).write(path("b")),
                                animated(0.5).write(path("c"))};
        MergedScene merged(paths);
        merged.scene.removeNode(merged.figure(size_t(number)));
        QCOMPARE(merged.check(path("saved")), QString());
        QStringList left = paths;
        left.removeAt(number);
        MergedScene plain(left);
        plain.save(path("plain"));
        const GltfEvaluator file(path("saved").toStdString()), wanted(path("plain").toStdString());
        for (const char *list : {"nodes", "meshes", "skins", "accessors", "bufferViews"})
            QCOMPARE(file.tree()[list].size(), wanted.tree()[list].size());
        QCOMPARE(contentsOf(file), contentsOf(wanted));
        if (number > 0)
            QCOMPARE(QFileInfo(path("saved")).size(), QFileInfo(path("plain")).size());
    }

    /// Over the first file, over the merged one, and beside them: the same scene each time.
    void targets()
    {
        const QString first = FigureSketch().write(path("over-first"));
        const QString second = animated(7.0).write(path("over-second"));
        for (const QString &target : {first, second, path("copy")}) {
            MergedScene merged({first, second});
            const QString dump = rySceneDump(merged.scene);
            merged.save(target);
            MergedScene again({target});
            QVERIFY(sameDumps(rySceneDump(again.scene), dump));
            // As they were, for the next one.
            FigureSketch().write(first);
            animated(7.0).write(second);
        }
    }

private:
    static constexpr const char *Man = "CesiumMan.glb";
    static constexpr const char *Knight = "kaykit_knight.glb";

    QString path(const char *name, const char *ending = ".gltf") const
    {
        return m_folder.filePath(QLatin1String(name) + QLatin1String(ending));
    }

    /// The sketch with other names and a clip, turned and `scale` times as large in its file.
    static FigureSketch animated(double scale)
    {
        FigureSketch sketch;
        sketch.tree["nodes"][0]["scale"] = {scale, scale, scale};
        sketch.tree["nodes"][0]["rotation"] = {0.5, 0.5, 0.5, 0.5};
        sketch.tree["nodes"][1]["name"] = "low two";
        sketch.tree["nodes"][2]["name"] = "high two";
        sketch.addTurningClip(1);
        return sketch;
    }

    static json transformOf(const GltfEvaluator &file, const std::string &name)
    {
        for (const json &node : file.tree()["nodes"]) {
            if (node.value("name", "") != name)
                continue;
            json transform = json::object();
            for (const char *key : {"translation", "rotation", "scale", "matrix"})
                transform[key] = node.value(key, json());
            return transform;
        }
        return {};
    }

    QTemporaryDir m_folder;
};

RY_TEST(HangingTest)
#include "tst_hanging.moc"
