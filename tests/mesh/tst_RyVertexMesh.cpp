#include "rycore/mesh/RyVertexMesh.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

class RyVertexMeshTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
    void positionsAreKeptAndCounted();
    void changesRaiseTheRevisionAndAreAnnounced();
    void editsNestAndAnnounceOnce();
    void cancelRestoresAndIsIdempotent();
    void undoBringsPositionsBack();
    void undoSkipsADeletedMesh();
    void countingHoldersDeletesTheMesh();
};

void RyVertexMeshTest::positionsAreKeptAndCounted()
{
    const RyRef<RyVertexMesh> mesh(new RyVertexMesh);
    QCOMPARE(mesh->getNumVertices(), 0);
    QVERIFY(mesh->getBoundingBox().isEmpty());
    mesh->setPositions({{1, 2, 3}, {-1, 5, 0}});
    QCOMPARE(mesh->getNumVertices(), 2);
    QCOMPARE(mesh->getVertex(1), RyVec3(-1, 5, 0));
    QCOMPARE(mesh->getBoundingBox().getMin(), RyVec3(-1, 2, 0));
    QCOMPARE(mesh->getBoundingBox().getMax(), RyVec3(1, 5, 3));
    mesh->setVertex(0, {9, 9, 9});
    QCOMPARE(mesh->getPositions()[0], RyVec3(9, 9, 9));
    mesh->setVertex(2, {7, 7, 7});
    mesh->setVertex(-1, {7, 7, 7});
    QCOMPARE(mesh->getNumVertices(), 2);
}

void RyVertexMeshTest::changesRaiseTheRevisionAndAreAnnounced()
{
    const RyRef<RyVertexMesh> mesh(new RyVertexMesh);
    QSignalSpy spy(mesh.get(), &RyVertexMesh::meshChanged);
    const quint64 before = mesh->revision();
    mesh->setPositions({{1, 2, 3}});
    QVERIFY(mesh->revision() > before);
    QCOMPARE(spy.count(), 1);
    const quint64 same = mesh->revision();
    mesh->setPositions({{1, 2, 3}});
    mesh->setVertex(0, {1, 2, 3});
    QCOMPARE(mesh->revision(), same);
    QCOMPARE(spy.count(), 1);
    mesh->setVertex(0, {1, 2, 4});
    QVERIFY(mesh->revision() > same);
    QCOMPARE(spy.count(), 2);
}

void RyVertexMeshTest::editsNestAndAnnounceOnce()
{
    const RyRef<RyVertexMesh> mesh(new RyVertexMesh);
    mesh->setPositions({{1, 2, 3}, {4, 5, 6}});
    QSignalSpy spy(mesh.get(), &RyVertexMesh::meshChanged);
    mesh->beginEdit();
    mesh->beginEdit();
    mesh->setVertex(0, {0, 0, 0});
    mesh->setVertex(1, {0, 0, 0});
    mesh->finishEdit();
    QCOMPARE(spy.count(), 0);
    mesh->finishEdit();
    QCOMPARE(spy.count(), 1);
    mesh->finishEdit();
    mesh->cancelEdit();
    QCOMPARE(spy.count(), 1);
    mesh->beginEdit();
    mesh->finishEdit();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(mesh->getVertex(1), RyVec3());
}

void RyVertexMeshTest::cancelRestoresAndIsIdempotent()
{
    const RyRef<RyVertexMesh> mesh(new RyVertexMesh);
    mesh->setPositions({{1, 2, 3}, {4, 5, 6}});
    RyUndoStackHold hold;
    mesh->beginEdit();
    mesh->beginEdit();
    mesh->setPositions({{7, 7, 7}});
    mesh->cancelEdit();
    QCOMPARE(mesh->getNumVertices(), 2);
    QCOMPARE(mesh->getVertex(0), RyVec3(1, 2, 3));
    mesh->setVertex(0, {8, 8, 8});
    mesh->cancelEdit();
    mesh->finishEdit();
    QCOMPARE(mesh->getVertex(0), RyVec3(8, 8, 8));
    hold.accept("edit");
    ryUndoStack()->undo();
    QCOMPARE(mesh->getVertex(0), RyVec3(1, 2, 3));
    ryUndoStack()->redo();
    QCOMPARE(mesh->getVertex(0), RyVec3(8, 8, 8));
}

void RyVertexMeshTest::undoBringsPositionsBack()
{
    const RyRef<RyVertexMesh> mesh(new RyVertexMesh);
    mesh->setPositions({{1, 2, 3}});
    const std::vector<RyVec3> first = mesh->getPositions();
    const std::vector<RyVec3> second{{5, 5, 5}, {6, 6, 6}};
    {
        RyUndoStackHold hold;
        mesh->setVertex(0, {3, 3, 3});
        mesh->setPositions(second);
        hold.accept("move");
    }
    QCOMPARE(ryUndoStack()->entryCount(0), 1);
    QSignalSpy spy(mesh.get(), &RyVertexMesh::meshChanged);
    const quint64 revision = mesh->revision();
    ryUndoStack()->undo();
    QVERIFY(mesh->getPositions() == first);
    QVERIFY(mesh->revision() > revision);
    QCOMPARE(spy.count(), 1);
    ryUndoStack()->redo();
    QVERIFY(mesh->getPositions() == second);
    QCOMPARE(spy.count(), 2);
    {
        RyUndoStackHold hold;
        mesh->setVertex(0, {9, 9, 9});
    }
    QVERIFY(mesh->getPositions() == second);
    mesh->setVertex(0, {9, 9, 9});
    QCOMPARE(ryUndoStack()->count(), 1);
}

void RyVertexMeshTest::undoSkipsADeletedMesh()
{
    auto *mesh = new RyVertexMesh;
    {
        RyUndoStackHold hold;
        mesh->setPositions({{1, 1, 1}});
        hold.accept("gone");
    }
    delete mesh;
    ryUndoStack()->undo();
    ryUndoStack()->redo();
    QCOMPARE(ryUndoStack()->index(), 1);
}

void RyVertexMeshTest::countingHoldersDeletesTheMesh()
{
    QPointer<RyVertexMesh> mesh(new RyVertexMesh);
    QCOMPARE(mesh->refCount(), 0);
    {
        const RyRef<RyVertexMesh> one(mesh.data());
        const RyRef<RyVertexMesh> two(one);
        QCOMPARE(mesh->refCount(), 2);
    }
    QVERIFY(mesh.isNull());
}

RY_TEST(RyVertexMeshTest)
#include "tst_RyVertexMesh.moc"
