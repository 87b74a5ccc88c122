#include "rycore/mesh/RyFacetMesh.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <cmath>
#include <random>
#include <set>

namespace {

RyFacet triangle(int a, int b, int c)
{
    return {{a, b, c, -1}, -1};
}

RyFacet quad(int a, int b, int c, int d)
{
    return {{a, b, c, d}, -1};
}

/// A grid of quads in the XY plane, (n + 1)^2 vertices one centimetre apart.
RyRef<RyFacetMesh> grid(int n)
{
    RyRef<RyFacetMesh> mesh(new RyFacetMesh);
    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;
    for (int y = 0; y <= n; ++y) {
        for (int x = 0; x <= n; ++x)
            positions.push_back({float(x), float(y), 0.0f});
    }
    for (int y = 0; y < n; ++y) {
        for (int x = 0; x < n; ++x) {
            const int a = y * (n + 1) + x;
            facets.push_back(quad(a, a + 1, a + n + 2, a + n + 1));
        }
    }
    mesh->setPositions(positions);
    mesh->setFacets(facets);
    return mesh;
}

RyIndexList list(std::initializer_list<int> indices)
{
    RyIndexList result;
    for (int index : indices)
        result.append(index);
    return result;
}

/// Facets and groups as one text.
QString dump(const RyFacetMesh *mesh)
{
    QString text;
    for (const RyFacet &f : mesh->getFacets()) {
        text += QString("%1,%2,%3,%4:%5 ")
                    .arg(f.vertices[0])
                    .arg(f.vertices[1])
                    .arg(f.vertices[2])
                    .arg(f.vertices[3])
                    .arg(f.group);
    }
    for (int i = 0; i < mesh->getNumFaceGroups(); ++i) {
        text += '|' + mesh->getFaceGroup(i)->getName() + ':';
        for (int k = 0; k < mesh->getFaceGroup(i)->getFacets().count(); ++k)
            text += QString::number(mesh->getFaceGroup(i)->getFacets().getIndex(k)) + ' ';
    }
    return text;
}

} // namespace

class RyFacetMeshTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
    void trianglesAndQuads();
    void groupsAreFoundByName();
    void creatingAGroupTwiceDoesNothing();
    void creatingGroupsAnnouncesThemOnce();
    void selectedFacetsMoveBetweenGroups();
    void wrongIndicesAreIgnored();
    void removingAGroupFreesItsFacets();
    void groupsOfFacetsAtOnce();
    void groupsStayExclusiveInRandomEdits();
    void undoOfGroups();
    void undoOfFacetsAndGroupsInOneStep();
    void replacingFacetsEmptiesTheGroups();
    void cancelEditRestoresFacetsAndGroups();
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

void RyFacetMeshTest::groupsAreFoundByName()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("hip");
    mesh->createFaceGroup("head");
    QCOMPARE(mesh->getNumFaceGroups(), 2);
    QCOMPARE(mesh->findFaceGroup("head"), mesh->getFaceGroup(1));
    QCOMPARE(mesh->findFaceGroupIndex("hip"), 0);
    QVERIFY(!mesh->findFaceGroup("Head"));
    QCOMPARE(mesh->findFaceGroupIndex("tail"), -1);
    QVERIFY(!mesh->getFaceGroup(-1));
    QVERIFY(!mesh->getFaceGroup(2));
}

void RyFacetMeshTest::creatingAGroupTwiceDoesNothing()
{
    const auto mesh = grid(2);
    QSignalSpy spy(mesh.get(), &RyFacetMesh::faceGroupsChanged);
    mesh->createFaceGroup("hip");
    RyFaceGroup *group = mesh->findFaceGroup("hip");
    mesh->createFaceGroup("hip");
    QCOMPARE(mesh->getNumFaceGroups(), 1);
    QCOMPARE(mesh->findFaceGroup("hip"), group);
    QCOMPARE(spy.count(), 1);
}

void RyFacetMeshTest::creatingGroupsAnnouncesThemOnce()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("hip");
    const RyFaceGroup *hip = mesh->findFaceGroup("hip");
    QSignalSpy spy(mesh.get(), &RyFacetMesh::faceGroupsChanged);
    const auto names = [&] {
        QStringList all;
        for (int group = 0; group < mesh->getNumFaceGroups(); ++group)
            all.append(mesh->getFaceGroup(group)->getName());
        return all;
    };
    RyUndoStackHold hold;
    mesh->createFaceGroups({"tail", "hip", "head", "tail"});
    hold.accept("groups");
    QCOMPARE(names(), QStringList({"hip", "tail", "head"}));
    QCOMPARE(mesh->findFaceGroup("hip"), hip);
    QCOMPARE(mesh->findFaceGroupIndex("head"), 2);
    QCOMPARE(spy.count(), 1);
    mesh->createFaceGroups({"head", "hip"});
    QCOMPARE(spy.count(), 1);
    ryUndoStack()->undo();
    QCOMPARE(names(), QStringList({"hip"}));
    ryUndoStack()->redo();
    QCOMPARE(names(), QStringList({"hip", "tail", "head"}));
}

void RyFacetMeshTest::selectedFacetsMoveBetweenGroups()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->createFaceGroup("b");
    mesh->selectFacetsByIndexList(list({3, 0, 1}), true);
    QVERIFY(mesh->isFacetSelected(0) && mesh->isFacetSelected(1) && !mesh->isFacetSelected(2));
    mesh->addSelectedFacetsToGroup("a");
    QVERIFY(mesh->findFaceGroup("a")->getFacets() == list({0, 1, 3}));
    mesh->deselectAllFacets();
    QVERIFY(!mesh->isFacetSelected(0));
    mesh->selectFacetsByIndexList(list({1, 2}), true);
    mesh->addSelectedFacetsToGroup("b");
    QVERIFY(mesh->findFaceGroup("a")->getFacets() == list({0, 3}));
    QVERIFY(mesh->findFaceGroup("b")->getFacets() == list({1, 2}));
    QCOMPARE(mesh->getFacet(1).group, 1);
    mesh->selectFacetsByIndexList(list({1}), false);
    QVERIFY(!mesh->isFacetSelected(1) && mesh->isFacetSelected(2));
}

void RyFacetMeshTest::wrongIndicesAreIgnored()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->selectFacetsByIndexList(list({-1, 4, 99, 2}), true);
    mesh->addSelectedFacetsToGroup("unknown");
    QCOMPARE(mesh->findFaceGroup("a")->getFacets().count(), 0);
    mesh->addSelectedFacetsToGroup("a");
    QVERIFY(mesh->findFaceGroup("a")->getFacets() == list({2}));
    mesh->setGroupsOfFacets({5, -7, 0});
    QVERIFY(mesh->findFaceGroup("a")->getFacets() == list({2}));
    QCOMPARE(mesh->getFacet(0).group, -1);
}

void RyFacetMeshTest::removingAGroupFreesItsFacets()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->createFaceGroup("b");
    mesh->setGroupsOfFacets({0, 1, 1, -1});
    mesh->removeFaceGroup("nothing");
    mesh->removeFaceGroup("a");
    QCOMPARE(mesh->getNumFaceGroups(), 1);
    QCOMPARE(mesh->getFacet(0).group, -1);
    QCOMPARE(mesh->getFacet(1).group, 0);
    QVERIFY(mesh->findFaceGroup("b")->getFacets() == list({1, 2}));
}

void RyFacetMeshTest::groupsOfFacetsAtOnce()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->createFaceGroup("b");
    QSignalSpy spy(mesh.get(), &RyFacetMesh::faceGroupsChanged);
    mesh->setGroupsOfFacets({1, 0, 1, 0});
    mesh->setGroupsOfFacets({1, 0, 1, 0});
    QCOMPARE(spy.count(), 1);
    QVERIFY(mesh->findFaceGroup("a")->getFacets() == list({1, 3}));
    QVERIFY(mesh->findFaceGroup("b")->getFacets() == list({0, 2}));
}

void RyFacetMeshTest::groupsStayExclusiveInRandomEdits()
{
    std::mt19937 random(ryTestSeed());
    const auto number = [&random](int n) { return int(random() % unsigned(n)); };
    const auto mesh = grid(5);
    std::vector<QString> names;
    std::vector<QString> groupOf(25);
    std::vector<QString> history{dump(mesh)};
    for (int step = 0; step < 600; ++step) {
        RyUndoStackHold hold;
        const QString name = QString("g%1").arg(number(6));
        const bool known = std::find(names.begin(), names.end(), name) != names.end();
        switch (number(4)) {
        case 0:
            mesh->createFaceGroup(name);
            if (!known)
                names.push_back(name);
            break;
        case 1:
            mesh->removeFaceGroup(name);
            std::erase(names, name);
            for (QString &group : groupOf) {
                if (group == name)
                    group.clear();
            }
            break;
        default: {
            mesh->deselectAllFacets();
            RyIndexList chosen;
            for (int k = 0; k < 6; ++k)
                chosen.append(number(25));
            mesh->selectFacetsByIndexList(chosen, true);
            mesh->addSelectedFacetsToGroup(name);
            for (int k = 0; known && k < 6; ++k)
                groupOf[size_t(chosen.getIndex(k))] = name;
        }
        }
        hold.accept("edit");
        history.push_back(dump(mesh));
        QCOMPARE(mesh->getNumFaceGroups(), int(names.size()));
        int grouped = 0;
        for (int i = 0; i < mesh->getNumFaceGroups(); ++i) {
            QCOMPARE(mesh->getFaceGroup(i)->getName(), names[size_t(i)]);
            const RyIndexList &facets = mesh->getFaceGroup(i)->getFacets();
            grouped += facets.count();
            for (int k = 0; k < facets.count(); ++k) {
                QVERIFY(k == 0 || facets.getIndex(k - 1) < facets.getIndex(k));
                QCOMPARE(groupOf[size_t(facets.getIndex(k))], names[size_t(i)]);
                QCOMPARE(mesh->getFacet(facets.getIndex(k)).group, i);
            }
        }
        QCOMPARE(grouped, int(std::count_if(groupOf.begin(), groupOf.end(), [](auto &g) { return !g.isEmpty(); })));
    }
    for (size_t i = history.size(); i-- > 0;) {
        QCOMPARE(dump(mesh), history[i]);
        ryUndoStack()->undo();
    }
    for (const QString &expected : history) {
        QCOMPARE(dump(mesh), expected);
        ryUndoStack()->redo();
    }
}

void RyFacetMeshTest::undoOfGroups()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->setGroupsOfFacets({0, 0, -1, -1});
    RyFaceGroup *a = mesh->findFaceGroup("a");
    const QString before = dump(mesh);
    {
        RyUndoStackHold hold;
        mesh->createFaceGroup("b");
        mesh->selectFacetsByIndexList(list({1, 2}), true);
        mesh->addSelectedFacetsToGroup("b");
        hold.accept("group");
    }
    const QString after = dump(mesh);
    QVERIFY(before != after);
    QSignalSpy spy(mesh.get(), &RyFacetMesh::faceGroupsChanged);
    ryUndoStack()->undo();
    QCOMPARE(dump(mesh), before);
    QCOMPARE(mesh->findFaceGroup("a"), a);
    ryUndoStack()->redo();
    QCOMPARE(dump(mesh), after);
    QCOMPARE(spy.count(), 2);
}

void RyFacetMeshTest::undoOfFacetsAndGroupsInOneStep()
{
    for (int variant = 0; variant < 4; ++variant) {
        ryUndoStack()->clearAll();
        const auto mesh = grid(2);
        mesh->createFaceGroup("a");
        mesh->setGroupsOfFacets({0, 0, -1, 0});
        const QString before = dump(mesh);
        {
            RyUndoStackHold hold;
            if (variant & 1) {
                mesh->createFaceGroup("b");
                mesh->setGroupsOfFacets({1, 0, 0, 1});
            }
            mesh->setFacets({triangle(0, 1, 4), triangle(0, 4, 3)});
            if (variant & 2) {
                mesh->removeFaceGroup("a");
                mesh->createFaceGroup("c");
                mesh->setGroupsOfFacets({0, mesh->findFaceGroupIndex("c")});
            }
            hold.accept("facets");
        }
        const QString after = dump(mesh);
        for (int again = 0; again < 2; ++again) {
            ryUndoStack()->undo();
            QCOMPARE(dump(mesh), before);
            ryUndoStack()->redo();
            QCOMPARE(dump(mesh), after);
        }
    }
}

void RyFacetMeshTest::replacingFacetsEmptiesTheGroups()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->setGroupsOfFacets({0, 0, 0, 0});
    mesh->selectFacetsByIndexList(list({0}), true);
    const quint64 revision = mesh->revision();
    RyFacet marked = triangle(0, 1, 4);
    marked.group = 17;
    mesh->setFacets({marked});
    QVERIFY(mesh->revision() > revision);
    QCOMPARE(mesh->getNumFaceGroups(), 1);
    QCOMPARE(mesh->findFaceGroup("a")->getFacets().count(), 0);
    QCOMPARE(mesh->getFacet(0).group, -1);
    QVERIFY(!mesh->isFacetSelected(0));
}

void RyFacetMeshTest::cancelEditRestoresFacetsAndGroups()
{
    const auto mesh = grid(2);
    mesh->createFaceGroup("a");
    mesh->setGroupsOfFacets({0, -1, 0, -1});
    const QString before = dump(mesh);
    const std::vector<RyVec3> positions = mesh->getPositions();
    mesh->beginEdit();
    mesh->setVertex(0, {5, 5, 5});
    mesh->createFaceGroup("b");
    mesh->setGroupsOfFacets({1, 1, 1, 1});
    mesh->setFacets({triangle(0, 1, 2)});
    mesh->cancelEdit();
    QCOMPARE(dump(mesh), before);
    QVERIFY(mesh->getPositions() == positions);
    mesh->beginEdit();
    mesh->setGroupsOfFacets({-1, -1, 0, 0});
    mesh->finishEdit();
    QVERIFY(mesh->findFaceGroup("a")->getFacets() == list({2, 3}));
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
