#include "CharacterScene.h"
#include "FigureSketch.h"
#include "KeptClips.h"
#include "ObjSketch.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QTemporaryDir>

using nlohmann::json;

/// Props that were put into a file and deleted again: all that they brought goes, and nothing of the file.
class DeletedPropsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void lastOnes();
    void oneOfTwo_data();
    void oneOfTwo();
    void sharedLooks();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    /// With a mesh, a material, a texture and an image that nothing uses.
    static FigureSketch sketch();
    QString second();
    void merge(RyScene &scene, const QString &file);
    static void remove(RyScene &scene, const char *name);
    void save(RyScene &scene, const char *name);
    json treeOf(const char *name) const { return GltfEvaluator(path(name).toStdString()).tree(); }
    /// The figure of the sketch, the OBJ sketch and another prop.
    void writeBoth(const char *name);

    QTemporaryDir m_folder;
};

FigureSketch DeletedPropsTest::sketch()
{
    FigureSketch result;
    json spare = result.tree["meshes"][0];
    spare["name"] = "spare";
    result.tree["meshes"].push_back(spare);
    result.tree["materials"] = {{{"name", "spare"}}};
    result.tree["textures"] = {{{"source", 0}}};
    result.tree["images"] = {{{"uri", "data:image/png;base64," + ObjSketch::picture(90).toBase64().toStdString()}}};
    return result;
}

QString DeletedPropsTest::second()
{
    ObjSketch::put(m_folder, QStringLiteral("other.mtl"), "newmtl other\nKd 0 0 1\nmap_Kd other.png\n");
    ObjSketch::put(m_folder, QStringLiteral("other.png"), ObjSketch::picture(300));
    ObjSketch::put(m_folder, QStringLiteral("other.obj"),
                   "# units: m\nmtllib other.mtl\nusemtl other\nv 0 0 0\nv 1 0 0\nv 1 3 0\nv 0 3 1\nvt 0 1\n"
                   "f 1/1 2/1 3/1 4/1\n");
    return path("other.obj");
}

void DeletedPropsTest::merge(RyScene &scene, const QString &file)
{
    RySceneFile::Options options;
    options.merge = true;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, file, options, &error), qPrintable(error));
}

void DeletedPropsTest::remove(RyScene &scene, const char *name)
{
    RyNode *node = scene.findNode(QLatin1String(name));
    QVERIFY(node);
    scene.removeNode(node);
}

void DeletedPropsTest::save(RyScene &scene, const char *name)
{
    QString error;
    QVERIFY2(RySceneFile::save(&scene, path(name), &error), qPrintable(error));
    const RyValidation valid = ryValidate(path(name));
    if (valid.available)
        QVERIFY2(valid.errors == 0, qPrintable(valid.report));
}

void DeletedPropsTest::writeBoth(const char *name)
{
    CharacterScene scene(sketch().write(path("plain.gltf")));
    merge(scene.scene, ObjSketch::write(m_folder));
    merge(scene.scene, second());
    save(scene.scene, name);
}

/// From the ends of all lists, with their bytes.
void DeletedPropsTest::lastOnes()
{
    writeBoth("both.gltf");
    const json before = treeOf("plain.gltf");
    const json both = treeOf("both.gltf");
    QCOMPARE(both["meshes"].size(), size_t(4));
    QCOMPARE(both["materials"].size(), size_t(5));
    QCOMPARE(both["images"].size(), size_t(4));
    CharacterScene again(path("both.gltf"));
    remove(again.scene, "other");
    remove(again.scene, "sketch");
    const QString dump = rySceneDump(again.scene);
    save(again.scene, "none.gltf");
    const json none = treeOf("none.gltf");
    for (const char *list : {"meshes", "materials", "textures", "images", "accessors", "bufferViews", "nodes"})
        QVERIFY2(none[list].size() == before[list].size(), none[list].dump().c_str());
    QCOMPARE(none["meshes"], before["meshes"]);
    QCOMPARE(none["materials"], before["materials"]);
    QCOMPARE(none["textures"], before["textures"]);
    QCOMPARE(none["buffers"][0]["byteLength"], before["buffers"][0]["byteLength"]);
    QVERIFY(sameDumps(rySceneDump(CharacterScene(path("none.gltf")).scene), dump));
}

void DeletedPropsTest::oneOfTwo_data()
{
    QTest::addColumn<int>("named"); // a number in an extension that nobody knows
    QTest::addColumn<size_t>("meshes");
    QTest::addColumn<size_t>("materials");
    QTest::newRow("none") << -1 << size_t(3) << size_t(2);
    QTest::newRow("the file's") << 1 << size_t(3) << size_t(3); // the first of the new materials has this number
    QTest::newRow("theirs") << 2 << size_t(4) << size_t(5);     // the mesh stays, with all that it uses
    QTest::newRow("larger") << 99 << size_t(4) << size_t(5);
}

/// What stands behind moves up, unless an unknown extension may name it.
void DeletedPropsTest::oneOfTwo()
{
    QFETCH(int, named);
    QFETCH(size_t, meshes);
    QFETCH(size_t, materials);
    writeBoth("both.gltf");
    json tree = json::parse(bytesOf(path("both.gltf")).toStdString());
    const auto other = [](const json &list) {
        const auto isOther = [](const json &entry) { return entry["name"] == "other"; };
        return size_t(std::find_if(list.begin(), list.end(), isOther) - list.begin());
    };
    QCOMPARE(other(tree["materials"]), size_t(4));
    if (named >= 0) {
        tree["extensions"]["ACME_unknown"]["things"] = {{{"number", named}}};
        tree["extensionsUsed"].push_back("ACME_unknown");
    }
    const int times = tree["skins"][0]["inverseBindMatrices"]; // any accessor will do
    tree["animations"] = {
        {{"samplers", {{{"input", times}, {"output", times}}}},
         {"channels",
          {{{"sampler", 0},
            {"target",
             {{"path", "pointer"},
              {"extensions", {{"KHR_animation_pointer", {{"pointer", "/materials/4/alphaCutoff"}}}}}}}}}}}};
    tree["extensionsUsed"].push_back("KHR_animation_pointer");
    ObjSketch::put(m_folder, QStringLiteral("both.gltf"), QByteArray::fromStdString(tree.dump()));
    CharacterScene again(path("both.gltf"));
    remove(again.scene, "sketch");
    const QString dump = rySceneDump(again.scene);
    QString error;
    QVERIFY2(RySceneFile::save(&again.scene, path("one.gltf"), &error), qPrintable(error));
    QVERIFY(sameDumps(rySceneDump(CharacterScene(path("one.gltf")).scene), dump));
    const json one = treeOf("one.gltf");
    QCOMPARE(one["meshes"].size(), meshes);
    QCOMPARE(one["materials"].size(), materials);
    const size_t place = other(one["materials"]);
    QCOMPARE(place, materials - 1);
    QCOMPARE(one["animations"][0]["channels"][0]["target"]["extensions"]["KHR_animation_pointer"]["pointer"],
             json("/materials/" + std::to_string(place) + "/alphaCutoff"));
    QCOMPARE(one["meshes"].back()["primitives"][0]["material"], json(place));
}

/// Two props that look alike share materials and pictures; with one of them none of these goes.
void DeletedPropsTest::sharedLooks()
{
    CharacterScene scene(sketch().write(path("plain.gltf")));
    const QString file = second();
    merge(scene.scene, file);
    merge(scene.scene, file);
    save(scene.scene, "shared.glb");
    const json shared = treeOf("shared.glb");
    CharacterScene again(path("shared.glb"));
    remove(again.scene, "other");
    const QString dump = rySceneDump(again.scene);
    save(again.scene, "left.glb");
    const json left = treeOf("left.glb");
    QCOMPARE(left["materials"], shared["materials"]);
    QCOMPARE(left["images"].size(), shared["images"].size());
    QCOMPARE(left["meshes"].size() + 1, shared["meshes"].size());
    QVERIFY(sameDumps(rySceneDump(CharacterScene(path("left.glb")).scene), dump));
}

RY_TEST(DeletedPropsTest)
#include "tst_deleted_props.moc"
