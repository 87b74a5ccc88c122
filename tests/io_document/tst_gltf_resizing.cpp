#include "GltfDocuments.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;
using namespace GltfFixture;

/// Accessors that get another number of values where they stand: nothing else in the file says anything else, and the
/// bytes they leave go.
class RyGltfResizingTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void counts_data();
    void counts();
    void bounds();
    void offsetInView();
    void againAndAgain();
    void shared_data();
    void shared();
    void external();

private:
    static constexpr int Times = 5, Turns = 6;

    static std::vector<float> numbers(size_t count)
    {
        std::vector<float> values;
        for (size_t i = 0; i < count; ++i)
            values.push_back(0.25f * float(i) - 3.0f);
        return values;
    }
    static QByteArray fileOf(const Json &tree) { return glb(QByteArray::fromStdString(tree.dump()), skinnedBinary()); }
    static Json tree() { return Json::parse(skinnedJson({}).toStdString()); }

    /// What all accessors but one hold, and the image.
    static std::vector<std::vector<float>> others(const RyGltfDocument &document, int but)
    {
        std::vector<std::vector<float>> result;
        for (int i = 0; i < int(document.model().accessors.size()); ++i) {
            if (i != but)
                result.push_back(document.readFloats(i));
        }
        const QByteArray image = document.imageBytes(0);
        result.emplace_back(image.begin(), image.end());
        return result;
    }
};

void RyGltfResizingTest::counts_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("one") << 1;
    QTest::newRow("as many") << 2;
    QTest::newRow("three") << 3;
    QTest::newRow("a thousand") << 1000;
}

void RyGltfResizingTest::counts()
{
    QFETCH(int, count);
    const auto document = open();
    const auto before = others(*document, Turns);
    const std::vector<float> values = numbers(4 * size_t(count));
    QVERIFY(document->resizeFloats(Turns, values));
    QCOMPARE(document->model().accessors[Turns].count, std::uint64_t(count));
    QCOMPARE(document->readFloats(Turns), values);
    document->dropUnused();
    const auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->readFloats(Turns), values);
    QVERIFY(others(*again, Turns) == before);
    // The same places in the lists, unmarked, and as many bytes more as there are numbers more.
    const Json now = again->json(), old = tree();
    QCOMPARE(now["accessors"].size(), old["accessors"].size());
    QCOMPARE(now["accessors"][Turns].size(), old["accessors"][Turns].size());
    QCOMPARE(now["bufferViews"].size(), old["bufferViews"].size());
    QCOMPARE(now["bufferViews"][Turns]["byteLength"], Json(16 * count));
    QCOMPARE(now["bufferViews"][Turns].size(), old["bufferViews"][Turns].size());
    QCOMPARE(now["buffers"][0]["byteLength"], Json(320 + 16 * (count - 2)));
}

void RyGltfResizingTest::bounds()
{
    const auto document = open();
    QVERIFY(document->resizeFloats(Times, std::vector<float>{-1.5f, 0.0f, 0.5f, 7.25f}));
    QVERIFY(document->resizeFloats(Turns, numbers(16)));
    const auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->json()["accessors"][Times]["min"], Json::parse("[-1.5]"));
    QCOMPARE(again->json()["accessors"][Times]["max"], Json::parse("[7.25]"));
    QVERIFY(!again->json()["accessors"][Turns].contains("min"));
}

/// A view can hold more than its one accessor reads.
void RyGltfResizingTest::offsetInView()
{
    Json changed = tree();
    changed["accessors"][Turns]["byteOffset"] = 16;
    changed["accessors"][Turns]["count"] = 1;
    const auto document = open(fileOf(changed));
    QVERIFY2(document, qPrintable(m_error));
    const auto before = others(*document, Turns);
    QVERIFY(document->resizeFloats(Turns, numbers(12)));
    document->dropUnused();
    const auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->readFloats(Turns), numbers(12));
    QVERIFY(others(*again, Turns) == before);
    QCOMPARE(again->json()["buffers"][0]["byteLength"], Json(320 + 48 - 32));
}

void RyGltfResizingTest::againAndAgain()
{
    const auto document = open();
    const auto before = others(*document, Turns);
    for (size_t keys = 1; keys < 40; ++keys)
        QVERIFY(document->resizeFloats(Turns, numbers(4 * keys)));
    QVERIFY(document->resizeFloats(Turns, numbers(12)));
    document->dropUnused();
    const auto again = reopened(*document);
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->readFloats(Turns), numbers(12));
    QVERIFY(others(*again, Turns) == before);
    QCOMPARE(again->json()["buffers"][0]["byteLength"], Json(320 + 16));
}

void RyGltfResizingTest::shared_data()
{
    QTest::addColumn<QByteArray>("file");
    const auto row = [](const char *name, const std::function<void(Json &)> &change) {
        Json changed = tree();
        change(changed);
        QTest::newRow(name) << fileOf(changed);
    };
    row("another sampler", [](Json &t) { t["animations"][0]["samplers"].push_back({{"input", 5}, {"output", 6}}); });
    row("its bytes", [](Json &t) { t["accessors"].push_back(t["accessors"][Turns]); });
    row("its view", [](Json &t) {
        t["accessors"][Turns]["count"] = 1;
        t["accessors"].push_back(t["accessors"][Turns]);
        t["accessors"].back()["byteOffset"] = 16;
    });
    row("an image", [](Json &t) { t["images"].push_back({{"bufferView", Turns}}); });
    row("an extension", [](Json &t) { t["bufferViews"][Turns]["extensions"] = {{"VENDOR_x", Json::object()}}; });
    row("a stride", [](Json &t) { t["bufferViews"][Turns]["byteStride"] = 16; });
    row("sparse", [](Json &t) {
        t["accessors"][Turns]["sparse"] = {
            {"count", 1}, {"indices", {{"bufferView", 4}, {"componentType", 5123}}}, {"values", {{"bufferView", 2}}}};
    });
    row("values of a sparse one", [](Json &t) {
        t["accessors"][Times]["sparse"] = {{"count", 1},
                                           {"indices", {{"bufferView", 4}, {"componentType", 5123}}},
                                           {"values", {{"bufferView", Turns}}}};
    });
    row("whole numbers", [](Json &t) {
        t["accessors"][Turns]["componentType"] = 5120;
        t["accessors"][Turns]["normalized"] = true;
    });
    row("no bytes", [](Json &t) { t["accessors"][Turns].erase("bufferView"); });
}

void RyGltfResizingTest::shared()
{
    QFETCH(QByteArray, file);
    const auto document = open(file);
    QVERIFY2(document, qPrintable(m_error));
    const auto before = others(*document, -1);
    QVERIFY(!document->resizeFloats(Turns, numbers(12)));
    document->dropUnused();
    QVERIFY(others(*document, -1) == before);
    QCOMPARE(document->toBytes("glb"), file);
}

void RyGltfResizingTest::external()
{
    put(m_folder, "outside.bin", skinnedBinary());
    const auto document = open(skinnedJson("\"uri\":\"outside.bin\","), "ext.gltf");
    QVERIFY2(document, qPrintable(m_error));
    const auto before = others(*document, Turns);
    QVERIFY(document->resizeFloats(Turns, numbers(12)));
    document->dropUnused();
    QVERIFY2(document->write(m_folder.filePath("ext.gltf"), &m_error), qPrintable(m_error));
    QCOMPARE(contents(m_folder.filePath("outside.bin")), skinnedBinary());
    const auto again = RyGltfDocument::read(m_folder.filePath("ext.gltf"), &m_error);
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->readFloats(Turns), numbers(12));
    QVERIFY(others(*again, Turns) == before);
    QCOMPARE(again->json()["buffers"].size(), size_t(2));
}

RY_TEST(RyGltfResizingTest)
#include "tst_gltf_resizing.moc"
