#include "FigureSketch.h"
#include "MergedScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>

using json = nlohmann::json;

namespace {

QByteArray pictureBytes(const QColor &color)
{
    QImage picture(2, 2, QImage::Format_RGB32);
    picture.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    return bytes;
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

} // namespace

/// What belongs to a merged figure besides its rig: materials, pictures, extensions, extras, scenes.
class BroughtOverTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// Indices within extensions point at the same things afterwards.
    void extensions()
    {
        MergedScene merged({rich("first").write(path("first")), rich("second").write(path("second"))});
        const QString saved = path("saved");
        QCOMPARE(merged.check(saved), QString());
        QVERIFY(merged.losses.isEmpty() && ryUndoStack()->isClean());
        const json tree = GltfEvaluator(saved.toStdString()).tree();
        const json before = GltfEvaluator(path("second").toStdString()).tree();
        const json &lamp = nodeOf(tree, "lamp second");
        const size_t light = lamp["extensions"]["KHR_lights_punctual"]["light"];
        QCOMPARE(tree["extensions"]["KHR_lights_punctual"]["lights"][light]["name"], json("light second"));
        const json &primitive = tree["meshes"][nodeOf(tree, "mesh second")["mesh"].get<size_t>()]["primitives"][0];
        const json &mapping = primitive["extensions"]["KHR_materials_variants"]["mappings"][0];
        QCOMPARE(tree["materials"][mapping["material"].get<size_t>()]["name"], json("second B"));
        const json &variants = tree["extensions"]["KHR_materials_variants"]["variants"];
        QCOMPARE(variants[mapping["variants"][0].get<size_t>()]["name"], json("second night"));
        const json &material = tree["materials"][primitive["material"].get<size_t>()];
        QCOMPARE(material["name"], json("second A"));
        const size_t texture = material["extensions"]["KHR_materials_clearcoat"]["clearcoatTexture"]["index"];
        QCOMPARE(tree["images"][tree["textures"][texture]["source"].get<size_t>()]["name"], json("picture second"));
        QCOMPARE(material["extensions"]["KHR_materials_clearcoat"]["clearcoatTexture"]["extensions"],
                 before["materials"][0]["extensions"]["KHR_materials_clearcoat"]["clearcoatTexture"]["extensions"]);
        const std::string pointer =
            tree["animations"][1]["channels"][0]["target"]["extensions"]["KHR_animation_pointer"]["pointer"];
        QCOMPARE(pointer, std::string("/materials/2/pbrMetallicRoughness/baseColorFactor"));
        QCOMPARE(tree["cameras"][nodeOf(tree, "eye second")["camera"].get<size_t>()]["name"], json("camera second"));
        // What the file said of itself stands at the node that its things hang below.
        const json &root = nodeOf(tree, merged.figure(1)->getName().toStdString());
        QCOMPARE(root["extras"]["made by"], json("second"));
        QCOMPARE(root["extras"]["asset"]["copyright"], json("of second"));
        for (const char *used : {"KHR_lights_punctual", "KHR_materials_variants", "KHR_animation_pointer"})
            QCOMPARE(std::count(tree["extensionsUsed"].begin(), tree["extensionsUsed"].end(), json(used)), 1);
    }

    /// An extension that names what is not known is left out and told; the scene is not saved then. An empty one stays.
    void unknownExtension()
    {
        FigureSketch second;
        second.tree["extensionsUsed"] = {"EXT_strange", "EXT_marker"};
        second.tree["nodes"][1]["extensions"] = {{"EXT_strange", {{"accessor", 0}}}, {"EXT_marker", json::object()}};
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("second"))});
        merged.scene.getSkeletons()[0]->setLabel(QStringLiteral("edited"));
        merged.save(path("saved"));
        QCOMPARE(merged.losses, QStringList(QStringLiteral("second.gltf: the extension EXT_strange was left out, for "
                                                           "what it names is not known")));
        const json tree = GltfEvaluator(path("saved").toStdString()).tree();
        QCOMPARE(tree["extensionsUsed"], json({"EXT_marker"}));
        QCOMPARE(nodeOf(tree, "low", 1)["extensions"], json({{"EXT_marker", json::object()}}));
        // In a file of its own it is kept.
        MergedScene alone({path("second")});
        alone.save(path("alone"));
        QVERIFY(alone.losses.isEmpty());
        QCOMPARE(GltfEvaluator(path("alone").toStdString()).tree()["nodes"][1]["extensions"],
                 second.tree["nodes"][1]["extensions"]);
    }

    /// Pictures beside the merged file are taken in; one that is gone is told.
    void pictures()
    {
        QDir(m_folder.path()).mkdir(QStringLiteral("elsewhere"));
        writeBytes(path("elsewhere/picture.png", ""), pictureBytes(Qt::red));
        writeBytes(path("elsewhere/other.png", ""), pictureBytes(Qt::blue));
        FigureSketch second;
        second.tree["images"] = {{{"uri", "picture.png"}}, {{"uri", "other.png"}}};
        second.tree["textures"] = {{{"source", 0}}, {{"source", 1}}};
        second.tree["materials"] = {{{"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}}},
                                    {{"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 1}}}}}}};
        addCoordinates(second);
        second.tree["meshes"][0]["primitives"][0]["material"] = 0;
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("elsewhere/second"))});
        QCOMPARE(merged.check(path("saved")), QString());
        const json tree = GltfEvaluator(path("saved").toStdString()).tree();
        QVERIFY(!tree["images"][0].contains("uri") && tree["images"][0]["mimeType"] == "image/png");
        QVERIFY(QFile::remove(path("elsewhere/other.png", "")));
        merged.save(path("saved"));
        QCOMPARE(merged.losses.size(), 1);
        QVERIFY2(merged.losses[0].contains(QStringLiteral("other.png")), qPrintable(merged.losses[0]));
    }

    /// Going back to before a merge leaves nothing of it in the file; going forth brings it back.
    void takenBack()
    {
        ryRestorePoints()->setMost(4);
        MergedScene merged({FigureSketch().write(path("first"))});
        const QByteArray before = bytesOf(path("first"));
        const QString dump = rySceneDump(merged.scene);
        QVERIFY(ryRestorePoints()->take(QStringLiteral("Merge")));
        RySceneFile::Options options;
        options.merge = true;
        QString error;
        QVERIFY(RySceneFile::open(&merged.scene, rich("second").write(path("second")), options, &error));
        merged.save(path("both"));
        const QString both = rySceneDump(merged.scene);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(rySceneDump(merged.scene), dump);
        merged.save(path("back"));
        QVERIFY(bytesOf(path("back")) == before);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(rySceneDump(merged.scene), both);
        merged.save(path("forth"));
        QVERIFY(bytesOf(path("forth")) == bytesOf(path("both")));
        ryRestorePoints()->setMost(0);
    }

    /// Sessions of edits do not let the file grow.
    void sessions()
    {
        QString now = path("session");
        {
            MergedScene merged({rich("first").write(path("first")), rich("second").write(path("second"))});
            merged.save(now);
        }
        qint64 second = 0;
        for (int session = 0; session < 10; ++session) {
            MergedScene scene({now});
            RySkeleton *figure = scene.figure(size_t(session % 2));
            RyBone *bone = figure->getAllBones()[1];
            bone->setOrigin(bone->getOrigin() + RyVec3(0, 1.0f + float(session), 0));
            figure->getXTransControl()->setValue(float(10 * session));
            QCOMPARE(scene.check(now), QString());
            if (session == 1)
                second = QFileInfo(now).size();
        }
        QVERIFY2(double(QFileInfo(now).size()) <= 1.1 * double(second),
                 qPrintable(QStringLiteral("%1 of %2").arg(QFileInfo(now).size()).arg(second)));
    }

private:
    QString path(const char *name, const char *ending = ".gltf") const
    {
        return m_folder.filePath(QLatin1String(name) + QLatin1String(ending));
    }

    static void addCoordinates(FigureSketch &sketch)
    {
        std::vector<float> coordinates;
        for (int i = 0; i < 18; ++i)
            coordinates.insert(coordinates.end(), {0.05f * float(i), 0.3f});
        sketch.tree["meshes"][0]["primitives"][0]["attributes"]["TEXCOORD_0"] =
            sketch.add<float>(coordinates, 5126, "VEC2");
    }

    /// A figure with a lamp, a camera, materials in variants, a picture and a clip that changes a color.
    static FigureSketch rich(const std::string &name)
    {
        FigureSketch sketch;
        json &tree = sketch.tree;
        tree["asset"]["copyright"] = "of " + name;
        tree["extras"] = {{"made by", name}};
        tree["nodes"][3]["name"] = "mesh " + name;
        tree["cameras"] = {
            {{"name", "camera " + name}, {"type", "perspective"}, {"perspective", {{"yfov", 1.0}, {"znear", 0.1}}}}};
        tree["nodes"].push_back({{"name", "eye " + name}, {"camera", 0}});
        tree["nodes"].push_back({{"name", "lamp " + name}, {"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}});
        for (const int node : {4, 5})
            tree["scenes"][0]["nodes"].push_back(node);
        tree["extensions"] = {
            {"KHR_lights_punctual", {{"lights", {{{"name", "light " + name}, {"type", "point"}}}}}},
            {"KHR_materials_variants", {{"variants", {{{"name", name + " day"}}, {{"name", name + " night"}}}}}}};
        tree["extensionsUsed"] = {"KHR_lights_punctual", "KHR_materials_variants", "KHR_materials_clearcoat",
                                  "KHR_texture_transform", "KHR_animation_pointer"};
        const std::string data = "data:image/png;base64," + pictureBytes(Qt::green).toBase64().toStdString();
        tree["images"] = {{{"name", "picture " + name}, {"uri", data}}};
        tree["textures"] = {{{"source", 0}}};
        const json moved = {{"index", 0}, {"extensions", {{"KHR_texture_transform", {{"offset", {0.5, 0.25}}}}}}};
        tree["materials"] = {
            {{"name", name + " A"}, {"extensions", {{"KHR_materials_clearcoat", {{"clearcoatTexture", moved}}}}}},
            {{"name", name + " B"}}};
        json &primitive = tree["meshes"][0]["primitives"][0];
        addCoordinates(sketch);
        primitive["material"] = 0;
        primitive["extensions"] = {
            {"KHR_materials_variants", {{"mappings", {{{"material", 1}, {"variants", json::array({1})}}}}}}};
        const int times = sketch.add<float>({0.0f, 1.0f}, 5126, "SCALAR");
        tree["accessors"][size_t(times)]["min"] = {0.0};
        tree["accessors"][size_t(times)]["max"] = {1.0};
        const int colors = sketch.add<float>({1, 1, 1, 1, 1, 0, 0, 1}, 5126, "VEC4");
        const json target = {
            {"path", "pointer"},
            {"extensions",
             {{"KHR_animation_pointer", {{"pointer", "/materials/0/pbrMetallicRoughness/baseColorFactor"}}}}}};
        tree["animations"] = {{{"name", "blush"},
                               {"samplers", {{{"input", times}, {"output", colors}}}},
                               {"channels", {{{"sampler", 0}, {"target", target}}}}}};
        return sketch;
    }

    /// A node by its name; of several the one with a number.
    static const json &nodeOf(const json &tree, const std::string &name, int number = 0)
    {
        static const json none;
        for (const json &node : tree["nodes"]) {
            if (node.value("name", "") == name && number-- == 0)
                return node;
        }
        return none;
    }

    QTemporaryDir m_folder;
};

RY_TEST(BroughtOverTest)
#include "tst_brought_over.moc"
