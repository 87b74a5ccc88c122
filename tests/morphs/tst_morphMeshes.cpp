#include "MorphFileStage.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RyFigure.h"
#include "support/checkUndo.h"

using nlohmann::json;

/// Morphs of meshes that are written anew or in part: conversions, new morphs, scenes without their file.
class MorphMeshesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void propBecomesFigure()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        RyNode *prop = stage.nodeCalled(character.scene, "prop");
        RyFloatProperty *control = stage.morphCalled(*prop, "Morph 2")->getValueControl();
        control->setValue(0.75f);
        const QString before = rySceneDump(character.scene);
        RyFigure *figure = RyFigure::convertPropToFigure(prop, "stem", false, false);
        QVERIFY(figure);
        QCOMPARE(stage.morphCalled(*figure, "Morph 2")->getValueControl(), control);
        QCOMPARE(stage.morphCalled(*figure, "Morph 2")->getNode(), figure);
        control->setValue(0.375f);
        const QString dump = rySceneDump(character.scene);
        control->setValue(0.75f);
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(character.scene), before);
        QCOMPARE(stage.morphCalled(*prop, "Morph 2")->getValueControl(), control);
        ryUndoStack()->redo();
        control->setValue(0.375f);
        QCOMPARE(rySceneDump(character.scene), dump);
        const auto shown = figure->getObject()->getDeformedPositions();
        const QString saved = stage.save(character.scene, "converted.glb");
        CharacterScene again(saved);
        stage.checkReopened(again, saved, dump);
    }

    /// Primitives of two meshes, with different targets, become one mesh.
    void figureBecomesProp()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        const QString before = rySceneDump(character.scene);
        RyNode *prop = RySkeleton::convertFigureToProp(stage.figureOf(character.scene), "statue");
        QVERIFY(prop);
        QCOMPARE(stage.morphsOf(*prop).size(), stage.file.figureMorphs.size());
        const QString dump = rySceneDump(character.scene);
        checkLastStep(before, character.scene);
        const QString saved = stage.save(character.scene, "statue.glb");
        CharacterScene again(saved);
        stage.nodeCalled(again.scene, "statue")->getObject()->setName(prop->getObject()->getName());
        stage.checkReopened(again, saved, dump);
        for (const json &mesh : again.file.tree()["meshes"]) {
            for (const json &primitive : mesh["primitives"])
                QCOMPARE(primitive.value("targets", json()).size(),
                         mesh["primitives"][0].value("targets", json()).size());
        }
    }

    /// A mesh without targets gets empty ones then; its primitives stay joined where they share vertices.
    void figureBecomesPropBesideAPlainMesh()
    {
        MorphFileStage stage;
        json &head = stage.file.sketch.tree["meshes"][1];
        head["primitives"][0].erase("targets");
        head.erase("weights");
        head["primitives"].push_back(head["primitives"][0]);
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        RyNode *prop = RySkeleton::convertFigureToProp(stage.figureOf(character.scene), "statue");
        const QString dump = rySceneDump(character.scene);
        CharacterScene again(stage.save(character.scene, "statue.glb"));
        stage.nodeCalled(again.scene, "statue")->getObject()->setName(prop->getObject()->getName());
        QVERIFY(stage.apart(again) < Near);
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
    }

    void morphsThatNoFileHas()
    {
        MorphFileStage stage;
        stage.file.sketch.tree["animations"][0]["channels"].erase(0); // that of the weights
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        RyNode *prop = stage.nodeCalled(character.scene, "prop");
        for (RyNode *node : {static_cast<RyNode *>(stage.figureOf(character.scene)), prop}) {
            RyShape *shape = RyShape::getCurrentShapeForNode(node);
            const int last = shape->getGeometry()->getNumVertices() - 1;
            auto *morph = new RyMorph("added", {1, 4, last}, {{1, 20, 3}, {-4, 5, 6}, {7, 8, 30}});
            shape->addMorph(morph);
            morph->getValueControl()->setValue(0.625f);
            auto *other = new RyMorph("idle", {2}, {{1, 2, 3}});
            shape->addMorph(other);
        }
        QStringList losses;
        QString error;
        const QString saved = stage.folder.filePath("added.glb");
        QVERIFY(RySceneFile::save(&character.scene, saved, &error, nullptr, &losses));
        QVERIFY2(losses.isEmpty(), qPrintable(losses.join('\n')));
        CharacterScene again(saved);
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
        for (const char *name : {"added", "idle"}) {
            for (const QString &node : {stage.figureOf(character.scene)->getName(), QString("prop")}) {
                const RyMorph *was = stage.morphCalled(*stage.nodeCalled(character.scene, node), name);
                const RyMorph *read = stage.morphCalled(*stage.nodeCalled(again.scene, node), name);
                QVERIFY(read);
                QVERIFY(read->vertices() == was->vertices());
                for (size_t i = 0; i < read->deltas().size(); ++i)
                    QVERIFY((read->deltas()[i] - was->deltas()[i]).length() < 1e-4f);
                QCOMPARE(read->getValueControl()->getValue(), was->getValueControl()->getValue());
            }
        }
        QCOMPARE(bytesOf(stage.save(again.scene, "second.glb")), bytesOf(saved));
        // A clip counts the targets of the body: it has no place for more.
        MorphFileStage driven;
        CharacterScene busy(driven.path);
        RyShape::getCurrentShapeForNode(driven.figureOf(busy.scene))->addMorph(new RyMorph("added", {1}, {{1, 2, 3}}));
        QVERIFY(RySceneFile::save(&busy.scene, driven.folder.filePath("busy.glb"), &error, nullptr, &losses));
        QVERIFY2(losses.join('\n').contains("1 new morphs"), qPrintable(losses.join('\n')));
    }

    /// What is not shown gets targets as well: all primitives of a mesh have as many.
    void linesAndPointsBesideTriangles_data()
    {
        QTest::addColumn<bool>("isConverted");
        QTest::newRow("added") << false;
        QTest::newRow("converted") << true;
    }
    void linesAndPointsBesideTriangles()
    {
        QFETCH(bool, isConverted);
        MorphFileStage stage;
        json &tree = stage.file.sketch.tree;
        tree["animations"][0]["channels"].erase(0); // that of the weights
        for (const int mode : {0, 1}) {
            json &body = tree["meshes"][0];
            json bare = body["primitives"][size_t(mode)];
            bare.erase("indices");
            bare["mode"] = mode;
            body["primitives"].insert(body["primitives"].begin() + mode, bare);
        }
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        RySkeleton *figure = stage.figureOf(character.scene);
        auto *morph = new RyMorph("added", {1}, {{1, 20, 3}});
        RyShape::getCurrentShapeForNode(figure)->addMorph(morph);
        morph->getValueControl()->setValue(0.5f);
        if (isConverted)
            RySkeleton::convertFigureToProp(figure, "statue");
        QStringList losses;
        QString error;
        const QString saved = stage.folder.filePath("lines.glb");
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error, nullptr, &losses), qPrintable(error));
        QVERIFY2(losses.isEmpty(), qPrintable(losses.join('\n')));
        CharacterScene again(saved);
        const RyNode *read = stage.nodeCalled(again.scene, isConverted ? "statue" : figure->getName());
        QCOMPARE(stage.morphCalled(*read, "added")->getValueControl()->getValue(), 0.5f);
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        int bare = 0;
        for (const json &mesh : again.file.tree()["meshes"]) {
            for (const json &primitive : mesh["primitives"]) {
                bare += primitive.value("mode", 4) < 4;
                QCOMPARE(primitive["targets"].size(), mesh["primitives"][0]["targets"].size());
                for (const json &target : primitive["targets"]) {
                    const json &accessors = again.file.tree()["accessors"];
                    QVERIFY(accessors[target["POSITION"].get<size_t>()]["count"] ==
                            accessors[primitive["attributes"]["POSITION"].get<size_t>()]["count"]);
                }
            }
        }
        QCOMPARE(bare, isConverted ? 4 : 2);
        QCOMPARE(bytesOf(stage.save(again.scene, "second.glb")), bytesOf(saved));
    }

    /// Clips that drive the list by a pointer count its numbers as well.
    void newMorphsBesidePointers_data()
    {
        QTest::addColumn<QString>("pointer");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("of the node") << "/nodes/3/weights" << false;
        QTest::newRow("one of the node") << "/nodes/3/weights/2" << false;
        QTest::newRow("of the mesh") << "/meshes/0/weights" << false;
        QTest::newRow("of another mesh") << "/meshes/2/weights" << true;
        QTest::newRow("no weights") << "/nodes/3/scale" << true;
    }
    void newMorphsBesidePointers()
    {
        QFETCH(QString, pointer);
        QFETCH(bool, isTaken);
        MorphFileStage stage;
        json &tree = stage.file.sketch.tree;
        tree["animations"][0]["channels"][0]["target"] = {
            {"path", "pointer"}, {"extensions", {{"KHR_animation_pointer", {{"pointer", pointer.toStdString()}}}}}};
        tree["extensionsUsed"].push_back("KHR_animation_pointer");
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        RyShape::getCurrentShapeForNode(stage.figureOf(character.scene))
            ->addMorph(new RyMorph("added", {1}, {{1, 2, 3}}));
        QStringList losses;
        QString error;
        const QString saved = stage.folder.filePath("pointed.gltf");
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error, nullptr, &losses), qPrintable(error));
        QCOMPARE(losses.filter("1 new morphs").size(), isTaken ? 0 : 1);
        CharacterScene again(saved);
        QCOMPARE(stage.morphCalled(*stage.figureOf(again.scene), "added") != nullptr, isTaken);
    }

    /// Lists of another length than the targets.
    void newMorphsBesideOddLists_data()
    {
        QTest::addColumn<int>("ofNode");
        QTest::addColumn<int>("ofMesh");
        QTest::newRow("too long") << MorphFile::BodyTargets + 3 << MorphFile::BodyTargets + 1;
        QTest::newRow("too short") << 7 << 5;
    }
    void newMorphsBesideOddLists()
    {
        QFETCH(int, ofNode);
        QFETCH(int, ofMesh);
        MorphFileStage stage;
        json &tree = stage.file.sketch.tree;
        tree["animations"][0]["channels"].erase(0); // that of the weights
        tree["nodes"][3]["weights"] = std::vector<double>(size_t(ofNode), 0.5);
        tree["meshes"][0]["weights"] = std::vector<double>(size_t(ofMesh), 0.75);
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        auto *morph = new RyMorph("added", {1}, {{1, 2, 3}});
        RyShape::getCurrentShapeForNode(stage.figureOf(character.scene))->addMorph(morph);
        morph->getValueControl()->setValue(0.625f);
        CharacterScene again(stage.save(character.scene, "added.gltf"));
        QCOMPARE(stage.morphCalled(*stage.figureOf(again.scene), "added")->getValueControl()->getValue(), 0.625f);
        const json &mesh = again.file.tree()["meshes"][0];
        QCOMPARE(mesh["primitives"][0]["targets"].size(), size_t(MorphFile::BodyTargets + 1));
        QCOMPARE(mesh["weights"].size(), size_t(MorphFile::BodyTargets + 1));
        QCOMPARE(again.file.tree()["nodes"][3]["weights"].size(), size_t(MorphFile::BodyTargets + 1));
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
    }

    /// They are written in the space that the vertices have then.
    void newMorphsOfReboundMeshes()
    {
        MorphFileStage stage;
        stage.file.sketch.tree["animations"][0]["channels"].erase(0); // that of the weights
        stage.useTwoBinds();
        CharacterScene character(stage.path);
        auto *morph = new RyMorph("added", {1, 4, 20}, {{1, 20, 3}, {-4, 5, 6}, {7, 8, 30}});
        RyShape::getCurrentShapeForNode(stage.figureOf(character.scene))->addMorph(morph);
        const CharacterScene::Positions before = character.shown();
        morph->getValueControl()->setValue(0.5f);
        QVERIFY(largestDistance(character.shown(), before) > 1.0);
        QStringList losses;
        QString error;
        const QString saved = stage.folder.filePath("added.glb");
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error, nullptr, &losses), qPrintable(error));
        QVERIFY2(losses.isEmpty(), qPrintable(losses.join('\n')));
        CharacterScene again(saved);
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
        const RyMorph *read = stage.morphCalled(*stage.figureOf(again.scene), "added");
        QVERIFY(read && read->vertices() == morph->vertices());
        for (size_t i = 0; i < read->deltas().size(); ++i)
            QVERIFY((read->deltas()[i] - morph->deltas()[i]).length() < 1e-3f);
        QCOMPARE(bytesOf(stage.save(again.scene, "second.glb")), bytesOf(saved));
    }

    /// Without bones its vertices stay where the file has them, in a space that nothing tells any more.
    void newMorphsOfReboundMeshesWithoutBones()
    {
        MorphFileStage stage;
        stage.file.sketch.tree["animations"][0]["channels"].erase(0);
        stage.useTwoBinds();
        CharacterScene character(stage.path);
        RySkeleton *figure = stage.figureOf(character.scene);
        RyShape::getCurrentShapeForNode(figure)->addMorph(new RyMorph("added", {1}, {{1, 20, 3}}));
        const std::vector<RyBone *> bones = character.bones();
        const std::vector<RyRef<RyBone>> held(bones.begin(), bones.end()); // those below go along with the first one
        for (RyBone *bone : bones)
            character.scene.removeNode(bone);
        QStringList losses;
        QString error;
        QVERIFY2(RySceneFile::save(&character.scene, stage.folder.filePath("bare.glb"), &error, nullptr, &losses),
                 qPrintable(error));
        QCOMPARE(losses.filter("1 new morphs").size(), 1);
    }

    void removedMorphsStayInTheFile()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        RyShape *shape = RyShape::getCurrentShapeForNode(stage.figureOf(character.scene));
        shape->removeMorph(stage.morphCalled(*stage.figureOf(character.scene), "shape 1"));
        QStringList messages;
        QString error;
        const QString saved = stage.folder.filePath("removed.glb");
        QVERIFY(RySceneFile::save(&character.scene, saved, &error, &messages));
        QVERIFY2(messages.join('\n').contains("1 morphs that were removed"), qPrintable(messages.join('\n')));
        CharacterScene again(saved);
        QVERIFY(stage.apart(again) < Near);
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
        QCOMPARE(stage.morphCalled(*stage.figureOf(again.scene), "shape 1")->getValueControl()->getValue(), 0.0f);
    }

    void withoutItsFile()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        stage.morphCalled(*stage.figureOf(character.scene), "head 1")->getValueControl()->setLabel("Nod");
        const QString path = stage.folder.filePath("new.glb");
        QString error;
        QVERIFY2(RySceneFile::saveWithoutSource(&character.scene, path, &error), qPrintable(error));
        CharacterScene again(path);
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        for (const RyMorph *morph : stage.morphsOf(*stage.figureOf(character.scene))) {
            const RyMorph *read = stage.morphCalled(*stage.figureOf(again.scene), morph->getName());
            QVERIFY(read);
            QCOMPARE(read->getValueControl()->getValue(), morph->getValueControl()->getValue());
            QCOMPARE(read->getValueControl()->getMax(), morph->getValueControl()->getMax());
            QCOMPARE(read->vertices().size(), morph->vertices().size());
        }
        QCOMPARE(stage.morphCalled(*stage.figureOf(again.scene), "head 1")->getValueControl()->getLabel(),
                 QString("Nod"));
    }

    /// Normals that are worked out for a new mesh are those of the base, whatever its morphs show.
    void newNormalsAreOfTheBase()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        const auto normals = [&](const char *name) {
            const QString path = stage.folder.filePath(name);
            QString error;
            if (!RySceneFile::saveWithoutSource(&character.scene, path, &error))
                throw std::runtime_error(error.toStdString());
            const GltfEvaluator file(path.toStdString());
            std::string all;
            for (const json &mesh : file.tree()["meshes"]) {
                for (const json &primitive : mesh["primitives"])
                    all += file.accessorBytes(primitive["attributes"]["NORMAL"].get<int>());
            }
            return all;
        };
        const std::string before = normals("one.glb");
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        QVERIFY(!before.empty());
        QVERIFY(normals("two.glb") == before);
        for (RyMorph *morph : stage.morphsOf(*stage.figureOf(character.scene)))
            morph->setPlayedValue(0.0f);
        QVERIFY(normals("three.glb") == before);
    }

    /// A joint that turns shows a morph, and a morph moves a prop.
    void linksComeBack()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        RySkeleton *figure = stage.figureOf(character.scene);
        RyFloatProperty *control = stage.morphCalled(*figure, "shape 6")->getValueControl();
        RyERCLink::create(character.bones().back()->getXTransControl(), control);
        RyERCLink::create(control, stage.nodeCalled(character.scene, "prop")->getYTransControl());
        character.bones().back()->getXTransControl()->setDefaultValue(1);
        control->setValue(0.125f);
        QVERIFY(control->getValue() != control->getRawValue());
        const QString dump = rySceneDump(character.scene);
        const QString saved = stage.save(character.scene, "linked.glb");
        CharacterScene again(saved);
        stage.checkReopened(again, saved, dump);
        const RyFloatProperty *read = stage.morphCalled(*stage.figureOf(again.scene), "shape 6")->getValueControl();
        QCOMPARE(read->getRawValue(), 0.125f);
        QCOMPARE(read->getControllerLinks().size(), size_t(1));
        QCOMPARE(read->getControlledLinks().size(), size_t(1));
    }

    void linksStayWithTheirMorphs()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        RySkeleton *figure = stage.figureOf(character.scene);
        RyNode *prop = stage.nodeCalled(character.scene, "prop");
        RyFloatProperty *control = stage.morphCalled(*figure, "shape 6")->getValueControl();
        RyFloatProperty *idle = stage.morphCalled(*figure, "shape 2")->getValueControl();
        RyERCLink::create(control, prop->getXTransControl());
        RyERCLink::create(prop->getYTransControl(), idle);
        prop->getYTransControl()->setValue(0.5f);
        const QString before = rySceneDump(character.scene);
        RyNode *statue = RySkeleton::convertFigureToProp(figure, "statue");
        QCOMPARE(control->getControlledLinks().size(), size_t(1));
        QCOMPARE(idle->getControllerLinks().size(), size_t(1));
        const float start = control->getValue();
        const float linked = prop->getXTransControl()->getValue();
        control->setValue(start + 0.25f);
        QVERIFY(std::abs(prop->getXTransControl()->getValue() - linked - 0.25f) < 1e-5f);
        QCOMPARE(idle->getValue(), idle->getRawValue() + prop->getYTransControl()->getValue());
        QVERIFY2(rySceneDump(character.scene).contains("from #1 \"statue\":\"shape 6\""), "its node is told");
        control->setValue(start);
        QVERIFY(RyFigure::convertPropToFigure(statue, "stem", false, false));
        QCOMPARE(control->getControlledLinks().size(), size_t(1));
        ryUndoStack()->undo();
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(character.scene), before);
    }
};

RY_TEST(MorphMeshesTest)
#include "tst_morphMeshes.moc"
