#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

/// What the scene tells of edits of what hangs on its nodes, and that all of them come back by undo and again by redo.
class RySceneAnnouncementsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        clear();
        m_skeleton = new RySkeleton;
        m_skeleton->setName(QStringLiteral("figure"));
        m_bone = new RyBone;
        m_bone->setName(QStringLiteral("bone"));
        m_skeleton->addNodeChild(m_bone);
        m_mesh = new RyFacetMesh;
        m_mesh->setPositions({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
        RyFacet facet;
        facet.vertices[1] = 1;
        facet.vertices[2] = 2;
        m_mesh->setFacets({facet});
        m_shape = new RyFacetShape(m_mesh);
        m_object = new RyObject;
        m_object->addShape(m_shape);
        m_skeleton->setObject(m_object);
        m_skeleton->setSelectionMap(new RySelectionMap);
        ryScene()->addNode(m_skeleton);
    }
    void cleanup() { clear(); }

    void editsAreAnnouncedOnce_data()
    {
        QTest::addColumn<int>("edit");
        const char *names[] = {"positions",           "one vertex", "facets",      "new face group",
                               "several in one edit", "pair",       "another map", "another mesh",
                               "another shape",       "parts",      "drawn bones"};
        for (int i = 0; i < int(std::size(names)); ++i)
            QTest::newRow(names[i]) << i;
    }
    void editsAreAnnouncedOnce()
    {
        QFETCH(int, edit);
        const QString before = text();
        QSignalSpy drawn(ryScene(), &RyScene::drawnDataChanged);
        {
            RyUndoStackHold hold;
            make(edit);
            hold.accept(QStringLiteral("Edit"));
        }
        QCOMPARE(drawn.size(), 1);
        const QString after = text();
        QVERIFY(after != before);
        ryUndoStack()->undo();
        QVERIFY(drawn.size() > 1);
        QCOMPARE(text(), before);
        drawn.clear();
        ryUndoStack()->redo();
        QVERIFY(drawn.size() > 0);
        QCOMPARE(text(), after);
        drawn.clear();
        make(edit); // the same again changes nothing
        if (edit != 6 && edit != 7 && edit != 8)
            QCOMPARE(drawn.size(), edit == 2 ? 1 : 0);
    }

    void whatIsTakenAwayIsNotListenedTo()
    {
        const RyRef<RyFacetMesh> oldMesh(m_mesh);
        const RyRef<RyObject> oldObject(m_object);
        const RyRef<RySelectionMap> oldMap(m_skeleton->getSelectionMap());
        m_shape->setFacetMesh(new RyFacetMesh);
        m_skeleton->setSelectionMap(nullptr);
        QSignalSpy drawn(ryScene(), &RyScene::drawnDataChanged);
        oldMesh->setVertex(0, {5, 5, 5});
        oldMap->addPair(QStringLiteral("g"), m_bone, true);
        QCOMPARE(drawn.size(), 0);
        m_skeleton->setObject(nullptr);
        drawn.clear();
        m_shape->getFacetMesh()->setPositions({{1, 1, 1}});
        QCOMPARE(drawn.size(), 0);
    }

    void undoOfANameTellsTheList()
    {
        {
            RyUndoStackHold hold;
            m_bone->setName(QStringLiteral("other"));
            hold.accept(QStringLiteral("Rename"));
        }
        QSignalSpy list(ryScene(), &RyScene::nodeListChanged);
        ryUndoStack()->undo();
        QCOMPARE(list.size(), 1);
        QCOMPARE(m_bone->getName(), QStringLiteral("bone"));
        ryUndoStack()->redo();
        QCOMPARE(list.size(), 2);
    }

    void undoOfADefaultTellsTheNode()
    {
        m_bone->setOrigin({1, 2, 3});
        QSignalSpy rigging(m_bone, &RyNode::riggingChanged);
        {
            RyUndoStackHold hold;
            m_bone->beginEdit();
            m_bone->getOriginYControl()->setDefaultValue(2);
            m_bone->finishEdit();
            hold.accept(QStringLiteral("Memorize"));
        }
        QCOMPARE(rigging.size(), 1);
        ryUndoStack()->undo();
        QCOMPARE(rigging.size(), 2);
        QCOMPARE(m_bone->getOrigin(true).y, 0.0f);
        ryUndoStack()->redo();
        QCOMPARE(rigging.size(), 3);
        QCOMPARE(m_bone->getOrigin(true).y, 2.0f);
        QCOMPARE(m_bone->getOrigin().y, 2.0f);
        m_bone->getOriginXControl()->setDefaultValue(9);
        QCOMPARE(rigging.size(), 4);
    }

    void followTargetIsUndoable()
    {
        auto *other = new RySkeleton;
        ryScene()->addNode(other);
        QSignalSpy follows(m_skeleton, &RySkeleton::followTargetChanged);
        {
            RyUndoStackHold hold;
            m_skeleton->setFollowTarget(other);
            m_skeleton->setDrawGLBones(true);
            hold.accept(QStringLiteral("Follow"));
        }
        QCOMPARE(ryUndoStack()->entryCount(0), 1);
        ryUndoStack()->undo();
        QVERIFY(!m_skeleton->getFollowTarget() && !m_skeleton->drawsGLBones());
        ryUndoStack()->redo();
        QVERIFY(m_skeleton->getFollowTarget() == other && m_skeleton->drawsGLBones());
        QCOMPARE(follows.size(), 3);
        m_skeleton->setFollowTarget(m_skeleton);
        QVERIFY(!m_skeleton->getFollowTarget());
    }

private:
    static void clear()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void make(int edit)
    {
        RyFacet facet;
        facet.vertices[0] = 2;
        facet.vertices[1] = 1;
        facet.vertices[2] = 0;
        switch (edit) {
        case 0:
            m_mesh->setPositions({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}});
            return;
        case 1:
            m_mesh->setVertex(1, {7, 8, 9});
            return;
        case 2:
            m_mesh->setFacets({facet});
            return;
        case 3:
            m_mesh->createFaceGroup(QStringLiteral("group"));
            return;
        case 4:
            m_mesh->beginEdit();
            m_mesh->setVertex(0, {3, 3, 3});
            m_mesh->setVertex(2, {4, 4, 4});
            m_mesh->createFaceGroup(QStringLiteral("a"));
            m_mesh->setGroupsOfFacets({0});
            m_mesh->finishEdit();
            return;
        case 5:
            m_skeleton->getSelectionMap()->addPair(QStringLiteral("group"), m_bone, false);
            return;
        case 6:
            m_skeleton->setSelectionMap(new RySelectionMap);
            return;
        case 7:
            m_shape->setFacetMesh(new RyFacetMesh);
            return;
        case 8:
            m_object->addShape(new RyFacetShape(new RyFacetMesh));
            return;
        case 9:
            m_shape->setParts(parts());
            return;
        case 10:
            m_skeleton->setDrawGLBones(true);
            return;
        }
    }
    static std::shared_ptr<const RyMeshParts> parts()
    {
        static const auto made = std::make_shared<const RyMeshParts>();
        return made;
    }

    /// The contents that the edits touch; objects by address, since they come back as they were.
    QString text() const
    {
        QString text;
        for (const RyShape *shape : m_object->getShapes()) {
            const auto *facets = qobject_cast<const RyFacetShape *>(shape);
            text += QStringLiteral("shape %1 mesh %2 parts %3:")
                        .arg(quintptr(shape))
                        .arg(quintptr(facets->getFacetMesh()))
                        .arg(quintptr(facets->getParts().get()));
            for (const RyVec3 &p : facets->getFacetMesh()->getPositions())
                text += QStringLiteral(" (%1 %2 %3)").arg(p.x).arg(p.y).arg(p.z);
            for (const RyFacet &f : facets->getFacetMesh()->getFacets())
                text += QStringLiteral(" [%1 %2 %3 in %4]")
                            .arg(f.vertices[0])
                            .arg(f.vertices[1])
                            .arg(f.vertices[2])
                            .arg(f.group);
            for (int i = 0; i < facets->getFacetMesh()->getNumFaceGroups(); ++i)
                text += QLatin1Char(' ') + facets->getFacetMesh()->getFaceGroup(i)->getName();
        }
        const RySelectionMap *map = m_skeleton->getSelectionMap();
        text += QStringLiteral(" map %1 with %2, %3")
                    .arg(quintptr(map))
                    .arg(map->getNumPairs())
                    .arg(m_skeleton->drawsGLBones());
        return text;
    }

    RySkeleton *m_skeleton = nullptr;
    RyBone *m_bone = nullptr;
    RyFacetMesh *m_mesh = nullptr;
    RyFacetShape *m_shape = nullptr;
    RyObject *m_object = nullptr;
};

RY_TEST(RySceneAnnouncementsTest)
#include "tst_RySceneAnnouncements.moc"
