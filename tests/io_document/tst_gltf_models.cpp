#include "GltfDocuments.h"
#include "readAll.h"
#include "support/RyTest.h"

using namespace GltfFixture;

/// Files made by others, real and hostile ones: what opens is read to the end and comes out as it went in.
class RyGltfModelsTest : public QObject, private GltfDocuments
{
    Q_OBJECT

private slots:
    void hostileModels_data();
    void hostileModels();
    void realModelsComeOutAsTheyWentIn();
};

void RyGltfModelsTest::hostileModels_data()
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

void RyGltfModelsTest::hostileModels()
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

void RyGltfModelsTest::realModelsComeOutAsTheyWentIn()
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

RY_TEST(RyGltfModelsTest)
#include "tst_gltf_models.moc"
