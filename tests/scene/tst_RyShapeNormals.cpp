#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "support/RyTest.h"

namespace {

/// Two squares that meet at a right angle in the edge from vertex 1 to vertex 2, one flat, one upright.
RyFacetMesh *makeFold()
{
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{0, 0, 0}, {2, 0, 0}, {2, 0, -2}, {0, 0, -2}, {2, 2, 0}, {2, 2, -2}, {9, 9, 9}});
    mesh->setFacets({{{0, 1, 2, 3}}, {{1, 4, 5, 2}}});
    return mesh;
}

/// The same as two parts of split vertices; the edge is sharp.
std::shared_ptr<const RyMeshParts> makeSharpParts()
{
    auto parts = std::make_shared<RyMeshParts>();
    RyMeshPart flat;
    flat.vertexOfSplit = {0, 1, 2, 3, 1};
    flat.normalOfSplit = {0, 1, 2, 3, 1}; // vertex 1 twice, as at a seam of a texture
    flat.triangles = {0, 4, 2, 0, 2, 3};
    RyMeshPart upright;
    upright.vertexOfSplit = {1, 4, 5, 2};
    upright.normalOfSplit = {4, 5, 6, 7};
    upright.triangles = {0, 1, 2, 0, 2, 3};
    parts->parts = {flat, upright};
    parts->normalCount = 8;
    return parts;
}

bool near(const RyVec3 &a, const RyVec3 &b)
{
    return (a - b).length() < 1e-6f;
}

} // namespace

class RyShapeNormalsTest : public QObject
{
    Q_OBJECT

private slots:
    void oneForEachVertexWithoutParts()
    {
        RyFacetShape shape(makeFold());
        const RyShapeNormals *normals = shape.getNormals();
        QCOMPARE(normals->normals().size(), size_t(7));
        QVERIFY(normals->vertexOfFurther().empty());
        QCOMPARE(normals->placeOf(5), 5);
        QVERIFY(near(normals->normals()[0], {0, 1, 0}));
        QVERIFY(near(normals->normals()[4], {-1, 0, 0}));
        // Both squares are of one size: the mean of their two triangles' shares.
        const RyVec3 shared = normals->normals()[1];
        QVERIFY(std::abs(shared.length() - 1.0f) < 1e-6f && shared.x < -0.4f && shared.y > 0.4f);
        QCOMPARE(normals->normals()[6], RyVec3());
        QVERIFY(!RyFacetShape().getNormals());
    }

    void furtherOnesAtHardEdges()
    {
        RyFacetShape shape(makeFold());
        shape.setParts(makeSharpParts());
        const RyShapeNormals *normals = shape.getNormals();
        QVERIFY(normals->vertexOfFurther() == std::vector<int>({1, 2}));
        QCOMPARE(normals->normals().size(), size_t(9));
        // The first ones at their vertices, the further ones behind them.
        QCOMPARE(normals->placeOf(1), 1);
        QCOMPARE(normals->placeOf(5), 4);
        QCOMPARE(normals->placeOf(4), 7);
        QCOMPARE(normals->placeOf(7), 8);
        for (int number = 0; number < 4; ++number)
            QVERIFY(near(normals->normals()[size_t(normals->placeOf(number))], {0, 1, 0}));
        for (int number = 4; number < 8; ++number)
            QVERIFY(near(normals->normals()[size_t(normals->placeOf(number))], {-1, 0, 0}));
    }

    void followsTheShape()
    {
        RyFacetMesh *mesh = makeFold();
        RyFacetShape shape(mesh);
        const RyShapeNormals *normals = shape.getNormals();
        const quint64 first = normals->revision();
        const quint64 firstLayout = normals->layoutRevision();
        QCOMPARE(shape.getNormals()->revision(), first);
        mesh->setVertex(0, {0, 1, 0});
        normals = shape.getNormals();
        QVERIFY(normals->revision() > first);
        QCOMPARE(normals->layoutRevision(), firstLayout);
        QVERIFY(!near(normals->normals()[0], {0, 1, 0}));
        shape.setParts(makeSharpParts());
        normals = shape.getNormals();
        QVERIFY(normals->layoutRevision() > firstLayout);
        QCOMPARE(normals->vertexOfFurther().size(), size_t(2));
        const quint64 sharp = normals->layoutRevision();
        // Another mesh, though it counts its changes alike.
        RyFacetMesh *other = makeFold();
        other->setVertex(0, {0, 3, 0});
        QCOMPARE(other->revision(), mesh->revision());
        shape.setFacetMesh(other);
        QVERIFY(shape.getNormals()->layoutRevision() > sharp);
        QVERIFY(shape.getNormals()->normals()[0].y < 0.99f);
        // Facets of vertices that are gone count for nothing.
        shape.setParts(nullptr);
        other->setPositions({{0, 0, 0}, {1, 0, 0}});
        QVERIFY(shape.getNormals()->normals() == std::vector<RyVec3>(2));
    }

    /// Only who asks for normals gets them made.
    void objectsHandThemOut()
    {
        RyRef<RyObject> object(new RyObject);
        auto *shape = new RyFacetShape(makeFold());
        shape->setParts(makeSharpParts());
        object->addShape(shape);
        QVERIFY(object->getDeformedPositions() == shape->getFacetMesh()->getPositions());
        const RyShapePoints points = object->getDeformedPoints();
        QCOMPARE(points.positions, &shape->getFacetMesh()->getPositions());
        QCOMPARE(points.normals, &shape->getNormals()->normals());
        QCOMPARE(points.places, shape->getNormals());
        QVERIFY(points.changedSince(0) == std::vector<RyPointChanges::Range>({{0, 9}}));
        const quint64 seen = points.revision();
        shape->setParts(nullptr);
        QVERIFY(object->getDeformedPoints().revision() > seen);
        QVERIFY(object->getDeformedPoints().changedSince(seen) == std::vector<RyPointChanges::Range>({{0, 7}}));
    }
};

RY_TEST(RyShapeNormalsTest)
#include "tst_RyShapeNormals.moc"
