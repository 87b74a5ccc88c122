#include "SceneText.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySceneOrigin.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QSignalSpy>

namespace {

class NamedOrigin : public RySceneOrigin
{
public:
    QString path() const override { return QStringLiteral("somewhere"); }
    double unitFactor() const override { return 1.0; }
};

/// Writes down what the scene tells, in order.
class Listener : public QObject
{
public:
    QStringList heard;

    explicit Listener(RyScene *scene)
    {
        connect(scene, &RyScene::nodeSelectionListChanged, this, [this, scene] {
            QStringList names;
            for (const RyNode *node : scene->selectedNodeListIterator())
                names << node->getName();
            heard << QStringLiteral("list [%1]").arg(names.join(QLatin1Char(' ')));
        });
        connect(scene, &RyScene::primarySelectionChanged, this, [this, scene](RyNode *node) {
            heard << QStringLiteral("primary %1").arg(node ? node->getName() : QStringLiteral("none"));
            if (node != scene->getPrimarySelection())
                heard << QStringLiteral("but it is another");
        });
        connect(scene, &RyScene::nodeListChanged, this, [this] { heard << QStringLiteral("nodes"); });
        connect(scene, &RyScene::nodeRemoved, this,
                [this](const RyNode *node) { heard << QStringLiteral("removed %1").arg(node->getName()); });
    }
    void watch(RyNode *node)
    {
        connect(node, &RyNode::aboutToBeRemoved, this, [this, node] {
            heard << QStringLiteral("about %1%2%3")
                         .arg(node->getName(), node->isSelected() ? QStringLiteral(" selected") : QString(),
                              node->getNodeParent() ? QStringLiteral(" hanging") : QString());
        });
    }
    QStringList take() { return std::exchange(heard, {}); }
};

} // namespace

class RySceneTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
        m_a = named(new RyBone, "a");
        m_b = named(new RyBone, "b");
        m_c = named(new RyBone, "c");
        for (RyNode *node : {m_a, m_b, m_c})
            ryScene()->addNode(node);
    }
    void cleanup() { ryScene()->clear(); }

    void selectionOrder()
    {
        Listener listener(ryScene());
        m_b->select(true);
        QCOMPARE(listener.take(), QStringList({"list [b]", "primary b"}));
        m_a->select(true);
        QCOMPARE(listener.take(), QStringList({"list [b a]", "primary a"}));
        m_c->select(true);
        QCOMPARE(ryScene()->getPrimarySelection(), m_c);
        listener.take();
        m_b->select(true);
        QCOMPARE(listener.take(), QStringList({"list [a c b]", "primary b"}));
        m_b->select(true);
        QVERIFY(listener.take().isEmpty());
        m_c->select(false);
        QCOMPARE(listener.take(), QStringList({"list [a b]"}));
        m_c->select(false);
        QVERIFY(listener.take().isEmpty());
        m_b->select(false);
        QCOMPARE(listener.take(), QStringList({"list [a]", "primary a"}));
        m_a->select(false);
        QCOMPARE(listener.take(), QStringList({"list []", "primary none"}));
        QVERIFY(!ryScene()->getPrimarySelection());
    }

    void selectAllAndSetSelection()
    {
        m_c->addNodeChild(m_a);
        Listener listener(ryScene());
        ryScene()->selectAllNodes(true);
        QCOMPARE(listener.take(), QStringList({"list [b c a]", "primary a"}));
        QCOMPARE(ryScene()->getNumSelectedNodes(), 3);
        ryScene()->setSelection({m_b, nullptr, m_a, m_b});
        QCOMPARE(listener.take(), QStringList({"list [a b]", "primary b"}));
        const RyRef<RyNode> stranger(new RyBone);
        stranger->select(true);
        ryScene()->setSelection({m_a, m_b, stranger.get()});
        QVERIFY(listener.take().isEmpty());
        QVERIFY(!stranger->isSelected());
        ryScene()->selectAllNodes(false);
        QCOMPARE(listener.take(), QStringList({"list []", "primary none"}));
    }

    void selectionMayChangeDuringAWalk()
    {
        ryScene()->selectAllNodes(true);
        const RyRef<RyNode> held(m_b);
        QStringList walked;
        for (RyNode *node : ryScene()->selectedNodeListIterator()) {
            walked << node->getName();
            node->select(false);
            if (node == m_a)
                ryScene()->removeNode(m_b);
        }
        QCOMPARE(walked.size(), 3);
        QCOMPARE(ryScene()->getNumSelectedNodes(), 0);
    }

    /// First the nodes tell that they go, still selected and in their place; then they leave the selection and the
    /// scene.
    void removalTellsInOrder()
    {
        m_a->addNodeChild(m_b);
        m_b->addNodeChild(m_c);
        Listener listener(ryScene());
        for (RyNode *node : {m_a, m_b, m_c})
            listener.watch(node);
        ryScene()->setSelection({m_a, m_b});
        listener.take();
        const QPointer<RyNode> b(m_b);
        QCOMPARE(int(ryScene()->removeNode(m_b)), int(RyError::Success));
        const QStringList heard = listener.take();
        QCOMPARE(heard.mid(0, 4),
                 QStringList({"about b selected hanging", "about c hanging", "list [a]", "primary a"}));
        QVERIFY(heard.contains(QStringLiteral("removed b")) && heard.contains(QStringLiteral("removed c")));
        QCOMPARE(heard.last(), QStringLiteral("nodes"));
        QVERIFY(!b);
        QCOMPARE(int(ryScene()->getNodes().size()), 1);
        QCOMPARE(m_a->getNumNodeChildren(), 0);
    }

    void childrenMovedAwayStay()
    {
        m_a->addNodeChild(m_b);
        m_b->addNodeChild(m_c);
        m_a->addNodeChild(m_c);
        QVERIFY(ryScene()->removeNode(m_b).isSuccess());
        QCOMPARE(m_c->getScene(), ryScene());
        QCOMPARE(m_c->getNodeParent(), m_a);
    }

    void unknownNodes()
    {
        const RyRef<RyNode> stranger(new RyBone);
        QSignalSpy about(stranger.get(), &RyNode::aboutToBeRemoved);
        QVERIFY(!ryScene()->removeNode(stranger.get()).isSuccess());
        QVERIFY(!ryScene()->removeNode(nullptr).isSuccess());
        QVERIFY(!ryScene()->addNode(nullptr).isSuccess());
        QCOMPARE(about.size(), 0);
        QSignalSpy list(ryScene(), &RyScene::nodeListChanged);
        QVERIFY(ryScene()->addNode(m_a).isSuccess());
        QCOMPARE(list.size(), 0);
        QCOMPARE(int(ryScene()->getNodes().size()), 3);
    }

    /// The scene's list and the tree go in any order.
    void addingBeforeOrAfterHanging()
    {
        auto *figure = new RySkeleton;
        named(figure, "figure");
        RyNode *root = named(new RyBone, "root");
        RyNode *tip = named(new RyBone, "tip");
        ryScene()->addNode(tip);
        root->addNodeChild(tip);
        QCOMPARE(tip->getNodeParent(), root);
        figure->addNodeChild(root);
        ryScene()->addNode(figure);
        QCOMPARE(root->getScene(), ryScene());
        QCOMPARE(int(ryScene()->getNodes().size()), 6);
        QCOMPARE(ryScene()->getSkeletons(), std::vector<RySkeleton *>{figure});
        QCOMPARE(ryScene()->findNode(QStringLiteral("tip")), tip);
        QVERIFY(!ryScene()->findNode(QStringLiteral("Tip")));
        QCOMPARE(ryScene()->getTopLevelNodes(), (std::vector<RyNode *>{m_a, m_b, m_c, figure}));
    }

    void clearing()
    {
        m_a->addNodeChild(m_b);
        ryScene()->addOrigin(std::make_shared<NamedOrigin>());
        Listener listener(ryScene());
        for (RyNode *node : {m_a, m_b, m_c})
            listener.watch(node);
        ryScene()->setSelection({m_b, m_c});
        listener.take();
        const QPointer<RyNode> a(m_a), b(m_b), c(m_c);
        QSignalSpy origin(ryScene(), &RyScene::originChanged);
        ryScene()->clear();
        QVERIFY(!a && !b && !c);
        QVERIFY(ryScene()->getNodes().empty() && !ryScene()->getOrigin() && !ryScene()->getPrimarySelection());
        QCOMPARE(origin.size(), 1);
        const QStringList heard = listener.take();
        QCOMPARE(heard.mid(0, 3).filter(QStringLiteral("about")).size(), 3);
        QVERIFY(heard.contains(QStringLiteral("list []")) && heard.contains(QStringLiteral("primary none")));
        QCOMPARE(heard.last(), QStringLiteral("nodes"));
        ryScene()->clear();
        QVERIFY(listener.take().isEmpty());
    }

    /// A node that somebody deletes leaves the scene, the tree and the selection.
    void deletedNode()
    {
        m_a->addNodeChild(m_b);
        m_b->addNodeChild(m_c);
        ryScene()->setSelection({m_a, m_b});
        Listener listener(ryScene());
        delete m_b;
        QCOMPARE(ryScene()->getNodes(), (std::vector<RyNode *>{m_a, m_c}));
        QCOMPARE(m_a->getNumNodeChildren(), 0);
        QVERIFY(!m_c->getNodeParent());
        QCOMPARE(ryScene()->getPrimarySelection(), m_a);
        QVERIFY(listener.take().contains(QStringLiteral("primary a")));
    }

    void time()
    {
        QSignalSpy changed(ryScene(), &RyScene::timeChanged);
        ryScene()->setTime(RyTime(5));
        ryScene()->setTime(RyTime(5));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(int(ryScene()->getTime()), 5);
        ryScene()->setTime(RyTime());
    }

    void numbersOfNames_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("label");
        const char *const rows[][4] = {{"Bone12", "12", "Bone", "Bone"},
                                       {"Bone", "", "Bone", "Bone"},
                                       {"Bone 3", "3", "Bone", "Bone"},
                                       {"Bone (3)", "", "Bone (3)", "Bone"},
                                       {"Bone(3)", "", "Bone(3)", "Bone"},
                                       {"3", "", "3", "3"},
                                       {"0042", "", "0042", "0042"},
                                       {"", "", "", ""},
                                       {"a1b22", "22", "a1b", "a1b"},
                                       {"Bone ()", "", "Bone ()", "Bone ()"},
                                       {"(3)", "", "(3)", "(3)"},
                                       {"Bone  7", "7", "Bone", "Bone"},
                                       {"Arm\u0663", "", "Arm\u0663", "Arm\u0663"}};
        for (const auto &row : rows) {
            QTest::newRow(row[0]) << QString::fromUtf8(row[0]) << QString::fromUtf8(row[1]) << QString::fromUtf8(row[2])
                                  << QString::fromUtf8(row[3]);
        }
    }
    void numbersOfNames()
    {
        QFETCH(QString, text);
        QFETCH(QString, number);
        QFETCH(QString, name);
        QFETCH(QString, label);
        QCOMPARE(RyScene::getNameNumber(text), number);
        QCOMPARE(RyScene::stripNameNumber(text), name);
        QCOMPARE(RyScene::stripLabelNumber(text), label);
    }

    void uniqueTopLevelNames()
    {
        m_a->setName(QStringLiteral("Bone"));
        m_b->setName(QStringLiteral("Bone3"));
        m_c->setName(QStringLiteral("Other"));
        m_a->setLabel(QStringLiteral("Joint"));
        QCOMPARE(RyScene::getUniqueTopLevelName(QStringLiteral("Free")), QStringLiteral("Free"));
        QCOMPARE(RyScene::getUniqueTopLevelName(QStringLiteral("Bone")), QStringLiteral("Bone2"));
        QCOMPARE(RyScene::getUniqueTopLevelName(QStringLiteral("Bone3")), QStringLiteral("Bone2"));
        QCOMPARE(RyScene::getUniqueTopLevelName(QStringLiteral("Bone7")), QStringLiteral("Bone7"));
        QCOMPARE(RyScene::getUniqueTopLevelName(QStringLiteral("Bone"), m_a), QStringLiteral("Bone"));
        QCOMPARE(RyScene::getUniqueTopLevelLabel(QStringLiteral("Joint")), QStringLiteral("Joint 2"));
        QCOMPARE(RyScene::getUniqueTopLevelLabel(QStringLiteral("Bone")), QStringLiteral("Bone"));
        // Names below the top do not count.
        m_c->addNodeChild(m_a);
        QCOMPARE(RyScene::getUniqueTopLevelName(QStringLiteral("Bone")), QStringLiteral("Bone"));
    }

private:
    RyNode *m_a = nullptr;
    RyNode *m_b = nullptr;
    RyNode *m_c = nullptr;
};

RY_TEST(RySceneTest)
#include "tst_RyScene.moc"
