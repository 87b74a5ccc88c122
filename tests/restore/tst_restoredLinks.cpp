#include "support/RyTest.h"
#include "support/ToyAction.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

/// Restore points of links and of what figures follow, made by work that leaves no step.
class RestoredLinksTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        ryRestorePoints()->setMost(8);
        QString error;
        const QString sample = QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
        QVERIFY2(RySceneFile::open(ryScene(), sample, &error), qPrintable(error));
        RySceneFile::Options options;
        options.merge = true;
        QVERIFY2(RySceneFile::open(ryScene(), sample, options, &error), qPrintable(error));
        m_first = ryScene()->getSkeletons()[0];
        m_second = ryScene()->getSkeletons()[1];
        for (RyBone *bone : m_first->getAllBones())
            bone->getYRotControl()->setValue(12);
        m_first->findBone("lForearm")->getYRotControl()->setDefaultValue(2);
        RyERCLink::create(m_first->findBone("lForearm")->getYRotControl(),
                          m_second->findBone("lForearm")->getYRotControl());
        m_second->setFollowTarget(m_first);
    }
    void cleanup()
    {
        ryRestorePoints()->setMost(0);
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void comeBack_data()
    {
        QTest::addColumn<int>("kind");
        for (int kind = 0; kind < 4; ++kind)
            QTest::addRow("%d", kind) << kind;
    }
    void comeBack()
    {
        QFETCH(int, kind);
        const QString before = rySceneDump(*ryScene());
        const float drawn = drawnTurn();
        ToyAction action(QStringLiteral("Edit"), [this, kind] {
            RyUndoStackLock lock;
            ryUndoStack()->clearAll();
            switch (kind) {
            case 0:
                RyERCLink::remove(m_second->findBone("lForearm")->getYRotControl()->getControllerLinks().front());
                break;
            case 1:
                RyERCLink::create(m_first->getXTransControl(), m_second->findBone("lForearm")->getYRotControl());
                m_first->getXTransControl()->setValue(33);
                break;
            case 2:
                m_second->setFollowTarget(nullptr);
                m_first->setFollowTarget(m_second);
                break;
            default:
                ryScene()->removeNode(m_first);
            }
        });
        action.trigger();
        const QString after = rySceneDump(*ryScene());
        QVERIFY(after != before);
        QVERIFY(ryRestorePoints()->restore(0));
        QVERIFY(rySceneDump(*ryScene()) == before);
        QCOMPARE(drawnTurn(), drawn);
        QCOMPARE(m_second->getFollowTarget(), m_first);
        QVERIFY(ryRestorePoints()->restore(0));
        QVERIFY(rySceneDump(*ryScene()) == after);
    }

private:
    float drawnTurn() const { return m_second->findBone("lForearm")->getYRotControl()->getValue(); }

    RySkeleton *m_first = nullptr;
    RySkeleton *m_second = nullptr;
};

RY_TEST(RestoredLinksTest)
#include "tst_restoredLinks.moc"
