#include "SceneText.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

namespace {

QString pairsOf(const RySelectionMap &map)
{
    QStringList texts;
    for (int i = 0; i < map.getNumPairs(); ++i) {
        const RyNode *node = map.getPairNode(i);
        texts << map.getPairGroup(i) + QLatin1Char('=') + (node ? node->getName() : QStringLiteral("none"));
    }
    return texts.join(QLatin1Char(' '));
}

/// Moves every point by the same way, or fails.
class MovingModifier : public RyModifier
{
public:
    explicit MovingModifier(const RyVec3 &way, bool works = true) : m_way(way), m_works(works) {}
    bool deform(RyShapePoints &points) override
    {
        if (!m_works)
            return false;
        m_positions = *points.positions;
        for (RyVec3 &p : m_positions)
            p += m_way;
        m_changes.markAll(int(m_positions.size()));
        points.positions = &m_positions;
        points.changes = &m_changes;
        return true;
    }

private:
    std::vector<RyVec3> m_positions;
    RyPointChanges m_changes;
    RyVec3 m_way;
    bool m_works;
};

} // namespace

class RySkeletonTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        m_skeleton = new RySkeleton;
        m_hold = RyRef<RyNode>(m_skeleton);
        m_hip = named(new RyBone, "hip");
        m_spine = named(new RyBone, "spine");
        m_leg = named(new RyBone, "leg");
        m_prop = named(new RyNode, "prop");
        m_hat = named(new RyBone, "hat");
        m_skeleton->addNodeChild(m_hip);
        m_hip->addNodeChild(m_spine);
        m_spine->addNodeChild(m_prop);
        m_prop->addNodeChild(m_hat);
        m_hip->addNodeChild(m_leg);
    }
    void cleanup()
    {
        m_hold = RyRef<RyNode>();
        ryUndoStack()->clearAll();
    }

    void bonesInPreOrder()
    {
        std::vector<RyBone *> bones;
        m_skeleton->getAllBones(bones);
        QStringList names;
        for (const RyBone *bone : bones)
            names << bone->getName();
        QCOMPARE(names, QStringList({"hip", "spine", "hat", "leg"}));
        QCOMPARE(m_skeleton->findBone(QStringLiteral("hat")), m_hat);
        QVERIFY(!m_skeleton->findBone(QStringLiteral("Hat")));
        QVERIFY(!m_skeleton->findBone(QStringLiteral("prop")));
        m_leg->setName(QStringLiteral("hat"));
        QCOMPARE(m_skeleton->findBone(QStringLiteral("hat")), m_hat);
        m_leg->setLabel(QStringLiteral("Leg"));
        QCOMPARE(m_skeleton->findBoneByLabel(QStringLiteral("Leg")), m_leg);
        QCOMPARE(m_skeleton->findBoneByLabel(QStringLiteral("spine")), m_spine);
        QVERIFY(!m_skeleton->findBoneByLabel(QStringLiteral("leg")));
    }

    void uniqueBoneNames()
    {
        const auto name = [this](const char *text, RyNode *ignore = nullptr) {
            return m_skeleton->getUniqueBoneName(QLatin1String(text), ignore);
        };
        QCOMPARE(name("arm"), QStringLiteral("arm"));
        QCOMPARE(name("prop"), QStringLiteral("prop"));
        QCOMPARE(name("hip"), QStringLiteral("hip2"));
        QCOMPARE(name("hip", m_hip), QStringLiteral("hip"));
        m_spine->setName(QStringLiteral("hip2"));
        m_leg->setName(QStringLiteral("hip4"));
        QCOMPARE(name("hip"), QStringLiteral("hip3"));
        QCOMPARE(name("hip4"), QStringLiteral("hip3"));
        QCOMPARE(name("hip2", m_spine), QStringLiteral("hip2"));
        m_leg->setName(QStringLiteral("12"));
        QCOMPARE(name("12"), QStringLiteral("122"));
        m_leg->setLabel(QStringLiteral("Bone"));
        m_hat->setLabel(QStringLiteral("Bone (2)"));
        QCOMPARE(m_skeleton->getUniqueBoneLabel(QStringLiteral("Bone")), QStringLiteral("Bone 2"));
        QCOMPARE(m_skeleton->getUniqueBoneLabel(QStringLiteral("Bone (2)")), QStringLiteral("Bone 2"));
        m_hip->setLabel(QStringLiteral("Bone 2"));
        QCOMPARE(m_skeleton->getUniqueBoneLabel(QStringLiteral("Bone (2)")), QStringLiteral("Bone 3"));
        QCOMPARE(m_skeleton->getUniqueBoneLabel(QStringLiteral("Bone"), m_leg), QStringLiteral("Bone"));
    }

    void followTarget()
    {
        const RyRef<RySkeleton> body(new RySkeleton);
        m_skeleton->setFollowTarget(body.get());
        QCOMPARE(m_skeleton->getFollowTarget(), body.get());
        m_skeleton->setFollowTarget(m_skeleton);
        QVERIFY(!m_skeleton->getFollowTarget());
        QVERIFY(!m_skeleton->drawsGLBones());
        m_skeleton->setDrawGLBones(true);
        QVERIFY(m_skeleton->drawsGLBones());
    }

    void pairsOfASelectionMap()
    {
        const RyRef<RySelectionMap> map(new RySelectionMap);
        QSignalSpy changed(map.get(), &RySelectionMap::mapChanged);
        QVERIFY(map->addPair(QStringLiteral("body"), m_hip, false));
        QVERIFY(map->addPair(QStringLiteral("legs"), m_leg, false));
        QVERIFY(map->addPair(QStringLiteral("feet"), m_leg, false));
        QVERIFY(map->addPair(QStringLiteral("air"), nullptr, false));
        QCOMPARE(pairsOf(*map), QStringLiteral("body=hip legs=leg feet=leg air=none"));
        QCOMPARE(changed.size(), 4);
        QVERIFY(!map->addPair(QStringLiteral("body"), m_spine, false));
        QCOMPARE(changed.size(), 4);
        QCOMPARE(map->findPair(QStringLiteral("feet")), 2);
        QCOMPARE(map->findPair(QStringLiteral("Feet")), -1);
        QCOMPARE(map->findPair(m_leg), 1);
        QCOMPARE(map->findPair(m_spine), -1);
        QCOMPARE(map->findPair(static_cast<const RyNode *>(nullptr)), -1);
        QCOMPARE(map->findGroupForNode(m_leg), QStringLiteral("legs"));
        QVERIFY(map->findGroupForNode(m_spine).isEmpty() && map->findGroupForNode(nullptr).isEmpty());
        // Taking over drops the pairs of the group and of the node.
        QVERIFY(map->addPair(QStringLiteral("body"), m_leg, true));
        QCOMPARE(pairsOf(*map), QStringLiteral("air=none body=leg"));
        QVERIFY(map->addPair(QStringLiteral("air"), nullptr, true));
        QCOMPARE(pairsOf(*map), QStringLiteral("body=leg air=none"));
        QVERIFY(!map->removePair(-1) && !map->removePair(2));
        QVERIFY(map->removePair(0));
        QCOMPARE(pairsOf(*map), QStringLiteral("air=none"));
        map->clearAll();
        QCOMPARE(map->getNumPairs(), 0);
    }

    void selectionMapUndo()
    {
        auto *map = new RySelectionMap;
        QSignalSpy exchanged(m_skeleton, &RySkeleton::selectionMapChanged);
        {
            RyUndoStackHold hold;
            m_skeleton->setSelectionMap(map);
            map->addPair(QStringLiteral("body"), m_hip, true);
            hold.accept(QStringLiteral("Build"));
        }
        {
            RyUndoStackHold hold;
            map->addPair(QStringLiteral("legs"), m_leg, true);
            map->addPair(QStringLiteral("body"), m_leg, true);
            map->removePair(0);
            hold.accept(QStringLiteral("Change"));
        }
        const QString after = pairsOf(*map);
        ryUndoStack()->undo();
        QCOMPARE(pairsOf(*map), QStringLiteral("body=hip"));
        ryUndoStack()->undo();
        QVERIFY(!m_skeleton->getSelectionMap());
        ryUndoStack()->redo();
        QCOMPARE(m_skeleton->getSelectionMap(), map);
        QCOMPARE(exchanged.size(), 3);
        ryUndoStack()->redo();
        QCOMPARE(pairsOf(*map), after);
        // A node that is gone leaves its pair behind, without node.
        map->addPair(QStringLiteral("hat"), m_hat, true);
        delete m_hat;
        QVERIFY(!map->getPairNode(map->findPair(QStringLiteral("hat"))));
    }

    void boundingBoxes()
    {
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {10, 0, 0}, {12, 0, 0}, {10, 5, 0}});
        mesh->setFacets({{{0, 1, 2, -1}, -1}, {{3, 4, 5, -1}, -1}});
        mesh->createFaceGroup(QStringLiteral("one"));
        mesh->createFaceGroup(QStringLiteral("two"));
        mesh->setGroupsOfFacets({0, 1});
        QVERIFY(m_hip->getBoundingBox().isEmpty());
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        m_skeleton->setObject(object);
        auto *map = new RySelectionMap;
        m_skeleton->setSelectionMap(map);
        map->addPair(QStringLiteral("two"), m_leg, true);
        map->addPair(QStringLiteral("nowhere"), m_spine, true);
        QVERIFY(m_leg->getBoundingBox().getMin() == RyVec3(10, 0, 0));
        QVERIFY(m_leg->getBoundingBox().getMax() == RyVec3(12, 5, 0));
        for (const RyNode *node : {m_hip, m_spine, static_cast<RyNode *>(m_skeleton)}) {
            QVERIFY(node->getBoundingBox().getMin() == RyVec3(0, 0, 0));
            QVERIFY(node->getBoundingBox().getMax() == RyVec3(12, 5, 0));
        }
        // In figure space, whatever the pose.
        m_leg->getXTransControl()->setValue(50.0f);
        QVERIFY(m_leg->getBoundingBox().getMin() == RyVec3(10, 0, 0));
        QVERIFY(m_leg->getOrientedBoundingBox().box.getMax() == RyVec3(12, 5, 0));
    }

    void objectsAndModifiers()
    {
        QVERIFY(!RyShape::getCurrentShapeForNode(nullptr));
        QVERIFY(!RyShape::getCurrentShapeForNode(m_skeleton));
        auto *object = new RyObject;
        m_skeleton->setObject(object);
        QVERIFY(object->getDeformedPositions().empty());
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{1, 2, 3}});
        auto *shape = new RyFacetShape(mesh);
        object->addShape(shape);
        object->addShape(shape);
        QCOMPARE(int(object->getShapes().size()), 1);
        QCOMPARE(RyShape::getCurrentShapeForNode(m_skeleton), shape);
        QCOMPARE(object->getNode(), m_skeleton);
        auto *first = new MovingModifier({10, 0, 0});
        auto *second = new MovingModifier({0, 20, 0});
        object->addModifier(first);
        object->addModifier(new MovingModifier({5, 5, 5}, false));
        {
            RyUndoStackHold hold;
            object->addModifier(second);
            hold.accept(QStringLiteral("Add"));
        }
        QCOMPARE(second->getObject(), object);
        QVERIFY(object->getDeformedPositions().front() == RyVec3(11, 22, 3));
        ryUndoStack()->undo();
        QVERIFY(object->getDeformedPositions().front() == RyVec3(11, 2, 3));
        QVERIFY(!second->getObject());
        ryUndoStack()->redo();
        {
            RyUndoStackHold hold;
            object->removeModifier(first);
            hold.accept(QStringLiteral("Remove"));
        }
        QVERIFY(object->getDeformedPositions().front() == RyVec3(1, 22, 3));
        ryUndoStack()->undo();
        QCOMPARE(object->getModifiers().front(), first);
        QVERIFY(object->getDeformedPositions().front() == RyVec3(11, 22, 3));
    }

    void objectAndMeshUndo()
    {
        auto *object = new RyObject;
        {
            RyUndoStackHold hold;
            m_prop->setObject(object);
            hold.accept(QStringLiteral("Show"));
        }
        ryUndoStack()->undo();
        QVERIFY(!m_prop->getObject() && !object->getNode());
        ryUndoStack()->redo();
        QCOMPARE(m_prop->getObject(), object);
        QCOMPARE(object->getNode(), m_prop);
        auto *shape = new RyFacetShape(new RyFacetMesh);
        object->addShape(shape);
        RyFacetMesh *old = shape->getFacetMesh();
        auto *other = new RyFacetMesh;
        QSignalSpy changed(shape, &RyFacetShape::facetMeshChanged);
        {
            RyUndoStackHold hold;
            shape->setFacetMesh(other);
            hold.accept(QStringLiteral("Exchange"));
        }
        QCOMPARE(shape->getFacetMesh(), other);
        ryUndoStack()->undo();
        QCOMPARE(shape->getFacetMesh(), old);
        ryUndoStack()->redo();
        QCOMPARE(shape->getFacetMesh(), other);
        QCOMPARE(changed.size(), 3);
    }

private:
    RyRef<RyNode> m_hold;
    RySkeleton *m_skeleton = nullptr;
    RyNode *m_hip = nullptr;
    RyNode *m_spine = nullptr;
    RyNode *m_leg = nullptr;
    RyNode *m_prop = nullptr;
    RyNode *m_hat = nullptr;
};

RY_TEST(RySkeletonTest)
#include "tst_RySkeleton.moc"
