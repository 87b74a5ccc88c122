#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

namespace {

RyFacet triangle(int a, int b, int c)
{
    return {{a, b, c, -1}, -1};
}

/// A quad, a polygon of five corners that its fan begins elsewhere, and one of six.
RyRef<RyFacetMesh> fans()
{
    RyRef<RyFacetMesh> mesh(new RyFacetMesh);
    mesh->setPositions(std::vector<RyVec3>(12));
    mesh->setFacets({{{0, 1, 2, 3}, -1},
                     triangle(2, 3, 4),
                     triangle(2, 4, 5),
                     triangle(2, 5, 6),
                     triangle(7, 8, 9),
                     triangle(7, 9, 10),
                     triangle(7, 10, 11),
                     triangle(7, 11, 0)},
                    {{1, 3, 2}, {4, 4, 0}});
    return mesh;
}

} // namespace

/// Which facets of a mesh are one polygon.
class MeshPolygonsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void polygonsOfFans();
    void polygonsThatAreNone();
    void undoOfPolygons();
};

void MeshPolygonsTest::polygonsOfFans()
{
    const RyRef<RyFacetMesh> mesh = fans();
    std::vector<int> corners;
    QCOMPARE(mesh->readPolygon(0, corners), 1);
    QCOMPARE(corners, (std::vector<int>{0, 1, 2, 3}));
    QCOMPARE(mesh->readPolygon(1, corners), 3);
    QCOMPARE(corners, (std::vector<int>{4, 5, 6, 2, 3})); // its fan starts at 2
    QCOMPARE(mesh->readPolygon(4, corners), 4);
    QCOMPARE(corners, (std::vector<int>{7, 8, 9, 10, 11, 0}));
    QCOMPARE(mesh->readPolygon(5, corners), 1); // from the middle of one
    QCOMPARE(corners, (std::vector<int>{7, 9, 10}));
    QVERIFY(!mesh->findPolygon(2));
    QCOMPARE(mesh->findPolygon(4)->facetCount, 4);
    const RyRef<RyFacetMesh> copy(mesh->copy());
    QVERIFY(copy->getPolygons() == mesh->getPolygons());
    mesh->setFacets(mesh->getFacets());
    QVERIFY(mesh->getPolygons().empty());
    QCOMPARE(copy->getPolygons().size(), size_t(2));
}

void MeshPolygonsTest::polygonsThatAreNone()
{
    const RyRef<RyFacetMesh> mesh = fans();
    const std::vector<RyPolygon> whole = mesh->getPolygons();
    const auto kept = [&mesh](std::vector<RyPolygon> polygons) {
        mesh->setFacets(mesh->getFacets(), std::move(polygons));
        return mesh->getPolygons().size();
    };
    QCOMPARE(kept(whole), size_t(2));
    QCOMPARE(kept({whole[1], whole[0]}), size_t(1));  // not ascending
    QCOMPARE(kept({whole[0], {3, 5, 0}}), size_t(1)); // not apart
    for (const RyPolygon &other : {RyPolygon{0, 3, 0}, RyPolygon{1, 4, 0}, RyPolygon{1, 2, 0}, RyPolygon{4, 5, 0},
                                   RyPolygon{-1, 3, 0}, RyPolygon{4, 3, 5}, RyPolygon{4, 3, -1}, RyPolygon{99, 3, 0},
                                   RyPolygon{4, 2147483647, 0}, RyPolygon{3, 3, 0}})
        QCOMPARE(kept({other}), size_t(0));
    QCOMPARE(kept({{4, 3, 4}}), size_t(1));
}

void MeshPolygonsTest::undoOfPolygons()
{
    const RyRef<RyFacetMesh> mesh = fans();
    const std::vector<RyPolygon> whole = mesh->getPolygons();
    {
        RyUndoStackHold hold;
        mesh->setFacets(mesh->getFacets(), {whole[1]});
        hold.accept(QStringLiteral("Cut"));
    }
    QVERIFY(mesh->getPolygons() == std::vector<RyPolygon>{whole[1]});
    ryUndoStack()->undo();
    QVERIFY(mesh->getPolygons() == whole);
    ryUndoStack()->redo();
    QVERIFY(mesh->getPolygons() == std::vector<RyPolygon>{whole[1]});
    mesh->beginEdit();
    mesh->setFacets(mesh->getFacets(), whole);
    mesh->cancelEdit();
    QVERIFY(mesh->getPolygons() == std::vector<RyPolygon>{whole[1]});
}

RY_TEST(MeshPolygonsTest)
#include "tst_mesh_polygons.moc"
