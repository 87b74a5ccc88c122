#include "support/RyTest.h"

#include "RyParamStage.h"

/// The tool says when what it draws needs depth, and draws nothing by depth otherwise.
class JointToolDepthTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(RyDrawingStage::hasGL(), "pictures need OpenGL"); }

    void bonesAndHandlesNeedNone()
    {
        RyDrawingStage stage;
        QVERIFY(!stage.tool->needsDepth());
        stage.pose();
        stage.tool->setGhostBones(true);
        stage.select(stage.lShin);
        QVERIFY(!stage.tool->needsDepth());
        QCOMPARE(drawnByDepth(stage), 0);
    }

    void patchesOfAHighlightNeedIt()
    {
        RyDrawingStage stage;
        stage.select(stage.lShin);
        stage.tool->setHighlightNode(stage.prop);
        QVERIFY(stage.tool->needsDepth());
        stage.tool->setHighlightNode(nullptr);
        QVERIFY(!stage.tool->needsDepth());
    }

    void spheresOfAParameterNeedIt()
    {
        RyParamStage stage;
        stage.takeBend();
        QVERIFY(stage.tool->needsDepth());
        QVERIFY(drawnByDepth(stage) > 0);
        stage.tool->setParam(nullptr);
        QVERIFY(!stage.tool->needsDepth());
        QCOMPARE(drawnByDepth(stage), 0);
    }

private:
    static int drawnByDepth(RyDrawingStage &stage)
    {
        glEnable(GL_DEPTH_TEST);
        const auto recording = stage.draw();
        glDisable(GL_DEPTH_TEST);
        int count = 0;
        for (const auto &primitive : recording->primitives)
            count += primitive.depthTest && !primitive.vertices.empty();
        return recording->primitives.empty() ? -1 : count;
    }
};

RY_TEST(JointToolDepthTest)
#include "tst_toolDepth.moc"
