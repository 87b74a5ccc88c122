#include "GltfDocuments.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;

/// The forms of a file: what is written where, and what stays as it was.
class RyGltfWritingTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void layoutOfTheTextStays();
    void formsOfWriting();
    void severalBuffersBecomeOne();
    void imagesAreTakenIn();
    void unknownChunksStay();
    void failedWriteLeavesTheFile();
    void untouchedMembersStay();
};

void RyGltfWritingTest::layoutOfTheTextStays()
{
    for (const int width : {-1, 0, 1, 3, 4}) {
        Json tree = Json::parse(R"({"asset":{"version":"2.0"},"nodes":[{"name":"a"}]})");
        const char filler = width == 1 ? '\t' : ' ';
        const std::string text = tree.dump(width, filler);
        const auto document = open(QByteArray::fromStdString(text), "layout.gltf");
        QVERIFY2(document, qPrintable(m_error));
        document->setNodeName(0, "b");
        tree["nodes"][0]["name"] = "b";
        QCOMPARE(document->toBytes("gltf"), QByteArray::fromStdString(tree.dump(width, filler)));
    }
}

void RyGltfWritingTest::formsOfWriting()
{
    // To text and back is the same container again.
    const auto document = open();
    const QByteArray text = document->toBytes(".gltf");
    const auto asText = open(text, "forms.gltf");
    QVERIFY2(asText, qPrintable(m_error));
    QCOMPARE(asText->toBytes("gltf"), text);
    QCOMPARE(asText->toBytes("glb"), skinnedGlb());
    // A changed buffer in a data URI is written anew.
    std::vector<float> positions = asText->readFloats(0);
    positions[0] = -1.0f;
    QCOMPARE(asText->replaceFloats(0, positions), 0);
    QCOMPARE(reopened(*asText, "gltf")->readFloats(0), positions);
    // Into another folder the file takes along what stood beside it; in its own it goes on naming it.
    put(m_folder, "b.bin", skinnedBinary());
    const QByteArray external = skinnedJson("\"uri\":\"b.bin\",");
    const auto beside = open(external, "beside.gltf");
    QVERIFY(beside->write(m_folder.filePath("copy.gltf"), &m_error));
    QCOMPARE(contents(m_folder.filePath("copy.gltf")), external);
    QTemporaryDir other;
    QVERIFY(beside->write(other.filePath("copy.gltf"), &m_error));
    const auto moved = RyGltfDocument::read(other.filePath("copy.gltf"), &m_error);
    QVERIFY2(moved, qPrintable(m_error));
    QCOMPARE(moved->readFloats(3), beside->readFloats(3));
    QVERIFY(moved->json()["buffers"][0]["uri"].get<std::string>().starts_with("data:"));
}

void RyGltfWritingTest::severalBuffersBecomeOne()
{
    QByteArray first, second;
    append<float>(first, {1, 2});
    first.append("x"); // nine bytes: the next one begins at twelve
    append<float>(second, {3, 4, 5});
    const QByteArray json =
        R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":9,"name":"kept","uri":"data:;base64,)" +
        first.toBase64() + R"("},{"byteLength":12,"uri":"data:;base64,)" + second.toBase64() +
        R"("}],"bufferViews":[{"buffer":0,"byteLength":8},{"buffer":1,"byteOffset":4,"byteLength":8,)"
        R"("extensions":{"VENDOR_packed":{"buffer":1,"byteLength":2}}}],)"
        R"("accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"SCALAR"},)"
        R"({"bufferView":1,"componentType":5126,"count":2,"type":"SCALAR"}]})";
    const auto document = open(json, "two.gltf");
    QVERIFY2(document, qPrintable(m_error));
    const auto merged = reopened(*document);
    QVERIFY2(merged, qPrintable(m_error));
    QCOMPARE(merged->json()["buffers"].dump(), std::string(R"([{"byteLength":24,"name":"kept"}])"));
    QCOMPARE(merged->readFloats(0), (std::vector<float>{1, 2}));
    QCOMPARE(merged->readFloats(1), (std::vector<float>{4, 5}));
    QCOMPARE(merged->json()["bufferViews"][1]["extensions"]["VENDOR_packed"].dump(),
             std::string(R"({"buffer":0,"byteLength":2,"byteOffset":12})"));
}

void RyGltfWritingTest::imagesAreTakenIn()
{
    put(m_folder, "skin.png", "\x89PNG\r\n\x1a\nouter");
    const QByteArray json =
        R"({"asset":{"version":"2.0"},"images":[{"uri":"skin.png","name":"s"},{"uri":"missing.png"},)"
        R"({"uri":"data:image/png;base64,QUJDRA=="}]})";
    const auto document = open(json, "images.gltf");
    QVERIFY2(document, qPrintable(m_error));
    const auto container = reopened(*document);
    QVERIFY2(container, qPrintable(m_error));
    QString type;
    QCOMPARE(container->imageBytes(0, &type), QByteArray("\x89PNG\r\n\x1a\nouter"));
    QCOMPARE(type, QStringLiteral("image/png"));
    QCOMPARE(container->imageBytes(2), QByteArray("ABCD"));
    QCOMPARE(container->json()["images"][1]["uri"], Json("missing.png"));
    QVERIFY(!container->json()["images"][0].contains("uri"));
    QCOMPARE(container->json()["images"][0]["name"], Json("s"));
    QTemporaryDir other;
    QVERIFY(document->write(other.filePath("images.gltf"), &m_error));
    QCOMPARE(RyGltfDocument::read(other.filePath("images.gltf"), &m_error)->imageBytes(0),
             QByteArray("\x89PNG\r\n\x1a\nouter"));
    QVERIFY(document->write(m_folder.filePath("images2.gltf"), &m_error));
    QCOMPARE(contents(m_folder.filePath("images2.gltf")), json);
}

void RyGltfWritingTest::unknownChunksStay()
{
    QByteArray bytes = skinnedGlb();
    const QByteArray chunk("\x04\0\0\0ABCDwxyz", 12);
    bytes.append(chunk);
    const quint32 size = quint32(bytes.size());
    std::memcpy(bytes.data() + 8, &size, 4);
    const auto document = open(bytes);
    QVERIFY2(document, qPrintable(m_error));
    QCOMPARE(document->toBytes("glb"), bytes);
    document->setNodeName(0, "r2");
    QVERIFY(document->toBytes("glb").endsWith(chunk));
}

void RyGltfWritingTest::failedWriteLeavesTheFile()
{
    const auto document = open();
    document->setNodeName(0, "changed");
    QVERIFY2(document->write(m_folder.filePath("p.glb"), &m_error), qPrintable(m_error));
    QCOMPARE(RyGltfDocument::read(m_folder.filePath("p.glb"), &m_error)->model().nodes[0].name,
             QStringLiteral("changed"));
    const QByteArray before = contents(m_folder.filePath("p.glb"));
    document->json()["extras"] = std::string("\xff");
    QString error;
    QVERIFY(!document->write(m_folder.filePath("p.glb"), &error));
    QVERIFY2(error.contains("p.glb"), qPrintable(error));
    QCOMPARE(contents(m_folder.filePath("p.glb")), before);
    document->json().erase("extras");
    QVERIFY(!document->write(m_folder.filePath("none/p.glb"), &error));
    QVERIFY2(error.contains("does not exist"), qPrintable(error));
    QVERIFY(!document->write(m_folder.filePath("p.txt"), &error));
    QVERIFY(!QFile::exists(m_folder.filePath("p.txt")));
}

void RyGltfWritingTest::untouchedMembersStay()
{
    const auto document = open();
    document->setNodeName(0, "renamed");
    document->addNode("added", {}, 0);
    const auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    Json expected = Json::parse(skinnedJson({}).toStdString());
    expected["nodes"][0]["name"] = "renamed";
    expected["nodes"][0]["children"] = {1, 3};
    expected["nodes"].push_back({{"name", "added"}});
    QCOMPARE(QByteArray::fromStdString(again->json().dump()), QByteArray::fromStdString(expected.dump()));
}

RY_TEST(RyGltfWritingTest)
#include "tst_gltf_writing.moc"
