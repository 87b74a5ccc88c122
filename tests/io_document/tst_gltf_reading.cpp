#include "GltfDocuments.h"
#include "support/RyTest.h"

#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;

/// What a file holds arrives in the model, whatever form the file has.
class RyGltfReadingTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void model();
    void formsAgree_data();
    void formsAgree();
    void componentTypes();
    void smallMatricesArePadded();
    void sparse();
    void interleaved();
    void numbersThatAreNotFinite();
    void influencesAreRepaired();
    void verticesAtOnePlaceAreToldApart();
    void polygons_data();
    void polygons();
    void image();
    void transform();
    void scenes();
    void byteOrderMark();
    void uris_data();
    void uris();
};

void RyGltfReadingTest::model()
{
    const auto document = open(skinnedGlb());
    QVERIFY2(document, qPrintable(m_error));
    QVERIFY2(m_warnings.isEmpty(), qPrintable(m_warnings.join('\n')));
    const RyGltfModel &model = document->model();
    QCOMPARE(model.nodes.size(), 3u);
    QCOMPARE(model.nodes[0].name, QStringLiteral("root"));
    QCOMPARE(model.nodes[0].children, std::vector<int>{1});
    QCOMPARE(model.nodes[1].parent, 0);
    QCOMPARE(model.nodes[0].parent, -1);
    QCOMPARE(model.nodes[0].transform.translation[1], 0.10000000149011612);
    QCOMPARE(model.nodes[2].mesh, 0);
    QCOMPARE(model.nodes[2].skin, 0);
    QCOMPARE(model.sceneRoots, (std::vector<int>{0, 2}));
    QCOMPARE(model.skins.size(), 1u);
    QCOMPARE(model.skins[0].joints, (std::vector<int>{0, 1}));
    QCOMPARE(model.skins[0].inverseBindMatrices, 3);
    QCOMPARE(model.skins[0].skeleton, 0);
    QCOMPARE(model.skins[0].name, QStringLiteral("rig"));
    const RyGltfPrimitive &primitive = model.meshes.at(0).primitives.at(0);
    QCOMPARE(primitive.positions, 0);
    QCOMPARE(primitive.joints, std::vector<int>{1});
    QCOMPARE(primitive.weights, std::vector<int>{2});
    QCOMPARE(primitive.indices, 4);
    QCOMPARE(primitive.material, 0);
    QCOMPARE(model.materials.at(0).baseColor[2], 0.25f);
    QCOMPARE(model.materials[0].baseColorTexture, 0);
    QVERIFY(model.materials[0].doubleSided);
    QCOMPARE(model.animationNames.at(0), QStringLiteral("wave"));
    QCOMPARE(model.animatedNodes.at(0), std::vector<int>{1});
    QCOMPARE(document->readFloats(0), (std::vector<float>{0, 0, 0, 1, 0, 0, 1, 2, 0, 0, 2, 0}));
    QCOMPARE(document->readUints(4), (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3}));
    QCOMPARE(document->readUints(1)[1], 1u);
    QCOMPARE(document->packedBytes(4).size(), 12u);
    QCOMPARE(int(document->packedBytes(4)[2]), 1);
}

void RyGltfReadingTest::formsAgree_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray data = "\"uri\":\"data:application/octet-stream;base64," + skinnedBinary().toBase64() + "\",";
    QTest::newRow("data URI") << "data.gltf" << skinnedJson(data);
    QTest::newRow("file beside it") << "external.gltf" << skinnedJson("\"uri\":\"my%20buffer.bin\",");
    QTest::newRow("file below it") << "below.gltf" << skinnedJson("\"uri\":\"./sub/buffer.bin\",");
    QTest::newRow("container, data URI") << "data.glb" << glb(skinnedJson(data), {});
}

void RyGltfReadingTest::formsAgree()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    put(m_folder, QStringLiteral("my buffer.bin"), skinnedBinary() + "more");
    put(m_folder, QStringLiteral("sub/buffer.bin"), skinnedBinary());
    const auto document = open(bytes, name);
    QVERIFY2(document, qPrintable(m_error));
    const auto reference = RyGltfDocument::read(put(m_folder, QStringLiteral("r.glb"), skinnedGlb()), &m_error);
    QVERIFY(reference);
    for (int accessor = 0; accessor < 7; ++accessor)
        QCOMPARE(document->readFloats(accessor), reference->readFloats(accessor));
    // Written as a container all of them are the same file.
    QCOMPARE(
        RyGltfDocument::read(put(m_folder, QStringLiteral("w.glb"), document->toBytes("glb")), &m_error)->readFloats(3),
        reference->readFloats(3));
    if (name.endsWith(QLatin1String("gltf"))) {
        const QByteArray written = document->toBytes(QStringLiteral(".glb"));
        QCOMPARE(written, skinnedGlb());
    }
}

void RyGltfReadingTest::componentTypes()
{
    QByteArray binary;
    append<std::int8_t>(binary, {-128, 127, -1, 0}); // 0
    append<std::uint8_t>(binary, {0, 255, 51, 1});   // 4
    append<std::int16_t>(binary, {-32768, 32767});   // 8
    append<std::uint16_t>(binary, {65535, 13107});   // 12
    append<std::uint32_t>(binary, {4294967295u});    // 16
    append<float>(binary, {-2.5f});                  // 20
    const auto accessor = [](int offset, int type, int count, bool normalized) {
        return QStringLiteral(
                   "{\"bufferView\":0,\"byteOffset\":%1,\"componentType\":%2,\"count\":%3,\"type\":\"SCALAR\"%4}")
            .arg(offset)
            .arg(type)
            .arg(count)
            .arg(normalized ? ",\"normalized\":true" : "")
            .toUtf8();
    };
    const QByteArray json =
        "{\"asset\":{\"version\":\"2.0\"},\"buffers\":[{\"byteLength\":24}],\"bufferViews\":[{\"buffer\":0,"
        "\"byteLength\":24}],\"accessors\":[" +
        accessor(0, 5120, 4, true) + "," + accessor(4, 5121, 4, true) + "," + accessor(8, 5122, 2, true) + "," +
        accessor(12, 5123, 2, true) + "," + accessor(16, 5125, 1, false) + "," + accessor(20, 5126, 1, false) + "," +
        accessor(0, 5120, 4, false) + "]}";
    const auto document = open(glb(json, binary));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->readFloats(0), (std::vector<float>{-1.0f, 1.0f, float(-1.0 / 127.0), 0.0f}));
    QCOMPARE(document->readFloats(1), (std::vector<float>{0.0f, 1.0f, 0.2f, float(1.0 / 255.0)}));
    QCOMPARE(document->readFloats(2), (std::vector<float>{-1.0f, 1.0f}));
    QCOMPARE(document->readFloats(3), (std::vector<float>{1.0f, 0.2f}));
    QCOMPARE(document->readUints(4), (std::vector<std::uint32_t>{4294967295u}));
    QCOMPARE(document->readFloats(5), (std::vector<float>{-2.5f}));
    QCOMPARE(document->readUints(5), (std::vector<std::uint32_t>{0}));
    QCOMPARE(document->readFloats(6), (std::vector<float>{-128, 127, -1, 0}));
    QCOMPARE(document->readUints(6), (std::vector<std::uint32_t>{0, 127, 0, 0}));
}

void RyGltfReadingTest::smallMatricesArePadded()
{
    QByteArray binary;
    append<std::uint8_t>(binary, {1, 2, 9, 9, 3, 4, 9, 9});             // 2x2, columns of four bytes
    append<std::uint8_t>(binary, {1, 2, 3, 9, 4, 5, 6, 9, 7, 8, 9, 9}); // 3x3
    const QByteArray json =
        R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":20}],"bufferViews":[{"buffer":0,"byteLength":20}],)"
        R"("accessors":[{"bufferView":0,"componentType":5121,"count":1,"type":"MAT2"},)"
        R"({"bufferView":0,"byteOffset":8,"componentType":5121,"count":1,"type":"MAT3"}]})";
    const auto document = open(glb(json, binary));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->readUints(0), (std::vector<std::uint32_t>{1, 2, 3, 4}));
    QCOMPARE(document->readUints(1), (std::vector<std::uint32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    QVERIFY(document->packedBytes(1).empty());
}

void RyGltfReadingTest::sparse()
{
    QByteArray binary;
    append<float>(binary, {1, 2, 3, 4, 5, 6});       // 0: two of VEC3
    append<std::uint16_t>(binary, {1, 3});           // 24
    append<float>(binary, {10, 20, 30, 40, 50, 60}); // 28
    const QByteArray tail =
        R"("sparse":{"count":2,"indices":{"bufferView":1,"componentType":5123},"values":{"bufferView":2}})";
    const QByteArray json =
        R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":52}],"bufferViews":[{"buffer":0,"byteLength":24},)"
        R"({"buffer":0,"byteOffset":24,"byteLength":4},{"buffer":0,"byteOffset":28,"byteLength":24}],)"
        R"("accessors":[{"componentType":5126,"count":4,"type":"VEC3",)" +
        tail + "}]}";
    auto document = open(glb(json, binary));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->readFloats(0), (std::vector<float>{0, 0, 0, 10, 20, 30, 0, 0, 0, 40, 50, 60}));
    QVERIFY(document->packedBytes(0).empty());
    QVERIFY(document->model().accessors[0].sparse);

    QByteArray over = json;
    over.replace("\"count\":4", "\"count\":3");
    QVERIFY(!open(glb(over, binary)));
    QVERIFY2(m_error.contains("accessors[0].sparse.indices: element 3 does not exist (there are 3)"),
             qPrintable(m_error));
}

void RyGltfReadingTest::interleaved()
{
    QByteArray binary;
    append<float>(binary, {1, 2, 3, 0.25f, 4, 5, 6, 0.5f});
    const QByteArray json = R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":32}],)"
                            R"("bufferViews":[{"buffer":0,"byteLength":32,"byteStride":16}],)"
                            R"("accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"VEC3"},)"
                            R"({"bufferView":0,"byteOffset":12,"componentType":5126,"count":2,"type":"SCALAR"}]})";
    const auto document = open(glb(json, binary));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->readFloats(0), (std::vector<float>{1, 2, 3, 4, 5, 6}));
    QCOMPARE(document->readFloats(1), (std::vector<float>{0.25f, 0.5f}));
    QVERIFY(document->packedBytes(0).empty());
}

void RyGltfReadingTest::numbersThatAreNotFinite()
{
    QByteArray binary = skinnedBinary();
    const float bad[3] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 7.0f};
    std::memcpy(binary.data(), bad, sizeof(bad));
    const auto document = open(glb(skinnedJson({}), binary));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(m_warnings.size(), 1);
    QVERIFY(m_warnings[0].startsWith("accessors[0]"));
    const std::vector<float> positions = document->readFloats(0);
    QCOMPARE(positions[0], 0.0f);
    QCOMPARE(positions[1], 0.0f);
    QCOMPARE(positions[2], 7.0f);
}

void RyGltfReadingTest::influencesAreRepaired()
{
    QByteArray binary = skinnedBinary();
    const std::uint8_t joints[16] = {0, 0, 1, 9, 1, 1, 1, 1, 0, 1, 0, 1, 5, 6, 7, 8};
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float weights[16] = {0.25f, 0.25f, 0.5f, 1.0f, nan, -1.0f, 0.75f, 0, 0, 0, 0, 0, 1, 0, 0, 0};
    std::memcpy(binary.data() + 48, joints, 16);
    std::memcpy(binary.data() + 64, weights, 64);
    const std::shared_ptr<RyGltfDocument> document = open(glb(skinnedJson({}), binary));
    QVERIFY2(document, qPrintable(m_error));
    // One vertex is used by two bones in equal parts, one by a joint named twice; what names no joint or is no positive
    // number goes, and with it whatever the other vertices had.
    RyGltfMeshBuilder builder(document);
    builder.addPart(0, 0, QStringLiteral("quad"), {0, 1}, RyAffine(), 0);
    QCOMPARE(builder.droppedInfluences, 4);
    QCOMPARE(builder.positions.size(), size_t(4));
    const std::vector<RyGltfMeshBuilder::BoneWeights> ofBones = builder.boneWeights(2);
    QCOMPARE(ofBones[0].vertices, (std::vector<int>{0}));
    QCOMPARE(ofBones[1].vertices, (std::vector<int>{0, 1}));
    QCOMPARE(int(ofBones[0].weights[0]) + int(ofBones[1].weights[0]), 65535);
    QVERIFY(std::abs(int(ofBones[0].weights[0]) - 32767) <= 1);
    QCOMPARE(ofBones[1].weights[1], quint16(65535));
    QCOMPARE(builder.strongestBones()[1], 1);
    QCOMPARE(builder.strongestBones()[2], -1);
    QCOMPARE(builder.strongestBones()[3], -1);
}

void RyGltfReadingTest::verticesAtOnePlaceAreToldApart()
{
    // All at one place: every weighting three times, the first two with the same normal.
    constexpr int Weightings = 3000;
    const std::shared_ptr<RyGltfDocument> document = RyGltfDocument::create();
    std::vector<float> positions, normals, weights;
    std::vector<std::uint32_t> joints;
    for (int i = 0; i < 3 * Weightings; ++i) {
        const float share = float(i % Weightings + 1) / float(Weightings + 1);
        positions.insert(positions.end(), {1.0f, 2.0f, -0.5f});
        normals.insert(normals.end(), {i < 2 * Weightings ? 1.0f : 0.0f, 0.0f, i < 2 * Weightings ? 0.0f : 1.0f});
        weights.insert(weights.end(), {share, 1.0f - share, 0.0f, 0.0f});
        joints.insert(joints.end(), {0, 1, 0, 0});
    }
    document->addMesh(QStringLiteral("knot"));
    document->addPrimitive(0,
                           {{"POSITION", document->addFloatAccessor(positions, 3, 34962, true)},
                            {"NORMAL", document->addFloatAccessor(normals, 3, 34962)},
                            {"JOINTS_0", document->addUintAccessor(joints, 4, 5121, 34962)},
                            {"WEIGHTS_0", document->addFloatAccessor(weights, 4, 34962)}},
                           -1, -1);
    QString error;
    QVERIFY2(document->refresh(&error), qPrintable(error));
    RyGltfMeshBuilder builder(document);
    builder.addPart(0, 0, QStringLiteral("knot"), {0, 1}, RyAffine(), 0);
    QCOMPARE(builder.positions.size(), size_t(Weightings));
    QCOMPARE(builder.parts.normalCount, 2 * Weightings);
    const RyMeshPart &part = builder.parts.parts[0];
    for (int i = 0; i < Weightings; ++i) {
        for (int turn = 0; turn < 3; ++turn)
            QCOMPARE(part.vertexOfSplit[size_t(i + turn * Weightings)], i);
        QCOMPARE(part.normalOfSplit[size_t(i + Weightings)], part.normalOfSplit[size_t(i)]);
        QVERIFY(part.normalOfSplit[size_t(i + 2 * Weightings)] != part.normalOfSplit[size_t(i)]);
    }
    QVERIFY2(builder.comparisons < 20 * Weightings, qPrintable(QString::number(builder.comparisons)));
}

void RyGltfReadingTest::polygons_data()
{
    QTest::addColumn<std::vector<std::uint32_t>>("indices");
    QTest::addColumn<std::vector<int>>("corners");
    using Indices = std::vector<std::uint32_t>;
    using Corners = std::vector<int>;
    QTest::newRow("quads") << Indices{0, 1, 2, 0, 2, 3, 4, 5, 1, 4, 1, 0} << Corners{4, 4};
    QTest::newRow("next begins elsewhere than the last ended") << Indices{0, 1, 2, 0, 3, 4} << Corners{3, 3};
    QTest::newRow("larger ones stay cut")
        << Indices{0, 1, 2, 0, 2, 3, 0, 3, 4, 1, 2, 3, 1, 3, 5} << Corners{3, 3, 3, 4};
    // The vertices 0 and 6 are one in the scene, and two in the file.
    QTest::newRow("before welding") << Indices{0, 1, 2, 6, 2, 3} << Corners{3, 3};
    QTest::newRow("nothing behind") << Indices{0, 1, 2, 1, 2, 3, 1, 3, 4} << Corners{3, 4};
}

/// Polygons are read only where the primitive says that it has some.
void RyGltfReadingTest::polygons()
{
    QFETCH(std::vector<std::uint32_t>, indices);
    QFETCH(std::vector<int>, corners);
    for (const bool isMarked : {true, false}) {
        const std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
        std::vector<float> positions;
        for (int i = 0; i < 6; ++i)
            positions.insert(positions.end(), {float(i % 2), float(i / 2), 0.1f * float(i)});
        positions.insert(positions.end(), {0.0f, 0.0f, 0.0f});
        document->addMesh(QStringLiteral("net"));
        document->addPrimitive(0, {{"POSITION", document->addFloatAccessor(positions, 3, 34962, true)}},
                               document->addUintAccessor(indices, 1, 5125, 34963), -1);
        document->json()["extensionsUsed"] = {"FB_ngon_encoding"};
        if (isMarked)
            document->markFans(0, 0);
        const std::shared_ptr<RyGltfDocument> again = reopened(*document);
        QVERIFY2(again, qPrintable(m_error));
        RyGltfMeshBuilder builder(again);
        builder.addPart(0, 0, QStringLiteral("net"), {}, RyAffine(), 0);
        QCOMPARE(builder.positions.size(), size_t(6));
        std::vector<int> read;
        for (const RyFacet &facet : builder.facets)
            read.push_back(facet.count());
        QCOMPARE(read, isMarked ? corners : std::vector<int>(indices.size() / 3, 3));
        QCOMPARE(builder.parts.parts[0].facetCount, int(read.size()));
        QCOMPARE(builder.parts.parts[0].triangles, indices);
    }
}

void RyGltfReadingTest::image()
{
    const auto document = open(skinnedGlb());
    QVERIFY(document);
    QString type;
    QCOMPARE(document->imageBytes(0, &type), QByteArray("\x89PNG\r\n\x1a\n....", 12));
    QCOMPARE(type, QStringLiteral("image/png"));
    QVERIFY(document->imageBytes(1).isEmpty());
    QVERIFY(document->imageBytes(-1).isEmpty());

    const QByteArray head = "{\"asset\":{\"version\":\"2.0\"},\"images\":[{\"uri\":\"";
    put(m_folder, QStringLiteral("tex ture.jpg"), "\xff\xd8\xff here");
    const auto beside =
        open(head + "tex%20ture.jpg\"},{\"uri\":\"../up.png\"},{\"uri\":\"data:image/gif;base64,QUJD\"},"
                    "{\"uri\":\"gone.png\"}]}",
             QStringLiteral("i.gltf"));
    QVERIFY2(beside, qPrintable(m_error));
    QCOMPARE(beside->imageBytes(0, &type), QByteArray("\xff\xd8\xff here"));
    QCOMPARE(type, QStringLiteral("image/jpeg"));
    QVERIFY(beside->imageBytes(1).isEmpty());
    QCOMPARE(beside->imageBytes(2, &type), QByteArray("ABC"));
    QCOMPARE(type, QStringLiteral("image/gif"));
    QVERIFY(beside->imageBytes(3).isEmpty());
}

void RyGltfReadingTest::transform()
{
    RyGltfTransform t;
    t.translation = {1, 2, 3};
    t.rotation = {0, 0, std::sqrt(0.5), std::sqrt(0.5)}; // a quarter about Z takes X to Y
    t.scale = {2, 3, 4};
    const double x[3] = {1, 0, 0}, y[3] = {0, 1, 0}, z[3] = {0, 0, 1};
    const double *axes[3] = {x, y, z};
    const double images[3][3] = {{1, 4, 3}, {-2, 2, 3}, {1, 2, 7}};
    RyAffine map = t.toAffine();
    for (int turn = 0; turn < 2; ++turn) {
        for (int k = 0; k < 3; ++k) {
            for (int i = 0; i < 3; ++i) {
                const double image =
                    axes[k][0] * map.m[0][i] + axes[k][1] * map.m[1][i] + axes[k][2] * map.m[2][i] + map.m[3][i];
                QVERIFY(std::abs(image - images[k][i]) < 1e-12);
            }
        }
        t.hasMatrix = true; // the same as sixteen numbers, column after column of the file's matrix
        t.matrix = {0, 2, 0, 0, -3, 0, 0, 0, 0, 0, 4, 0, 1, 2, 3, 1};
        map = t.toAffine();
    }
    RyGltfTransform zero;
    zero.rotation = {0, 0, 0, 0};
    QVERIFY(zero.toAffine().m[0][0] == 1.0 && zero.toAffine().m[0][1] == 0.0);
}

void RyGltfReadingTest::scenes()
{
    const QByteArray nodes = R"({"asset":{"version":"2.0"},"nodes":[{"children":[1]},{},{}])";
    QCOMPARE(open(nodes + "}", "s.gltf")->model().sceneRoots, (std::vector<int>{0, 2}));
    QCOMPARE(open(nodes + R"(,"scenes":[{"nodes":[2]},{"nodes":[0]}],"scene":1})", "s.gltf")->model().sceneRoots,
             std::vector<int>{0});
    QCOMPARE(open(nodes + R"(,"scenes":[{"nodes":[2]},{"nodes":[0]}]})", "s.gltf")->model().sceneRoots,
             std::vector<int>{2});
    QCOMPARE(open(nodes + R"(,"scenes":[{"nodes":[1,0,2,2]}],"scene":7})", "s.gltf")->model().sceneRoots,
             (std::vector<int>{0, 2}));
    QCOMPARE(m_warnings.size(), 2);
}

void RyGltfReadingTest::byteOrderMark()
{
    const QByteArray bytes = "\xef\xbb\xbf{\"asset\":{\"version\":\"2.0\"},\"nodes\":[{}]}";
    const auto document = open(bytes, QStringLiteral("bom.gltf"));
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->model().nodes.size(), 1u);
    QCOMPARE(document->toBytes(QStringLiteral("gltf")), bytes);
}

void RyGltfReadingTest::uris_data()
{
    QTest::addColumn<QByteArray>("uri");
    QTest::addColumn<QString>("reason");
    QTest::newRow("absolute") << QByteArray("/etc/hostname") << "is not relative";
    QTest::newRow("encoded slash") << QByteArray("%2Fetc%2Fhostname") << "is not relative";
    QTest::newRow("upwards") << QByteArray("../a.bin") << "leads out of the folder";
    QTest::newRow("encoded upwards") << QByteArray("x/%2e%2e/%2e./a.bin") << "leads out of the folder";
    QTest::newRow("backslash") << QByteArray("..\\\\a.bin") << "is not relative";
    QTest::newRow("http") << QByteArray("http://example.com/a.bin") << "does not name a file beside";
    QTest::newRow("file") << QByteArray("file:///etc/hostname") << "does not name a file beside";
    QTest::newRow("drive") << QByteArray("C:/a.bin") << "does not name a file beside";
    QTest::newRow("empty") << QByteArray("") << "is empty";
    QTest::newRow("NUL") << QByteArray("a%00b") << "is no file name";
    QTest::newRow("missing") << QByteArray("gone.bin") << "does not exist";
    QTest::newRow("folder") << QByteArray("folder") << "is not a file";
    QTest::newRow("too short") << QByteArray("short.bin") << "8 bytes announced, 3 there";
    QTest::newRow("bad base64") << QByteArray("data:;base64,A*==") << "not valid base64";
    QTest::newRow("no comma") << QByteArray("data:;base64") << "no comma";
}

void RyGltfReadingTest::uris()
{
    QFETCH(QByteArray, uri);
    QFETCH(QString, reason);
    QDir(m_folder.path()).mkpath(QStringLiteral("folder"));
    put(m_folder, QStringLiteral("short.bin"), "abc");
    const QByteArray json = R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":8,"uri":")" + uri + "\"}]}";
    QVERIFY(!open(json, QStringLiteral("uri.gltf")));
    QVERIFY2(m_error.contains(reason), qPrintable(m_error));
    QVERIFY2(m_error.contains("buffers[0]") && m_error.contains("uri.gltf"), qPrintable(m_error));
}

RY_TEST(RyGltfReadingTest)
#include "tst_gltf_reading.moc"
