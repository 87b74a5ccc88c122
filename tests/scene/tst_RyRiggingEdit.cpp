#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <stdexcept>

/// What a rig edit is to the nodes of a scene: when they announce a changed rigging, and how edits end that nobody
/// ends.
class RyRiggingEditTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
        m_figure = make<RySkeleton>(nullptr, "figure");
        m_hip = make<RyBone>(m_figure, "hip");
        m_knee = make<RyBone>(m_hip, "knee");
        ryScene()->addNode(m_figure);
        m_figure->getYRotControl()->setValue(35);
        m_figure->getScaleControl()->setValue(1.5f);
        m_hip->setOrigin({1, 20, 3});
        m_hip->getZRotControl()->setValue(-40);
        m_knee->setEndPoint({2, 3, 4});
        m_announced.clear();
    }
    void cleanup()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void levels()
    {
        QVERIFY(!ryScene()->isInRiggingEdit());
        ryScene()->finishRiggingEdit();
        QVERIFY(!ryScene()->isInRiggingEdit());
        ryScene()->beginRiggingEdit();
        QVERIFY(ryScene()->isInRiggingEdit());
        {
            const RyRiggingEdit edit;
            ryScene()->beginRiggingEdit();
            ryScene()->finishRiggingEdit();
            QVERIFY(ryScene()->isInRiggingEdit());
        }
        QVERIFY(ryScene()->isInRiggingEdit());
        ryScene()->finishRiggingEdit();
        QVERIFY(!ryScene()->isInRiggingEdit());
    }

    void announcesOnceAtTheEnd()
    {
        {
            const RyRiggingEdit edit;
            place(m_knee, 5);
            {
                const RyRiggingEdit inner;
                place(m_hip, 6);
            }
            m_knee->getEndXControl()->setValue(11);
            m_knee->getEndXControl()->setDefaultValue(12);
            m_knee->beginEdit();
            m_knee->setOrigin({8, 8, 8});
            m_knee->finishEdit();
            m_hip->beginEdit();
            m_hip->setOrigin({9, 9, 9});
            m_hip->cancelEdit();
            QCOMPARE(m_announced, QStringList());
        }
        QCOMPARE(m_announced, QStringList({"knee", "hip"}));
        // From then on as without one.
        m_hip->setOrigin({7, 7, 7});
        m_hip->setEndPoint({7, 7, 6});
        QCOMPARE(m_announced, QStringList({"knee", "hip", "hip", "hip"}));
    }

    void whatIsNoRiggingIsToldAtOnce()
    {
        const RyRiggingEdit edit;
        QSignalSpy drawn(ryScene(), &RyScene::drawnDataChanged);
        QSignalSpy posed(m_hip, &RyNode::poseChanged);
        QSignalSpy value(m_hip->getOriginXControl(), &RyFloatProperty::currentValueChanged);
        m_hip->getOriginXControl()->setValue(30);
        QCOMPARE(value.size(), 1);
        QCOMPARE(drawn.size(), 1);
        m_hip->getXRotControl()->setValue(30);
        QCOMPARE(posed.size(), 1);
        QCOMPARE(drawn.size(), 2);
        // Maps are never those of before.
        m_hip->setOrigin({2, 4, 6});
        const RyVec3 place = m_figure->worldMap().mapPoint(m_hip->getOrigin());
        QVERIFY((m_hip->getWSPos() - place).length() < 1e-5f);
        QCOMPARE(m_announced, QStringList());
    }

    void nodesThatComeAndGo()
    {
        auto *loose = make<RyBone>(nullptr, "loose");
        const RyRef<RyNode> kept(m_knee);
        {
            const RyRiggingEdit edit;
            place(loose, 1); // in no scene
            QCOMPARE(m_announced, QStringList({"loose", "loose"}));
            m_announced.clear();
            ryScene()->addNode(loose);
            place(loose, 2);
            place(m_knee, 3);
            place(m_hip, 4);
            ryScene()->removeNode(m_knee);
            ryScene()->removeNode(loose); // nobody holds it
            QCOMPARE(m_announced, QStringList());
        }
        QCOMPARE(m_announced, QStringList({"knee", "hip"}));
    }

    void listenersAtTheEnd()
    {
        // The edit has ended when they are called; what they do has an edit of its own, and nodes may go.
        bool wasOpen = true;
        connect(m_hip, &RyNode::riggingChanged, this, [&] {
            if (!wasOpen)
                return;
            wasOpen = ryScene()->isInRiggingEdit();
            const RyRiggingEdit edit;
            place(m_hip, 60);
            ryScene()->removeNode(m_knee);
        });
        {
            const RyRiggingEdit edit;
            place(m_hip, 6);
            place(m_knee, 5);
        }
        QVERIFY(!wasOpen);
        QCOMPARE(m_announced, QStringList({"hip", "hip"}));
        QVERIFY(!ryScene()->isInRiggingEdit());
    }

    void undoOfARigEdit()
    {
        const QString before = text();
        {
            RyUndoStackHold hold;
            {
                const RyRiggingEdit edit;
                place(m_hip, 6);
                place(m_knee, 5);
            }
            hold.accept(QStringLiteral("Place"));
        }
        const QString after = text();
        QVERIFY(after != before);
        QCOMPARE(ryUndoStack()->count(), 1);
        m_announced.clear();
        ryUndoStack()->undo();
        QCOMPARE(text(), before);
        QVERIFY(m_announced.contains(QStringLiteral("hip")) && m_announced.contains(QStringLiteral("knee")));
        ryUndoStack()->redo();
        QCOMPARE(text(), after);
        // Within one as well.
        m_announced.clear();
        {
            const RyRiggingEdit edit;
            ryUndoStack()->undo();
            QCOMPARE(text(), before);
            QCOMPARE(m_announced, QStringList());
        }
        m_announced.sort();
        QCOMPARE(m_announced, QStringList({"hip", "knee"}));
    }

    void exceptionEndsIt()
    {
        const QString before = text();
        try {
            RyUndoStackHold hold;
            const RyRiggingEdit edit;
            const RyRiggingEdit inner;
            place(m_hip, 6);
            throw std::runtime_error("in the middle");
        } catch (const std::runtime_error &) {
        }
        QVERIFY(!ryScene()->isInRiggingEdit());
        QCOMPARE(text(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
        m_announced.clear();
        m_hip->setOrigin({3, 3, 3});
        QCOMPARE(m_announced, QStringList({"hip"}));
    }

    void leftOpenUntilClear()
    {
        for (int level = 0; level < 3; ++level)
            ryScene()->beginRiggingEdit();
        const RyRef<RyNode> kept(m_hip);
        place(m_hip, 6);
        ryScene()->finishRiggingEdit();
        QCOMPARE(m_announced, QStringList());
        ryScene()->clear();
        QVERIFY(!ryScene()->isInRiggingEdit());
        QCOMPARE(m_announced, QStringList({"hip"}));
        ryScene()->addNode(m_hip);
        m_hip->setEndPoint({1, 1, 2});
        QCOMPARE(m_announced, QStringList({"hip", "hip"}));
        // Also that of an empty scene.
        ryScene()->clear();
        ryScene()->beginRiggingEdit();
        ryScene()->clear();
        QVERIFY(!ryScene()->isInRiggingEdit());
    }

    void clearedMeanwhile()
    {
        {
            const RyRiggingEdit edit;
            place(m_hip, 6);
            ryScene()->clear();
            QVERIFY(!ryScene()->isInRiggingEdit());
            // Somebody else's, which the end of the first one leaves alone.
            ryScene()->beginRiggingEdit();
        }
        QVERIFY(ryScene()->isInRiggingEdit());
        ryScene()->finishRiggingEdit();
        QVERIFY(!ryScene()->isInRiggingEdit());
    }

    void sceneGoesMeanwhile()
    {
        {
            const RyRiggingEdit edit;
            place(m_hip, 6);
            ryUndoStack()->clearAll();
            ryDestroyScene();
            QVERIFY(!ryScene()->isInRiggingEdit()); // that of the next one
        }
        QVERIFY(!ryScene()->isInRiggingEdit());
    }

private:
    template<typename Node>
    Node *make(RyNode *parent, const char *name)
    {
        auto *node = new Node;
        node->setName(QString::fromLatin1(name));
        if (parent)
            parent->addNodeChild(node);
        connect(node, &RyNode::riggingChanged, this, [this, node] { m_announced.append(node->getName()); });
        return node;
    }
    /// Two changes of a node's rigging.
    static void place(RyNode *node, float where)
    {
        node->adjustOrigin({where, 2 * where, -where});
        node->adjustEndPoint({where, 0, 1});
    }
    /// All rigging values, default and current.
    QString text() const
    {
        QString text;
        for (const RyNode *node : {m_hip, m_knee}) {
            for (const RyFloatProperty *property :
                 {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(),
                  node->getEndXControl(), node->getEndYControl(), node->getEndZControl(), node->getOrientXControl(),
                  node->getOrientYControl(), node->getOrientZControl()})
                text += QStringLiteral("%1 (%2) ").arg(property->getValue()).arg(property->getDefaultValue());
        }
        return text;
    }

    RySkeleton *m_figure = nullptr;
    RyBone *m_hip = nullptr;
    RyBone *m_knee = nullptr;
    QStringList m_announced;
};

RY_TEST(RyRiggingEditTest)
#include "tst_RyRiggingEdit.moc"
