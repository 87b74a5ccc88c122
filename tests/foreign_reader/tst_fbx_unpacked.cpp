#include "foreign/FbxRecord.h"
#include "foreign/FbxSketch.h"
#include "foreign_reader/ConvertedFile.h"

#include "ryforeign/RyFbxRecords.h"
#include "ryforeign/RyFbxUnpacked.h"
#include "ryforeign/RyForeignRead.h"
#include "support/RyTest.h"

#include <QSet>

/// Binary FBX files are read with their arrays unpacked, and only where they are whole.
class FbxUnpackedTest : public QObject
{
    Q_OBJECT

private slots:
    void unpacked_data();
    void unpacked();
    void nothingPacked();
    void leftAlone_data();
    void leftAlone();
    void cutOff();
    void sameCharacter();

private:
    static QByteArray file(const FbxRecord::Form &form);
    static QByteArray whole(const QByteArray &records, const FbxRecord::Form &form);
    static QByteArray unpack(const QByteArray &bytes) { return ryFbxUnpacked(RyFbxRecords(bytes)); }
};

QByteArray FbxUnpackedTest::whole(const QByteArray &records, const FbxRecord::Form &form)
{
    return FbxRecord::header(form.isWide ? 7700 : 7400) + records + FbxRecord::end(form) + "footer \x01\x02";
}

/// Arrays of every kind, among other properties, at several depths, and an empty one.
QByteArray FbxUnpackedTest::file(const FbxRecord::Form &form)
{
    std::vector<double> reals;
    std::vector<qint32> numbers;
    for (int i = 0; i < 500; ++i) {
        reals.push_back(0.25 * i);
        numbers.push_back(i % 7 - 3);
    }
    const FbxRecord geometry = FbxRecord("Geometry")
                                   .id(12)
                                   .text(QByteArray("Face\0\1Geometry", 14))
                                   .add(FbxRecord("Vertices").reals(reals))
                                   .add(FbxRecord("Version").number(124))
                                   .add(FbxRecord("PolygonVertexIndex").numbers(numbers).floats({1.5f, -2.0f}).real(3))
                                   .add(FbxRecord("Layer").number(0).add(FbxRecord("Normals").reals(reals)))
                                   .add(FbxRecord("Edges").numbers({}));
    const FbxRecord objects =
        FbxRecord("Objects").add(geometry).add(FbxRecord("Times").ids({1, 2, 1LL << 40}).flags("\1"));
    const QByteArray first = FbxRecord("Creator").text("somebody").bytes(27, form);
    return whole(first + objects.bytes(27 + first.size(), form), form);
}

void FbxUnpackedTest::unpacked_data()
{
    QTest::addColumn<bool>("isWide");
    QTest::newRow("places of four bytes") << false;
    QTest::newRow("of eight") << true;
}

void FbxUnpackedTest::unpacked()
{
    QFETCH(bool, isWide);
    const QByteArray plain = file({isWide, false});
    const QByteArray packed = file({isWide, true});
    QVERIFY(packed.size() < plain.size() / 2);
    QCOMPARE(unpack(packed), plain);
}

void FbxUnpackedTest::nothingPacked()
{
    QCOMPARE(unpack(file({false, false})), QByteArray());
    QCOMPARE(unpack(QByteArray()), QByteArray());
    QCOMPARE(unpack("; FBX 7.4.0 project file\nObjects: {\n}\n"), QByteArray());
}

void FbxUnpackedTest::leftAlone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = file({false, true});
    const int array = good.indexOf("Vertices") + 8; // kind, count, how it is packed, bytes
    const auto with = [&good](int at, const QByteArray &other) {
        QByteArray changed = good;
        return changed.replace(at, other.size(), other);
    };
    QTest::newRow("packed bytes are damaged") << with(array + 40, "\xff\xff\xff\xff\xff");
    QTest::newRow("more numbers than there are") << with(array + 1, QByteArray("\xf5\x01\0\0", 4));
    QTest::newRow("fewer") << with(array + 1, QByteArray("\xf3\x01\0\0", 4));
    QTest::newRow("more numbers than fit into memory") << with(array + 1, "\xff\xff\xff\xff");
    QTest::newRow("more bytes than there are") << with(array + 9, "\xff\xff\xff\xff");
    QTest::newRow("a kind that nobody knows") << with(array, "Z");
    QTest::newRow("a record that ends behind the file") << with(27, QByteArray("\xff\xff\xff\x7f", 4));
    QTest::newRow("no empty record at the end") << with(good.lastIndexOf("footer") - 5, "\1");
    const QByteArray zeros(129 << 20, '\0');
    QTest::newRow("more than is worth its memory")
        << whole(FbxRecord("Zeros").flags(zeros).bytes(27, {false, true}), {});
    const QByteArray packed = FbxRecord("Numbers").numbers({1, 2, 3}).bytes(27, {false, true});
    QTest::newRow("more than that of what is not packed")
        << whole(packed + FbxRecord("Zeros").flags(zeros).bytes(27 + packed.size()), {});
    QByteArray wrapped = whole(FbxRecord("Zeros").flags(zeros).bytes(27, {false, true}), {});
    const int flags = wrapped.indexOf("Zeros") + 5;
    wrapped.replace(flags, 5, QByteArray("d\1\0\0\x20", 5)); // eight bytes each: eight more than four bytes can count
    QTest::newRow("more than can be counted") << wrapped;
    FbxRecord deep("Numbers");
    deep.numbers({1, 2, 3});
    for (int level = 0; level < 40; ++level)
        deep = FbxRecord("Level").add(deep);
    QTest::newRow("records in records without end") << whole(deep.bytes(27, {false, true}), {});
}

void FbxUnpackedTest::leftAlone()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(unpack(bytes), QByteArray());
}

/// A file that ends too early is left alone too, wherever it does.
void FbxUnpackedTest::cutOff()
{
    const QByteArray good = file({false, true});
    const int last = good.lastIndexOf("footer");
    const int end = last - FbxRecord::end().size(); // of the last record: nothing is missing
    for (int size = 0; size < last; ++size) {
        QCOMPARE(RyFbxRecords(good.left(size)).isBinary(), size >= RyFbxRecords::HeaderSize);
        QVERIFY2(unpack(good.left(size)).isEmpty() == (size != end), qPrintable(QString::number(size)));
    }
}

/// However a program writes it, it is the same character.
void FbxUnpackedTest::sameCharacter()
{
    FbxSketch sketch;
    const qint64 sheet = sketch.addSquare("Sheet", 0);
    const qint64 limb = sketch.addLimb("Limb", 0, {FbxSketch::vector("Lcl Translation", 0, 30, 0)});
    sketch.bind(sheet, limb, 30.0, {1, 2});
    sketch.addShape(sketch.addMorph(sheet, "Smile", 40.0), "Smile", {0, 0, 20});
    sketch.addCurve(limb, "Lcl Rotation", "d|X", {0.0, 0.5, 1.5}, {0, 40, -10});
    QSet<QByteArray> read;
    for (const bool isWide : {false, true}) {
        for (const bool isPacked : {false, true}) {
            const TextFile file(QStringLiteral("a.fbx"), sketch.bytes(isWide ? 7700 : 7400, {isWide, isPacked}));
            RyForeignRequest request;
            request.path = file.path;
            RyForeignResult result;
            QVERIFY2(ryReadForeign(request, result), qPrintable(result.error));
            QVERIFY(result.glb.size() > 1000);
            read.insert(result.glb);
        }
    }
    QCOMPARE(read.size(), 1);
}

RY_TEST(FbxUnpackedTest)
#include "tst_fbx_unpacked.moc"
