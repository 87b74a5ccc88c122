#include "foreign/FbxSketch.h"
#include "foreign_reader/ConvertedFile.h"
#include "ryforeign/RyFbxObjects.h"
#include "ryforeign/RyForeignRead.h"
#include "support/RyTest.h"

/// FBX files in text form, however their lines end.
class FbxTextTest : public QObject
{
    Q_OBJECT

private slots:
    void lineEnds_data();
    void lineEnds();
    void nothingButAComment();
    void nodesInComments();
    void withoutEnd_data();
    void withoutEnd();

private:
    static QByteArray arms();
};

/// All that has to be looked for in a text: names that are there twice, points, turns back, a range and a constraint.
QByteArray FbxTextTest::arms()
{
    FbxSketch sketch;
    const auto limb = [&sketch](qint64 parent, double height) {
        return sketch.addLimb(
            "Bone", parent,
            {FbxSketch::wholeNumber("RotationActive", 1, "bool"), FbxSketch::vector("Lcl Translation", 3, height, -4),
             FbxSketch::vector("RotationPivot", 4, -12, 7), FbxSketch::vector("PreRotation", 10, 40, -30),
             FbxSketch::vector("PostRotation", -20, 15, 50)});
    };
    const qint64 low = limb(0, 20);
    const qint64 high = limb(low, 60);
    const qint64 sheet = sketch.addSquare("Sheet", 0, {FbxSketch::vector("GeometricTranslation", 3, -7, 11)});
    sketch.bind(sheet, low, 20.0, {0, 1});
    sketch.bind(sheet, high, 80.0, {2, 3});
    sketch.startClip("Bend", {2.0, 3.0});
    sketch.addCurve(high, "Lcl Rotation", "d|X", {1.0, 1.5, 2.5}, {0, 40, -10});
    sketch.addConstraint("Aim");
    return sketch.text();
}

void FbxTextTest::lineEnds_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("two characters") << QByteArray("\r\n");
    QTest::newRow("carriage returns") << QByteArray("\r");
    QTest::newRow("empty lines") << QByteArray("\n\n");
    QTest::newRow("none") << QByteArray(" ");
}

void FbxTextTest::lineEnds()
{
    QFETCH(QByteArray, end);
    const QByteArray usual = arms();
    QByteArray other = usual;
    other.remove(0, other.indexOf('\n')).replace('\n', end); // without the comment, which takes all of its line
    QVERIFY(other != usual && other.contains("Model::Bone"));
    RyForeignResult results[2];
    for (size_t i = 0; i < 2; ++i) {
        const TextFile file(QStringLiteral("a.fbx"), i == 0 ? usual : other);
        RyForeignRequest request;
        request.path = file.path;
        QVERIFY2(ryReadForeign(request, results[i]), qPrintable(results[i].error));
    }
    QVERIFY2(results[0].notes.join(QLatin1Char('\n')).contains(QStringLiteral("Aim")),
             qPrintable(results[0].notes.join(QLatin1Char('\n'))));
    QCOMPARE(results[1].notes, results[0].notes);
    QVERIFY(results[0].glb.size() > 1000);
    QVERIFY(results[1].glb == results[0].glb);
}

/// Which reaches to the end of the file where no line ends.
void FbxTextTest::nothingButAComment()
{
    const TextFile file(QStringLiteral("a.fbx"), arms().replace('\n', ' '));
    RyForeignRequest request;
    request.path = file.path;
    RyForeignResult result;
    QVERIFY(!ryReadForeign(request, result));
    QVERIFY2(result.error.contains(QStringLiteral("it cannot be read (")), qPrintable(result.error));
    QVERIFY2(result.error.contains(QStringLiteral("export it as glTF 2.0")), qPrintable(result.error));
}

/// What stands in a comment is no node, and takes no name from one.
void FbxTextTest::nodesInComments()
{
    const QByteArray node = "Model: 1, \"Model::arm\", \"LimbNode\" { }\n";
    for (const char *comment : {"; ", " \t;", ";;; once "})
        QVERIFY2(RyFbxObjects(node + comment + node).nameOf.isEmpty(), comment);
    for (const char *usual : {"", "  ", "a: 1;\n", "Text: \"; \" "})
        QVERIFY2(!RyFbxObjects(node + usual + node).nameOf.isEmpty(), usual);
}

void FbxTextTest::withoutEnd_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::newRow("names") << QByteArray("\"Model::");
    QTest::newRow("nodes of one name") << QByteArray("Model: 1, \"Model::ab\" ");
    QTest::newRow("properties") << QByteArray("P: \"PreRotation\",");
    QTest::newRow("ranges") << QByteArray("\"LocalStart\",");
}

/// What is found in a file of millions of them costs a share of the file each, not all of it.
void FbxTextTest::withoutEnd()
{
    QFETCH(QByteArray, piece);
    const QByteArray text =
        "Model: 1, \"Model::first\" { P: \"RotationPivot\", \"Vector3D\", \"Vector\", \"\",1,2,3 } " +
        piece.repeated((16 << 20) / piece.size());
    const RyFbxObjects objects(text);
    QVERIFY(objects.pivotOf.contains(QStringLiteral("first")));
    QVERIFY(objects.pivotOf.value(QStringLiteral("first")).rotationPivot == RyForeignPivot::Vector({1.0, 2.0, 3.0}));
}

RY_TEST(FbxTextTest)
#include "tst_fbx_text.moc"
