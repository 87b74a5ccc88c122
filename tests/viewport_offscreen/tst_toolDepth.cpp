#include "rycore/viewport/RyGL.h"

#include "support/RyTest.h"
#include "viewport/ViewportStage.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyNode.h"
#include "rycore/viewport/RySelectTool.h"
#include "rycore/viewport/RyViewTool.h"

namespace {

/// Draws a red sheet and then a green one behind it.
class SheetTool : public RyViewTool
{
public:
    SheetTool() : RyViewTool(QStringLiteral("Sheets")) {}
    void draw(Ry3DViewport *, const RyDrawStyle &) override
    {
        glColor4f(1, 0, 0, 1);
        drawSheet(place);
        glColor4f(0, 1, 0, 1);
        drawSheet(place - 10.0f);
    }
    bool needsDepth() const override { return hasDepth; }

    float place = 10.0f;
    bool hasDepth = true;

private:
    static void drawSheet(float z)
    {
        glBegin(GL_QUADS);
        glVertex3f(-20, -20, z);
        glVertex3f(20, -20, z);
        glVertex3f(20, 20, z);
        glVertex3f(-20, 20, z);
        glEnd();
    }
};

} // namespace

/// What hides what in the drawing of a tool.
class ToolDepthTest : public QObject, private ViewportStage
{
    Q_OBJECT
private slots:
    void init()
    {
        open();
        m_viewport->resize(200, 150);
        m_viewport->getCamera()->lookAt({0, 0, 120}, {0, 0, 0});
        m_tool = new SheetTool;
        m_manager->addTool(m_tool);
        m_manager->setActiveTool(m_tool);
    }
    void cleanup() { close(); }

    void aToolFindsItsDepthCleared()
    {
        // Each frame lies farther away than the one before, whose depth would hide it.
        for (float place : {40.0f, 10.0f, -20.0f}) {
            m_tool->place = place;
            QCOMPARE(middle(), QColor(Qt::red));
        }
    }

    void withoutDepthTheOrderDecides()
    {
        m_tool->place = 40.0f;
        QCOMPARE(middle(), QColor(Qt::red));
        m_tool->hasDepth = false;
        for (float place : {-20.0f, 10.0f}) {
            m_tool->place = place;
            QCOMPARE(middle(), QColor(Qt::green));
        }
        m_tool->hasDepth = true;
        QCOMPARE(middle(), QColor(Qt::red));
    }

    void onlyPatchesOfAHighlightNeedDepth()
    {
        QVERIFY(RyViewTool(QStringLiteral("any")).needsDepth());
        auto *node = new RyNode;
        m_scene->addNode(node);
        RySelectTool tool;
        QVERIFY(!tool.needsDepth());
        tool.setHighlightNode(node);
        QVERIFY(tool.needsDepth());
        tool.setHighlightNode(nullptr);
        QVERIFY(!tool.needsDepth());
    }

private:
    QColor middle() const { return m_viewport->grabPicture(200, 150).pixelColor(100, 75); }

    SheetTool *m_tool = nullptr;
};

RY_TEST(ToolDepthTest)
#include "tst_toolDepth.moc"
