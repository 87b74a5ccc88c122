#include "CharacterScene.h"
#include "FigureSketch.h"
#include "KeptClips.h"
#include "ObjSketch.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/obj/RyObjFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"
#include "support/checkUndo.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int VertexCount = 12;

/// Polygons of three to eight corners among few vertices, so that many begin where others do; most of them bent and
/// folded. With looks: two materials that alternate within groups, and corners with and without coordinates.
QByteArray randomPolygons(RyRandom &random, bool hasLooks)
{
    QByteArray text = "# units: m\nmtllib polygons.mtl\n";
    for (int v = 0; v < VertexCount; ++v) {
        const RyVec3 at = random.vector(2.0);
        text += QStringLiteral("v %1 %2 %3\n").arg(double(at.x)).arg(double(at.y)).arg(double(at.z)).toLatin1();
    }
    for (int t = 0; hasLooks && t < 5; ++t)
        text += QStringLiteral("vt %1 %2\n").arg(random.integer(0, 8) / 8.0).arg(random.integer(0, 8) / 8.0).toLatin1();
    std::vector<int> vertices(VertexCount);
    std::iota(vertices.begin(), vertices.end(), 1);
    for (int polygon = 0; polygon < 40; ++polygon) {
        if (polygon == 0 || random.chance(0.2))
            text += random.chance(0.5) ? "g left\n" : "g right\n";
        if (hasLooks && (polygon == 0 || random.chance(0.4)))
            text += random.chance(0.5) ? "usemtl one\n" : "usemtl two\n";
        std::shuffle(vertices.begin() + random.chance(0.5), vertices.end(), random.engine());
        text += "f";
        const bool isBare = random.chance(0.3);
        for (int corner = 0, count = random.integer(3, 8); corner < count; ++corner) {
            text += ' ' + QByteArray::number(vertices[size_t(corner)]);
            if (hasLooks && !isBare && random.chance(0.8))
                text += '/' + QByteArray::number(random.integer(1, 5));
        }
        text += '\n';
    }
    return text + "f 3 3 3\nf 3 3 3\nf 3 3 3\n"; // fans that begin alike
}

/// What the last facets of a file say, as many as the other file has, corner by corner from the first one on.
QStringList linesOf(const RyObjFile &file, size_t count)
{
    QStringList lines;
    const int firstVertex = int(file.positions.size()) - VertexCount;
    for (size_t i = file.facets.size() - count; i < file.facets.size(); ++i) {
        const RyObjFile::Facet &facet = file.facets[i];
        QString line = file.groups[size_t(facet.group)] + QLatin1Char(' ');
        line += facet.material < 0 ? QString() : file.materials[size_t(facet.material)];
        for (int k = 0; k < facet.cornerCount; ++k) {
            const RyObjFile::Corner &corner = file.corners[size_t(facet.firstCorner + k)];
            line += QStringLiteral(" %1").arg(corner.vertex - firstVertex);
            if (corner.texcoord >= 0) {
                const std::array<double, 2> &at = file.texcoords[size_t(corner.texcoord)];
                line += QStringLiteral("/%1,%2").arg(at[0]).arg(at[1]);
            }
        }
        lines.append(line);
    }
    return lines;
}

} // namespace

/// Polygons of any number of corners, and corners without texture coordinates, on all their ways.
class PolygonsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void thereAndBack_data();
    void thereAndBack();
    void groupsTearPolygons();
    void polygonOfTwoParts();
    void inTheDump();
    void foldedOnes();
    void oddExtras();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    QString write(const QByteArray &text)
    {
        ObjSketch::put(m_folder, QStringLiteral("polygons.mtl"), "newmtl one\nKd 1 0 0\nnewmtl two\nKd 0 0.5 0\n");
        ObjSketch::put(m_folder, QStringLiteral("polygons.obj"), text);
        return path("polygons.obj");
    }
    /// The facets of the scene as an OBJ file has them, by their corners.
    std::vector<int> sizesWritten(RyScene &scene) const;

    QTemporaryDir m_folder;
};

void PolygonsTest::thereAndBack_data()
{
    QTest::addColumn<bool>("hasLooks");
    QTest::addColumn<QString>("as");
    for (const bool hasLooks : {false, true}) {
        for (const char *as : {"prop", "figure", "merged", "edited"})
            QTest::addRow("%s %s", hasLooks ? "with looks" : "plain", as) << hasLooks << QString::fromLatin1(as);
    }
}
void PolygonsTest::thereAndBack()
{
    QFETCH(bool, hasLooks);
    QFETCH(QString, as);
    RyRandom random;
    for (int round = 0; round < 10; ++round) {
        const QString original = write(randomPolygons(random, hasLooks));
        RyScene scene;
        QString error;
        RySceneFile::Options options;
        options.merge = as == QLatin1String("merged");
        if (options.merge)
            QVERIFY2(RySceneFile::open(&scene, FigureSketch().write(path("first.gltf")), &error), qPrintable(error));
        QVERIFY2(RySceneFile::open(&scene, original, options, &error), qPrintable(error));
        if (as == QLatin1String("figure"))
            ObjSketch::convert(scene);
        QVERIFY2(RySceneFile::save(&scene, path("saved.glb"), &error), qPrintable(error));
        CharacterScene again(path("saved.glb"));
        QVERIFY2(again.messages.isEmpty(), qPrintable(again.messages.join(QLatin1Char('\n'))));
        QVERIFY(sameDumps(plainDump(again.scene), plainDump(scene)));
        if (as == QLatin1String("edited")) { // its primitives are copied for the figure
            ObjSketch::convert(again.scene);
            const QString dump = plainDump(again.scene);
            QVERIFY2(RySceneFile::save(&again.scene, path("edited.glb"), &error), qPrintable(error));
            again.scene.clear();
            QVERIFY2(RySceneFile::open(&again.scene, path("edited.glb"), &error), qPrintable(error));
            QVERIFY(sameDumps(plainDump(again.scene), dump));
        }
        QVERIFY2(RySceneFile::save(&again.scene, path("back.obj"), &error), qPrintable(error));
        const auto wanted = RyObjFile::read(original, &error);
        const auto file = RyObjFile::read(path("back.obj"), &error);
        QVERIFY2(file && wanted, qPrintable(error));
        QVERIFY(file->facets.size() >= wanted->facets.size());
        QCOMPARE(linesOf(*file, wanted->facets.size()), linesOf(*wanted, wanted->facets.size()));
    }
}

std::vector<int> PolygonsTest::sizesWritten(RyScene &scene) const
{
    // By way of glTF, so that the text is not the one that was read.
    QString error;
    RyScene other;
    if (!RySceneFile::save(&scene, path("sizes.glb"), &error) ||
        !RySceneFile::open(&other, path("sizes.glb"), &error) || !RySceneFile::save(&other, path("sizes.obj"), &error))
        throw std::runtime_error(error.toStdString());
    const auto file = RyObjFile::read(path("sizes.obj"), &error);
    std::vector<int> sizes;
    for (const RyObjFile::Facet &facet : file->facets)
        sizes.push_back(facet.cornerCount);
    return sizes;
}

/// A polygon of which facets went to another group is written in pieces; back in one group, it is whole again.
void PolygonsTest::groupsTearPolygons()
{
    for (const bool hasLooks : {false, true}) {
        RyScene scene;
        QString error;
        QByteArray text = "v 0 0 0\nv 2 0 0\nv 3 2 0\nv 1 3 0\nv -1 2 0\nv 0 0 1\nvt 0.5 0.25\n"
                          "g all\nf 6 1 2\nf 3 4 5 1 2\nf 1 2 3 4\n";
        if (hasLooks)
            text.replace("f 6 1 2", "f 6/1 1/1 2/1");
        QVERIFY2(RySceneFile::open(&scene, write(text), &error), qPrintable(error));
        RyFacetMesh &mesh = *shapeOf(scene)->getFacetMesh();
        QCOMPARE(mesh.getNumFacets(), 5);
        mesh.createFaceGroup(QStringLiteral("other"));
        QCOMPARE(sizesWritten(scene), (std::vector<int>{3, 5, 4}));
        mesh.setGroupsOfFacets({0, 0, 1, 0, 0});
        QCOMPARE(sizesWritten(scene), (std::vector<int>{3, 3, 3, 3, 4}));
        QVERIFY(bytesOf(path("sizes.obj")).contains("g other\nf"));
        mesh.setGroupsOfFacets({0, 1, 1, 1, 0});
        QCOMPARE(sizesWritten(scene), (std::vector<int>{3, 5, 4}));
    }
}

/// Somebody calls triangles of two materials one polygon: no file can hold that.
void PolygonsTest::polygonOfTwoParts()
{
    RyScene scene;
    QString error;
    const QString original = write("mtllib polygons.mtl\nv 0 0 0\nv 2 0 0\nv 3 2 0\nv 1 3 0\nv -1 2 0\n"
                                   "usemtl one\nf 1 2 3\nf 1 3 4\nusemtl two\nf 1 4 5\nf 1 5 2\n");
    QVERIFY2(RySceneFile::open(&scene, original, &error), qPrintable(error));
    RyFacetMesh &mesh = *shapeOf(scene)->getFacetMesh();
    mesh.setFacets(mesh.getFacets(), {{0, 3, 1}});
    QCOMPARE(mesh.getPolygons().size(), size_t(1));
    QCOMPARE(sizesWritten(scene), (std::vector<int>{3, 3, 3, 3}));
}

/// The same triangles with and without a polygon, begun elsewhere, and with other corners.
void PolygonsTest::inTheDump()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    RyFacetMesh &mesh = *shapeOf(scene)->getFacetMesh();
    const QString whole = rySceneDump(scene);
    const std::vector<RyFacet> facets = mesh.getFacets();
    std::vector<RyPolygon> polygons = mesh.getPolygons();
    QCOMPARE(polygons.size(), size_t(2));
    {
        RyUndoStackHold hold;
        mesh.setFacets(facets, {polygons[1]});
        hold.accept(QStringLiteral("Cut"));
    }
    checkLastStep(whole, scene);
    ryUndoStack()->undo();

    const auto facetsLine = [&scene] { return rySceneDump(scene).split(QLatin1Char('\n')).filter(" facets ").front(); };
    mesh.setFacets(facets, polygons);
    const QString line = facetsLine();
    polygons[0].firstCorner = 2;
    mesh.setFacets(facets, polygons);
    QCOMPARE(facetsLine(), line);
    polygons[1].facetCount = 5; // the last triangle is none of it
    mesh.setFacets(facets, polygons);
    QCOMPARE(mesh.getPolygons().size(), size_t(2));
    QVERIFY(facetsLine() != line);

    auto parts = std::make_shared<RyMeshParts>(*shapeOf(scene)->getParts());
    const QString before = rySceneDump(scene);
    parts->parts[0].withoutUv.pop_back();
    shapeOf(scene)->setParts(parts);
    QVERIFY(rySceneDump(scene) != before);
}

/// A star that no fan covers stays one polygon, and a message tells.
void PolygonsTest::foldedOnes()
{
    QByteArray text = "# units: m\n";
    for (int i = 0; i < 16; ++i) {
        const double reach = i % 2 ? 1.0 : 0.2;
        text += QStringLiteral("v %1 %2 0\n")
                    .arg(reach * std::cos(i * M_PI / 8))
                    .arg(reach * std::sin(i * M_PI / 8))
                    .toLatin1();
    }
    text += "f 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\nf 1 3 5 7 9\n";
    for (const bool hasLooks : {false, true}) {
        RyScene scene;
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::open(&scene, write(hasLooks ? "usemtl one\nmtllib polygons.mtl\n" + text : text), &error,
                                   &messages),
                 qPrintable(error));
        QCOMPARE(messages.size(), 1);
        QVERIFY2(messages.front().startsWith(QLatin1String("1 polygons")), qPrintable(messages.front()));
        QCOMPARE(sizesWritten(scene), (std::vector<int>{16, 5}));
    }
}

/// What our extras say of polygons and coordinates counts only where it can be.
void PolygonsTest::oddExtras()
{
    RyScene scene;
    QString error;
    QVERIFY2(RySceneFile::open(&scene, ObjSketch::write(m_folder), &error), qPrintable(error));
    QVERIFY2(RySceneFile::save(&scene, path("plain.gltf"), &error), qPrintable(error));
    const nlohmann::json plain = nlohmann::json::parse(bytesOf(path("plain.gltf")).toStdString());
    nlohmann::json odd = plain;
    for (nlohmann::json &primitive : odd["meshes"][0]["primitives"]) {
        primitive["extras"]["RYHOST_rigging"] = {{"version", 1},
                                                 {"firstCorners", {-1, 2, 0, 99, 0, 1, 1, 1, 2, -3, 4, 2000000000, 5}},
                                                 {"withoutUv", {99, -1, 3, 3, 2}}};
    }
    const auto open = [&](const nlohmann::json &tree) {
        ObjSketch::put(m_folder, QStringLiteral("odd.gltf"), QByteArray::fromStdString(tree.dump()));
        return CharacterScene(path("odd.gltf"));
    };
    {
        CharacterScene read = open(odd);
        const RyMeshParts &parts = *shapeOf(read.scene)->getParts();
        QCOMPARE(parts.parts[0].withoutUv, (std::vector<int>{2, 3}));
        QVERIFY(parts.parts[3].withoutUv.empty()); // it has no coordinates at all
        for (const RyPolygon &polygon : shapeOf(read.scene)->getFacetMesh()->getPolygons())
            QCOMPARE(polygon.firstCorner, 0);
    }
    // An order that tears a polygon leaves its pieces.
    odd = plain;
    nlohmann::json &figure = odd["extras"]["RYHOST_rigging"]["figures"][0];
    QCOMPARE(figure["order"], nlohmann::json({0, 4, 1, 3, 0, 3, 2, 1, 1, 6, 3, 3}));
    figure["order"] = {0, 4, 1, 3, 0, 2, 2, 1, 0, 1, 1, 6, 3, 3};
    CharacterScene torn = open(odd);
    QCOMPARE(shapeOf(torn.scene)->getFacetMesh()->getPolygons().size(), size_t(1));
}

RY_TEST(PolygonsTest)
#include "tst_polygons.moc"
