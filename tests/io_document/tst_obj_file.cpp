#include "GltfFixture.h"
#include "support/RyTest.h"

#include "rycore/io/obj/RyObjFile.h"

#include <random>
#include <set>

using namespace GltfFixture;

/// OBJ files: polygons, groups and vertices as they stand, and back with every untouched line as it was.
class RyObjFileTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RyObjFile> parse(const QByteArray &text)
    {
        m_error.clear();
        return RyObjFile::parse(text, QStringLiteral("some.obj"), &m_error);
    }
    QString m_error;

private slots:
    void structure();
    void spellings();
    void statedUnit_data();
    void statedUnit();
    void malformed_data();
    void malformed();
    void bytesBehindTheText_data();
    void bytesBehindTheText();
    void passedOver();
    void patched();
    void composed();
    void readAndWritten();
    void damagedAtRandom();
    void baseMesh();
    void blob();
    void hostile();
};

void RyObjFileTest::structure()
{
    const auto file = parse("mtllib a.mtl\n"
                            "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0.5 0.5 1\n"
                            "vt 0 0\nvt 1 0.5\nvn 0 0 1\n"
                            "f 1 2 5\n"
                            "g arm left\nusemtl red\nf 1/1/1 2/2/1 3//1 4/1\n"
                            "o thing\ng leg\nf -1 -2 -3\n"
                            "g arm left\nf 5 4 3 2 1\nf 1 2 3\n");
    QVERIFY2(file, qPrintable(m_error));
    QVERIFY(file->warnings.isEmpty());
    QCOMPARE(file->positions.size(), 5u);
    QCOMPARE(file->texcoords[1], (std::array<double, 2>{1, 0.5}));
    QCOMPARE(file->normals[0], (std::array<double, 3>{0, 0, 1}));
    QCOMPARE(file->groups, (std::vector<QString>{"arm left", "leg"}));
    QCOMPARE(file->objects, (std::vector<QString>{"thing"}));
    QCOMPARE(file->materials, (std::vector<QString>{"red"}));
    QCOMPARE(file->materialLibraries, QStringList{"a.mtl"});
    QCOMPARE(file->facets.size(), 5u);
    QCOMPARE(file->facets[0].group, -1);
    QCOMPARE(file->facets[0].material, -1);
    QCOMPARE(file->facets[1].cornerCount, 4);
    QCOMPARE(file->facets[1].group, 0);
    QCOMPARE(file->facets[1].material, 0);
    const RyObjFile::Corner *corner = &file->corners[std::size_t(file->facets[1].firstCorner)];
    QCOMPARE(corner[1].vertex, 1);
    QCOMPARE(corner[1].texcoord, 1);
    QCOMPARE(corner[1].normal, 0);
    QCOMPARE(corner[2].texcoord, -1);
    QCOMPARE(corner[2].normal, 0);
    QCOMPARE(corner[3].normal, -1);
    QCOMPARE(file->corners[std::size_t(file->facets[2].firstCorner)].vertex, 4);
    QCOMPARE(file->facets[2].object, 0);
    QCOMPARE(file->facets[3].cornerCount, 5);
    const std::vector<RyObjFile::Run> runs = file->groupRuns();
    QCOMPARE(runs.size(), 4u);
    QCOMPARE(runs[3].group, 0);
    QCOMPARE(runs[3].firstFacet, 3);
    QCOMPARE(runs[3].facetCount, 2);
}

void RyObjFileTest::spellings()
{
    const auto file =
        parse("\xef\xbb\xbf# c\r\n  v\t+1.5e1  -.5 2. 1.0\r\nv 1 2 3 0.5 0.5 0.5\r\nv 0 0 0 \\\r\n\r\n"
              "v 1 \\\n 2 \\\n 3\nf 1 2\\\n 3\ng n\xe4me\nf 1 2 3 # comment\ns off\nl 1 2\np 1\nunknown 1 2 3");
    QVERIFY2(file, qPrintable(m_error));
    QCOMPARE(file->positions[0], (std::array<double, 3>{15, -0.5, 2}));
    QCOMPARE(file->positions[3], (std::array<double, 3>{1, 2, 3}));
    QCOMPARE(file->facets.size(), 2u);
    QCOMPARE(file->groups[0], QString::fromUtf8("n\xc3\xa4me")); // Latin-1 where it is no UTF-8
    QVERIFY(parse("v 0 0 0\nf 1 2 3\nv 1 0 0\nv 0 1 0\n"));      // vertices may come later
}

void RyObjFileTest::statedUnit_data()
{
    QTest::addColumn<QByteArray>("comment");
    QTest::addColumn<double>("centimetres");
    QTest::newRow("plain") << QByteArray("# units: centimeters") << 1.0;
    QTest::newRow("short") << QByteArray("# Unit mm") << 0.1;
    QTest::newRow("sentence") << QByteArray("# File units = inches") << 2.54;
    QTest::newRow("verb") << QByteArray("# The units are (Metres)") << 100.0;
    QTest::newRow("no blank") << QByteArray("#units: m\n# units: m") << 100.0;
    QTest::newRow("the first") << QByteArray("# units: feet\n# units: m") << 30.48;
    QTest::newRow("none") << QByteArray("# made in 5 m") << 0.0;
    QTest::newRow("unknown") << QByteArray("# units: parsecs") << 0.0;
    QTest::newRow("nothing after it") << QByteArray("# units:") << 0.0;
}

void RyObjFileTest::statedUnit()
{
    QFETCH(QByteArray, comment);
    const auto file = parse(comment + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    QVERIFY2(file, qPrintable(m_error));
    QTEST(file->statedUnit, "centimetres");
}

void RyObjFileTest::malformed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const QByteArray three = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    QTest::newRow("beyond") << three + "\nf 1 2 4\n"
                            << "line 5: vertex 4 does not exist (there are 3)";
    QTest::newRow("zero") << three + "f 0 1 2\n"
                          << "line 4: vertex 0 does not exist";
    QTest::newRow("too far back") << three + "f -1 -2 -4\n"
                                  << "line 4: vertex -4 does not exist";
    QTest::newRow("huge") << three + "f 1 2 99999999999999999999\n"
                          << "line 4: vertex 99999999999999999999 does not exist";
    QTest::newRow("large") << three + "f 1 2 2147483648\n"
                           << "line 4: vertex 2147483648 does not exist";
    QTest::newRow("no index") << three + "f 1 2 x\n"
                              << "line 4: \"x\" is not the index of a vertex";
    QTest::newRow("fraction") << three + "f 1 2 3.5\n"
                              << "line 4: \"3.5\" is not the index of a vertex";
    QTest::newRow("nan") << QByteArray("v 0 nan 0\n") << "line 1: \"nan\" is not a number";
    QTest::newRow("inf") << QByteArray("v 0 0 0\nv inf 0 0\n") << "line 2: \"inf\" is not a number";
    QTest::newRow("too large") << QByteArray("v 0 1e300 0\n") << "line 1: \"1e300\"";
    QTest::newRow("letters") << QByteArray("v 0 0 1.5x\n") << "line 1: \"1.5x\" is not a number";
    QTest::newRow("two numbers") << QByteArray("v 0 0\nv 1 1 1\n") << "line 1: a vertex needs three numbers and has 2";
    QTest::newRow("cut in a vertex") << QByteArray("v 0 0 0\nv 1 1")
                                     << "line 2: a vertex needs three numbers and has 2 (the file is cut off here)";
    QTest::newRow("cut in a face") << three + "f 1 2"
                                   << "line 4: a face with 2 corners (the file is cut off here)";
    QTest::newRow("empty") << QByteArray() << "no vertices";
    QTest::newRow("something else") << QByteArray("hello\nworld\n") << "no vertices";
    QTest::newRow("binary") << QByteArray("v\0\1\2\nv 1 2 3\n", 13) << "line 1: the control byte 0; this is not a text";
    QTest::newRow("control byte") << three + "# \x1a\nf 1 2 3\n"
                                  << "line 4: the control byte 26;";
    QTest::newRow("in the last line") << three + "f 1 \x7f 2 3"
                                      << "line 4: the control byte 127;";
}

void RyObjFileTest::malformed()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    QVERIFY(!parse(text));
    QVERIFY2(m_error.startsWith("some.obj") && m_error.contains(message), qPrintable(m_error));
}

/// Some programs end a text with a control byte of old, or fill it up with zeros.
void RyObjFileTest::bytesBehindTheText_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("end of file") << QByteArray("\n\x1a");
    QTest::newRow("in the last line") << QByteArray("\x1a");
    QTest::newRow("zeros") << QByteArray("\n\0\0\0\0", 5);
    QTest::newRow("with ends of lines") << QByteArray("\r\n\x1a\r\n\0\n", 6);
}

void RyObjFileTest::bytesBehindTheText()
{
    QFETCH(QByteArray, end);
    const QByteArray text = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3";
    const auto file = parse(text + end);
    QVERIFY2(file, qPrintable(m_error));
    QCOMPARE(file->positions.size(), 3u);
    QCOMPARE(file->facets.size(), 1u);
    QVERIFY(file->warnings.isEmpty());
    QCOMPARE(file->toBytes(), text + end);
}

void RyObjFileTest::passedOver()
{
    const auto file = parse("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn nan 0 1\nvt\nf 1 2\nf 1/9/1 2//9 3\n");
    QVERIFY2(file, qPrintable(m_error));
    QCOMPARE(file->warnings.size(), 5);
    QVERIFY(file->warnings[0].startsWith("line 4:"));
    QVERIFY(file->warnings[2].contains("a face with 2 corners"));
    QCOMPARE(file->facets.size(), 1u);
    QCOMPARE(file->corners[0].texcoord, -1);
    QCOMPARE(file->corners[0].normal, 0);
    QCOMPARE(file->corners[1].normal, -1);
    QCOMPARE(file->normals[0], (std::array<double, 3>{0, 0, 1}));
}

void RyObjFileTest::patched()
{
    const QByteArray text = "# made by hand\r\nv  0.10 2.00\t3 0.5 0.5 0.5\r\nv 1 1 1 # note\nvp 1 2\nv 4 5 6\nf 1 2 3";
    const auto file = parse(text);
    QVERIFY2(file, qPrintable(m_error));
    QCOMPARE(file->toBytes(), text);
    file->positions[0][2] = 3.25;
    file->positions[2] = {0.1, -1e-9, 1234567.875};
    QCOMPARE(file->toBytes(), QByteArray("# made by hand\r\nv  0.1 2 3.25 0.5 0.5 0.5\r\nv 1 1 1 # note\nvp 1 2\n"
                                         "v 0.1 -1e-09 1234567.875\nf 1 2 3"));
    const auto again = parse(file->toBytes());
    QCOMPARE(again->positions, file->positions);
}

void RyObjFileTest::composed()
{
    RyObjFile file;
    file.positions = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0.1}};
    file.texcoords = {{0, 1}};
    file.normals = {{0, 0, 1}};
    file.groups = {"a", "b c"};
    file.materials = {"m"};
    file.corners = {{0, 0, 0}, {1, -1, 0}, {2, 0, -1}, {3, -1, -1}, {0, -1, -1}, {1, -1, -1}, {2, -1, -1}};
    file.facets = {{0, 4, 1, -1, 0}, {4, 3, 0, -1, 0}};
    const auto again = parse(file.toBytes());
    QVERIFY2(again, qPrintable(m_error));
    QCOMPARE(again->positions, file.positions);
    QCOMPARE(again->groups, (std::vector<QString>{"b c", "a"}));
    QCOMPARE(again->facets.size(), 2u);
    QCOMPARE(again->facets[0].cornerCount, 4);
    for (std::size_t i = 0; i < file.corners.size(); ++i) {
        QCOMPARE(again->corners[i].vertex, file.corners[i].vertex);
        QCOMPARE(again->corners[i].texcoord, file.corners[i].texcoord);
        QCOMPARE(again->corners[i].normal, file.corners[i].normal);
    }
}

void RyObjFileTest::readAndWritten()
{
    QTemporaryDir folder;
    const QString path = put(folder, "x.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    auto file = RyObjFile::read(path, &m_error);
    QVERIFY2(file, qPrintable(m_error));
    file->positions[1][0] = 2;
    QVERIFY2(file->write(path, &m_error), qPrintable(m_error));
    QCOMPARE(contents(path), QByteArray("v 0 0 0\nv 2 0 0\nv 0 1 0\nf 1 2 3\n"));
    QVERIFY(!RyObjFile::read(folder.filePath("none.obj"), &m_error));
    QVERIFY2(m_error.contains("none.obj") && m_error.contains("does not exist"), qPrintable(m_error));
    QVERIFY(!RyObjFile::read(folder.path(), &m_error));
}

void RyObjFileTest::damagedAtRandom()
{
    std::mt19937 random(ryTestSeed());
    const QByteArray good = "mtllib a\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 -2.5e-3\nvt 0 0\nvn 0 0 1\ng a\nusemtl b\n"
                            "f 1/1/1 2/1/1 3/1/1 4/1/1\nf -1//-1 -2//-1 -3//-1\ns 1\n";
    int opened = 0;
    for (int round = 0; round < 3000; ++round) {
        QByteArray text = good;
        for (unsigned i = 0; i <= random() % 3; ++i) {
            const int at = int(random() % unsigned(text.size()));
            if (random() % 2)
                text[at] = " \n/-0129\\ev\0f"[random() % 14];
            else
                text.remove(at, 1 + int(random() % 5));
        }
        const auto file = parse(text);
        if (!file) {
            QVERIFY(m_error.startsWith("some.obj"));
            continue;
        }
        ++opened;
        for (const RyObjFile::Corner &corner : file->corners) {
            QVERIFY(corner.vertex >= 0 && corner.vertex < int(file->positions.size()));
            QVERIFY(corner.texcoord >= -1 && corner.texcoord < int(file->texcoords.size()));
            QVERIFY(corner.normal >= -1 && corner.normal < int(file->normals.size()));
        }
        QCOMPARE(file->toBytes(), text);
        file->positions[0][0] = 7.25;
        const auto again = parse(file->toBytes());
        QVERIFY2(again, qPrintable(m_error));
        QCOMPARE(again->positions, file->positions);
        QCOMPARE(again->facets.size(), file->facets.size());
    }
    QVERIFY(opened > 100);
}

void RyObjFileTest::baseMesh()
{
    const QString path = ryModel("mh_base.obj");
    if (path.isEmpty())
        QSKIP("the models are not on this machine");
    const auto file = RyObjFile::read(path, &m_error);
    QVERIFY2(file, qPrintable(m_error));
    QVERIFY(file->warnings.isEmpty());
    QCOMPARE(file->positions.size(), 19158u);
    QCOMPARE(file->facets.size(), 18486u);
    for (const RyObjFile::Facet &facet : file->facets)
        QCOMPARE(facet.cornerCount, 4);
    QCOMPARE(file->groups.size(), 139u);
    QCOMPARE(file->groups[0], QStringLiteral("body"));
    QCOMPARE(file->groups[1], QStringLiteral("helper-tights"));
    QCOMPARE(file->groups[2], QStringLiteral("joint-l-eye"));
    const std::vector<RyObjFile::Run> runs = file->groupRuns();
    QCOMPARE(runs.size(), 172u);
    int facets = 0;
    std::set<int> seen;
    for (const RyObjFile::Run &run : runs) {
        QCOMPARE(run.firstFacet, facets);
        facets += run.facetCount;
        seen.insert(run.group);
    }
    QCOMPARE(facets, 18486);
    QCOMPARE(seen.size(), 139u);
    QCOMPARE(runs[0].facetCount, 53889 - 40510 - 1); // the lines between the first two group lines
    QCOMPARE(file->toBytes(), contents(path));
    const std::array<double, 3> old = file->positions[100];
    file->positions[100] = {1.5, 2.5, 3.5};
    const QByteArray moved = file->toBytes();
    QCOMPARE(moved.count('\n'), contents(path).count('\n'));
    const auto again = parse(moved);
    QVERIFY(again);
    QCOMPARE(again->positions, file->positions);
    again->positions[100] = old;
    QCOMPARE(parse(again->toBytes())->positions, RyObjFile::read(path, nullptr)->positions);
}

void RyObjFileTest::blob()
{
    const QString path = ryModel("blob_17_groups.obj");
    if (path.isEmpty())
        QSKIP("the models are not on this machine");
    const auto file = RyObjFile::read(path, &m_error);
    QVERIFY2(file, qPrintable(m_error));
    QCOMPARE(file->positions.size(), 450u);
    QCOMPARE(file->facets.size(), 480u);
    QCOMPARE(file->groups.size(), 17u);
    int triangles = 0;
    int quads = 0;
    for (const RyObjFile::Facet &facet : file->facets) {
        triangles += facet.cornerCount == 3;
        quads += facet.cornerCount == 4;
    }
    QVERIFY(triangles > 0 && quads > 0);
    QCOMPARE(triangles + quads, 480);
    QCOMPARE(file->groupRuns().size(), 17u);
}

void RyObjFileTest::hostile()
{
    const QString path = ryModel("hostile/as_concave_polygon.obj");
    if (path.isEmpty())
        QSKIP("the models are not on this machine");
    const auto file = RyObjFile::read(path, &m_error);
    QVERIFY2(file, qPrintable(m_error));
    QCOMPARE(file->facets.size(), 1u);
    QCOMPARE(file->facets[0].cornerCount, 66);
    QCOMPARE(file->toBytes(), contents(path));
}

RY_TEST(RyObjFileTest)
#include "tst_obj_file.moc"
