#include "CharacterScene.h"
#include "FigureSketch.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyBulgeBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

using nlohmann::json;

/// Props that become figures, and figures that go, in a file that is kept.
class NewFiguresTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// The mesh of a prop goes on with a figure of one bone: materials, texture coordinates and normals are those of
    /// the file.
    void propBecomesFigure()
    {
        FigureSketch sketch = withProp();
        CharacterScene scene(sketch.write(path("prop")));
        QString error;
        RyNode *prop = scene.scene.findNode(QStringLiteral("thing"));
        QVERIFY(prop);
        const std::vector<RyVec3> shown =
            qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(prop))->getFacetMesh()->getPositions();
        RyFigure *figure = makeFigure(scene.scene, prop);
        const QString saved = path("figure");
        const QString dump = rySceneDump(scene.scene);
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));

        const GltfEvaluator file(saved.toStdString());
        const json &meshes = file.tree()["meshes"];
        const json &made = meshes.back()["primitives"][0];
        const json &old = sketch.tree["meshes"][1]["primitives"][0];
        QCOMPARE(made["material"], old["material"]);
        for (const char *attribute : {"TEXCOORD_0", "NORMAL", "POSITION"})
            QVERIFY(file.accessorBytes(made["attributes"][attribute]) ==
                    file.accessorBytes(old["attributes"][attribute]));
        QCOMPARE(made["attributes"].contains("JOINTS_0"), true);

        CharacterScene again(saved);
        QVERIFY(!again.scene.findNode(QStringLiteral("thing")));
        QCOMPARE(again.scene.getSkeletons().size(), size_t(2));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        RySkeleton *back = qobject_cast<RySkeleton *>(again.scene.findNode(figure->getName()));
        QVERIFY(back);
        const std::vector<RyVec3> now =
            qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(back))->getFacetMesh()->getPositions();
        QCOMPARE(now.size(), shown.size());
        for (size_t v = 0; v < now.size(); ++v)
            QVERIFY((now[v] - shown[v]).length() < 1e-3f);
        const QString twice = path("twice");
        QVERIFY2(RySceneFile::save(&again.scene, twice, &error), qPrintable(error));
        QVERIFY(bytesOf(twice) == bytesOf(saved));
        const RyValidation valid = ryValidate(saved);
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

    /// Maps that the format has no place for come back where the weights of the file are still those.
    void localScaleAndBulgeMaps()
    {
        FigureSketch sketch;
        CharacterScene scene(sketch.write(path("plain")));
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(scene.bones()[0]);
        for (RyBoneBinding *binding : skin->boneBindingIterator()) {
            for (int axis = 0; axis < 3; ++axis)
                binding->setLocalWeights(binding->getWeights()->copy(), axis);
            binding->setScaleWeights(binding->getWeights()->copy());
        }
        RyBoneBinding *high = skin->bindings()[1];
        RyWeightMap *map = high->getLocalWeights(1);
        map->beginEdit();
        map->getWeights()[map->getAffectedIndices()[0]] = 300;
        map->finishEdit();
        high->setWeights(nullptr);
        skin->bindings()[0]->setWeights(nullptr);
        auto *bulge = new RyBulgeBinding(2);
        bulge->setLeftWeights(high->getScaleWeights()->copy());
        high->setBulgeBinding(2, bulge);
        bulge->getNegRightBulgeController()->setValue(0.25f);
        const QString dump = rySceneDump(scene.scene);
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path("maps"), &error), qPrintable(error));
        CharacterScene again(path("maps"));
        QVERIFY2(again.messages.isEmpty(), qPrintable(again.messages.join(QLatin1Char('\n'))));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        QVERIFY2(RySceneFile::save(&again.scene, path("twice"), &error), qPrintable(error));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("maps")));
        QVERIFY2(RySceneFile::saveWithoutSource(&again.scene, path("alone"), &error), qPrintable(error));
        QVERIFY(sameDumps(rySceneDump(CharacterScene(path("alone")).scene), dump));

        // Other weights in the file: the maps are left out, and a message says so.
        json tree = again.file.tree();
        tree["extras"]["RYHOST_rigging"]["figures"][0]["maps"]["weights"] = "12";
        writeTree(tree, path("foreign"));
        CharacterScene foreign(path("foreign"));
        QVERIFY(!foreign.messages.filter(QStringLiteral("maps")).isEmpty());
        QVERIFY(!RySkinBinding::findSkinFromNode(foreign.bones()[0])->hasLocalMaps());
    }

    void aRemovedFigureStaysAway()
    {
        FigureSketch sketch = withProp();
        CharacterScene scene(sketch.write(path("before")));
        QVERIFY(scene.scene.removeNode(scene.scene.getSkeletons().front()).isSuccess());
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path("after"), &error), qPrintable(error));
        const QString dump = rySceneDump(scene.scene);
        CharacterScene again(path("after"));
        QVERIFY(again.scene.getSkeletons().empty());
        QVERIFY(again.scene.findNode(QStringLiteral("thing")));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        QVERIFY2(RySceneFile::save(&again.scene, path("twice"), &error), qPrintable(error));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("after")));
        const RyValidation valid = ryValidate(path("after"));
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

    void aRemovedPropStaysAway()
    {
        FigureSketch sketch = withProp();
        CharacterScene scene(sketch.write(path("before")));
        QVERIFY(scene.scene.removeNode(scene.scene.findNode(QStringLiteral("thing"))).isSuccess());
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path("after"), &error), qPrintable(error));
        CharacterScene again(path("after"));
        QVERIFY(!again.scene.findNode(QStringLiteral("thing")));
        QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(scene.scene)));
        QCOMPARE(again.file.tree()["meshes"].size(), sketch.tree["meshes"].size());
    }

    /// Extras that are no object stay beside ours, and come back without them.
    void foreignExtras()
    {
        FigureSketch sketch;
        const json foreign[] = {json::array({1, "two"}), "id-42", 7};
        for (size_t node = 0; node < 3; ++node)
            sketch.tree["nodes"][node]["extras"] = foreign[node];
        CharacterScene scene(sketch.write(path("extras")));
        scene.bones()[1]->setLabel(QStringLiteral("Other"));
        QString error;
        const QString saved = path("labelled");
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));
        const GltfEvaluator file(saved.toStdString());
        QCOMPARE(file.tree()["nodes"][0]["extras"], foreign[0]);
        for (size_t node : {1, 2}) {
            const json extras = file.tree()["nodes"][node]["extras"];
            QVERIFY(extras.is_object() && extras.contains("RYHOST_rigging"));
            QCOMPARE(extras["RYHOST_replaced"], foreign[node]);
        }
        CharacterScene again(saved);
        QCOMPARE(again.bones()[1]->getLabel(), QStringLiteral("Other"));
        QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(scene.scene)));
        again.bones()[1]->setLabel(QStringLiteral("Third"));
        QVERIFY2(RySceneFile::save(&again.scene, path("twice"), &error), qPrintable(error));
        QCOMPARE(GltfEvaluator(path("twice").toStdString()).tree()["nodes"][2]["extras"]["RYHOST_replaced"],
                 foreign[2]);

        RyExtrasJson::Json holder{{"extras", "id-42"}};
        RyExtrasJson::store(holder, {{"version", 1}});
        RyExtrasJson::store(holder, {{"version", 1}, {"more", true}});
        RyExtrasJson::store(holder, RyExtrasJson::Json());
        QCOMPARE(holder.dump(), std::string(R"({"extras":"id-42"})"));
    }

    /// Roots of another scene, and of none, stay out of the scene that is shown.
    void otherScenes()
    {
        FigureSketch sketch = withProp();
        sketch.tree["nodes"].push_back({{"name", "spare"}, {"mesh", 1}});
        sketch.tree["scenes"] = {{{"nodes", {0, 3}}}, {{"nodes", {4}}}};
        CharacterScene scene(sketch.write(path("scenes")));
        scene.bones()[1]->setName(QStringLiteral("other"));
        RyBone *moved = scene.bones()[1];
        QVERIFY(scene.scene.getSkeletons()[0]->addNodeChild(moved));
        QString error;
        const QString saved = path("renamed");
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));
        const GltfEvaluator file(saved.toStdString());
        QCOMPARE(file.tree()["nodes"][2]["name"], json("other"));
        QVERIFY(file.tree()["nodes"][1].value("children", json::array()).empty());
        QCOMPARE(file.tree()["scenes"], sketch.tree["scenes"]);
    }

    /// The only prop of a file becomes a figure: the file is still what the scene came from.
    void onlyProp()
    {
        FigureSketch sketch = withProp();
        sketch.tree["meshes"] = json::array({sketch.tree["meshes"][1]});
        json &primitive = sketch.tree["meshes"][0]["primitives"][0];
        primitive["attributes"]["_MORE"] = primitive["attributes"]["NORMAL"];
        sketch.tree["nodes"] = {{{"name", "thing"}, {"mesh", 0}}};
        sketch.tree["scenes"] = {{{"nodes", {0}}}};
        sketch.tree.erase("skins");
        CharacterScene scene(sketch.write(path("prop")));
        RyFigure::convertPropToFigure(scene.scene.findNode(QStringLiteral("thing")), QStringLiteral("hip"), false,
                                      false);
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path("figure"), &error), qPrintable(error));
        const json tree = GltfEvaluator(path("figure").toStdString()).tree();
        QCOMPARE(tree["materials"], sketch.tree["materials"]);
        QCOMPARE(tree["skins"].size(), size_t(1));
        const json &attributes = tree["meshes"].back()["primitives"][0]["attributes"];
        QVERIFY(attributes.contains("_MORE") && attributes.contains("JOINTS_0"));
        QVERIFY(sameDumps(rySceneDump(CharacterScene(path("figure")).scene), rySceneDump(scene.scene)));
    }

    /// A figure of the file below a thing, or a figure, that came from another one.
    void figureBelowMerged_data()
    {
        QTest::addColumn<bool>("belowFigure");
        QTest::newRow("thing") << false;
        QTest::newRow("figure") << true;
    }
    void figureBelowMerged()
    {
        QFETCH(bool, belowFigure);
        CharacterScene scene(FigureSketch().write(path("below")));
        RySkeleton *known = scene.scene.getSkeletons()[0];
        FigureSketch other = withProp();
        const QString otherPath = other.write(path("other"));
        RySceneFile::Options options;
        options.merge = true;
        QString error;
        QVERIFY2(RySceneFile::open(&scene.scene, otherPath, options, &error), qPrintable(error));
        RyNode *top = belowFigure ? static_cast<RyNode *>(scene.scene.getSkeletons()[1])
                                  : scene.scene.findNode(QStringLiteral("thing"));
        QVERIFY(top && top != known);
        QVERIFY(top->addNodeChild(known));
        top->setLocalTransform(RyVec3(30, 0, 0), RyQuat(), RyMatrix3(), 1.0f);
        const CharacterScene::Positions shown = scene.shown();

        QStringList messages;
        const QString saved = path("merged");
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error, &messages), qPrintable(error));
        QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));
        const GltfEvaluator file(saved.toStdString());
        const CharacterScene::Positions all = positionsOf(file, scene.unit());
        for (const auto &[part, positions] : shown) {
            QVERIFY(all.count(part));
            QVERIFY(largestDistance({{part, positions}}, {{part, all.at(part)}}) <= 1e-3);
        }
        CharacterScene again(saved);
        QCOMPARE(again.scene.getSkeletons().size(), size_t(2));
        QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(scene.scene)));
        QVERIFY2(RySceneFile::save(&again.scene, path("twice"), &error), qPrintable(error));
        QVERIFY(bytesOf(path("twice")) == bytesOf(saved));
        const RyValidation valid = ryValidate(saved);
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    /// The sketch with a turned prop that has a material, normals and texture coordinates.
    static FigureSketch withProp()
    {
        FigureSketch sketch;
        sketch.tree["materials"] = {{{"name", "red"}, {"pbrMetallicRoughness", {{"baseColorFactor", {1, 0, 0, 1}}}}}};
        sketch.tree["meshes"].push_back(sketch.tree["meshes"][0]);
        json &primitive = sketch.tree["meshes"][1]["primitives"][0];
        primitive["attributes"].erase("JOINTS_0");
        primitive["attributes"].erase("WEIGHTS_0");
        primitive["material"] = 0;
        std::vector<float> normals, uvs;
        for (int i = 0; i < 18; ++i) {
            normals.insert(normals.end(), {0.0f, 0.6f, 0.8f});
            uvs.insert(uvs.end(), {0.05f * float(i), 0.3f, 0.0f});
        }
        primitive["attributes"]["NORMAL"] = sketch.add<float>(normals, 5126, "VEC3");
        uvs.resize(36);
        primitive["attributes"]["TEXCOORD_0"] = sketch.add<float>(uvs, 5126, "VEC4");
        json &accessor = sketch.tree["accessors"].back();
        accessor["type"] = "VEC2";
        accessor["count"] = 18;
        sketch.tree["nodes"].push_back(
            {{"name", "thing"}, {"translation", {1.5, 0.25, 0}}, {"rotation", {0, 0.6, 0, 0.8}}, {"mesh", 1}});
        sketch.tree["scenes"][0]["nodes"] = {0, 3, 4};
        return sketch;
    }

    static RyFigure *makeFigure(RyScene &scene, RyNode *prop)
    {
        auto *figure = new RyFigure;
        figure->setName(QStringLiteral("thing figure"));
        auto *bone = new RyBone;
        bone->setName(QStringLiteral("core"));
        bone->setOrigin(prop->getOrigin(), true);
        bone->setEndPoint(prop->getOrigin() + RyVec3(0, 30, 0), true);
        bone->setOrientation(prop->getOrientation(), true);
        figure->addNodeChild(bone);
        const RyRef<RyObject> object(prop->getObject());
        object->setName(figure->getName());
        prop->setObject(nullptr);
        scene.removeNode(prop);
        figure->setObject(object.get());
        scene.addNode(figure);
        auto *skin = new RySkinBinding;
        object->addModifier(skin);
        auto *map = new RyWeightMap(QStringLiteral("core"));
        const int count = qobject_cast<RyFacetShape *>(object->getCurrentShape())->getFacetMesh()->getNumVertices();
        map->setNumWeights(count);
        map->beginEdit();
        std::fill_n(map->getWeights(), count, RyWeightMap::FullWeight);
        map->finishEdit();
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        binding->setWeights(map);
        skin->addBoneBinding(binding);
        return figure;
    }

    QTemporaryDir m_folder;
};

RY_TEST(NewFiguresTest)
#include "tst_new_figures.moc"
