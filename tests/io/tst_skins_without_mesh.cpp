#include "CharacterScene.h"
#include "FigureSketch.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QTemporaryDir>

using nlohmann::json;

namespace {

RyBone *addBone(RyNode *parent, const RyBone &like)
{
    auto *bone = new RyBone;
    bone->setName(like.getName());
    bone->setOrigin(like.getOrigin() + RyVec3(1, 2, 3), true);
    bone->setEndPoint(like.getEndPoint(), true);
    bone->setOrientation(RyQuat({1, 2, 3}, 0.7f), true);
    bone->setEndPoint(like.getEndPoint() + RyVec3(4, 5, 6));
    bone->setOrigin(like.getOrigin());
    bone->setRotationOrder(RyRotationOrder(4));
    parent->addNodeChild(bone);
    return bone;
}

/// A figure beside that of the scene, with its bones, its weights as local, scale and bulge maps as well, and no mesh.
RyFigure *addMeshless(CharacterScene &scene)
{
    const std::vector<RyBone *> bones = scene.bones();
    auto *figure = new RyFigure;
    figure->setName(QStringLiteral("loose"));
    figure->setLabel(QStringLiteral("A loose figure"));
    figure->setDrawGLBones(true);
    RyBone *low = addBone(figure, *bones[0]);
    RyBone *high = addBone(low, *bones[1]);
    high->setInheritScale(false);
    high->getXRotControl()->setIsClamped(true);
    high->getXRotControl()->setMax(80);

    auto *object = new RyObject;
    object->setName(figure->getName());
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    figure->setObject(object);
    const RySkinBinding *source = RySkinBinding::findSkinFromNode(bones[0]);
    skin->addBoneBinding(source->findBoneBinding(bones[1])->copyFor(high)); // the child first
    skin->addBoneBinding(source->findBoneBinding(bones[0])->copyFor(low));
    RyBoneBinding *binding = skin->bindings()[0];
    for (int axis = 0; axis < 3; axis += 2)
        binding->setLocalWeights(binding->getWeights()->copy(), axis);
    binding->setScaleWeights(skin->bindings()[1]->getWeights()->copy());
    auto *bulge = new RyBulgeBinding(2);
    bulge->setLeftWeights(binding->getScaleWeights()->copy());
    binding->setBulgeBinding(2, bulge);
    bulge->updatePropertyNames();
    bulge->getNegRightBulgeController()->setValue(0.25f);
    bulge->getNegRightBulgeController()->setDefaultValue(0.5f);
    binding = skin->bindings()[1];
    binding->setLocalWeights(binding->getWeights()->copy(), 1);
    binding->setWeights(nullptr);
    scene.scene.addNode(figure);
    return figure;
}

RyFigure *findMeshless(const CharacterScene &scene)
{
    return qobject_cast<RyFigure *>(scene.scene.findNode(QStringLiteral("loose")));
}

} // namespace

/// Figures that have weights and no mesh to use them.
class SkinsWithoutMeshTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        FigureSketch sketch;
        m_scene = std::make_unique<CharacterScene>(sketch.write(path("plain")));
        addMeshless(*m_scene);
    }
    void cleanup()
    {
        m_scene.reset();
        ryUndoStack()->clearAll();
    }
    void comeBack();
    void editsComeBack_data();
    void editsComeBack();
    void withoutBindings();
    void hungOnABone();
    void mergedIntoAnotherScene();
    void damagedOnesAreLeftOut_data();
    void damagedOnesAreLeftOut();
    void meshThatCameLater();

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name) + QStringLiteral(".gltf")); }
    void save(CharacterScene &scene, const char *name) const
    {
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path(name), &error), qPrintable(error));
    }
    /// Saved and opened it is the same, and the same bytes when it is saved again.
    void checkRoundTrip(CharacterScene &scene, const char *name) const
    {
        const QString dump = rySceneDump(scene.scene);
        save(scene, name);
        CharacterScene again(path(name));
        QVERIFY2(again.messages.isEmpty(), qPrintable(again.messages.join('\n')));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        save(again, "twice");
        QVERIFY(bytesOf(path("twice")) == bytesOf(path(name)));
        QString error;
        QVERIFY2(RySceneFile::saveWithoutSource(&again.scene, path("alone"), &error), qPrintable(error));
        QVERIFY(sameDumps(rySceneDump(CharacterScene(path("alone")).scene), dump));
    }
    void checkValid(const char *name) const
    {
        const RyValidation valid = ryValidate(path(name));
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<CharacterScene> m_scene;
};

void SkinsWithoutMeshTest::comeBack()
{
    checkRoundTrip(*m_scene, "loose");
    checkValid("loose");
    checkValid("alone");
    CharacterScene again(path("loose"));
    const RyFigure *figure = findMeshless(again);
    QVERIFY(figure && figure->drawsGLBones() && figure->getObject());
    QVERIFY(figure->getObject()->getShapes().empty());
    const RySkinBinding *skin = figure->getSkinBinding();
    QCOMPARE(skin->getNumBoneBindings(), 2);
    QCOMPARE(skin->bindings()[0]->getBone()->getName(), QStringLiteral("high"));
    const RyWeightMap *map = skin->bindings()[0]->getWeights();
    const RyWeightMap *of = RySkinBinding::findSkinFromNode(m_scene->bones()[1])->bindings()[1]->getWeights();
    QCOMPARE(map->getNumWeights(), of->getNumWeights());
    QCOMPARE(map->getNumAffected(), of->getNumAffected());
    // The mesh of the other figure is not bound to its bones.
    QCOMPARE(again.file.tree()["skins"].size(), size_t(2));
    for (const json &node : again.file.tree()["nodes"])
        QVERIFY(node.value("skin", 0) == 0);
}

void SkinsWithoutMeshTest::editsComeBack_data()
{
    QTest::addColumn<int>("edit");
    const char *const names[] = {"rest", "weight", "local weight", "bulge", "binding gone", "bones drawn", "new bone"};
    for (int edit = 0; edit < 7; ++edit)
        QTest::newRow(names[edit]) << edit;
}

void SkinsWithoutMeshTest::editsComeBack()
{
    QFETCH(int, edit);
    save(*m_scene, "loose");
    CharacterScene scene(path("loose"));
    RyFigure *figure = findMeshless(scene);
    RySkinBinding *skin = figure->getSkinBinding();
    RyBoneBinding *binding = skin->bindings()[0];
    const auto change = [](RyWeightMap *map) {
        map->beginEdit();
        map->getWeights()[map->getAffectedIndices()[1]] = 300;
        map->finishEdit();
    };
    const QString before = rySceneDump(scene.scene);
    if (edit == 0)
        binding->getBone()->setOrigin({7, 8, 9});
    else if (edit == 1)
        change(binding->getWeights());
    else if (edit == 2)
        change(binding->getLocalWeights(2));
    else if (edit == 3)
        binding->getBulgeBinding(2)->getPosLeftBulgeController()->setValue(3);
    else if (edit == 4)
        skin->removeBoneBinding(binding);
    else if (edit == 5)
        figure->setDrawGLBones(false);
    else
        addBone(binding->getBone(), *scene.bones()[0])->setName(QStringLiteral("newer"));
    if (edit == 6)
        scene.scene.addNode(figure->findBone(QStringLiteral("newer")));
    QVERIFY(rySceneDump(scene.scene) != before);
    checkRoundTrip(scene, "edited");
    checkValid("edited");
}

void SkinsWithoutMeshTest::withoutBindings()
{
    RySkinBinding *skin = findMeshless(*m_scene)->getSkinBinding();
    while (skin->getNumBoneBindings() > 0)
        skin->removeBoneBinding(skin->bindings()[0]);
    checkRoundTrip(*m_scene, "empty");
}

void SkinsWithoutMeshTest::hungOnABone()
{
    RyFigure *figure = findMeshless(*m_scene);
    m_scene->bones()[0]->addNodeChild(figure);
    figure->getYRotControl()->setValue(30);
    checkRoundTrip(*m_scene, "hung");
    checkValid("hung");
}

void SkinsWithoutMeshTest::mergedIntoAnotherScene()
{
    save(*m_scene, "loose");
    CharacterScene other(FigureSketch().write(path("other")));
    RySceneFile::Options options;
    options.merge = true;
    QString error;
    QVERIFY2(RySceneFile::open(&other.scene, path("loose"), options, &error), qPrintable(error));
    QVERIFY(findMeshless(other));
    checkRoundTrip(other, "merged");
    checkValid("merged");
}

void SkinsWithoutMeshTest::damagedOnesAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("patch"); // a JSON merge of the stored skin
    QTest::addColumn<QByteArray>("first"); // and of its first binding
    const auto row = [](const char *name, const char *patch, const char *first) {
        QTest::newRow(name) << QByteArray(patch) << QByteArray(first);
    };
    row("no count", R"({"vertices": null})", "{}");
    row("negative count", R"({"vertices": -3})", "{}");
    row("huge count", R"({"vertices": 1e300})", "{}");
    row("large count", R"({"vertices": 4294967297})", "{}");
    row("other count", R"({"vertices": 17})", "{}");
    row("no bindings", R"({"bindings": null})", "{}");
    row("bindings of another kind", R"({"bindings": {"bone": 1}})", "{}");
    row("binding of another kind", R"({"bindings": [7]})", "{}");
    row("no bone", "{}", R"({"bone": null})");
    row("bone of another kind", "{}", R"({"bone": "low"})");
    row("bone of another figure", "{}", R"({"bone": 1})");
    row("bone that is not there", "{}", R"({"bone": 99999999999})");
    row("two bindings of a bone", "{}", R"({"bone": 5})");
    row("no weights", "{}", R"({"weights": null})");
    row("weights of another kind", "{}", R"({"weights": [1, 2]})");
    row("no base64", "{}", R"({"weights": "!"})");
    row("claims four gigabytes", R"({"vertices": 268435456})", R"({"weights": "X////3jaYwAAAAEAAQ=="})");
    row("weights where there shall be none", "{}", R"({"general": false})");
    row("damaged local map", "{}", R"({"x": "AAAA"})");
    row("damaged bulge", "{}", R"({"bulges": {"z": {"values": [1]}}})");
}

void SkinsWithoutMeshTest::damagedOnesAreLeftOut()
{
    QFETCH(QByteArray, patch);
    QFETCH(QByteArray, first);
    save(*m_scene, "loose");
    json tree = CharacterScene(path("loose")).file.tree();
    json &stored = tree["extras"]["RYHOST_rigging"]["figures"][1]["skin"];
    QCOMPARE(int(stored["bindings"].size()), 2);
    QCOMPARE(stored["bindings"][1]["bone"], json(5)); // what one of the rows says twice
    stored["bindings"][0].merge_patch(json::parse(first.toStdString()));
    stored.merge_patch(json::parse(patch.toStdString()));
    CharacterScene scene(writeTree(tree, path("damaged")));
    QCOMPARE(scene.messages,
             QStringList(QStringLiteral("The weights of \"loose\", which has no mesh, are damaged and left out")));
    QCOMPARE(int(findMeshless(scene)->getAllBones().size()), 2);
    for (const RyBoneBinding *binding : findMeshless(scene)->getSkinBinding()->bindings())
        QVERIFY(!binding->getWeights() || binding->getWeights()->getNumAffected() == 0);
    RyBone *bone = findMeshless(scene)->getAllBones()[0];
    bone->setOrigin(bone->getOrigin() + RyVec3(1, 0, 0));
    checkRoundTrip(scene, "mended");
}

/// Somebody else's program gave the bones a mesh: its weights count.
void SkinsWithoutMeshTest::meshThatCameLater()
{
    save(*m_scene, "loose");
    json tree = CharacterScene(path("loose")).file.tree();
    tree["nodes"].push_back({{"name", "new mesh"}, {"mesh", 0}, {"skin", 1}});
    tree["scenes"][0]["nodes"].push_back(int(tree["nodes"].size()) - 1);
    writeTree(tree, path("with_mesh"));
    CharacterScene scene(path("with_mesh"));
    QCOMPARE(scene.messages, QStringList(QStringLiteral(
                                 "The weights that \"loose\" was saved with are left out: it has a mesh by now")));
    QVERIFY(findMeshless(scene)->getObject()->getCurrentShape());
    QVERIFY(!findMeshless(scene)->getSkinBinding()->hasLocalMaps());
}

RY_TEST(SkinsWithoutMeshTest)
#include "tst_skins_without_mesh.moc"
