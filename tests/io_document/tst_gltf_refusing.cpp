#include "GltfDocuments.h"
#include "readAll.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <functional>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;
using Change = std::function<void(Json &)>;
Q_DECLARE_METATYPE(Change)

/// Trees that make no sense: refused with file, place and reason, or opened with a warning.
class RyGltfRefusingTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void refused_data();
    void refused();
    void openedWithWarning_data();
    void openedWithWarning();
};

void RyGltfRefusingTest::refused_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, Change change, const char *message) {
        QTest::newRow(name) << change << QString::fromUtf8(message);
    };
    row(
        "cycle", [](Json &t) { t["nodes"][1]["children"] = {0}; }, "nodes[0]: the node is below itself");
    row(
        "own child", [](Json &t) { t["nodes"][1]["children"] = {1}; }, "nodes[1].children[0]: node 1 is its own child");
    row(
        "two parents", [](Json &t) { t["nodes"][2]["children"] = {1}; },
        "nodes[2].children[0]: node 1 is already a child of node 0");
    row(
        "child", [](Json &t) { t["nodes"][1]["children"] = {99}; },
        "nodes[1].children[0]: node 99 does not exist (there are 3)");
    row(
        "negative child", [](Json &t) { t["nodes"][1]["children"] = {-1}; },
        "nodes[1].children[0]: -1 is not the index of a node");
    row(
        "joint", [](Json &t) { t["skins"][0]["joints"][1] = 99; }, "skins[0].joints[1]: node 99 does not exist");
    row(
        "no joints", [](Json &t) { t["skins"][0]["joints"] = Json::array(); }, "skins[0]: has no joints");
    row(
        "matrices", [](Json &t) { t["skins"][0]["inverseBindMatrices"] = 70; },
        "skins[0].inverseBindMatrices: accessor 70");
    row(
        "few matrices", [](Json &t) { t["accessors"][3]["count"] = 1; }, "holds 1 matrices for 2 joints");
    row(
        "kind of matrices", [](Json &t) { t["skins"][0]["inverseBindMatrices"] = 0; },
        "accessor 0 does not hold matrices");
    row(
        "mesh", [](Json &t) { t["nodes"][2]["mesh"] = 1; }, "nodes[2].mesh: mesh 1 does not exist (there are 1)");
    row(
        "skin", [](Json &t) { t["nodes"][2]["skin"] = 1; }, "nodes[2].skin: skin 1 does not exist");
    row(
        "scene root", [](Json &t) { t["scenes"][0]["nodes"] = {5}; }, "scenes[0].nodes[0]: node 5");
    row(
        "huge count", [](Json &t) { t["accessors"][0]["count"] = 4294967295u; }, "accessors[0]: 4294967295 elements");
    row(
        "count overflow", [](Json &t) { t["accessors"][0]["count"] = 1537228672809129302ull; }, "is not a valid size");
    row(
        "near overflow", [](Json &t) { t["accessors"][0]["count"] = 9007199254740992ull; },
        "do not fit in buffer view 0");
    row(
        "offset", [](Json &t) { t["accessors"][0]["byteOffset"] = 4294967288u; }, "accessors[0]: 4 elements");
    row(
        "offset by one", [](Json &t) { t["accessors"][0]["byteOffset"] = 4; }, "do not fit");
    row(
        "negative count", [](Json &t) { t["accessors"][0]["count"] = -4; },
        "accessors[0].count: -4 is not a valid size");
    row(
        "fraction", [](Json &t) { t["accessors"][0]["count"] = 3.5; }, "accessors[0].count: 3.5 is not a valid size");
    row(
        "no count", [](Json &t) { t["accessors"][0].erase("count"); }, "accessors[0]: has no \"count\"");
    row(
        "many zeros",
        [](Json &t) {
            t["accessors"][0].erase("bufferView");
            t["accessors"][0]["count"] = 900000000;
        },
        "900000000 elements without a buffer");
    row(
        "component type", [](Json &t) { t["accessors"][0]["componentType"] = 5124; }, "unknown component type 5124");
    row(
        "type", [](Json &t) { t["accessors"][0]["type"] = "VEC5"; }, "unknown type \"VEC5\"");
    row(
        "accessor's view", [](Json &t) { t["accessors"][0]["bufferView"] = 8; },
        "accessors[0].bufferView: buffer view 8");
    row(
        "view beyond buffer", [](Json &t) { t["bufferViews"][7]["byteLength"] = 13; },
        "bufferViews[7]: bytes 308 to 321 lie outside of buffer 0 of 320 bytes");
    row(
        "view's offset", [](Json &t) { t["bufferViews"][7]["byteOffset"] = 9007199254740992ull; },
        "lie outside of buffer 0");
    row(
        "view's buffer", [](Json &t) { t["bufferViews"][0]["buffer"] = 1; }, "bufferViews[0].buffer: buffer 1");
    row(
        "small stride", [](Json &t) { t["bufferViews"][0]["byteStride"] = 8; },
        "elements of 12 bytes at a stride of 8");
    row(
        "large stride", [](Json &t) { t["bufferViews"][0]["byteStride"] = 16; }, "do not fit");
    row(
        "buffer length", [](Json &t) { t["buffers"][0]["byteLength"] = 400; },
        "buffers[0]: 400 bytes announced, 320 there");
    row(
        "second buffer",
        [](Json &t) {
            t["buffers"].push_back({{"byteLength", 4}});
        },
        "buffers[1]: has neither a URI nor a binary chunk");
    row(
        "positions", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"]["POSITION"] = 9; },
        "meshes[0].primitives[0].attributes.POSITION: accessor 9");
    row(
        "kind of positions", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"]["POSITION"] = 2; },
        "POSITION is not made of three numbers");
    row(
        "kind of joints", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"]["JOINTS_0"] = 2; },
        "JOINTS_0 is not made of four indices");
    row(
        "kind of weights", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"]["WEIGHTS_0"] = 0; },
        "WEIGHTS_0 is not made of four weights");
    row(
        "number of weights", [](Json &t) { t["accessors"][2]["count"] = 3; }, "4 joints and 3 weights for 4 vertices");
    row(
        "index",
        [](Json &t) {
            t["accessors"][0]["count"] = 3;
            t["accessors"][1]["count"] = 3;
            t["accessors"][2]["count"] = 3;
        },
        "meshes[0].primitives[0].indices: vertex 3 does not exist (there are 3)");
    row(
        "kind of indices", [](Json &t) { t["meshes"][0]["primitives"][0]["indices"] = 5; },
        "accessor 5 does not hold indices");
    row(
        "mode", [](Json &t) { t["meshes"][0]["primitives"][0]["mode"] = 7; }, "unknown mode 7");
    row(
        "nodes no array", [](Json &t) { t["nodes"] = 5; }, "nodes: is 5, not an array");
    row(
        "node no object", [](Json &t) { t["nodes"][1] = "x"; }, "nodes[1]: is \"x\", not an object");
    row(
        "name no text", [](Json &t) { t["nodes"][1]["name"] = 7; }, "nodes[1].name: 7 is not a text");
    row(
        "translation",
        [](Json &t) {
            t["nodes"][1]["translation"] = {1, 2};
        },
        "nodes[1].translation: has 2 numbers, not 3");
    row(
        "translation's kind", [](Json &t) { t["nodes"][1]["translation"][2] = "z"; },
        "nodes[1].translation[2]: \"z\" is not a number");
    row(
        "translation's size", [](Json &t) { t["nodes"][1]["translation"][2] = 1e300; },
        "nodes[1].translation[2]: 1e+300 is too large");
    row(
        "version", [](Json &t) { t["asset"]["version"] = "1.0"; }, "asset: glTF version \"1.0\" is not supported");
    row(
        "least version", [](Json &t) { t["asset"]["minVersion"] = "2.1"; }, "asset: the file needs glTF version 2.1");
    row(
        "no asset", [](Json &t) { t.erase("asset"); }, "this is not a glTF document");
    row(
        "extension",
        [](Json &t) {
            t["extensionsRequired"] = {"KHR_materials_unlit", "KHR_draco_mesh_compression"};
        },
        "extensionsRequired: the extension KHR_draco_mesh_compression is needed and not supported");
    row(
        "compressed",
        [](Json &t) {
            t["accessors"][0].erase("bufferView");
            t["meshes"][0]["primitives"][0]["extensions"]["KHR_draco_mesh_compression"] = Json::object();
        },
        "meshes[0].primitives[0]: the shape is compressed with KHR_draco_mesh_compression");
    row(
        "unfolds",
        [](Json &t) {
            t["accessors"][0].erase("bufferView");
            t["accessors"][0]["count"] = 4000000;
            t["meshes"][0]["primitives"] = {{{"attributes", {{"POSITION", 0}}}}};
            for (int i = 0; i < 30; ++i)
                t["nodes"].push_back({{"mesh", 0}});
        },
        "more than 100000000 vertices");
}

void RyGltfRefusingTest::refused()
{
    QFETCH(Change, change);
    QFETCH(QString, message);
    Json tree = Json::parse(skinnedJson({}).toStdString());
    change(tree);
    QVERIFY(!open(glb(QByteArray::fromStdString(tree.dump()), skinnedBinary())));
    QVERIFY2(m_error.contains(message), qPrintable(m_error));
    QVERIFY2(m_error.contains("p.glb"), qPrintable(m_error));
}

void RyGltfRefusingTest::openedWithWarning_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("warning");
    const auto row = [](const char *name, Change change, const char *warning) {
        QTest::newRow(name) << change << QString::fromUtf8(warning);
    };
    row(
        "no matrices", [](Json &t) { t["skins"][0].erase("inverseBindMatrices"); }, "");
    row(
        "duplicate joint",
        [](Json &t) {
            t["skins"][0]["joints"] = {0, 0};
        },
        "skins[0].joints[1]: node 0 is already a joint of this skin");
    row(
        "skeleton", [](Json &t) { t["skins"][0]["skeleton"] = 9; }, "skins[0].skeleton: the node does not exist");
    row(
        "material", [](Json &t) { t["meshes"][0]["primitives"][0]["material"] = 9; }, "the material does not exist");
    row(
        "texture", [](Json &t) { t["textures"][0]["source"] = 9; }, "the texture has no image");
    row(
        "camera", [](Json &t) { t["nodes"][1]["camera"] = 0; }, "nodes[1].camera: the camera does not exist");
    row(
        "channel", [](Json &t) { t["animations"][0]["channels"][0]["target"]["node"] = 9; }, "the node does not exist");
    row(
        "normals", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"]["NORMAL"] = 2; }, "is not used");
    row(
        "weights alone", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"]["WEIGHTS_1"] = 2; },
        "WEIGHTS_1 stands without JOINTS_1");
    row(
        "child twice",
        [](Json &t) {
            t["nodes"][0]["children"] = {1, 1};
        },
        "nodes[0].children[1]: node 1 stands twice");
    row(
        "no positions", [](Json &t) { t["meshes"][0]["primitives"][0]["attributes"].erase("POSITION"); },
        "has no positions");
    row(
        "harmless extension",
        [](Json &t) {
            t["extensionsRequired"] = {"KHR_materials_unlit", "KHR_texture_transform"};
        },
        "");
    row(
        "zero scale",
        [](Json &t) {
            t["nodes"][1]["scale"] = {0, 0, 0};
        },
        "");
    row(
        "odd names",
        [](Json &t) {
            t["nodes"][1]["name"] = "root";
            t["nodes"][2]["name"] = "\xe2\x80\xae\n:\xf0\x9f\xa6\x8a";
        },
        "");
    row(
        "sizes as fractions", [](Json &t) { t["accessors"][0]["count"] = 4.0; }, "");
}

void RyGltfRefusingTest::openedWithWarning()
{
    QFETCH(Change, change);
    QFETCH(QString, warning);
    Json tree = Json::parse(skinnedJson({}).toStdString());
    change(tree);
    const QByteArray bytes = glb(QByteArray::fromStdString(tree.dump()), skinnedBinary());
    const auto document = open(bytes);
    QVERIFY2(document, qPrintable(m_error));
    QVERIFY2(m_warnings.join('\n').contains(warning), qPrintable(m_warnings.join('\n')));
    QCOMPARE(m_warnings.isEmpty(), warning.isEmpty());
    readAll(*document);
    QCOMPARE(document->toBytes(QStringLiteral("glb")), bytes);
}

RY_TEST(RyGltfRefusingTest)
#include "tst_gltf_refusing.moc"
