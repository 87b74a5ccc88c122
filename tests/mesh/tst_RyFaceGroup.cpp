#include "mesh/FacetGrid.h"

#include "rycore/mesh/RyFaceGroup.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <algorithm>
#include <random>

class RyFaceGroupTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
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
};

void RyFaceGroupTest::groupsAreFoundByName()
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

void RyFaceGroupTest::creatingAGroupTwiceDoesNothing()
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

void RyFaceGroupTest::creatingGroupsAnnouncesThemOnce()
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

void RyFaceGroupTest::selectedFacetsMoveBetweenGroups()
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

void RyFaceGroupTest::wrongIndicesAreIgnored()
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

void RyFaceGroupTest::removingAGroupFreesItsFacets()
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

void RyFaceGroupTest::groupsOfFacetsAtOnce()
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

void RyFaceGroupTest::groupsStayExclusiveInRandomEdits()
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

void RyFaceGroupTest::undoOfGroups()
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

void RyFaceGroupTest::undoOfFacetsAndGroupsInOneStep()
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

void RyFaceGroupTest::replacingFacetsEmptiesTheGroups()
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

void RyFaceGroupTest::cancelEditRestoresFacetsAndGroups()
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

RY_TEST(RyFaceGroupTest)
#include "tst_RyFaceGroup.moc"
