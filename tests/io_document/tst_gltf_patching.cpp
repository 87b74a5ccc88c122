#include "GltfDocuments.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;

/// Changes to a document: what was asked for is in the file that is written, and everything else is as it was.
class RyGltfPatchingTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void undoneChangesLeaveTheBytes();
    void nodeTransform();
    void nodeTransformAsMatrix();
    void nodeName();
    void nodesMeshesAndSkins();
    void documentFromNothing();
    void uintAccessors();
    void replaceInPlace();
    void replaceShared();
    void replaceInterleaved();
    void replaceExternal();
    void usesFollowEdits();
    void treeAndRefresh();
    void cloneIsIndependent();

private:
    static std::vector<bool> placesOf(const RyGltfDocument &document, bool countedAnew);
};

void RyGltfPatchingTest::undoneChangesLeaveTheBytes()
{
    const auto document = open();
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->toBytes("glb"), skinnedGlb());
    RyGltfTransform moved = document->model().nodes[1].transform;
    const RyGltfTransform before = moved;
    moved.translation = {5, 6, 7};
    document->setNodeTransform(1, moved);
    QVERIFY(document->toBytes("glb") != skinnedGlb());
    document->setNodeTransform(1, before);
    document->setNodeName(0, "x");
    document->setNodeName(0, "root");
    std::vector<float> positions = document->readFloats(0);
    positions[4] += 1.0f;
    QCOMPARE(document->replaceFloats(0, positions), 0);
    QVERIFY(document->toBytes("glb") != skinnedGlb());
    positions[4] -= 1.0f;
    QCOMPARE(document->replaceFloats(0, positions), 0);
    QCOMPARE(document->toBytes("glb"), skinnedGlb());
}

void RyGltfPatchingTest::nodeTransform()
{
    const auto document = open();
    RyGltfTransform t = document->model().nodes[0].transform;
    t.translation[0] = 2.5;
    t.scale = {2, 2, 2};
    document->setNodeTransform(0, t);
    const Json &node = document->json()["nodes"][0];
    QCOMPARE(QByteArray::fromStdString(node.dump()),
             QByteArray(
                 R"({"name":"root","children":[1],"translation":[2.5,0.10000000149011612,0],"scale":[2.0,2.0,2.0]})"));
    t.translation = {0, 0, 0};
    t.scale = {1, 1, 1};
    document->setNodeTransform(0, t);
    QCOMPARE(QByteArray::fromStdString(node.dump()), QByteArray(R"({"name":"root","children":[1]})"));
    // A part that is the identity and stands there already stays where it was not changed.
    RyGltfTransform tip = document->model().nodes[1].transform;
    tip.translation[1] = 3;
    document->setNodeTransform(1, tip);
    QVERIFY(document->json()["nodes"][1].contains("rotation"));
    const RyGltfTransform good = tip;
    tip.translation[1] = std::numeric_limits<double>::quiet_NaN();
    document->setNodeTransform(1, tip);
    QCOMPARE(document->model().nodes[1].transform.translation, good.translation);
    QCOMPARE(reopened(*document)->model().nodes[1].transform.translation, good.translation);
}

void RyGltfPatchingTest::nodeTransformAsMatrix()
{
    const auto document = open();
    RyGltfTransform t;
    t.hasMatrix = true;
    t.matrix = {1, 0.5, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1};
    document->setNodeTransform(1, t);
    const Json &node = document->json()["nodes"][1];
    QVERIFY(node.contains("matrix") && !node.contains("translation") && !node.contains("rotation"));
    QVERIFY(node.contains("extras"));
    auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    QVERIFY(again->model().nodes[1].transform.hasMatrix);
    QCOMPARE(again->model().nodes[1].transform.matrix, t.matrix);
    RyGltfTransform parts;
    parts.translation = {1, 2, 3};
    again->setNodeTransform(1, parts);
    QVERIFY(!again->json()["nodes"][1].contains("matrix"));
    QCOMPARE(reopened(*again)->model().nodes[1].transform.translation, parts.translation);
}

void RyGltfPatchingTest::nodeName()
{
    const auto document = open();
    const QString odd = QString::fromUtf8("L:Arm \"\xe2\x82\xac\" \xf0\x9f\xa6\x8a\n");
    document->setNodeName(1, odd);
    document->setNodeName(2, QString());
    QVERIFY(!document->json()["nodes"][2].contains("name"));
    const auto again = reopened(*document);
    QCOMPARE(again->model().nodes[1].name, odd);
    QCOMPARE(again->model().nodes[2].name, QString());
}

void RyGltfPatchingTest::nodesMeshesAndSkins()
{
    const auto document = open();
    RyGltfTransform t;
    t.translation = {0, 1, 0};
    const int joint = document->addNode("new joint", t, 1);
    const int root = document->addNode("holder", {}, -1);
    QCOMPARE(joint, 3);
    QCOMPARE(root, 4);
    const std::vector<float> points{0, 0, 0, 1, 0, 0, 0, 1, 0.5f};
    const int positions = document->addFloatAccessor(points, 3, 34962, true);
    const int indices = document->addUintAccessor(std::vector<std::uint32_t>{0, 1, 2}, 1, 5123, 34963);
    const int joints =
        document->addUintAccessor(std::vector<std::uint32_t>{0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0}, 4, 5121, 34962);
    const int weights = document->addUintAccessor(
        std::vector<std::uint32_t>{40000, 25535, 0, 0, 65535, 0, 0, 0, 65535, 0, 0, 0}, 4, 5123, 34962, true);
    std::vector<float> matrices(32, 0.0f);
    for (int i = 0; i < 2; ++i)
        matrices[std::size_t(16 * i)] = matrices[std::size_t(16 * i + 5)] = matrices[std::size_t(16 * i + 10)] =
            matrices[std::size_t(16 * i + 15)] = 1.0f;
    const int bind = document->addFloatAccessor(matrices, 16, 0);
    const int mesh = document->addMesh("added");
    document->addPrimitive(mesh, {{"POSITION", positions}}, indices, 0);
    document->setPrimitiveAttribute(mesh, 0, "JOINTS_0", joints);
    document->setPrimitiveAttribute(mesh, 0, "WEIGHTS_0", weights);
    const int skin = document->addSkin("second", {1, joint}, -1, 1);
    document->setSkinInverseBindMatrices(skin, bind);
    document->setNodeMeshAndSkin(root, mesh, skin);

    const auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    for (const RyGltfDocument *d :
         {static_cast<const RyGltfDocument *>(document.get()), static_cast<const RyGltfDocument *>(again.get())}) {
        const RyGltfModel &model = d->model();
        QCOMPARE(model.nodes[3].name, QStringLiteral("new joint"));
        QCOMPARE(model.nodes[3].parent, 1);
        QCOMPARE(model.nodes[1].children, std::vector<int>{3});
        QCOMPARE(model.nodes[3].transform.translation, t.translation);
        QCOMPARE(model.sceneRoots, (std::vector<int>{0, 2, 4}));
        QCOMPARE(model.nodes[4].mesh, 1);
        QCOMPARE(model.nodes[4].skin, 1);
        QCOMPARE(model.skins[1].joints, (std::vector<int>{1, 3}));
        QCOMPARE(model.skins[1].inverseBindMatrices, bind);
        QCOMPARE(model.skins[1].skeleton, 1);
        QCOMPARE(d->readFloats(positions), points);
        QCOMPARE(d->readUints(indices), (std::vector<std::uint32_t>{0, 1, 2}));
        QCOMPARE(d->readUints(joints)[1], 1u);
        QCOMPARE(d->readFloats(weights)[0], float(40000.0 / 65535.0));
        QCOMPARE(d->readFloats(bind), matrices);
        QCOMPARE(model.meshes[1].primitives[0].joints, std::vector<int>{joints});
        QCOMPARE(model.meshes[1].primitives[0].weights, std::vector<int>{weights});
        QCOMPARE(d->json()["accessors"][std::size_t(positions)]["max"], Json::parse("[1.0,1.0,0.5]"));
        QCOMPARE(d->json()["accessors"][std::size_t(positions)]["min"], Json::parse("[0.0,0.0,0.0]"));
    }
    document->setPrimitiveAttribute(mesh, 0, "WEIGHTS_0", -1);
    QVERIFY(document->model().meshes[1].primitives[0].joints.empty());
    document->setNodeMeshAndSkin(root, mesh, -1);
    QVERIFY(!document->json()["nodes"][4].contains("skin"));
}

void RyGltfPatchingTest::documentFromNothing()
{
    const auto document = RyGltfDocument::create();
    QVERIFY(document->path().isEmpty());
    QCOMPARE(document->toBytes("glb"), glb(R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{}]})", {}));
    const int node = document->addNode("a", {}, -1);
    const int mesh = document->addMesh({});
    const int positions = document->addFloatAccessor(std::vector<float>{1, 2, 3}, 3, 34962, true);
    document->addPrimitive(mesh, {{"POSITION", positions}}, -1, -1);
    document->setNodeMeshAndSkin(node, mesh, -1);
    for (const char *ending : {"glb", "gltf"}) {
        const auto again = reopened(*document, ending);
        QVERIFY2(again, qPrintable(m_error));
        QCOMPARE(again->readFloats(positions), (std::vector<float>{1, 2, 3}));
        QCOMPARE(again->model().sceneRoots, std::vector<int>{0});
        QCOMPARE(document->toBytes(ending), document->toBytes(ending));
    }
    QString error;
    QVERIFY(document->toBytes("obj", &error).isEmpty());
    QVERIFY2(error.contains("neither glb nor gltf"), qPrintable(error));
}

void RyGltfPatchingTest::uintAccessors()
{
    const auto document = RyGltfDocument::create();
    const std::vector<std::uint32_t> three{1, 2, 3, 4, 5, 6};
    const int accessor = document->addUintAccessor(three, 3, 5121, 34962); // elements of three bytes stand four apart
    QCOMPARE(document->readUints(accessor), three);
    QCOMPARE(document->json()["bufferViews"][0]["byteStride"], Json(4));
    QCOMPARE(document->addUintAccessor(std::vector<std::uint32_t>{256}, 1, 5121, 0), -1);
    QCOMPARE(document->addUintAccessor(std::vector<std::uint32_t>{65536}, 1, 5123, 0), -1);
    QCOMPARE(document->addUintAccessor(std::vector<std::uint32_t>{1}, 1, 5126, 0), -1);
    QCOMPARE(document->addUintAccessor(std::vector<std::uint32_t>{1, 2, 3}, 2, 5123, 0), -1);
    QCOMPARE(document->addUintAccessor({}, 1, 5123, 0), -1);
    QCOMPARE(document->addFloatAccessor(std::vector<float>{1, 2, 3, 4, 5}, 5, 0), -1);
    const int large = document->addUintAccessor(std::vector<std::uint32_t>{4294967295u}, 1, 5125, 34963);
    QCOMPARE(document->readUints(large), std::vector<std::uint32_t>{4294967295u});
    QCOMPARE(document->model().accessors.size(), 2u);
    QCOMPARE(reopened(*document)->readUints(accessor), three);
}

void RyGltfPatchingTest::replaceInPlace()
{
    const auto document = open();
    std::vector<float> positions = document->readFloats(0);
    positions[7] = 9.0f;
    const std::size_t accessorCount = document->model().accessors.size();
    QCOMPARE(document->replaceFloats(0, positions), 0);
    QCOMPARE(document->model().accessors.size(), accessorCount);
    QCOMPARE(document->json()["accessors"][0]["max"], Json::parse("[1,9,0]"));
    const QByteArray bytes = document->toBytes("glb");
    QCOMPARE(bytes.size(), skinnedGlb().size() + 12); // "0" became "0.0" in the six bounds
    const auto again = reopened(*document);
    QCOMPARE(again->readFloats(0), positions);
    for (int other = 1; other < 7; ++other)
        QCOMPARE(again->readFloats(other), open()->readFloats(other));
}

void RyGltfPatchingTest::replaceShared()
{
    // The same accessor twice, a second accessor on the same bytes, an image over them, another count: none is
    // overwritten.
    const auto check = [this](const std::function<void(Json &)> &change) {
        Json tree = Json::parse(skinnedJson({}).toStdString());
        change(tree);
        const auto document = open(glb(QByteArray::fromStdString(tree.dump()), skinnedBinary()));
        if (!document)
            return false;
        const std::vector<float> before = document->readFloats(3);
        std::vector<float> values = before;
        values[0] = 2.0f;
        const int added = document->replaceFloats(3, values);
        return added == int(tree["accessors"].size()) && document->readFloats(3) == before &&
               document->readFloats(added) == values && reopened(*document)->readFloats(added) == values;
    };
    QVERIFY(check([](Json &t) { t["skins"].push_back(t["skins"][0]); }));
    QVERIFY(check([](Json &t) { t["accessors"].push_back(t["accessors"][3]); }));
    QVERIFY(check([](Json &t) {
        t["accessors"].push_back(
            Json::parse(R"({"bufferView":3,"byteOffset":124,"componentType":5126,"count":1,"type":"SCALAR"})"));
    }));
    QVERIFY(check([](Json &t) { t["images"].push_back({{"bufferView", 3}}); }));
    QVERIFY(check([](Json &t) { t["bufferViews"][3]["extensions"] = {{"VENDOR_x", Json::object()}}; }));
    const auto document = open();
    QCOMPARE(document->replaceFloats(3, std::vector<float>(48, 0.5f)), 7);
    QCOMPARE(document->model().accessors[7].count, 3u);
    // Integers cannot take floats.
    QCOMPARE(document->replaceFloats(1, std::vector<float>(16, 0.25f)), 8);
    QCOMPARE(document->readFloats(8)[3], 0.25f);
}

void RyGltfPatchingTest::replaceInterleaved()
{
    QByteArray binary;
    append<float>(binary, {1, 2, 3, 0.25f, 4, 5, 6, 0.5f});
    const QByteArray json = R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":32}],)"
                            R"("bufferViews":[{"buffer":0,"byteLength":32,"byteStride":16}],)"
                            R"("accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"VEC3"},)"
                            R"({"bufferView":0,"byteOffset":12,"componentType":5126,"count":2,"type":"SCALAR"}]})";
    const auto document = open(glb(json, binary));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->replaceFloats(1, std::vector<float>{7, 8}), 1);
    QCOMPARE(document->replaceFloats(0, std::vector<float>{9, 9, 9, 1, 1, 1}), 0);
    QCOMPARE(document->readFloats(0), (std::vector<float>{9, 9, 9, 1, 1, 1}));
    QCOMPARE(document->readFloats(1), (std::vector<float>{7, 8}));
    // One byte of common ground is enough to keep them apart.
    QByteArray meeting = json;
    meeting.replace("\"byteOffset\":12", "\"byteOffset\":8");
    const auto shared = open(glb(meeting, binary));
    QVERIFY2(shared, qPrintable(m_error));
    QCOMPARE(shared->replaceFloats(0, std::vector<float>{9, 9, 9, 1, 1, 1}), 2);
    QCOMPARE(shared->readFloats(1), (std::vector<float>{3, 6}));
}

void RyGltfPatchingTest::replaceExternal()
{
    put(m_folder, "outside.bin", skinnedBinary());
    const auto document = open(skinnedJson("\"uri\":\"outside.bin\","), "ext.gltf");
    QVERIFY2(document, qPrintable(m_error));
    const std::vector<float> values(12, 3.0f);
    const int accessor = document->replaceFloats(0, values);
    QCOMPARE(accessor, 7);
    QCOMPARE(document->json()["accessors"][7]["max"], Json::parse("[3.0,3.0,3.0]"));
    document->setPrimitiveAttribute(0, 0, "POSITION", accessor);
    QVERIFY2(document->write(m_folder.filePath("ext.gltf"), &m_error), qPrintable(m_error));
    QCOMPARE(contents(m_folder.filePath("outside.bin")), skinnedBinary());
    const auto again = RyGltfDocument::read(m_folder.filePath("ext.gltf"), &m_error);
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->json()["buffers"][0]["uri"], Json("outside.bin"));
    QCOMPARE(again->readFloats(again->model().meshes[0].primitives[0].positions), values);
    // From then on it is ours.
    QCOMPARE(again->replaceFloats(accessor, std::vector<float>(12, 4.0f)), accessor);
}

/// Where numbers of every accessor would go, for each count of users that somebody may know of: into its own bytes, or
/// elsewhere as there are more.
std::vector<bool> RyGltfPatchingTest::placesOf(const RyGltfDocument &document, bool countedAnew)
{
    std::vector<bool> places;
    const std::unique_ptr<RyGltfDocument> copy = document.clone();
    for (int accessor = 0; accessor < int(document.model().accessors.size()); ++accessor) {
        const std::vector<float> numbers = copy->readFloats(accessor);
        for (int users = 0; users < 6 && !numbers.empty(); ++users) {
            if (countedAnew)
                copy->json();
            places.push_back(copy->replaceFloats(accessor, numbers, users) == accessor);
        }
    }
    return places;
}

void RyGltfPatchingTest::usesFollowEdits()
{
    const auto document = open();
    RyRandom random;
    std::vector<int> points, binds;
    for (int i = 0; i < 6; ++i) {
        points.push_back(document->addFloatAccessor(std::vector<float>(12, float(i)), 3, 34962, true));
        binds.push_back(document->addFloatAccessor(std::vector<float>(32, float(i)), 16, 0));
    }
    const auto point = [&] { return points[std::size_t(random.integer(0, 5))]; };
    const auto bind = [&] { return random.integer(0, 3) == 0 ? -1 : binds[std::size_t(random.integer(0, 5))]; };
    for (int edit = 0; edit < 200; ++edit) {
        QVERIFY(document->replaceFloats(points[0], std::vector<float>(12, 0.0f), 1000) ==
                points[0]); // counts are known
        const int primitives = int(document->model().meshes[0].primitives.size());
        const int primitive = random.integer(0, primitives - 1);
        switch (random.integer(0, 5)) {
        case 0:
            document->setPrimitiveAttribute(0, primitive, "NORMAL", random.integer(0, 2) == 0 ? -1 : point());
            break;
        case 1:
            document->addPrimitive(0, {{"POSITION", point()}, {"NORMAL", point()}}, -1, -1);
            break;
        case 2:
            document->setTargets(0, primitive, {{{"POSITION", point()}}, {{"POSITION", point()}, {"NORMAL", point()}}});
            break;
        case 3:
            document->setTargets(0, primitive, {});
            break;
        case 4:
            document->addSkin("another", {1}, bind(), -1);
            break;
        case 5:
            document->setSkinInverseBindMatrices(random.integer(0, int(document->model().skins.size()) - 1), bind());
            break;
        }
        QCOMPARE(placesOf(*document, false), placesOf(*document, true));
    }
}

void RyGltfPatchingTest::treeAndRefresh()
{
    const auto document = open();
    document->json()["nodes"].push_back({{"name", "by hand"}});
    document->json()["nodes"][1]["children"] = {3};
    QVERIFY2(document->refresh(&m_error), qPrintable(m_error));
    QCOMPARE(document->model().nodes.size(), 4u);
    QCOMPARE(document->model().nodes[3].parent, 1);
    document->json()["nodes"][3]["children"] = {0};
    QString error;
    QVERIFY(!document->refresh(&error));
    QVERIFY2(error.contains("below itself"), qPrintable(error));
    QCOMPARE(document->model().nodes.size(), 4u);
    QVERIFY(document->model().nodes[3].children.empty());
    document->json()["nodes"][3].erase("children");
    document->json()["buffers"].push_back({{"byteLength", 1}});
    QVERIFY(!document->refresh(&error));
    // A text that is not UTF-8 cannot be written; the message says so and nothing is thrown.
    const auto bad = open();
    bad->json()["extras"] = std::string("\xff");
    QVERIFY(bad->toBytes("glb", &error).isEmpty());
    QVERIFY2(error.contains("UTF-8"), qPrintable(error));
}

void RyGltfPatchingTest::cloneIsIndependent()
{
    auto document = open();
    const auto copy = document->clone();
    std::vector<float> positions = document->readFloats(0);
    positions[0] = 5.0f;
    document->replaceFloats(0, positions);
    document->setNodeName(0, "other");
    document->addFloatAccessor(positions, 3, 0);
    QCOMPARE(copy->toBytes("glb"), skinnedGlb());
    QCOMPARE(copy->readFloats(0)[0], 0.0f);
    const QByteArray changed = document->toBytes("glb");
    document.reset();
    QCOMPARE(copy->readFloats(0)[3], 1.0f); // the bytes of the file outlive the document that read them
    QVERIFY(changed != skinnedGlb());
}

RY_TEST(RyGltfPatchingTest)
#include "tst_gltf_patching.moc"
