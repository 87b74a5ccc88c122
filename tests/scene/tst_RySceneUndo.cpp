#include "SceneText.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <random>

class RySceneUndoTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
        m_random.seed(ryTestSeed());
        m_made = 0;
    }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void addedNode()
    {
        RyNode *bone = named(new RyBone, "bone");
        const QPointer<RyNode> guard(bone);
        {
            RyUndoStackHold hold;
            ryScene()->addNode(bone);
            hold.accept(QStringLiteral("Add"));
        }
        bone->select(true);
        QSignalSpy about(bone, &RyNode::aboutToBeRemoved);
        QSignalSpy list(ryScene(), &RyScene::nodeListChanged);
        qRegisterMetaType<RyNode *>();
        QSignalSpy primary(ryScene(), &RyScene::primarySelectionChanged);
        ryUndoStack()->undo();
        QVERIFY(guard); // the step holds it
        QVERIFY(ryScene()->getNodes().empty() && !bone->getScene() && !ryScene()->getPrimarySelection());
        QCOMPARE(about.size(), 1);
        QCOMPARE(primary.size(), 1);
        QVERIFY(list.size() > 0);
        list.clear();
        ryUndoStack()->redo();
        QCOMPARE(ryScene()->getNodes(), std::vector<RyNode *>{bone});
        QVERIFY(list.size() > 0);
        ryUndoStack()->undo();
        ryUndoStack()->clearAll();
        QVERIFY(!guard);
    }

    void removedNodeComesBackInItsPlace()
    {
        RyNode *root = named(new RyNode, "root");
        RyNode *first = named(new RyBone, "first");
        RyNode *middle = named(new RyBone, "middle");
        RyNode *last = named(new RyBone, "last");
        RyNode *below = named(new RyBone, "below");
        for (RyNode *node : {first, middle, last})
            root->addNodeChild(node);
        middle->addNodeChild(below);
        ryScene()->addNode(root);
        const QString before = sceneText(*ryScene());
        {
            RyUndoStackHold hold;
            ryScene()->removeNode(middle);
            hold.accept(QStringLiteral("Delete"));
        }
        const QString after = sceneText(*ryScene());
        QVERIFY(after != before);
        QCOMPARE(middle->getNodeChild(0), below); // alive, its children with it
        QVERIFY(!middle->getNodeParent() && !middle->getScene() && !below->getScene());
        for (int round = 0; round < 3; ++round) {
            ryUndoStack()->undo();
            QCOMPARE(sceneText(*ryScene()), before);
            QCOMPARE(below->getScene(), ryScene());
            ryUndoStack()->redo();
            QCOMPARE(sceneText(*ryScene()), after);
        }
        const QPointer<RyNode> guard(below);
        ryUndoStack()->clearAll();
        QVERIFY(!guard);
    }

    void cancelledHold()
    {
        RyNode *root = named(new RyNode, "root");
        RyNode *child = named(new RyBone, "child");
        root->addNodeChild(child);
        ryScene()->addNode(root);
        const QString before = sceneText(*ryScene());
        {
            RyUndoStackHold hold;
            ryScene()->addNode(named(new RyBone, "new"));
            ryScene()->removeNode(child);
            root->setName(QStringLiteral("other"));
        }
        QCOMPARE(sceneText(*ryScene()), before);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    /// Random edits of the tree in steps, among them edits that nothing records; undo and redo lead through the same
    /// texts.
    void randomTreeEdits()
    {
        for (int run = 0; run < 20; ++run) {
            cleanup();
            for (int i = 0; i < 12; ++i)
                randomEdit();
            QStringList texts{sceneText(*ryScene())};
            for (int step = 0; step < 30; ++step) {
                RyUndoStackHold hold;
                for (int edits = number(0, 4); edits > 0; --edits)
                    randomEdit();
                hold.accept(QString::number(step));
                texts << sceneText(*ryScene());
            }
            for (int walk = 0; walk < 100; ++walk) {
                if (number(0, 1))
                    ryUndoStack()->undo();
                else
                    ryUndoStack()->redo();
                QCOMPARE(sceneText(*ryScene()), texts[ryUndoStack()->index()]);
            }
            while (ryUndoStack()->canUndo())
                ryUndoStack()->undo();
            QCOMPARE(sceneText(*ryScene()), texts.first());
        }
    }

    /// Steps outlive what nobody recorded, deleted nodes included.
    void stepsOfDeletedNodes()
    {
        for (int run = 0; run < 50; ++run) {
            cleanup();
            for (int i = 0; i < 10; ++i)
                randomEdit();
            for (int step = 0; step < 15; ++step) {
                RyUndoStackHold hold;
                randomEdit();
                if (RyNode *node = randomNode()) {
                    node->adjustOrigin({float(step), 0, 0});
                    node->setHidden(number(0, 1) == 1);
                    node->setRotationOrder(RyRotationOrder(number(0, 5)));
                }
                hold.accept(QString::number(step));
            }
            for (int i = 0; i < 5; ++i) {
                RyUndoStackLock lock;
                if (number(0, 1))
                    delete randomNode();
                else
                    randomEdit();
            }
            for (int walk = 0; walk < 40; ++walk) {
                if (number(0, 1))
                    ryUndoStack()->undo();
                else
                    ryUndoStack()->redo();
                checkTree();
                if (number(0, 9) == 0)
                    delete randomNode();
            }
        }
    }

private:
    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    RyNode *randomNode()
    {
        const std::vector<RyNode *> &nodes = ryScene()->getNodes();
        return nodes.empty() ? nullptr : nodes[size_t(number(0, int(nodes.size()) - 1))];
    }

    void randomEdit()
    {
        RyNode *node = randomNode();
        RyNode *other = randomNode();
        switch (node ? number(0, 6) : 0) {
        case 0:
        case 1: {
            RyNode *made = number(0, 4) ? static_cast<RyNode *>(new RyBone) : new RySkeleton;
            made->setName(QStringLiteral("node%1").arg(m_made++));
            if (other && number(0, 1)) // before or after it is in the scene
                other->addNodeChild(made);
            ryScene()->addNode(made);
            if (other && number(0, 1))
                other->addNodeChild(made);
            break;
        }
        case 2:
            ryScene()->removeNode(node);
            break;
        case 3:
            node->addNodeChild(other, number(0, 1) == 1);
            break;
        case 4:
            node->addNodeChild(other, false, number(0, 3));
            break;
        case 5:
            if (node->getNodeParent())
                node->getNodeParent()->removeNodeChild(node, number(0, 1) == 1);
            break;
        default:
            node->setName(QStringLiteral("name%1").arg(m_made++));
        }
    }

    /// Parents and children know each other, and nothing stands twice.
    void checkTree()
    {
        const std::vector<RyNode *> &nodes = ryScene()->getNodes();
        for (const RyNode *node : nodes) {
            QCOMPARE(std::count(nodes.begin(), nodes.end(), node), std::ptrdiff_t(1));
            QCOMPARE(node->getScene(), ryScene());
            for (const RyNode *child : node->nodeChildrenIterator())
                QCOMPARE(child->getNodeParent(), node);
            if (const RyNode *parent = node->getNodeParent()) {
                const std::vector<RyNode *> siblings = parent->nodeChildrenIterator();
                QCOMPARE(std::count(siblings.begin(), siblings.end(), node), std::ptrdiff_t(1));
            }
        }
    }

    std::mt19937 m_random;
    int m_made = 0;
};

RY_TEST(RySceneUndoTest)
#include "tst_RySceneUndo.moc"
