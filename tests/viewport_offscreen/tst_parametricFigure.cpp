#include "parametric/ParamArm.h"

#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/viewport/ryFrameBox.h"
#include "support/RyNear.h"
#include "support/RyTest.h"
#include "viewport/ViewportStage.h"

/// A parametric figure is drawn, picked and framed as its pose has moved it.
class ParametricFigureTest : public QObject, private ViewportStage
{
    Q_OBJECT

    std::unique_ptr<ParamArm> m_arm;

    RySkeleton *figure() const { return m_arm->skeleton.get(); }
    RyVec3 inWorld(const RyVec3 &p) const { return figure()->worldMap().mapPoint(p); }
    /// Where a deformed vertex is in the world.
    RyVec3 vertex(int index) const { return inWorld(figure()->getObject()->getDeformedPositions()[size_t(index)]); }
    /// The middle of the quad that looks up, of those between two rings.
    RyVec3 topOf(int ring) const
    {
        return (vertex(4 * ring) + vertex(4 * ring + 3) + vertex(4 * ring + 4) + vertex(4 * ring + 7)) / 4;
    }
    QPoint at(const RyVec3 &p) const
    {
        QPointF pixel;
        m_viewport->project(p, pixel);
        return {int(pixel.x()), int(pixel.y())};
    }
    QImage picture() { return m_viewport->grabPicture(m_viewport->width(), m_viewport->height()); }
    static int difference(const QImage &a, const QImage &b)
    {
        int count = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x)
                count += std::abs(qGreen(a.pixel(x, y)) - qGreen(b.pixel(x, y))) > 8;
        }
        return count;
    }
    void lookFromAbove()
    {
        m_viewport->setStandardView(Ry3DViewport::StandardView::Top);
        m_viewport->frameNodes(false);
    }

private slots:
    void init()
    {
        m_arm = std::make_unique<ParamArm>(new RyLegacyFigure);
        figure()->clearPose();
        figure()->getXTransControl()->setValue(7);
        figure()->getScaleControl()->setValue(1.3f);
        for (RyBone *bone : figure()->getAllBones()) {
            bone->clearPose();
            bone->setOrientation(RyQuat(), true);
        }
        open();
        m_scene->addNode(figure());
        m_viewport->resize(400, 300);
    }
    void cleanup()
    {
        close();
        m_arm.reset();
    }

    void poseIsDrawn()
    {
        lookFromAbove();
        const QImage rest = picture();
        QCOMPARE(difference(rest, picture()), 0);
        m_arm->elbow->getYRotControl()->setValue(60);
        const QImage bent = picture();
        QVERIFY(difference(rest, bent) > 1000);
        m_arm->elbow->getYRotControl()->setValue(0);
        QCOMPARE(difference(rest, picture()), 0);
    }

    void valuesOfParametersAreDrawn()
    {
        m_arm->elbow->getYRotControl()->setValue(60);
        lookFromAbove();
        const QImage before = picture();
        {
            RyUndoStackHold hold;
            RyLegacyBendParam *bend = m_arm->bendOf(m_arm->elbow, "jointy");
            bend->setAnglePushing(0, 3.1f, true);
            bend->setAnglePushing(3, -3.1f, true);
            hold.accept("Angles");
        }
        QVERIFY(difference(before, picture()) > 20);
        ryUndoStack()->undo();
        QCOMPARE(difference(before, picture()), 0);
    }

    void raysHitTheMovedSurface()
    {
        lookFromAbove();
        const RyVec3 restTip = topOf(8);
        QVERIFY(m_viewport->pickNode(at(restTip)));
        m_arm->elbow->getYRotControl()->setValue(60);
        const RyVec3 tip = topOf(8);
        QVERIFY((tip - restTip).length() > 20);
        QVERIFY(m_viewport->pickNode(at(tip)));
        QVERIFY(!m_viewport->pickNode(at(restTip)));
    }

    void facetsStandForTheBoneThatMovesThem()
    {
        lookFromAbove();
        // Without face groups.
        QCOMPARE(m_viewport->pickNode(at(topOf(1))), static_cast<RyNode *>(m_arm->arm));
        QCOMPARE(m_viewport->pickNode(at(topOf(4))), static_cast<RyNode *>(m_arm->elbow));
        QCOMPARE(m_viewport->pickNode(at(topOf(7))), static_cast<RyNode *>(m_arm->hand));
        // Other parameters: nothing follows the hand any more.
        RyLegacyBendParam *bend = m_arm->bendOf(m_arm->elbow, "hand_jointy");
        for (RyLegacyJointParam *param :
             {static_cast<RyLegacyJointParam *>(bend), m_arm->jointOf(m_arm->elbow)->findParam("hand_jointz")})
            qobject_cast<RyLegacyBendParam *>(param)->setApplyAngles(false);
        for (const char *name : {"hand_jointy", "hand_jointz", "hand_twistx"})
            m_arm->jointOf(m_arm->arm)->addJointParam(m_arm->jointOf(m_arm->elbow)->findParam(QString(name))->copy());
        for (const char *name : {"hand_jointy", "hand_jointz", "hand_twistx", "hand_smoox"})
            m_arm->jointOf(m_arm->elbow)->removeJointParam(m_arm->jointOf(m_arm->elbow)->findParam(QString(name)));
        QCOMPARE(m_viewport->pickNode(at(topOf(7))), static_cast<RyNode *>(m_arm->elbow));
        // Face groups come first.
        auto *mesh = static_cast<RyFacetShape *>(figure()->getObject()->getCurrentShape())->getFacetMesh();
        mesh->createFaceGroup("shoulder");
        std::vector<int> groups(size_t(mesh->getNumFacets()), -1);
        for (size_t facet = 28; facet < 32; ++facet)
            groups[facet] = 0;
        mesh->setGroupsOfFacets(groups);
        figure()->getSelectionMap()->addPair("shoulder", m_arm->arm, true);
        QCOMPARE(m_viewport->pickNode(at(topOf(7))), static_cast<RyNode *>(m_arm->arm));
    }

    void frameHoldsThePose()
    {
        const RyBox3 rest = ryFrameBox(*m_scene, false);
        m_arm->elbow->getYRotControl()->setValue(60);
        const RyBox3 posed = ryFrameBox(*m_scene, false);
        QVERIFY(posed.getMax().x < rest.getMax().x - 20);
        RyBox3 wanted;
        for (int i = 0; i < 40; ++i)
            wanted.include(vertex(i));
        QVERIFY(posed.getMin().z <= wanted.getMin().z + 1e-3f && posed.getMax().z >= wanted.getMax().z - 1e-3f);
    }
};

RY_TEST(ParametricFigureTest)
#include "tst_parametricFigure.moc"
