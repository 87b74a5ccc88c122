#include "MergedScene.h"
#include "RichSketch.h"
#include "RigEdits.h"

#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

using nlohmann::json;

namespace {

/// All numbers of a value as 3.0 instead of 3.
void makeFractional(json &value)
{
    if (value.is_number_integer())
        value = value.get<double>();
    else if (value.is_structured())
        std::for_each(value.begin(), value.end(), makeFractional);
}

} // namespace

/// Files that other programs wrote oddly, as the second of two.
class OddFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// A clip loses a channel, and others name no sampler.
    void channelWithoutSampler()
    {
        FigureSketch second = richSketch(" two", 2.0);
        json &channels = second.tree["animations"][0]["channels"];
        channels[0].erase("sampler");
        channels[1]["sampler"] = 7;
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("second"))});
        merged.scene.removeNode(merged.scene.findNode(QStringLiteral("hat two")));
        merged.save(path("saved"));
        const json clips = GltfEvaluator(path("saved").toStdString()).tree()["animations"];
        QCOMPARE(clips.size(), size_t(1)); // the other one drove the hat alone
        QCOMPARE(clips[0]["channels"].size(), channels.size() - 1);
        QVERIFY(!clips[0]["channels"][0].contains("sampler"));
        QCOMPARE(clips[0]["channels"][1]["sampler"], json(7));
    }

    /// The mesh goes with its mark, the joints and their skin stay.
    void removedMesh()
    {
        FigureSketch second = richSketch(" two", 2.0);
        mark(second.tree["nodes"][3]);
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("second"))});
        merged.save(path("saved"));
        MergedScene again({path("saved")});
        QCOMPARE(again.scene.getSkeletons().size(), size_t(2));
        QCOMPARE(again.bones().size(), merged.bones().size());
    }

    /// A prop below joints that are gone does not bring them back.
    void removedTree()
    {
        FigureSketch second = richSketch(" two", 2.0);
        mark(second.tree["nodes"][0]);
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("second"))});
        QCOMPARE(merged.bones().size(), size_t(2));
        merged.save(path("saved"));
        QCOMPARE(MergedScene({path("saved")}).bones().size(), size_t(2));
        QCOMPARE(GltfEvaluator(path("saved").toStdString()).tree()["skins"].size(), size_t(1));
    }

    /// Indices that are written as 3.0 move with the others.
    void fractionalIndices()
    {
        const QString first = richSketch("", 1.0).write(path("first"));
        FigureSketch second = richSketch(" two", 2.0);
        MergedScene({first, second.write(path("second"))}).save(path("plain"));
        for (const char *list : {"nodes", "skins", "meshes", "accessors", "animations", "materials", "textures"})
            makeFractional(second.tree[list]);
        MergedScene({first, second.write(path("second"))}).save(path("saved"));
        QVERIFY(GltfEvaluator(path("saved").toStdString()).tree() == GltfEvaluator(path("plain").toStdString()).tree());
    }

    /// Lists and extensions of a wrong kind in either file, and a scene that names what does not exist.
    void wrongKinds()
    {
        FigureSketch first = richSketch("", 1.0);
        first.tree["extensions"] = 5;
        first.tree["extensionsUsed"] = "none";
        first.tree["scenes"][0]["extensions"] = "text";
        first.tree["scenes"][1]["nodes"] = {6, 99, "text"};
        FigureSketch second = richSketch(" two", 2.0);
        second.tree["scenes"][0]["extensions"] = {{"KHR_xmp_json_ld", {{"packet", 0}}}};
        second.tree["scenes"][1]["extensions"] = {1, 2};
        MergedScene merged({first.write(path("first")), second.write(path("second"))});
        merged.save(path("saved"));
        QCOMPARE(MergedScene({path("saved")}).bones().size(), size_t(4));
        const json tree = GltfEvaluator(path("saved").toStdString()).tree();
        QCOMPARE(tree["extensions"]["KHR_lights_punctual"]["lights"].size(), size_t(2));
        QVERIFY(tree["extensionsUsed"].is_array());
        QCOMPARE(tree["scenes"][0]["extensions"], second.tree["scenes"][0]["extensions"]);
    }

    /// Roots that stand twice in their scene, while what stands there changes.
    void rootsNamedTwice()
    {
        FigureSketch first = richSketch("", 1.0);
        json &roots = first.tree["scenes"][0]["nodes"];
        const json once = roots;
        for (const json &root : once)
            roots.push_back(root);
        MergedScene merged({first.write(path("first")), richSketch(" two", 2.0).write(path("second"))});
        merged.scene.removeNode(merged.scene.findNode(QStringLiteral("stool")));
        merged.save(path("saved"));
        json expected = once; // and what the second file hangs on
        expected.erase(std::remove(expected.begin(), expected.end(), json(StoolNode)), expected.end());
        const json written = GltfEvaluator(path("saved").toStdString()).tree()["scenes"][0]["nodes"];
        expected.push_back(written.back());
        QCOMPARE(written, expected);
    }

    /// A primitive without vertices beside one whose weights are written.
    void primitiveWithoutAttributes()
    {
        FigureSketch second = richSketch(" two", 2.0);
        second.tree["meshes"][0]["primitives"].push_back({{"mode", 4}});
        MergedScene merged({FigureSketch().write(path("first")), second.write(path("second"))});
        RigEdits::deleteBone(merged.scene, merged.figure(1)->getAllBones()[0]);
        merged.save(path("saved"));
        QCOMPARE(MergedScene({path("saved")}).bones().size(), merged.bones().size());
    }

private:
    static constexpr int StoolNode = 7;
    static void mark(json &node) { node["extras"]["RYHOST_rigging"] = {{"version", 1}, {"removed", true}}; }
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    QTemporaryDir m_folder;
};

RY_TEST(OddFilesTest)
#include "tst_odd_files.moc"
