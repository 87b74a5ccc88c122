#include "mesh/FacetGrid.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <cmath>
#include <random>
#include <set>

class RyFacetMeshTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
    void trianglesAndQuads();
    void copyIsDeep();
    void neighboursAcrossEdges();
    void neighboursOfNonManifoldAndDegenerateFacets();
    void normalsOfPlaneCubeAndLooseVertices();
};

void RyFacetMeshTest::trianglesAndQuads()
{
    QVERIFY(triangle(0, 1, 2).isTriangle());
    QCOMPARE(triangle(0, 1, 2).count(), 3);
    QVERIFY(!quad(0, 1, 2, 3).isTriangle());
    QCOMPARE(quad(0, 1, 2, 3).count(), 4);
    const auto mesh = grid(3);
    QCOMPARE(mesh->getNumFacets(), 9);
    QCOMPARE(mesh->getFacet(8).vertices[2], 15);
    QCOMPARE(mesh->getFacet(8).group, -1);
}

void RyFacetMeshTest::copyIsDeep()
{
    const auto mesh = grid(2);
    mesh->setObjectName("body");
    mesh->createFaceGroup("a");
    mesh->setGroupsOfFacets({0, -1, 0, -1});
    mesh->selectFacetsByIndexList(list({3}), true);
    const RyRef<RyFacetMesh> copy(mesh->copy());
    QCOMPARE(copy->refCount(), 1);
    QCOMPARE(copy->getName(), QString("body"));
    QCOMPARE(dump(copy), dump(mesh));
    QVERIFY(copy->getPositions() == mesh->getPositions());
    QVERIFY(copy->isFacetSelected(3) && !copy->isFacetSelected(0));
    QVERIFY(copy->getFaceGroup(0) != mesh->getFaceGroup(0));
    const QString before = dump(mesh);
    copy->setVertex(0, {9, 9, 9});
    copy->removeFaceGroup("a");
    QCOMPARE(dump(mesh), before);
    QCOMPARE(mesh->getVertex(0), RyVec3());
}

void RyFacetMeshTest::neighboursAcrossEdges()
{
    const int n = 6;
    const auto mesh = grid(n);
    for (int y = 0; y < n; ++y) {
        for (int x = 0; x < n; ++x) {
            const int facet = y * n + x;
            QCOMPARE(mesh->getNeighbour(facet, 0), y > 0 ? facet - n : -1);
            QCOMPARE(mesh->getNeighbour(facet, 1), x < n - 1 ? facet + 1 : -1);
            QCOMPARE(mesh->getNeighbour(facet, 2), y < n - 1 ? facet + n : -1);
            QCOMPARE(mesh->getNeighbour(facet, 3), x > 0 ? facet - 1 : -1);
        }
    }
    QCOMPARE(mesh->getNeighbour(-1, 0), -1);
    QCOMPARE(mesh->getNeighbour(n * n, 0), -1);
    QCOMPARE(mesh->getNeighbour(0, 4), -1);
    mesh->setFacets({triangle(0, 1, 2), triangle(2, 1, 3)});
    QCOMPARE(mesh->getNeighbour(0, 1), 1);
    QCOMPARE(mesh->getNeighbour(1, 0), 0);
    QCOMPARE(mesh->getNeighbour(0, 3), -1);
}

void RyFacetMeshTest::neighboursOfNonManifoldAndDegenerateFacets()
{
    const RyRef<RyFacetMesh> mesh(new RyFacetMesh);
    mesh->setPositions(std::vector<RyVec3>(8));
    // Three facets share the edge 0-1: the first two are a pair, the third stands alone. A fourth completes it.
    mesh->setFacets({triangle(0, 1, 2), triangle(1, 0, 3), triangle(0, 1, 4)});
    QCOMPARE(mesh->getNeighbour(0, 0), 1);
    QCOMPARE(mesh->getNeighbour(1, 0), 0);
    QCOMPARE(mesh->getNeighbour(2, 0), -1);
    mesh->setFacets({triangle(0, 1, 2), triangle(1, 0, 3), triangle(0, 1, 4), triangle(0, 1, 5)});
    QCOMPARE(mesh->getNeighbour(2, 0), 3);
    QCOMPARE(mesh->getNeighbour(3, 0), 2);
    // A facet that folds back on an edge is not its own neighbour, and an edge of no length has none.
    mesh->setFacets({quad(0, 1, 0, 2), triangle(5, 5, 6), triangle(5, 6, 7)});
    for (int edge = 0; edge < 4; ++edge)
        QCOMPARE(mesh->getNeighbour(0, edge), -1);
    QCOMPARE(mesh->getNeighbour(1, 0), -1);
    QCOMPARE(mesh->getNeighbour(1, 1), 2);
    // Neighbours are mutual whatever the facets are.
    std::mt19937 random(ryTestSeed());
    std::vector<RyFacet> facets;
    for (int i = 0; i < 400; ++i) {
        facets.push_back(quad(int(random() % 20), int(random() % 20), int(random() % 20), -1));
        if (i % 2)
            facets.back().vertices[3] = int(random() % 20);
    }
    mesh->setFacets(facets);
    int pairs = 0;
    for (int i = 0; i < 400; ++i) {
        for (int edge = 0; edge < facets[size_t(i)].count(); ++edge) {
            const int other = mesh->getNeighbour(i, edge);
            if (other < 0)
                continue;
            ++pairs;
            QVERIFY(other != i);
            const auto sides = [&](int facet) {
                std::multiset<std::pair<int, int>> result;
                const RyFacet &f = facets[size_t(facet)];
                for (int k = 0; k < f.count(); ++k) {
                    if (mesh->getNeighbour(facet, k) == (facet == i ? other : i))
                        result.insert(std::minmax(f.vertices[k], f.vertices[(k + 1) % f.count()]));
                }
                return result;
            };
            QVERIFY(sides(i) == sides(other));
        }
    }
    QVERIFY(pairs > 100);
}

void RyFacetMeshTest::normalsOfPlaneCubeAndLooseVertices()
{
    const auto plane = grid(3);
    for (const RyVec3 &normal : plane->computeNormals(plane->getPositions()))
        QCOMPARE(normal, RyVec3(0, 0, 1));
    // The positions asked for count, not those of the mesh.
    std::vector<RyVec3> turned;
    for (const RyVec3 &p : plane->getPositions())
        turned.push_back({p.z, p.x, p.y});
    for (const RyVec3 &normal : plane->computeNormals(turned))
        QCOMPARE(normal, RyVec3(1, 0, 0));

    const RyRef<RyFacetMesh> cube(new RyFacetMesh);
    std::vector<RyVec3> corners;
    for (int i = 0; i < 8; ++i)
        corners.push_back({i & 1 ? 1.0f : -1.0f, i & 2 ? 1.0f : -1.0f, i & 4 ? 1.0f : -1.0f});
    corners.push_back({7, 7, 7});
    cube->setPositions(corners);
    cube->setFacets(
        {quad(0, 2, 3, 1), quad(4, 5, 7, 6), quad(0, 1, 5, 4), quad(2, 6, 7, 3), quad(0, 4, 6, 2), quad(1, 3, 7, 5)});
    const std::vector<RyVec3> normals = cube->computeNormals(corners);
    const float third = float(1.0 / std::sqrt(3.0));
    for (size_t i = 0; i < 8; ++i)
        QVERIFY((normals[i] - corners[i] * third).length() < 1e-6f);
    QCOMPARE(normals[8], RyVec3());

    // A triangle of twice the area weighs twice.
    const RyRef<RyFacetMesh> roof(new RyFacetMesh);
    const std::vector<RyVec3> points{{0, 0, 0}, {2, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    roof->setPositions(points);
    roof->setFacets({triangle(0, 1, 2), triangle(0, 2, 3)});
    const RyVec3 first = roof->computeNormals(points)[0];
    QVERIFY((first - RyVec3(1, 0, 2) * float(1.0 / std::sqrt(5.0))).length() < 1e-6f);
    // Facets that name missing vertices are left out.
    roof->setFacets({triangle(0, 1, 9)});
    QCOMPARE(roof->computeNormals(points)[0], RyVec3());
}

RY_TEST(RyFacetMeshTest)
#include "tst_RyFacetMesh.moc"
