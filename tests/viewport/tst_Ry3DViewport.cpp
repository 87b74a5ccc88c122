#include "support/RyTest.h"
#include "viewport/ViewportStage.h"
#include "viewport/ViewportTestScene.h"

#include "player/ToyClip.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <cmath>

class Ry3DViewportTest : public QObject, private ViewportStage
{
    Q_OBJECT
private slots:
    void init()
    {
        open();
        m_figure = addBoxFigure(*m_scene);
        m_tool = new SquareTool;
        m_tool->squares = {{RyVec3(20, 20, 0), 7}, {RyVec3(28, 20, 0), 46}, {RyVec3(-20, 20, 0), 200}};
        m_manager->addTool(m_tool);
        m_manager->setActiveTool(m_tool);
        m_viewport->setStandardView(Ry3DViewport::StandardView::Front);
        m_viewport->cameraController().frame(RyBox3(RyVec3(-40, -5, -5), RyVec3(40, 45, 5)), QSizeF(640, 480));
        m_viewport->resize(640, 480);
        m_viewport->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_viewport.get()));
        settle();
        ryUndoStack()->clearAll();
        ryUndoStack()->setClean();
    }
    void cleanup() { close(); }

    void projectsAndCastsRaysTheSameWay()
    {
        for (const RyVec3 &point : {RyVec3(20, 20, 0), RyVec3(-7, 3, 9), RyVec3(0, 44, -20)}) {
            QPointF pixel;
            QVERIFY(m_viewport->project(point, pixel));
            const RyLine3 ray = m_viewport->matrices().ray(pixel);
            const RyVec3 toPoint = point - ray.getOrigin();
            QVERIFY((toPoint - ray.getDirection() * toPoint.dot(ray.getDirection())).length() < 1e-3f);
        }
        QPointF middle;
        m_viewport->project(m_viewport->cameraController().target(), middle);
        QVERIFY(std::abs(middle.x() - 320) < 0.5 && std::abs(middle.y() - 240) < 0.5);
    }

    void picksTheIdUnderThePoint()
    {
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(20, 20, 0))), 7);
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(28, 20, 0))), 46);
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(-20, 20, 0))), 200);
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(0, 20, 0))), 0);
        QCOMPARE(m_viewport->pickOnGizmo(QPoint(-1, 5)), 0);
        QCOMPARE(m_viewport->pickOnGizmo(QPoint(640, 5)), 0);
        QVERIFY(m_tool->pickLineWidth >= 10.0f);
    }

    void picksExactlyAtTheEdges()
    {
        // Every pixel of a row across a square: inside gives the id, two pixels outside do not.
        QPointF left, right;
        m_viewport->project(RyVec3(18, 20, 0), left);
        m_viewport->project(RyVec3(22, 20, 0), right);
        const int y = at(RyVec3(20, 20, 0)).y();
        for (int x = int(left.x()) - 8; x < int(right.x()) + 8; ++x) {
            if (x > left.x() + 1 && x < right.x() - 2)
                QCOMPARE(m_viewport->pickOnGizmo(QPoint(x, y)), 7);
            else if (x < left.x() - 2 || x > right.x() + 1)
                QCOMPARE(m_viewport->pickOnGizmo(QPoint(x, y)), 0);
        }
    }

    void hoveringNearbyNeedsNoFurtherPass()
    {
        ViewportMouse mouse(*m_viewport);
        const QPoint start = at(RyVec3(20, 20, 0));
        mouse.move(start);
        const int passes = m_viewport->counts().pickPasses;
        QVERIFY(passes >= 1);
        for (int i = 0; i < 10; ++i)
            mouse.move(start + QPoint(i % 5, i % 3));
        QCOMPARE(m_viewport->counts().pickPasses, passes);
        QCOMPARE(m_tool->hovered, 7);
        QCOMPARE(m_viewport->getToolTipText(), QStringLiteral("square 7"));
        // On to the next square: the highlight changes, the tile stays.
        mouse.move(at(RyVec3(28, 20, 0)));
        QCOMPARE(m_tool->hovered, 46);
        mouse.move(start);
        QVERIFY(m_viewport->counts().pickPasses <= passes + 2);
        const int afterwards = m_viewport->counts().pickPasses;
        mouse.move(start + QPoint(1, 0));
        QCOMPARE(m_viewport->counts().pickPasses, afterwards);
    }

    void theTileGoesWithEveryOtherChange()
    {
        const QPoint point = at(RyVec3(20, 20, 0));
        const auto passesFor = [&] {
            const int before = m_viewport->counts().pickPasses;
            m_viewport->pickOnGizmo(point);
            return m_viewport->counts().pickPasses - before;
        };
        passesFor();
        QCOMPARE(passesFor(), 0);
        m_tool->drawnDataChanged();
        QCOMPARE(passesFor(), 1);
        m_figure.upper->getXRotControl()->setValue(10);
        QCOMPARE(passesFor(), 1);
        m_figure.upper->select(true);
        QCOMPARE(passesFor(), 1);
        m_viewport->cameraController().orbit(QPointF(3, 0));
        QCOMPARE(passesFor(), 1);
        m_viewport->resize(650, 480);
        QCOMPARE(passesFor(), 1);
        QCOMPARE(passesFor(), 0);
    }

    void aToolRepaintKeepsThePictureOfTheScene()
    {
        const int scenes = m_viewport->counts().scenePaints;
        const int frames = m_viewport->counts().framePaints;
        m_tool->drawnDataChanged();
        settle();
        QCOMPARE(m_viewport->counts().scenePaints, scenes);
        QVERIFY(m_viewport->counts().framePaints > frames);
        m_figure.upper->getXRotControl()->setValue(20);
        settle();
        QCOMPARE(m_viewport->counts().scenePaints, scenes + 1);
        m_viewport->cameraController().orbit(QPointF(9, 0));
        settle();
        QCOMPARE(m_viewport->counts().scenePaints, scenes + 2);
    }

    void manyRequestsMakeOnePaint()
    {
        settle();
        const int frames = m_viewport->counts().framePaints;
        for (int i = 0; i < 10; ++i)
            m_tool->drawnDataChanged();
        settle();
        QCOMPARE(m_viewport->counts().framePaints, frames + 1);
    }

    void positionsAreUploadedOnlyWhenTheyChange()
    {
        settle();
        const int uploads = m_viewport->counts().positionUploads;
        QVERIFY(uploads >= 1);
        m_viewport->cameraController().orbit(QPointF(9, 0));
        settle();
        m_figure.figure->getXTransControl()->setValue(5); // moves the figure as a whole
        settle();
        QCOMPARE(m_viewport->counts().positionUploads, uploads);
        m_figure.upper->getZRotControl()->setValue(25);
        settle();
        QCOMPARE(m_viewport->counts().positionUploads, uploads + 1);
    }

    /// A frame of a clip deforms what it moves once, uploads once and is drawn once; selecting meanwhile draws the tool
    /// alone.
    void clipFrames()
    {
        const ToyClip clip(QStringLiteral("walk"), 0.0, 3.0, {m_figure.upper});
        RyClipPlayer &player = *m_scene->getClipPlayer();
        player.show(std::make_shared<ToyClip>(clip), 1.0);
        settle();
        const RySkinDeformer &deformer = RySkinBinding::findSkinFromNode(m_figure.upper)->deformer();
        const auto counts = m_viewport->counts();
        const qint64 touched = deformer.totalTouched();
        player.setTime(2.0);
        settle();
        QCOMPARE(m_viewport->counts().positionUploads, counts.positionUploads + 1);
        QCOMPARE(m_viewport->counts().scenePaints, counts.scenePaints + 1);
        QCOMPARE(m_viewport->counts().framePaints, counts.framePaints + 1);
        QVERIFY(deformer.lastTouched() > 0);
        QCOMPARE(deformer.totalTouched(), touched + deformer.lastTouched());
        m_figure.upper->select(true);
        settle();
        QCOMPARE(m_viewport->counts().positionUploads, counts.positionUploads + 1);
        QVERIFY(player.isShowing());
        {
            const Ry3DViewport another(m_manager.get());
            const RyClipPlayer::Aside aside(*m_scene);
        }
        QVERIFY(player.isShowing());
        QVERIFY(ryUndoStack()->isClean());
        settle();
        QCOMPARE(m_viewport->counts().scenePaints, counts.scenePaints + 1);
        player.stop();
        settle();
        QCOMPARE(m_viewport->counts().positionUploads, counts.positionUploads + 2);
    }

    void mouseReachesTheTool()
    {
        ViewportMouse mouse(*m_viewport);
        const QPoint point = at(RyVec3(20, 20, 0));
        mouse.move(point);
        m_tool->calls.clear();
        mouse.press(point, Qt::LeftButton, Qt::ControlModifier);
        mouse.move(point + QPoint(5, 0));
        mouse.move(point + QPoint(9, 0));
        mouse.release(point + QPoint(9, 0));
        mouse.move(point);
        QCOMPARE(m_tool->calls, QStringList({"press 1 3", "move", "move", "release", "over"}));
    }

    void rightPressCancelsADragAndOpensNoMenu()
    {
        QSignalSpy menu(m_viewport.get(), &Ry3DViewport::contextMenuRequested);
        ViewportMouse mouse(*m_viewport);
        const QPoint point = at(RyVec3(20, 20, 0));
        mouse.press(point);
        mouse.move(point + QPoint(9, 0));
        QVERIFY(m_tool->dragging);
        mouse.press(point + QPoint(9, 0), Qt::RightButton);
        QVERIFY(!m_tool->dragging);
        mouse.release(point + QPoint(9, 0), Qt::RightButton);
        mouse.release(point + QPoint(9, 0));
        QCOMPARE(menu.count(), 0);
        QCOMPARE(m_tool->calls.last(), QStringLiteral("release"));
        // At other times it opens the menu, but not after a drag with it.
        mouse.press(point, Qt::RightButton);
        mouse.release(point, Qt::RightButton);
        QCOMPARE(menu.count(), 1);
        mouse.press(point, Qt::RightButton);
        mouse.move(point + QPoint(60, 0));
        mouse.release(point + QPoint(60, 0), Qt::RightButton);
        QCOMPARE(menu.count(), 1);
    }

    void escapeCancelsADrag()
    {
        ViewportMouse mouse(*m_viewport);
        const QPoint point = at(RyVec3(20, 20, 0));
        mouse.move(point);
        m_tool->calls.clear();
        QTest::keyClick(m_viewport.get(), Qt::Key_Escape);
        QCOMPARE(m_tool->calls, QStringList());
        mouse.press(point);
        mouse.move(point + QPoint(9, 0));
        QTest::keyClick(m_viewport.get(), Qt::Key_Escape);
        QVERIFY(!m_tool->dragging);
        mouse.move(point + QPoint(15, 0));
        mouse.release(point + QPoint(15, 0));
        QTest::keyClick(m_viewport.get(), Qt::Key_Escape);
        QCOMPARE(m_tool->calls, QStringList({"press 1 0", "move", "cancel", "move", "release"}));
    }

    void aLostReleaseFinishesTheDrag_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("a move without buttons") << "move" << QStringList({"finish", "over"});
        QTest::newRow("another press") << "press" << QStringList({"finish", "press 1 0"});
        QTest::newRow("hidden") << "hide" << QStringList({"finish"});
    }

    void aLostReleaseFinishesTheDrag()
    {
        QFETCH(QString, what);
        QFETCH(QStringList, calls);
        ViewportMouse mouse(*m_viewport);
        const QPoint point = at(RyVec3(20, 20, 0));
        mouse.press(point);
        mouse.move(point + QPoint(9, 0));
        QVERIFY(m_tool->dragging && m_viewport->isToolDragging());
        m_tool->calls.clear();
        mouse.loseButtons();
        if (what == QLatin1String("move"))
            mouse.move(point + QPoint(30, 20));
        else if (what == QLatin1String("press"))
            mouse.press(point);
        else
            m_viewport->hide();
        QCOMPARE(m_tool->calls.mid(0, calls.size()), calls);
        QCOMPARE(m_tool->calls.count(QStringLiteral("finish")), 1);
        QVERIFY(!m_tool->calls.contains(QStringLiteral("release")));
        QCOMPARE(m_viewport->isToolDragging(), what == QLatin1String("press"));
    }

    void cameraDragsDoNotReachTheToolAndAreNoEdit()
    {
        ViewportMouse mouse(*m_viewport);
        mouse.move(QPoint(300, 200));
        m_tool->calls.clear();
        const RyVec3 target = m_viewport->cameraController().target();
        const RyVec3 eye = m_viewport->getCamera()->getWSPos();
        mouse.press(QPoint(300, 200), Qt::MiddleButton);
        mouse.move(QPoint(340, 190));
        mouse.release(QPoint(340, 190), Qt::MiddleButton);
        QVERIFY((m_viewport->cameraController().target() - target).length() < 1e-2f);
        QVERIFY((m_viewport->getCamera()->getWSPos() - eye).length() > 1.0f);
        // Drawn to the right, the scene turns to the right: the eye goes left.
        QVERIFY(m_viewport->getCamera()->getWSPos().x < eye.x);
        mouse.press(QPoint(300, 200), Qt::LeftButton, Qt::AltModifier);
        mouse.move(QPoint(310, 200), Qt::AltModifier);
        mouse.release(QPoint(310, 200), Qt::LeftButton, Qt::AltModifier);
        QVERIFY(m_tool->calls.isEmpty());
        QVERIFY(ryUndoStack()->isClean());
        QCOMPARE(ryUndoStack()->count(), 0);
        // Nor inside a hold: the step holds nothing of it.
        RyUndoStackHold hold;
        mouse.wheel(QPoint(300, 200), 120);
        hold.accept(QStringLiteral("nothing"));
        QCOMPARE(ryUndoStack()->entryCount(0), 0);
    }

    void panningFollowsTheMouse()
    {
        ViewportMouse mouse(*m_viewport);
        const RyVec3 target = m_viewport->cameraController().target();
        QPointF before, after;
        m_viewport->project(target, before);
        mouse.press(QPoint(300, 200), Qt::MiddleButton, Qt::ShiftModifier);
        mouse.move(QPoint(350, 230), Qt::ShiftModifier);
        mouse.release(QPoint(350, 230), Qt::MiddleButton, Qt::ShiftModifier);
        m_viewport->project(target, after);
        QVERIFY(std::abs(after.x() - before.x() - 50) < 0.5);
        QVERIFY(std::abs(after.y() - before.y() - 30) < 0.5);
    }

    void theWheelKeepsWhatIsUnderTheCursor_data()
    {
        QTest::addColumn<bool>("orthographic");
        QTest::newRow("perspective") << false;
        QTest::newRow("orthographic") << true;
    }
    void theWheelKeepsWhatIsUnderTheCursor()
    {
        QFETCH(bool, orthographic);
        m_viewport->cameraController().setOrthographic(orthographic);
        ViewportMouse mouse(*m_viewport);
        const RyVec3 target = m_viewport->cameraController().target();
        const RyVec3 place(25, 35, target.z);
        const float size = m_viewport->matrices().pixelSize(place);
        QPointF before, after;
        m_viewport->project(place, before);
        mouse.wheel(before.toPoint(), 240);
        m_viewport->project(place, after);
        QVERIFY(std::abs(after.x() - before.x()) < 1.0);
        QVERIFY(std::abs(after.y() - before.y()) < 1.0);
        QVERIFY(m_viewport->matrices().pixelSize(place) < 0.9f * size);
    }

    void keysFrameAndTurn()
    {
        m_viewport->setFocus();
        m_scene->setSelection({m_figure.upper});
        QTest::keyClick(m_viewport.get(), Qt::Key_F);
        QVERIFY((m_viewport->cameraController().target() - RyVec3(0, 30, 0)).length() < 0.5f);
        QTest::keyClick(m_viewport.get(), Qt::Key_A);
        QVERIFY((m_viewport->cameraController().target() - RyVec3(0, 20, 0)).length() < 0.5f);
        QPointF top, bottom;
        m_viewport->project(RyVec3(0, 40, 5), top);
        m_viewport->project(RyVec3(0, 0, 5), bottom);
        QVERIFY(top.y() > 0 && bottom.y() < 480 && bottom.y() - top.y() > 400);
        QTest::keyClick(m_viewport.get(), Qt::Key_3, Qt::KeypadModifier);
        QVERIFY((m_viewport->getCamera()->viewDirection() - RyVec3(-1, 0, 0)).length() < 1e-3f);
        QTest::keyClick(m_viewport.get(), Qt::Key_7, Qt::KeypadModifier);
        QVERIFY((m_viewport->getCamera()->viewDirection() - RyVec3(0, -1, 0)).length() < 1e-3f);
        QTest::keyClick(m_viewport.get(), Qt::Key_1, Qt::KeypadModifier);
        QVERIFY((m_viewport->getCamera()->viewDirection() - RyVec3(0, 0, -1)).length() < 1e-3f);
        const float size = m_viewport->matrices().pixelSize(RyVec3(0, 20, 0));
        QTest::keyClick(m_viewport.get(), Qt::Key_5, Qt::KeypadModifier);
        QVERIFY(m_viewport->getCamera()->isOrthographic());
        QVERIFY(std::abs(m_viewport->matrices().pixelSize(RyVec3(0, 20, 0)) / size - 1.0f) < 1e-3f);
    }

    void arrowKeysWalkTheTree()
    {
        auto *sibling = new RyBone;
        sibling->setName(QStringLiteral("sibling"));
        m_figure.lower->addNodeChild(sibling);
        m_scene->addNode(sibling);
        m_scene->setSelection({m_figure.upper});
        QTest::keyClick(m_viewport.get(), Qt::Key_Right);
        QCOMPARE(m_scene->getPrimarySelection(), sibling);
        QTest::keyClick(m_viewport.get(), Qt::Key_Left);
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.upper);
        QTest::keyClick(m_viewport.get(), Qt::Key_Up);
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.lower);
        QTest::keyClick(m_viewport.get(), Qt::Key_Down);
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.upper);
        QTest::keyClick(m_viewport.get(), Qt::Key_Down);
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.upper);
    }

    void clickSelectsTheBoneOfThePart()
    {
        ViewportMouse mouse(*m_viewport);
        const QPoint low = at(RyVec3(0, 6, 5));
        const QPoint high = at(RyVec3(0, 33, 5));
        mouse.press(low);
        mouse.release(low);
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.lower);
        mouse.press(high, Qt::LeftButton, Qt::ControlModifier);
        mouse.release(high, Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(m_scene->getNumSelectedNodes(), 2);
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.upper);
        mouse.press(high);
        mouse.release(high);
        QCOMPARE(m_scene->getNumSelectedNodes(), 1);
        // Beside the figure nothing changes.
        mouse.press(QPoint(5, 5));
        mouse.release(QPoint(5, 5));
        QCOMPARE(m_scene->getPrimarySelection(), m_figure.upper);
    }

    void aPairedGroupComesBeforeTheWeights()
    {
        RyFacetMesh *mesh = meshOf(m_figure.figure);
        mesh->createFaceGroup(QStringLiteral("all"));
        mesh->setGroupsOfFacets(std::vector<int>(size_t(mesh->getNumFacets()), 0));
        m_figure.figure->setSelectionMap(new RySelectionMap);
        m_figure.figure->getSelectionMap()->addPair(QStringLiteral("all"), m_figure.upper, true);
        m_figure.upper->getXRotControl()->setValue(1);
        QCOMPARE(m_viewport->pickNode(at(RyVec3(0, 6, 5))), m_figure.upper);
    }

    void pickingFollowsPoseAndPromotion()
    {
        QCOMPARE(m_viewport->pickNode(at(RyVec3(0, 33, 5))), m_figure.upper);
        m_figure.figure->getXTransControl()->setValue(25);
        QCOMPARE(m_viewport->pickNode(at(RyVec3(0, 33, 5))), nullptr);
        QCOMPARE(m_viewport->pickNode(at(RyVec3(25, 33, 5))), m_figure.upper);
        m_figure.upper->setPromoteSelection(true);
        QCOMPARE(m_viewport->pickNode(at(RyVec3(25, 33, 5))), m_figure.lower);
        m_figure.figure->setHidden(true);
        QCOMPARE(m_viewport->pickNode(at(RyVec3(25, 33, 5))), nullptr);
    }

    void hoverHighlightsThePart()
    {
        ViewportMouse mouse(*m_viewport);
        mouse.move(at(RyVec3(0, 33, 5)));
        QCOMPARE(m_tool->getHighlightNode(), m_figure.upper);
        const int scenes = m_viewport->counts().scenePaints;
        settle();
        QCOMPARE(m_viewport->counts().scenePaints, scenes);
        mouse.move(at(RyVec3(20, 20, 0)));
        QCOMPARE(m_tool->getHighlightNode(), nullptr);
    }

private:
    static RyFacetMesh *meshOf(RyNode *node)
    {
        return static_cast<RyFacetShape *>(node->getObject()->getCurrentShape())->getFacetMesh();
    }
    void settle()
    {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
            QTest::qWait(5);
        }
    }
    QPoint at(const RyVec3 &world) const
    {
        QPointF pixel;
        m_viewport->project(world, pixel);
        return QPoint(int(pixel.x()), int(pixel.y()));
    }

    ViewportTestFigure m_figure;
    SquareTool *m_tool = nullptr;
};

RY_TEST(Ry3DViewportTest)
#include "tst_Ry3DViewport.moc"
