#include "PlainChain.h"
#include "SceneText.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QSignalSpy>

using namespace PlainChain;

namespace {

QStringList namesOf(const std::vector<RyNode *> &nodes)
{
    QStringList names;
    for (const RyNode *node : nodes)
        names << node->getName();
    return names;
}

/// Counts how often somebody asks for its class.
class CountedBone : public RyBone
{
public:
    explicit CountedBone(int *count) : m_count(count) {}
    const QMetaObject *metaObject() const override
    {
        ++*m_count;
        return RyBone::metaObject();
    }

private:
    int *m_count;
};

} // namespace

class RyNodeTreeTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void cleanup() { ryScene()->clear(); }

    void childrenKeepTheirOrder()
    {
        const RyRef<RyNode> root(named(new RyNode, "root"));
        RyNode *a = named(new RyBone, "a");
        RyNode *b = named(new RyBone, "b");
        RyNode *c = named(new RyBone, "c");
        RyNode *d = named(new RyBone, "d");
        QVERIFY(root->addNodeChild(a) && root->addNodeChild(c) && root->addNodeChild(b, false, 1) &&
                c->addNodeChild(d));
        QCOMPARE(namesOf(root->nodeChildrenIterator()), QStringList({"a", "b", "c"}));
        std::vector<RyNode *> all;
        root->getNodeChildren(all, true);
        QCOMPARE(namesOf(all), QStringList({"a", "b", "c", "d"}));
        all.clear();
        root->getNodeChildren(all, false);
        QCOMPARE(namesOf(all), QStringList({"a", "b", "c"}));
        QVERIFY(!root->getNodeChild(-1) && !root->getNodeChild(3) && root->getNodeChild(2) == c);
        QVERIFY(d->isDescendantOf(root.get()) && !root->isDescendantOf(d) && !a->isDescendantOf(b));
        // Adding again moves to the end.
        QVERIFY(root->addNodeChild(a));
        QCOMPARE(namesOf(root->nodeChildrenIterator()), QStringList({"b", "c", "a"}));
        // A walk goes on while children leave.
        for (RyNode *child : root->nodeChildrenIterator())
            c->addNodeChild(child);
        QCOMPARE(namesOf(root->nodeChildrenIterator()), QStringList({"c"}));
    }

    void refusals()
    {
        const RyRef<RyNode> root(new RyNode);
        RyNode *child = new RyBone;
        RyNode *grandchild = new RyBone;
        root->addNodeChild(child);
        child->addNodeChild(grandchild);
        QVERIFY(!root->addNodeChild(nullptr));
        QVERIFY(!root->addNodeChild(root.get()));
        QVERIFY(!grandchild->addNodeChild(root.get()));
        QVERIFY(!child->addNodeChild(root.get()));
        QVERIFY(!root->removeNodeChild(nullptr));
        QVERIFY(!root->removeNodeChild(grandchild));
        QCOMPARE(root->getNumNodeChildren(), 1);
        QCOMPARE(grandchild->getNodeParent(), child);
    }

    void skeletons()
    {
        const RyRef<RyNode> prop(new RyNode);
        auto *skeleton = new RySkeleton;
        auto *inner = new RySkeleton;
        RyNode *bone = new RyBone;
        RyNode *held = new RyNode;
        prop->addNodeChild(skeleton);
        skeleton->addNodeChild(bone);
        bone->addNodeChild(held);
        bone->addNodeChild(inner);
        QVERIFY(!prop->getSkeleton());
        QCOMPARE(skeleton->getSkeleton(), skeleton);
        QCOMPARE(bone->getSkeleton(), skeleton);
        QCOMPARE(held->getSkeleton(), skeleton);
        QCOMPARE(inner->getSkeleton(), inner);
    }

    /// Nodes that had a skeleton find the one that they hang below after every change above them.
    void skeletonsFollowTheTree()
    {
        const RyRef<RyNode> prop(new RyNode);
        RyRef<RySkeleton> first(new RySkeleton);
        const RyRef<RySkeleton> second(new RySkeleton);
        const RyRef<RyNode> bone(new RyBone);
        RyNode *held = new RyNode;
        auto *inner = new RySkeleton;
        RyNode *finger = new RyBone;
        first->addNodeChild(bone.get());
        bone->addNodeChild(held);
        held->addNodeChild(inner);
        inner->addNodeChild(finger);
        const auto belongsTo = [&](RySkeleton *skeleton) {
            return finger->getSkeleton() == inner && held->getSkeleton() == skeleton && bone->getSkeleton() == skeleton;
        };
        QVERIFY(belongsTo(first.get()));
        prop->addNodeChild(first.get());
        QVERIFY(belongsTo(first.get()));
        second->addNodeChild(bone.get());
        QVERIFY(belongsTo(second.get()));
        second->removeNodeChild(bone.get());
        QVERIFY(belongsTo(nullptr));
        {
            RyUndoStackHold hold;
            first->addNodeChild(bone.get());
            hold.accept(QStringLiteral("Hang"));
        }
        QVERIFY(belongsTo(first.get()));
        ryUndoStack()->undo();
        QVERIFY(belongsTo(nullptr));
        ryUndoStack()->redo();
        QVERIFY(belongsTo(first.get()));
        held->removeNodeChild(inner);
        QVERIFY(!held->getNumNodeChildren());
    }

    /// Who is told that a skeleton goes must not find it any more.
    void skeletonThatGoes()
    {
        RyScene *scene = ryScene();
        auto *skeleton = new RySkeleton;
        const RyRef<RyNode> bone(new RyBone);
        skeleton->addNodeChild(bone.get());
        scene->addNode(skeleton);
        QCOMPARE(bone->getSkeleton(), skeleton);
        bool wasTold = false;
        const auto connection = connect(scene, &RyScene::nodeRemoved, [&](const RyNode *node) {
            if (node != skeleton)
                return;
            wasTold = true;
            QVERIFY(!bone->getSkeleton());
        });
        delete skeleton;
        disconnect(connection);
        QVERIFY(wasTold);
        QVERIFY(!bone->getSkeleton());
        scene->clear();
    }

    /// The skeletons of all bones of a chain, from its end and from its top, cost one walk; a change above asks anew.
    void skeletonsOfADeepChain()
    {
        constexpr int Depth = 1000;
        int asked = 0;
        const RyRef<RySkeleton> skeleton(new RySkeleton);
        std::vector<RyNode *> nodes{skeleton.get()};
        for (int i = 0; i < Depth; ++i) {
            nodes.push_back(new CountedBone(&asked));
            nodes[nodes.size() - 2]->addNodeChild(nodes.back());
        }
        const auto all = [&nodes](RySkeleton *wanted) {
            bool right = true;
            for (size_t i = 1; i < nodes.size(); ++i) {
                right = right && nodes[nodes.size() - i]->getSkeleton() == wanted && nodes[i]->getSkeleton() == wanted;
            }
            return right;
        };
        asked = 0;
        QVERIFY(all(skeleton.get()));
        QVERIFY2(asked >= Depth && asked <= 2 * Depth, qPrintable(QString::number(asked)));
        const RyRef<RyNode> top(nodes[1]);
        skeleton->removeNodeChild(nodes[1]);
        asked = 0;
        QVERIFY(all(nullptr));
        QVERIFY2(asked >= Depth && asked <= 2 * Depth, qPrintable(QString::number(asked)));
    }

    /// Without keeping the world the numbers stay; with it the place stays.
    void reparenting()
    {
        RandomChain chain;
        for (int i = 0; i < 500; ++i) {
            chain.next();
            for (RyNode *node : chain.nodes) {
                // Rotations and translations alone: a turned scale would be shear, which no control can say.
                for (RyFloatProperty *p :
                     {node->getXScaleControl(), node->getYScaleControl(), node->getZScaleControl()})
                    p->setValue(1.0f);
                node->setInheritScale(true);
            }
            RyNode *node = chain.last();
            const Values values = Values::of(*node);
            const Map before = mapOf(chain.nodes);
            RyRef<RyNode> guard(node);
            RyRef<RyNode> other(new RyNode);
            chain.random.fill(*other, false);
            for (RyFloatProperty *p : {other->getXScaleControl(), other->getYScaleControl(), other->getZScaleControl()})
                p->setValue(1.0f);
            RyNode *parent = node->getNodeParent();
            QVERIFY(other->addNodeChild(node));
            QVERIFY(Values::of(*node).rotation == values.rotation &&
                    Values::of(*node).translation == values.translation);
            QVERIFY(parent->addNodeChild(node));
            QVERIFY(other->addNodeChild(node, true));
            QVERIFY(Values::of(*node).origin == values.origin && Values::of(*node).orientation == values.orientation);
            const Map after = mapOf({other.get(), node});
            QVERIFY((after.linear - before.linear).norm() < 2e-5 * (1 + before.linear.norm()));
            const Vec at = values.origin;
            QVERIFY((after(at) - before(at)).norm() < 1e-5 * (100.0 + before(at).norm() + before.offset.norm()));
            QVERIFY(other->removeNodeChild(node, true));
            const Map alone = mapOf({node});
            QVERIFY((alone(at) - before(at)).norm() < 1e-5 * (100.0 + before(at).norm() + before.offset.norm()));
            parent->addNodeChild(node);
        }
    }

    void signalsOfTheTree()
    {
        RyScene *scene = ryScene();
        RyNode *root = named(new RyNode, "root");
        RyNode *child = named(new RyBone, "child");
        scene->addNode(root);
        QSignalSpy list(scene, &RyScene::nodeListChanged);
        QSignalSpy children(root, &RyNode::childrenChanged);
        root->addNodeChild(child);
        QCOMPARE(list.size(), 1);
        QCOMPARE(children.size(), 1);
        scene->addNode(child);
        QVERIFY(list.size() > 1);
        list.clear();
        child->setName(QStringLiteral("renamed"));
        QCOMPARE(list.size(), 1);
        root->removeNodeChild(child);
        QCOMPARE(list.size(), 2);
        QCOMPARE(children.size(), 2);
        QCOMPARE(child->getScene(), scene);
    }

    /// Five thousand nodes in one chain: walks, maps, undo and the end of the chain do not nest.
    void deepChain()
    {
        constexpr int Depth = 5000;
        RyScene *scene = ryScene();
        auto *skeleton = new RySkeleton;
        std::vector<RyNode *> nodes{skeleton};
        for (int i = 0; i < Depth; ++i) {
            nodes.push_back(new RyBone);
            nodes.back()->setOrigin({0, float(i), 0}, true);
            nodes[nodes.size() - 2]->addNodeChild(nodes.back());
        }
        scene->addNode(skeleton);
        QCOMPARE(int(scene->getNodes().size()), Depth + 1);
        QCOMPARE(int(skeleton->getAllBones().size()), Depth);
        QCOMPARE(nodes.back()->getSkeleton(), skeleton);
        nodes[1]->getXTransControl()->setValue(10.0f);
        QVERIFY((nodes.back()->getWSPos() - RyVec3(10, Depth - 1, 0)).length() < 1e-2f);
        nodes[1]->getZRotControl()->setValue(90.0f);
        QVERIFY((nodes.back()->getWSPos() - RyVec3(10 - (Depth - 1), 0, 0)).length() < 1e-1f);
        QCOMPARE(int(scene->getNodesInTreeOrder().size()), Depth + 1);
        QVERIFY(!nodes.back()->addNodeChild(skeleton));
        {
            RyUndoStackHold hold;
            scene->removeNode(nodes[2]);
            hold.accept(QStringLiteral("Delete"));
        }
        QCOMPARE(int(scene->getNodes().size()), 2);
        ryUndoStack()->undo();
        QCOMPARE(int(scene->getNodes().size()), Depth + 1);
        ryUndoStack()->redo();
        const QPointer<RyNode> last(nodes.back());
        QVERIFY(last);
        ryUndoStack()->clearAll();
        QVERIFY(!last);
        QCOMPARE(int(scene->getNodes().size()), 2);
    }

    /// A chain much deeper than any file may have goes without exhausting the stack.
    void deepChainIsDeleted()
    {
        RyRef<RyNode> root(new RyNode(RyNode::Rigging::None));
        RyNode *above = root.get();
        for (int i = 0; i < 60000; ++i) {
            auto *below = new RyNode(RyNode::Rigging::None);
            above->addNodeChild(below);
            above = below;
        }
        const QPointer<RyNode> last(above);
        root = RyRef<RyNode>();
        QVERIFY(!last);
    }

    void nodesWithAnotherHolderOutliveTheirParent()
    {
        RyRef<RyNode> root(new RyNode);
        RyNode *middle = new RyBone;
        const RyRef<RyNode> kept(new RyBone);
        RyNode *below = new RyBone;
        root->addNodeChild(middle);
        middle->addNodeChild(kept.get());
        kept->addNodeChild(below);
        const QPointer<RyNode> gone(middle);
        root = RyRef<RyNode>();
        QVERIFY(!gone);
        QVERIFY(kept.get());
        QVERIFY(!kept->getNodeParent());
        QCOMPARE(kept->getNumNodeChildren(), 1);
        QCOMPARE(below->getNodeParent(), kept.get());
    }
};

RY_TEST(RyNodeTreeTest)
#include "tst_RyNodeTree.moc"
