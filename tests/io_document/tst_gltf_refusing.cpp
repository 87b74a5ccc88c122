#include "GltfDocuments.h"
#include "support/RyTest.h"

#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <random>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;
using Change = std::function<void(Json &)>;
Q_DECLARE_METATYPE(Change)

namespace {

/// Everything a reader of the scene would look at; a wrong range would be read here.
void readAll(const RyGltfDocument &document)
{
    const RyGltfModel &model = document.model();
    double sum = 0.0;
    for (int i = 0; i < int(model.accessors.size()); ++i) {
        for (const float value : document.readFloats(i))
            sum += double(value);
        for (const std::uint32_t value : document.readUints(i))
            sum += value;
        for (const unsigned char byte : document.packedBytes(i))
            sum += byte;
    }
    RyGltfMeshBuilder builder(document);
    for (size_t mesh = 0; mesh < model.meshes.size(); ++mesh) {
        for (size_t primitive = 0; primitive < model.meshes[mesh].primitives.size(); ++primitive)
            builder.addPart(int(mesh), int(primitive), QString(), {0, 1}, RyAffine(), int(mesh));
    }
    sum += double(builder.positions.size());
    for (const RyGltfNode &node : model.nodes)
        sum += node.transform.toAffine().m[3][0];
    for (int i = 0; i < 4; ++i)
        sum += document.imageBytes(i).size();
    QVERIFY(!std::isnan(sum));
}

} // namespace

/// Files that are damaged or mean harm: refused with file, place and reason, or opened with a warning; never a crash.
class RyGltfRefusingTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void refused_data();
    void refused();
    void openedWithWarning_data();
    void openedWithWarning();
    void containers_data();
    void containers();
    void cutAnywhere();
    void deepText();
    void longChain();
    void manyMembers();
    void noFile();
    void hostileModels_data();
    void hostileModels();
    void realModelsComeOutAsTheyWentIn();
    void damagedAtRandom();
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

void RyGltfRefusingTest::containers_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    const QByteArray good = glb("{\"asset\":{\"version\":\"2.0\"}}", {});
    QTest::newRow("empty") << QByteArray() << "the file is empty";
    QTest::newRow("header only") << good.left(12) << "cut off";
    QByteArray other = good;
    other[4] = 1;
    QTest::newRow("version 1") << other << "the container has version 1, not 2";
    other = good;
    other[8] = char(other[8] + 1);
    QTest::newRow("length") << other << "the file is cut off: its header says 49 bytes, it has 48";
    other = good;
    other[12] = char(other[12] + 4);
    QTest::newRow("chunk length") << other << "chunk 0 is cut off";
    other = good;
    other[15] = '\x7f';
    QTest::newRow("huge chunk") << other << "chunk 0 is cut off";
    other = good;
    other[16] = 'X';
    QTest::newRow("first chunk") << other << "the first chunk is not JSON";
    QTest::newRow("text") << QByteArray("hello") << "the JSON text cannot be read: parse error at line 1, column 1";
    QTest::newRow("array") << QByteArray("[1]") << "the JSON text is not an object";
    QTest::newRow("cut text") << QByteArray("{\"asset\":{\"version\":\"2.0\"},") << "the JSON text cannot be read";
    QTest::newRow("two values") << QByteArray("{\"asset\":{\"version\":\"2.0\"}}{}") << "the JSON text cannot be read";
    QTest::newRow("not UTF-8") << QByteArray("{\"asset\":{\"version\":\"2.0\"},\"x\":\"\xff\"}") << "UTF-8";
    QTest::newRow("number") << QByteArray("{\"asset\":{\"version\":\"2.0\"},\"x\":1e999}") << "number";
}

void RyGltfRefusingTest::containers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    QVERIFY(!open(bytes));
    QVERIFY2(m_error.contains(message), qPrintable(m_error));
}

void RyGltfRefusingTest::cutAnywhere()
{
    const QByteArray whole = skinnedGlb();
    for (int size = 0; size < whole.size(); size += size < 64 ? 1 : 7) {
        QVERIFY2(!open(whole.left(size)), qPrintable(QString::number(size)));
        QVERIFY(!m_error.isEmpty());
    }
}

void RyGltfRefusingTest::deepText()
{
    const auto nested = [](int depth) {
        return "{\"asset\":{\"version\":\"2.0\"},\"extras\":" + QByteArray(depth, '[') + QByteArray(depth, ']') + "}";
    };
    const auto document = open(nested(511), QStringLiteral("deep.gltf"));
    QVERIFY2(document, qPrintable(m_error));
    QVERIFY(!document->clone()->toBytes(QStringLiteral("glb")).isEmpty());
    QVERIFY(!open(nested(512), QStringLiteral("deep.gltf")));
    QVERIFY2(m_error.contains("more than 512 deep"), qPrintable(m_error));
    QVERIFY(!open(nested(2000000), QStringLiteral("deep.gltf")));
    QVERIFY(!open("{\"asset\":{\"version\":\"2.0\"},\"extras\":" + QByteArray("{\"a\":").repeated(300000),
                  QStringLiteral("deep.gltf")));
}

void RyGltfRefusingTest::longChain()
{
    QByteArray json = "{\"asset\":{\"version\":\"2.0\"},\"scenes\":[{\"nodes\":[0]}],\"nodes\":[";
    const int count = 200000;
    for (int i = 0; i < count - 1; ++i)
        json += "{\"children\":[" + QByteArray::number(i + 1) + "]},";
    auto document = open(json + "{}]}", QStringLiteral("chain.gltf"));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->model().nodes.back().parent, count - 2);
    // Closed to a ring far from its beginning.
    QVERIFY(!open(json + "{\"children\":[0]}]}", QStringLiteral("chain.gltf")));
    QVERIFY2(m_error.contains("the node is below itself"), qPrintable(m_error));
}

void RyGltfRefusingTest::manyMembers()
{
    QByteArray json = "{\"asset\":{\"version\":\"2.0\"},\"extras\":{";
    for (int i = 0; i < 300000; ++i)
        json += "\"k" + QByteArray::number(i) + "\":0,";
    json += "\"end\":1}}";
    QElapsedTimer timer;
    timer.start();
    QVERIFY2(open(json, QStringLiteral("members.gltf")), qPrintable(m_error));
    QVERIFY2(timer.elapsed() < 5000, "the time grows with the square of the members");
}

void RyGltfRefusingTest::noFile()
{
    QString error;
    QVERIFY(!RyGltfDocument::read(m_folder.filePath("none.glb"), &error));
    QVERIFY2(error.contains("none.glb") && error.contains("does not exist"), qPrintable(error));
    QVERIFY(!RyGltfDocument::read(m_folder.path(), &error));
    QVERIFY2(error.contains("is not a file"), qPrintable(error));
    QVERIFY(!RyGltfDocument::read(QStringLiteral("/dev/zero"), &error));
    QVERIFY(!RyGltfDocument::read(QString(), nullptr));
}

void RyGltfRefusingTest::hostileModels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("expected"); // 1 opens, 0 refused, -1 either
    const QString folder = ryModelsPath();
    if (folder.isEmpty())
        QSKIP("the models are not on this machine");
    static const char *const opens[] = {
        "no_ibm",       "skeleton_not_joint_nonuniform", "two_skins_one_skeleton", "duplicate_joint",
        "zero_weights", "odd_and_equal_names",           "deep_5000_nodes",        "zero_scale_joint",
        "singular_ibm"};
    static const char *const refuses[] = {"node_cycle", "huge_count", "offset_overflow", "truncated_", "deep_json"};
    const QStringList names = QDir(folder + "/hostile").entryList({"*.glb", "*.gltf"}, QDir::Files);
    for (const QString &name : names) {
        int expected = -1;
        for (const char *part : opens)
            expected = name.startsWith("dv_") && name.contains(part) ? 1 : expected;
        for (const char *part : refuses)
            expected = name.startsWith("dv_") && name.contains(part) ? 0 : expected;
        QTest::newRow(qPrintable(name)) << name << expected;
    }
}

void RyGltfRefusingTest::hostileModels()
{
    QFETCH(QString, name);
    QFETCH(int, expected);
    QString error;
    QStringList warnings;
    const auto document = RyGltfDocument::read(ryModel("hostile/" + name), &error, &warnings);
    if (expected >= 0)
        QVERIFY2(bool(document) == (expected == 1), qPrintable(error));
    if (!document) {
        QVERIFY2(error.contains(name), qPrintable(error));
        return;
    }
    readAll(*document);
    QCOMPARE(document->toBytes(name), contents(ryModel("hostile/" + name)));
}

void RyGltfRefusingTest::realModelsComeOutAsTheyWentIn()
{
    if (ryModelsPath().isEmpty())
        QSKIP("the models are not on this machine");
    const QStringList names = QDir(ryModelsPath()).entryList({"*.glb", "*.gltf"}, QDir::Files);
    QVERIFY(names.size() >= 9);
    for (const QString &name : names) {
        QString error;
        QStringList warnings;
        const auto document = RyGltfDocument::read(ryModel(name), &error, &warnings);
        QVERIFY2(document, qPrintable(error));
        QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join('\n')));
        QCOMPARE(document->toBytes(name), contents(ryModel(name)));
        readAll(*document);
        // Through the other form and back: the same tree, the same numbers.
        const QString other = name.endsWith("glb") ? QStringLiteral("t.gltf") : QStringLiteral("t.glb");
        const auto again = RyGltfDocument::read(put(m_folder, other, document->toBytes(other)), &error);
        QVERIFY2(again, qPrintable(error));
        QCOMPARE(again->model().accessors.size(), document->model().accessors.size());
        for (int i = 0; i < int(document->model().accessors.size()); i += 1 + i / 50)
            QCOMPARE(again->readFloats(i), document->readFloats(i));
    }
}

void RyGltfRefusingTest::damagedAtRandom()
{
    std::mt19937 random(ryTestSeed());
    const QByteArray good[2] = {
        skinnedGlb(),
        skinnedJson("\"uri\":\"data:application/octet-stream;base64," + skinnedBinary().toBase64() + "\","),
    };
    int opened = 0;
    int refused = 0;
    for (int round = 0; round < 1500; ++round) {
        QByteArray bytes = good[round % 2];
        const int changes = 1 + int(random() % 4);
        for (int i = 0; i < changes; ++i) {
            const int at = int(random() % unsigned(bytes.size()));
            switch (random() % 4) {
            case 0:
                bytes[at] = char(random());
                break;
            case 1: // another digit is the change that reaches furthest
                for (int k = at; k < bytes.size(); ++k) {
                    if (bytes[k] >= '0' && bytes[k] <= '9') {
                        bytes[k] = char('0' + random() % 10);
                        break;
                    }
                }
                break;
            case 2:
                bytes.remove(at, 1 + int(random() % 8));
                break;
            default:
                bytes.insert(at, bytes.mid(int(random() % unsigned(bytes.size())), 1 + int(random() % 16)));
            }
        }
        const auto document = open(bytes);
        if (document) {
            ++opened;
            readAll(*document);
            QVERIFY(!document->toBytes(QStringLiteral("glb")).isEmpty());
        } else {
            ++refused;
            QVERIFY(m_error.contains("p.glb"));
        }
    }
    QVERIFY(opened > 20);
    QVERIFY(refused > 20);
}

RY_TEST(RyGltfRefusingTest)
#include "tst_gltf_refusing.moc"
