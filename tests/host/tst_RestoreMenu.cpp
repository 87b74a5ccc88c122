#include "host/WindowStage.h"
#include "support/RyTest.h"
#include "support/ToyAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/commands/HostFiles.h"

#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QStatusBar>

#include <functional>

namespace {

/// A tool that does what it is told.
class ToyTool : public RyViewTool
{
public:
    ToyTool() : RyViewTool(QStringLiteral("Toy Tool")) {}
    bool mousePress(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier) override
    {
        press();
        return true;
    }
    bool mouseRelease(Ry3DViewport *, QMouseEvent *, RyViewMouseModifier) override
    {
        release();
        return true;
    }
    void finishDrag() override { release(); }
    std::function<void()> press = [] {};
    std::function<void()> release = [] {};
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(QWidget *)>)

class RestoreMenuTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(open()); }
    void cleanup()
    {
        close();
        QCOMPARE(ryRestorePoints()->count(), 0);
        QCOMPARE(ryRestorePoints()->most(), 0);
    }

    /// The status bar names what takes back the last thing, which is not always the last step.
    void statusNamesTheWayBack()
    {
        const auto *status = m_window->findChild<QLabel *>(QStringLiteral("UndoStatus"));
        QCOMPARE(status->text(), QString());
        bend();
        QCOMPARE(status->text(), QStringLiteral("undo: Bend"));
        ToyAction command(QStringLiteral("Settle"), [this] {
            const RyUndoStackLock lock;
            bone()->setEndPoint(bone()->getEndPoint() + RyVec3(1, 0, 0));
        });
        command.trigger();
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Bend"));
        QCOMPARE(status->text(), QStringLiteral("Restore to before Settle"));
        bone()->select(true);
        QCOMPARE(status->text(), QStringLiteral("Restore to before Settle"));
        QTest::qWait(2); // times of steps are milliseconds
        bend(QStringLiteral("rForearm"));
        QCOMPARE(status->text(), QStringLiteral("undo: Bend"));
        ryUndoStack()->undo();
        QCOMPARE(status->text(), QStringLiteral("Restore to before Settle   redo: Bend"));
    }

    void bringsBackADeletedBone()
    {
        bend();
        bone()->select(true);
        const QString before = dump();
        QVERIFY(!latest()->isVisible());
        ToyAction command(QStringLiteral("Delete && &Bury Bone..."), [this] { deleteBone(); });
        command.trigger();
        const QString after = dump();
        QVERIFY(before != after);
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(latest()->isVisible());
        QCOMPARE(latest()->text(), QStringLiteral("Restore to before Delete && Bury Bone"));
        QCOMPARE(m_window->statusBar()->currentMessage(),
                 QStringLiteral("Undo does not take this back; Edit > Restore to before Delete & Bury Bone does."));
        latest()->trigger();
        QCOMPARE(dump(), before);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Bend"));
        QCOMPARE(latest()->text(), QStringLiteral("Undo Restoring to before Delete && Bury Bone"));
        latest()->trigger();
        QCOMPARE(dump(), after);
        latest()->trigger();
        QCOMPARE(dump(), before);
        ryUndoStack()->undo();
        QVERIFY(dump() != before);
        ryUndoStack()->redo();
        QCOMPARE(dump(), before);
    }

    void listsPointsNewestFirst()
    {
        ToyAction first(QStringLiteral("Rename"), [this] { bone()->setName(QStringLiteral("other")); });
        ToyAction second(QStringLiteral("Hide"), [this] { figure()->setHidden(true); });
        ToyAction undoable(QStringLiteral("Bend"), [this] { bend(QStringLiteral("other")); });
        ToyAction nothing(QStringLiteral("Nothing"), [] {});
        const QString start = dump();
        first.trigger();
        undoable.trigger();
        nothing.trigger();
        second.trigger();
        auto *menu = m_window->findChild<QMenu *>(QStringLiteral("RestoreMenu"));
        QCOMPARE(menu->actions().size(), 2);
        QCOMPARE(menu->actions().at(0)->text(), QStringLiteral("Restore to before Hide"));
        QCOMPARE(menu->actions().at(1)->text(), QStringLiteral("Restore to before Rename"));
        QVERIFY(menu->actions().at(1)->toolTip().startsWith(QStringLiteral("The scene as it was at ")));
        menu->actions().at(1)->trigger();
        QCoreApplication::processEvents();
        QCOMPARE(dump(), start);
        QCOMPARE(menu->actions().size(), 2);
        QCOMPARE(menu->actions().at(0)->text(), QStringLiteral("Undo Restoring to before Rename"));
    }

    void historyLeadsToAnyStep()
    {
        const QString start = dump();
        QStringList states{start};
        for (int i = 1; i <= 4; ++i) {
            RyUndoStackHold hold;
            bone()->getZRotControl()->setValue(float(10 * i));
            hold.accept(QStringLiteral("Turn & %1").arg(i));
            states.append(dump());
        }
        auto *menu = m_window->findChild<QMenu *>(QStringLiteral("HistoryMenu"));
        for (int step : {1, 4, 0, 3}) {
            emit menu->aboutToShow();
            QCOMPARE(menu->actions().size(), 5);
            QCOMPARE(menu->actions().at(0)->text(), QStringLiteral("Beginning"));
            QCOMPARE(menu->actions().at(2)->text(), QStringLiteral("Turn && 2"));
            for (int i = 0; i < 5; ++i)
                QCOMPARE(menu->actions().at(i)->isChecked(), i == ryUndoStack()->index());
            menu->actions().at(step)->trigger();
            QCoreApplication::processEvents();
            QCOMPARE(ryUndoStack()->index(), step);
            QCOMPARE(dump(), states.at(step));
        }
    }

    void pressOfATool()
    {
        auto *tool = new ToyTool;
        m_window->getViewportMgr()->addTool(tool);
        m_window->getViewportMgr()->setActiveTool(tool);
        std::unique_ptr<RyUndoStackHold> hold;
        tool->press = [&] {
            hold = std::make_unique<RyUndoStackHold>();
            bone()->getZRotControl()->setValue(33);
        };
        tool->release = [&] { hold->accept(QStringLiteral("Drag")); };
        click();
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Drag"));
        QCOMPARE(ryRestorePoints()->count(), 0);

        const QString before = dump();
        tool->press = [&] {
            auto *fresh = new RyBone;
            fresh->setName(QStringLiteral("fresh"));
            bone()->addNodeChild(fresh);
            m_scene->addNode(fresh);
            fresh->select(true);
        };
        tool->release = [] {};
        click();
        QCOMPARE(ryRestorePoints()->captions(), QStringList{QStringLiteral("Create Bone")});
        latest()->trigger();
        QCOMPARE(dump(), before);

        tool->press = [] {};
        tool->release = [&] { figure()->setHidden(true); };
        click();
        QCOMPARE(ryRestorePoints()->caption(0), QStringLiteral("Edit with Toy Tool"));
        tool->release = [] {};
        click();
        QCOMPARE(ryRestorePoints()->count(), 2);
    }

    void aLostReleaseEndsTheDrag_data()
    {
        QTest::addColumn<std::function<void(QWidget *)>>("lose");
        QTest::newRow("a move without buttons") << std::function<void(QWidget *)>([](QWidget *viewport) {
            QMouseEvent move(QEvent::MouseMove, QPoint(60, 60), viewport->mapToGlobal(QPoint(60, 60)), Qt::NoButton,
                             Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(viewport, &move);
        });
        QTest::newRow("hidden") << std::function<void(QWidget *)>([](QWidget *viewport) { viewport->hide(); });
        QTest::newRow("another press") << std::function<void(QWidget *)>(
            [](QWidget *viewport) { QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, QPoint(80, 80)); });
    }

    void aLostReleaseEndsTheDrag()
    {
        QFETCH(std::function<void(QWidget *)>, lose);
        auto *tool = new ToyTool;
        m_window->getViewportMgr()->addTool(tool);
        m_window->getViewportMgr()->setActiveTool(tool);
        std::unique_ptr<RyUndoStackHold> hold;
        int releases = 0;
        tool->press = [&] {
            QVERIFY(!hold);
            hold = std::make_unique<RyUndoStackHold>();
            bone()->getZRotControl()->setValue(33);
        };
        tool->release = [&] {
            ++releases;
            hold->accept(QStringLiteral("Drag"));
            hold.reset();
        };
        QTest::mousePress(m_window->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
        QVERIFY(m_window->viewport()->isToolDragging() && !ryUndoStack()->canUndo());
        lose(m_window->viewport());
        QVERIFY(!m_window->viewport()->isToolDragging());
        QVERIFY(releases > 0);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Drag"));
        // Nothing waits that would keep other commands from leaving points.
        ToyAction command(QStringLiteral("Hide"), [this] { figure()->setHidden(true); });
        command.trigger();
        QCOMPARE(ryRestorePoints()->captions(), QStringList(QStringLiteral("Hide")));
    }

    void mergingCanBeTakenBack()
    {
        const QString before = dump(), first = file(QStringLiteral("first.glb")),
                      second = file(QStringLiteral("second.glb"));
        QVERIFY(m_window->files()->savePath(first));
        QVERIFY(m_window->files()->mergePath(sample()));
        const QString merged = dump();
        QCOMPARE(m_scene->getSkeletons().size(), size_t(2));
        QCOMPARE(ryRestorePoints()->captions(), QStringList(QStringLiteral("Merge mannequin.glb")));
        latest()->trigger();
        QCOMPARE(dump(), before);
        QVERIFY(m_window->files()->savePath(second));
        QVERIFY(!bytesOf(first).isEmpty());
        QCOMPARE(bytesOf(second), bytesOf(first));
        latest()->trigger();
        QCOMPARE(dump(), merged);
    }

    void mergingIntoNothingBringsItsOriginAlong()
    {
        m_scene->clear();
        const QString before = dump(), first = file(QStringLiteral("first.glb")),
                      second = file(QStringLiteral("second.glb"));
        QVERIFY(m_window->files()->mergePath(sample()));
        const RySceneOrigin *origin = m_scene->getOrigin();
        QVERIFY(origin);
        const QString merged = dump();
        QVERIFY(m_window->files()->savePath(first));
        latest()->trigger();
        QCOMPARE(dump(), before);
        QVERIFY(!m_scene->getOrigin());
        latest()->trigger();
        QCOMPARE(dump(), merged);
        QCOMPARE(m_scene->getOrigin(), origin);
        QVERIFY(m_window->files()->savePath(second));
        QCOMPARE(bytesOf(second), bytesOf(first));
    }

    void openingAFileDropsThem()
    {
        ToyAction command(QStringLiteral("Hide"), [this] { figure()->setHidden(true); });
        command.trigger();
        QCOMPARE(ryRestorePoints()->count(), 1);
        const QString path = file(QStringLiteral("saved.glb"));
        QVERIFY(m_window->files()->savePath(path));
        QCOMPARE(ryRestorePoints()->count(), 1);
        latest()->trigger();
        QVERIFY2(!ryUndoStack()->isClean(), "the file holds the other state");
        QVERIFY(m_window->files()->openPath(path));
        QCOMPARE(ryRestorePoints()->count(), 0);
        QVERIFY(!latest()->isVisible());
    }

private:
    QString sample() const { return RyApp::getHomePath() + QStringLiteral("/samples/mannequin.glb"); }
    QString dump() const { return rySceneDump(*m_scene); }
    static QByteArray bytesOf(const QString &path)
    {
        QFile saved(path);
        return saved.open(QIODevice::ReadOnly) ? saved.readAll() : QByteArray();
    }
    RySkeleton *figure() const { return m_scene->getSkeletons().at(0); }
    RyNode *bone(const QString &name = QStringLiteral("lForearm")) const { return m_scene->findNode(name); }
    QAction *latest() const { return action("EditRestoreLatest"); }
    void bend(const QString &name = QStringLiteral("lForearm"))
    {
        RyUndoStackHold hold;
        bone(name)->getZRotControl()->setValue(20);
        hold.accept(QStringLiteral("Bend"));
    }
    void deleteBone()
    {
        RyUndoStackLock lock;
        ryUndoStack()->clearAll();
        RySkinBinding *skin = RySkinBinding::findSkinFromNode(figure());
        skin->removeBoneBinding(skin->findBoneBinding(bone()));
        skin->normalize(0, RySkinBinding::GeneralWeights, false);
        m_scene->removeNode(bone());
    }
    void click()
    {
        QTest::mousePress(m_window->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
        QTest::mouseRelease(m_window->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    }
};

RY_TEST(RestoreMenuTest)
#include "tst_RestoreMenu.moc"
