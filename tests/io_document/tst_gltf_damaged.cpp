#include "GltfDocuments.h"
#include "readAll.h"
#include "support/RyTest.h"

#include <random>

using namespace GltfFixture;

/// Files that are cut, damaged or mean harm: refused or opened, never a crash.
class RyGltfDamagedTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void containers_data();
    void containers();
    void cutAnywhere();
    void deepText();
    void longChain();
    void manyMembers();
    void noFile();
    void damagedAtRandom();
};

void RyGltfDamagedTest::containers_data()
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

void RyGltfDamagedTest::containers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    QVERIFY(!open(bytes));
    QVERIFY2(m_error.contains(message), qPrintable(m_error));
}

void RyGltfDamagedTest::cutAnywhere()
{
    const QByteArray whole = skinnedGlb();
    for (int size = 0; size < whole.size(); size += size < 64 ? 1 : 7) {
        QVERIFY2(!open(whole.left(size)), qPrintable(QString::number(size)));
        QVERIFY(!m_error.isEmpty());
    }
}

void RyGltfDamagedTest::deepText()
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

void RyGltfDamagedTest::longChain()
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

void RyGltfDamagedTest::manyMembers()
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

void RyGltfDamagedTest::noFile()
{
    QString error;
    QVERIFY(!RyGltfDocument::read(m_folder.filePath("none.glb"), &error));
    QVERIFY2(error.contains("none.glb") && error.contains("does not exist"), qPrintable(error));
    QVERIFY(!RyGltfDocument::read(m_folder.path(), &error));
    QVERIFY2(error.contains("is not a file"), qPrintable(error));
    QVERIFY(!RyGltfDocument::read(QStringLiteral("/dev/zero"), &error));
    QVERIFY(!RyGltfDocument::read(QString(), nullptr));
}

void RyGltfDamagedTest::damagedAtRandom()
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

RY_TEST(RyGltfDamagedTest)
#include "tst_gltf_damaged.moc"
