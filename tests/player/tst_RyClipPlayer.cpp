#include "ToyClip.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <cmath>

/// What a clip player does to nodes and to time, and what it makes way for.
class RyClipPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_figure = new RySkeleton;
        m_figure->setName(QStringLiteral("figure"));
        m_figure->getYTransControl()->setValue(20.0f);
        m_figure->getYRotControl()->setValue(90.0f);
        m_hip = new RyBone;
        m_hip->setName(QStringLiteral("hip"));
        m_hip->setOrigin({0, 10, 0}, true);
        m_hip->getZRotControl()->setValue(30.0f);
        m_knee = new RyBone;
        m_knee->setOrigin({0, 5, 0}, true);
        m_knee->getXRotControl()->setValue(15.0f);
        m_hat = new RyNode;
        m_hat->setOrigin({0, 11, 0}, true);
        m_hat->getXTransControl()->setValue(2.0f);
        m_figure->addNodeChild(m_hip);
        m_hip->addNodeChild(m_knee);
        m_hip->addNodeChild(m_hat);
        scene().addNode(m_figure);
        m_hip->select(true);
        m_origin = std::make_shared<ToyOrigin>();
        m_clip = std::make_shared<ToyClip>(QStringLiteral("walk"), 1.0, 3.0, std::vector<RyNode *>{m_hip});
        m_origin->given = {m_clip};
        scene().addOrigin(m_origin);
        ryUndoStack()->setClean();
    }
    void cleanup()
    {
        player().setLoop(false);
        player().setSpeed(1.0);
        player().stop();
        ryUndoStack()->clearAll();
        scene().clear();
    }

    void mapsOfABone()
    {
        const RyAffine world = m_hip->worldMap();
        const RyAffine knee = m_knee->worldMap();
        const RyQuat turn = m_hip->getWSRot();
        player().show(m_clip, 2.0);
        QVERIFY(m_hip->isPlayed());
        QVERIFY(m_hip->figureMap() == RyAffine::fromTranslation(2, 0, 0));
        QVERIFY(m_hip->worldMap() == RyAffine::fromTranslation(2, 0, 0) * m_figure->worldMap());
        QCOMPARE(m_hip->getWSRot(), m_figure->getWSRot());
        // What hangs on it follows with the pose that it has.
        QVERIFY(m_knee->worldMap() == m_knee->getLocalMap() * m_hip->worldMap());
        QVERIFY(m_hat->worldMap() == m_hat->getLocalMap() * m_hip->worldMap());
        QCOMPARE(m_hip->getZRotControl()->getValue(), 30.0f);
        player().stop();
        QVERIFY(!m_hip->isPlayed());
        QVERIFY(m_hip->worldMap() == world);
        QVERIFY(m_knee->worldMap() == knee);
        QCOMPARE(m_hip->getWSRot(), turn);
    }
    void mapsOfOthers()
    {
        m_clip = std::make_shared<ToyClip>(QStringLiteral("float"), 0.0, 3.0, std::vector<RyNode *>{m_figure, m_hat});
        const RyAffine local = m_knee->figureMap();
        player().show(m_clip, 2.0);
        QVERIFY(m_figure->worldMap() == RyAffine::fromTranslation(2, 0, 0));
        QVERIFY(m_figure->figureMap() == RyAffine());
        QVERIFY(m_knee->figureMap() == local);
        QVERIFY(m_knee->worldMap() == local * m_figure->worldMap());
        QVERIFY(m_hat->worldMap() == RyAffine::fromTranslation(2, 0, 0) * m_hip->worldMap());
        QVERIFY(m_hat->figureMap() == RyAffine::fromTranslation(2, 0, 0) * m_hip->figureMap());
    }
    /// A frame is told once, and nodes grow their revisions by it.
    void announcements()
    {
        player().show(m_clip, 1.0);
        QSignalSpy drawn(&scene(), &RyScene::drawnDataChanged), time(&player(), &RyClipPlayer::timeChanged),
            shown(&player(), &RyClipPlayer::shownChanged), pose(m_hip, &RyNode::poseChanged);
        const quint64 revision = m_knee->mapRevision();
        player().setTime(1.5);
        QVERIFY(m_knee->mapRevision() > revision);
        QCOMPARE(drawn.count(), 1);
        QCOMPARE(time.count(), 1);
        QCOMPARE(shown.count(), 0);
        player().setTime(1.5);
        QCOMPARE(drawn.count(), 1);
        player().stop();
        QCOMPARE(drawn.count(), 2);
        QCOMPARE(shown.count(), 1);
        player().stop();
        QCOMPARE(drawn.count(), 2);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(pose.count(), 0);
        QVERIFY(ryUndoStack()->isClean());
    }
    void frames()
    {
        QCOMPARE(m_clip->frameOf(1.0), 0.0);
        QCOMPARE(m_clip->lastFrame(), 60);
        QCOMPARE(ToyClip("late", 0.0, 30.4 / 30.0, {}).lastFrame(), 31);
        QCOMPARE(ToyClip("rounded", 0.0, 2.0 + 1e-7, {}).lastFrame(), 60);
        QCOMPARE(ToyClip("damaged", 0.0, 1e30, {}).lastFrame(), 1000000);
        QCOMPARE(m_clip->secondsOf(15.0), 1.5);
    }
    void timeStaysInTheClip()
    {
        player().show(m_clip, 0.0);
        QCOMPARE(player().time(), 1.0);
        player().setTime(std::nan(""));
        QCOMPARE(player().time(), m_clip->start());
        player().setTime(9.0);
        QCOMPARE(player().time(), 3.0);
        player().setSpeed(99.0);
        QCOMPARE(player().speed(), 4.0);
        player().setSpeed(0.0);
        QCOMPARE(player().speed(), 0.1);
    }
    /// By the clock, not by the ticks: as far as time has gone by when a tick comes late.
    void playing()
    {
        player().setSpeed(2.0);
        player().show(m_clip, 1.0);
        QSignalSpy shown(&player(), &RyClipPlayer::shownChanged);
        QElapsedTimer clock;
        clock.start();
        player().play();
        QVERIFY(player().isPlaying());
        QCOMPARE(shown.count(), 1);
        QTest::qSleep(300);
        double latest = 0.0;
        connect(&player(), &RyClipPlayer::timeChanged, this,
                [&] { latest = 1.0 + 2.0e-9 * double(clock.nsecsElapsed()); });
        QTest::qWait(50);
        player().pause();
        QVERIFY(!player().isPlaying());
        QCOMPARE(shown.count(), 2);
        QVERIFY(player().time() >= 1.6);
        QVERIFY(player().time() <= latest);
        QVERIFY(m_hip->figureMap() == RyAffine::fromTranslation(player().time(), 0, 0));
        disconnect(&player(), nullptr, this, nullptr);
    }
    void endsAtItsEnd()
    {
        player().setSpeed(4.0);
        player().show(m_clip, 2.8);
        player().play();
        QTRY_VERIFY(!player().isPlaying());
        QVERIFY(player().isShowing());
        QCOMPARE(player().time(), 3.0);
        player().play(); // once more from its start
        QVERIFY(player().isPlaying());
        QVERIFY(player().time() < 2.0);
    }
    void loops()
    {
        player().setLoop(true);
        player().setSpeed(4.0);
        player().show(m_clip, 2.9);
        player().play();
        bool wasEarly = false;
        connect(&player(), &RyClipPlayer::timeChanged, this, [&] { wasEarly = wasEarly || player().time() < 2.0; });
        QTRY_VERIFY(wasEarly);
        QVERIFY(player().isPlaying());
        disconnect(&player(), nullptr, this, nullptr);
    }
    void withoutLength()
    {
        const auto still = std::make_shared<ToyClip>(QStringLiteral("still"), 1.0, 1.0, std::vector<RyNode *>{m_hip});
        player().setLoop(true);
        player().show(still, 1.0);
        player().play();
        QVERIFY(!player().isPlaying());
        QVERIFY(player().isShowing());
    }

    /// What edits read and write is the pose.
    void makesWay_data()
    {
        QTest::addColumn<int>("what");
        const char *names[] = {"recorded value", "value without a hold", "hold", "undo",      "redo",
                               "name",           "node removed",         "hung", "scale off", "follows"};
        for (int i = 0; i < int(std::size(names)); ++i)
            QTest::newRow(names[i]) << i;
    }
    void makesWay()
    {
        QFETCH(int, what);
        if (what == 3 || what == 4) {
            RyUndoStackHold hold;
            m_knee->getYRotControl()->setValue(3.0f);
            hold.accept(QStringLiteral("turn"));
            if (what == 4)
                ryUndoStack()->undo();
        }
        const RyAffine world = m_hip->worldMap();
        player().show(m_clip, 2.0);
        player().play();
        switch (what) {
        case 0: {
            RyUndoStackHold hold;
            m_knee->getYRotControl()->setValue(3.0f);
            hold.cancel();
            break;
        }
        case 1:
            m_knee->getYRotControl()->setValue(3.0f);
            break;
        case 2: {
            RyUndoStackHold hold;
            QVERIFY(!player().isShowing());
            break;
        }
        case 3:
            ryUndoStack()->undo();
            break;
        case 4:
            ryUndoStack()->redo();
            break;
        case 5:
            m_hip->setLabel(QStringLiteral("Hip"));
            break;
        case 6:
            scene().removeNode(m_hat);
            break;
        case 7:
            m_knee->addNodeChild(m_hat);
            break;
        case 8:
            m_knee->setInheritScale(false);
            break;
        case 9: {
            RySkeleton *other = new RySkeleton;
            const RyRef<RyNode> guard(other);
            m_figure->setFollowTarget(other);
            break;
        }
        }
        QVERIFY(!player().isShowing());
        QVERIFY(!player().isPlaying());
        QVERIFY(!m_hip->isPlayed());
        QVERIFY(m_hip->worldMap() == world);
    }
    void stays_data()
    {
        QTest::addColumn<int>("what");
        const char *names[] = {"selection", "selection cleared", "hidden", "bones drawn", "scene time"};
        for (int i = 0; i < int(std::size(names)); ++i)
            QTest::newRow(names[i]) << i;
    }
    void stays()
    {
        QFETCH(int, what);
        player().show(m_clip, 2.0);
        switch (what) {
        case 0:
            m_hat->select(true);
            break;
        case 1:
            scene().selectAllNodes(false);
            break;
        case 2:
            m_hat->setHidden(true);
            break;
        case 3:
            m_figure->setDrawGLBones(true);
            break;
        case 4:
            scene().setTime(RyTime(30));
            break;
        }
        QCOMPARE(player().clip().get(), m_clip.get());
        QVERIFY(m_hip->isPlayed());
    }
    void goesWithWhatItMoves_data()
    {
        QTest::addColumn<int>("what");
        const char *names[] = {"scene cleared", "node removed", "node deleted", "origin gone"};
        for (int i = 0; i < int(std::size(names)); ++i)
            QTest::newRow(names[i]) << i;
    }
    void goesWithWhatItMoves()
    {
        QFETCH(int, what);
        const RyRef<RyNode> hip(m_hip);
        player().show(m_clip, 2.0);
        const RyClipPlayer::Stay stay; // not by the edit
        QSignalSpy shown(&player(), &RyClipPlayer::shownChanged);
        if (what == 0)
            scene().clear();
        else if (what == 1)
            scene().removeNode(m_hip);
        else if (what == 2)
            delete m_hip;
        else
            scene().setOrigins({});
        QVERIFY(!player().isShowing());
        QCOMPARE(shown.count(), 1);
        if (what != 2)
            QVERIFY(!hip->isPlayed());
        QCOMPARE(scene().getClips().size(), size_t(0));
        player().show(m_clip, 2.0);
        QCOMPARE(player().isShowing(), what == 3); // nothing left that it could move
    }
    void aside()
    {
        player().show(m_clip, 2.0);
        QSignalSpy drawn(&scene(), &RyScene::drawnDataChanged);
        {
            const RyClipPlayer::Aside aside(scene());
            QVERIFY(!m_hip->isPlayed());
            const RyClipPlayer::Aside again(scene());
            player().setTime(2.5);
            QVERIFY(!m_hip->isPlayed());
            drawn.clear();
        }
        QCOMPARE(drawn.count(), 0);
        QVERIFY(m_hip->figureMap() == RyAffine::fromTranslation(2.5, 0, 0));
    }
    void anotherClip()
    {
        const auto other = std::make_shared<ToyClip>(QStringLiteral("run"), 0.0, 1.0, std::vector<RyNode *>{m_hat});
        player().show(m_clip, 2.0);
        player().play();
        player().show(other, 0.5);
        QVERIFY(!player().isPlaying());
        QVERIFY(!m_hip->isPlayed());
        QVERIFY(m_hat->isPlayed());
        player().show(nullptr, 0.0);
        QVERIFY(!player().isShowing());
    }

private:
    static RyScene &scene() { return *ryScene(); }
    static RyClipPlayer &player() { return *ryScene()->getClipPlayer(); }

    QPointer<RySkeleton> m_figure;
    QPointer<RyBone> m_hip, m_knee;
    QPointer<RyNode> m_hat;
    std::shared_ptr<ToyOrigin> m_origin;
    std::shared_ptr<const RyClip> m_clip;
};

RY_TEST(RyClipPlayerTest)
#include "tst_RyClipPlayer.moc"
