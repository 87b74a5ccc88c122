#include "MorphFileStage.h"
#include "RigEdits.h"

#include "support/checkUndo.h"

using nlohmann::json;

namespace {

/// Without what values and joints may change: targets, their numbers and names, weights of meshes, clips.
json whatStays(const GltfEvaluator &file)
{
    json stays = {{"meshes", json::array()}, {"animations", file.tree()["animations"]}};
    for (const json &mesh : file.tree()["meshes"]) {
        json kept = {{"weights", mesh.value("weights", json())}, {"extras", mesh.value("extras", json())}};
        for (const json &primitive : mesh["primitives"]) {
            json targets = json::array();
            for (const json &target : primitive.value("targets", json::array())) {
                const int accessor = target["POSITION"].get<int>();
                targets.push_back({target, file.tree()["accessors"][size_t(accessor)],
                                   QByteArray::fromStdString(file.accessorBytes(accessor)).toHex().toStdString()});
            }
            kept["targets"].push_back(targets);
        }
        stays["meshes"].push_back(kept);
    }
    const json &channel = file.tree()["animations"][0]["samplers"][0];
    stays["weights"] =
        QByteArray::fromStdString(file.accessorBytes(channel["output"].get<int>())).toHex().toStdString();
    return stays;
}

} // namespace

class MorphFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void opens()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        QVERIFY(character.unit() != 100.0);
        const RyNode &figure = *stage.figureOf(character.scene);
        const RyNode &prop = *stage.nodeCalled(character.scene, "prop");
        for (const auto &[node, morphs] :
             {std::pair(&figure, &stage.file.figureMorphs), {&prop, &stage.file.propMorphs}}) {
            QCOMPARE(stage.morphsOf(*node).size(), morphs->size());
            for (const auto &[name, targets] : *morphs) {
                const RyMorph *morph = stage.morphCalled(*node, name);
                QVERIFY2(morph, qPrintable(name));
                QCOMPARE(morph->getNode(), node);
                if (node != &figure)
                    continue;
                const float start = stage.file.starts.at(name);
                QCOMPARE(morph->getValueControl()->getValue(), start);
                QCOMPARE(morph->getValueControl()->getMin(), std::min(0.0f, start));
                QCOMPARE(morph->getValueControl()->getMax(), std::max(1.0f, start));
                QVERIFY(morph->getValueControl()->isClamped());
            }
        }
        QCOMPARE(stage.morphCalled(prop, "Morph 4")->getValueControl()->getValue(), 0.5f);
        QVERIFY2(stage.apart(character) < Near, qPrintable(QString::number(stage.apart(character))));
        // The fixture is worth something: the morphs do a lot.
        GltfPose none;
        none.weights = {{3, {}}, {4, {}}, {5, {}}};
        QVERIFY(largestDistance(character.shown(), positionsOf(character.file, character.unit(), none)) >
                0.02 * character.height);
        QVERIFY2(character.messages.isEmpty(), qPrintable(character.messages.join('\n')));
    }

    void poseAndValuesTogether()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        std::mt19937 random(ryTestSeed());
        for (int round = 0; round < 5; ++round) {
            turnRandomly(character, random);
            stage.changeValues(character.scene, random);
            GltfPose pose = poseFor(character.file, character);
            pose = MorphFile::weightsOf(stage.file.figureMorphs, *stage.figureOf(character.scene), pose);
            pose = MorphFile::weightsOf(stage.file.propMorphs, *stage.nodeCalled(character.scene, "prop"), pose);
            CharacterScene::Positions shown = character.shown();
            CharacterScene::Positions said = positionsOf(character.file, character.unit(), pose);
            // What hangs on a scaled joint goes by other numbers; see below for the prop.
            shown.erase({5, 0});
            said.erase({5, 0});
            const double apart = largestDistance(shown, said) / character.height;
            QVERIFY2(apart < Near, qPrintable(QString::number(apart)));
            const QString saved = stage.save(character.scene, "posed.glb");
            CharacterScene again(saved);
            QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
            QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
        }
    }

    void nothingEdited()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        QCOMPARE(bytesOf(stage.save(character.scene, "same.gltf")), bytesOf(stage.path));
        // Played values are not edits.
        stage.morphsOf(*stage.figureOf(character.scene))[3]->setPlayedValue(0.7f);
        QCOMPARE(bytesOf(stage.save(character.scene, "played.gltf")), bytesOf(stage.path));
        ryUndoStack()->clearAll();
        std::mt19937 random(ryTestSeed());
        const QString before = rySceneDump(character.scene);
        stage.changeValues(character.scene, random);
        ryUndoStack()->undo();
        QCOMPARE(rySceneDump(character.scene), before);
        QCOMPARE(bytesOf(stage.save(character.scene, "undone.gltf")), bytesOf(stage.path));
    }

    void valuesGoToTheNodes()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        RyNode &figure = *stage.figureOf(character.scene);
        stage.morphCalled(figure, "shape 6")->getValueControl()->setValue(0.125f);
        stage.morphCalled(figure, "Morph 12")->getValueControl()->setValue(0.75f);
        stage.morphCalled(*stage.nodeCalled(character.scene, "prop"), "Morph 1")->getValueControl()->setValue(1);
        const QString dump = rySceneDump(character.scene);
        const QString saved = stage.save(character.scene, "values.gltf");
        CharacterScene again(saved);
        QVERIFY(stage.apart(again) < Near);
        QVERIFY(largestDistance(character.shown(), again.shown()) < 1e-6 * character.height);
        QCOMPARE(rySceneDump(again.scene), dump);
        QVERIFY(whatStays(again.file) == whatStays(character.file));
        const json &before = character.file.tree()["nodes"];
        const json &after = again.file.tree()["nodes"];
        json expected = before[3]["weights"];
        expected[6] = 0.125;
        QVERIFY(after[3]["weights"] == expected);
        expected = character.file.tree()["meshes"][1]["weights"];
        expected[3] = 0.125;
        expected[11] = 0.75;
        QVERIFY(after[4]["weights"] == expected);
        QVERIFY(after[5]["weights"] == json({1.0, 0.25, 0.0, 0.5}));
        QCOMPARE(bytesOf(stage.save(again.scene, "second.gltf")), bytesOf(saved));
    }

    /// What is saved opens again, however far a morph is shown.
    void hugeValues()
    {
        MorphFileStage stage;
        stage.file.sketch.tree["nodes"][3]["weights"][2] = 1e30; // what readers take
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        RyFloatProperty *control = stage.morphCalled(*stage.figureOf(character.scene), "shape 6")->getValueControl();
        control->setIsClamped(false);
        control->setValue(-3e38f);
        QString error;
        RyScene again;
        QVERIFY2(RySceneFile::open(&again, stage.save(character.scene, "huge.glb"), &error), qPrintable(error));
        QVERIFY(stage.morphCalled(*stage.figureOf(again), "shape 6")->getValueControl()->getValue() < -0.9e30f);
        const QString bare = stage.folder.filePath("bare.glb");
        QVERIFY2(RySceneFile::saveWithoutSource(&character.scene, bare, &error), qPrintable(error));
        RyScene third;
        QVERIFY2(RySceneFile::open(&third, bare, &error), qPrintable(error));
        QVERIFY(stage.morphCalled(*stage.figureOf(third), "shape 2")->getValueControl()->getValue() > 0.9e30f);
    }

    /// Limits, label, default, and the share beside what links add.
    void whatWeightsCannotSay()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        RyNode &figure = *stage.figureOf(character.scene);
        RyFloatProperty *control = stage.morphCalled(figure, "shape 8")->getValueControl();
        control->setLabel("Grin \"wide\"");
        control->setValue(0.5f); // limits up to what it was
        control = stage.morphCalled(figure, "head 1")->getValueControl();
        control->setMin(-2);
        control->setIsClamped(false);
        control->setValue(3);
        control->setDefaultValue(0.25f);
        control = stage.morphCalled(*stage.nodeCalled(character.scene, "prop"), "Morph 3")->getValueControl();
        control->setLabel("Bend");
        control->setMax(5);
        const QString dump = rySceneDump(character.scene);
        const QString saved = stage.save(character.scene, "extras.glb");
        CharacterScene again(saved);
        QCOMPARE(rySceneDump(again.scene), dump);
        QVERIFY(stage.apart(again) < Near);
        QCOMPARE(bytesOf(stage.save(again.scene, "second.glb")), bytesOf(saved));
        // A label alone is an edit too.
        stage.morphCalled(*stage.figureOf(again.scene), "head 1")->getValueControl()->setLabel("Nod");
        CharacterScene third(stage.save(again.scene, "third.glb"));
        QCOMPARE(stage.morphCalled(*stage.figureOf(third.scene), "head 1")->getValueControl()->getLabel(),
                 QString("Nod"));
    }

    void rigEdits_data()
    {
        QTest::addColumn<int>("kind");
        for (size_t kind = 0; kind < RigEdits::kinds().size(); ++kind)
            QTest::newRow(RigEdits::kinds()[kind].name) << int(kind);
    }

    void rigEdits()
    {
        QFETCH(int, kind);
        MorphFileStage stage;
        CharacterScene character(stage.path);
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        const QString before = rySceneDump(character.scene);
        {
            RyUndoStackHold hold;
            RigEdits::kinds()[size_t(kind)].edit(character.scene, character.bones().back(), random);
            hold.accept("edit");
        }
        const QString dump = rySceneDump(character.scene);
        if (dump == before)
            QSKIP("there is nowhere else to hang one of two bones");
        checkLastStep(before, character.scene);
        const QString saved = stage.save(character.scene, "edited.glb");
        CharacterScene again(saved);
        stage.checkReopened(again, saved, dump);
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
        QVERIFY(whatStays(again.file)["meshes"] == whatStays(character.file)["meshes"]);
        QVERIFY(whatStays(again.file)["weights"] == whatStays(character.file)["weights"]);
    }

    void jointsMoved()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        moveSomeJoints(character, 1.0, random);
        const QString dump = rySceneDump(character.scene);
        CharacterScene again(stage.save(character.scene, "moved.glb"));
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        QVERIFY(whatStays(again.file)["meshes"] == whatStays(character.file)["meshes"]);
    }

    void mergedFilesBringTheirs()
    {
        MorphFileStage first, second;
        CharacterScene character(first.path);
        QString error;
        RySceneFile::Options options;
        options.merge = true;
        QVERIFY2(RySceneFile::open(&character.scene, second.path, options, &error), qPrintable(error));
        QCOMPARE(character.scene.getSkeletons().size(), size_t(2));
        RySkeleton *guest = character.scene.getSkeletons().back();
        guest->getXTransControl()->setValue(70);
        guest->getYRotControl()->setValue(30);
        second.morphCalled(*guest, "shape 6")->getValueControl()->setValue(0.875f);
        second.morphCalled(*guest, "Morph 5")->getValueControl()->setValue(0.25f);
        first.morphCalled(*first.figureOf(character.scene), "shape 6")->getValueControl()->setValue(0.0f);
        const QString dump = rySceneDump(character.scene);
        const QString saved = first.save(character.scene, "merged.glb");
        CharacterScene again(saved);
        first.checkReopened(again, saved, dump);
        // Without the first file's figure the guest's document is the one that is patched.
    }

    /// Deltas are brought to the rest as vertices are.
    void reboundMeshes()
    {
        MorphFileStage stage;
        stage.useTwoBinds();
        CharacterScene character(stage.path);
        QVERIFY(!character.messages.isEmpty());
        QVERIFY2(stage.apart(character) < Near, qPrintable(QString::number(stage.apart(character))));
        std::mt19937 random(ryTestSeed());
        stage.changeValues(character.scene, random);
        const QString posed = stage.save(character.scene, "values.glb");
        CharacterScene again(posed);
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
        moveSomeJoints(character, 1.0, random);
        CharacterScene moved(stage.save(character.scene, "moved.glb"));
        QVERIFY2(stage.apart(moved) < Near, qPrintable(QString::number(stage.apart(moved))));
        QVERIFY(largestDistance(character.shown(), moved.shown()) < Near * character.height);
        QVERIFY(sameDumps(rySceneDump(moved.scene), rySceneDump(character.scene)));
    }

    void morphsMoveMovedVertices_data()
    {
        QTest::addColumn<bool>("isRebound");
        QTest::newRow("as bound") << false;
        QTest::newRow("rebound") << true;
    }
    void morphsMoveMovedVertices()
    {
        QFETCH(bool, isRebound);
        MorphFileStage stage;
        if (isRebound)
            stage.useTwoBinds();
        CharacterScene character(stage.path);
        RyFacetMesh *mesh =
            qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(stage.figureOf(character.scene)))
                ->getFacetMesh();
        std::vector<RyVec3> positions = mesh->getPositions();
        positions[3] += RyVec3(1, 2, 3);
        mesh->setPositions(positions);
        QString error;
        QStringList messages;
        const QString saved = stage.folder.filePath("moved.glb");
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error, &messages), qPrintable(error));
        QCOMPARE(messages.filter("its morphs are written for the new space").size(), isRebound ? 1 : 0);
        CharacterScene again(saved);
        QVERIFY2(stage.apart(again) < Near, qPrintable(QString::number(stage.apart(again))));
        QVERIFY(largestDistance(character.shown(), again.shown()) < Near * character.height);
    }

    void damagedTargets()
    {
        MorphFileStage stage;
        json &tree = stage.file.sketch.tree;
        json &body = tree["meshes"][0]["primitives"][0];
        const int dense = body["targets"][0]["POSITION"];
        stage.file.sketch.set(dense, 7, std::numeric_limits<float>::quiet_NaN());
        body["targets"][4]["POSITION"] = body["indices"];
        json &prop = tree["meshes"][2]["primitives"][0]["targets"];
        stage.file.sketch.set(prop[0]["POSITION"].get<int>(), 3, 3e30f);
        tree["meshes"][1]["extras"] = "not an object";
        stage.file.sketch.write(stage.path);
        RyScene scene;
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::open(&scene, stage.path, &error, &messages), qPrintable(error));
        const QString all = messages.join('\n');
        QVERIFY2(all.contains(QString("accessors[%1]").arg(dense)), qPrintable(all));
        QVERIFY2(all.contains("meshes[0].primitives[0].targets[4].POSITION"), qPrintable(all));
        QVERIFY2(all.contains("too far out"), qPrintable(all));
        const RyNode &figure = *stage.figureOf(scene);
        QVERIFY(stage.morphCalled(figure, "shape 0")); // the second primitive has it still
        QVERIFY(stage.morphCalled(figure, "Morph 1") && stage.morphCalled(figure, "Morph 12"));
        const RyNode &propNode = *stage.nodeCalled(scene, "prop");
        QVERIFY(!stage.morphCalled(propNode, "Morph 1") && stage.morphCalled(propNode, "Morph 2"));
        for (const RyVec3 &point : figure.getObject()->getDeformedPositions())
            QVERIFY(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
    }

    /// A name twice in one mesh, names of pose controls, and one name that starts at two values.
    void namesThatClash()
    {
        MorphFileStage stage;
        json &tree = stage.file.sketch.tree;
        tree["meshes"][2]["extras"]["targetNames"] = {"lift", "lift", "xrot", "Morph 1"};
        tree["meshes"][1]["weights"][3] = 0.0; // "shape 6"
        tree["nodes"][3]["weights"][6] = 0.5;
        stage.file.sketch.write(stage.path);
        CharacterScene character(stage.path);
        const RyNode &prop = *stage.nodeCalled(character.scene, "prop");
        QStringList names;
        for (const RyMorph *morph : stage.morphsOf(prop))
            names.append(morph->getName());
        QCOMPARE(names, QStringList({"lift", "lift2", "xrot2", "Morph 1"}));
        QCOMPARE(stage.morphCalled(prop, "lift2")->getValueControl()->getValue(), 0.25f);
        QVERIFY2(character.messages.join('\n').contains("\"shape 6\" by 0.5 and by 0"),
                 qPrintable(character.messages.join('\n')));
        RyMorph *shared = stage.morphCalled(*stage.figureOf(character.scene), "shape 6");
        QCOMPARE(shared->getValueControl()->getValue(), 0.5f);
        shared->getValueControl()->setValue(0.625f);
        CharacterScene again(stage.save(character.scene, "one.glb"));
        QVERIFY(stage.apart(again) < Near);
        QVERIFY(again.messages.isEmpty());
    }

    void objLeavesThemOut()
    {
        MorphFileStage stage;
        CharacterScene character(stage.path);
        QString error;
        QStringList messages;
        QVERIFY(RySceneFile::save(&character.scene, stage.folder.filePath("face.obj"), &error, &messages));
        QVERIFY2(messages.join('\n').contains("morphs"), qPrintable(messages.join('\n')));
        RyScene scene;
        QVERIFY(RySceneFile::open(&scene, stage.folder.filePath("face.obj"), &error));
        const RyFacetMesh &base =
            *qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(stage.figureOf(character.scene)))
                 ->getFacetMesh();
        const auto *read = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(scene.getNodes().front()));
        QVERIFY((read->getFacetMesh()->getVertex(0) - base.getVertex(0)).length() < 1e-2f);
    }
};

RY_TEST(MorphFilesTest)
#include "tst_morphFiles.moc"
