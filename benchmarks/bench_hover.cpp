// What the id under the mouse costs after a change, for skeletons of several sizes, beside one picture of the whole
// view in the colour code that is drawn by the letter and of which one pixel is read. The ids are first compared with
// such a picture with one colour for each bone.
//
// Argument: how many places are timed (61), or --short for a few.
#include "RyBoneCrowd.h"
#include "RyLiteralDrawing.h"
#include "RyOffscreenProgram.h"
#include "RyRoundRobin.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/scene/RyBoneListOrder.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <QTemporaryDir>

#include <memory>

namespace {

constexpr int Width = 1280;
constexpr int Height = 900;

class Stage
{
public:
    explicit Stage(int bones)
    {
        ryScene()->clear();
        m_figure = makeBoneCrowd(ryScene(), bones);
        m_manager = std::make_unique<RyViewportMgr>(ryScene());
        m_viewport = std::make_unique<Ry3DViewport>(m_manager.get());
        m_viewport->resize(Width, Height);
        m_viewport->getCamera()->lookAt({20, 30, 320}, {0, 0, 0});
        m_tool = new RyJointEditorTool;
        m_manager->addTool(m_tool);
        m_manager->setActiveTool(m_tool);
        m_current = m_figure->getAllBones()[size_t(bones / 2)];
        ryScene()->setSelection({m_current});
        QCoreApplication::sendPostedEvents();
        m_full = std::make_unique<RyFramebuffer>(Width, Height, 0);
    }

    int pick(const QPoint &point) { return m_viewport->pickOnGizmo(point); }
    int passes() const { return m_viewport->counts().pickPasses; }
    /// A bone elsewhere: what is kept of the scene is out of date.
    void change()
    {
        RyFloatProperty *turn = m_current->getYRotControl();
        turn->setValue(turn->getValue() == 1.0f ? 2.0f : 1.0f);
    }

    QPoint handlePlace() const
    {
        QPointF pixel;
        m_viewport->project(m_current->getWSEndPoint(), pixel);
        return pixel.toPoint();
    }

    /// The whole view by the letter; `bones` null: read from the scene.
    void drawFull(RyLiteralDrawing::Pass pass, const std::vector<RyLiteralDrawing::Bone> *bones)
    {
        m_viewport->makeCurrent();
        m_full->bind();
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glViewport(0, 0, Width, Height);
        for (const GLenum capability : {GL_LIGHTING, GL_BLEND, GL_DITHER, GL_MULTISAMPLE})
            glDisable(capability);
        glEnable(GL_DEPTH_TEST);
        glLineWidth(12.0f);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        m_viewport->matrices().load();
        const RyLiteralDrawing drawing(pass, false);
        if (bones)
            drawing.draw(*bones);
        else
            drawing.drawFromScene(*m_figure);
        drawing.drawHandles(*m_current);
        glPopAttrib();
    }
    int readFull(const QPoint &point)
    {
        unsigned char pixel[4];
        glReadPixels(point.x(), Height - 1 - point.y(), 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        return pixel[0];
    }
    std::vector<int> fullNumbers()
    {
        const std::vector<RyLiteralDrawing::Bone> bones = prepared();
        drawFull(RyLiteralDrawing::Pass::Numbers, &bones);
        std::vector<unsigned char> pixels(size_t(4 * Width * Height));
        glReadPixels(0, 0, Width, Height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        std::vector<int> numbers(size_t(Width) * Height);
        for (int y = 0; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {
                const unsigned char *pixel = &pixels[size_t(4 * ((Height - 1 - y) * Width + x))];
                numbers[size_t(y * Width + x)] = pixel[0] | pixel[1] << 8 | pixel[2] << 16;
            }
        }
        return numbers;
    }
    std::vector<RyLiteralDrawing::Bone> prepared() const { return RyLiteralDrawing::prepareAll(*m_figure); }

private:
    RyFigure *m_figure;
    RyBone *m_current;
    std::unique_ptr<RyViewportMgr> m_manager;
    std::unique_ptr<Ry3DViewport> m_viewport;
    RyJointEditorTool *m_tool;
    std::unique_ptr<RyFramebuffer> m_full;
};

QPoint anyPlace(std::mt19937 &random)
{
    return {1 + int(random() % (Width - 2)), 1 + int(random() % (Height - 2))};
}

/// Whether ids of the tool's tiles are those of a picture with a colour for each bone, but for pixels at borders.
bool agrees(Stage &stage, std::mt19937 &random)
{
    const std::vector<int> numbers = stage.fullNumbers();
    int differing = 0;
    int hits = 0;
    QPoint middle;
    for (int i = 0; i < 2000; ++i) {
        if (i % 25 == 0)
            middle = anyPlace(random);
        const QPoint away(int(random() % 241u) - 120, int(random() % 241u) - 120);
        const QPoint point(std::clamp(middle.x() + away.x(), 1, Width - 2),
                           std::clamp(middle.y() + away.y(), 1, Height - 2));
        const int id = stage.pick(point);
        hits += id != 0;
        bool found = false;
        for (int y = point.y() - 1; y <= point.y() + 1; ++y) {
            for (int x = point.x() - 1; x <= point.x() + 1; ++x)
                found = found || numbers[size_t(y * Width + x)] == id;
        }
        differing += !found;
    }
    std::printf("  ids at 2000 places, %d of them on something: %d differ from the plain picture\n", hits, differing);
    return differing == 0 && hits > 20;
}

/// The ratio of a hover after a change to one full picture.
double measure(int bones, int places, bool &isGood)
{
    Stage stage(bones);
    std::mt19937 random(7);
    std::printf("%d bones\n", bones);
    isGood = agrees(stage, random) && isGood;

    const std::vector<RyLiteralDrawing::Bone> prepared = stage.prepared();
    QPoint place;
    int passes = 0;
    RyRoundRobin ways;
    ways.add("full picture, frames prepared, one pixel read", [&] {
        stage.drawFull(RyLiteralDrawing::Pass::Codes, &prepared);
        stage.readFull(place);
    });
    ways.before([&] { place = anyPlace(random); });
    ways.add("full picture, read from the scene", [&] {
        stage.drawFull(RyLiteralDrawing::Pass::Codes, nullptr);
        stage.readFull(place);
    });
    ways.add("ours, first after a change", [&] {
        const int before = stage.passes();
        stage.pick(place);
        passes += stage.passes() - before;
    });
    ways.before([&] { stage.change(); });
    ways.add("ours, at the handles, first after a change", [&] { stage.pick(stage.handlePlace()); });
    ways.before([&] { stage.change(); });
    ways.add("ours, nothing changed", [&] { stage.pick(stage.handlePlace()); });
    ways.run(places);
    ways.print();
    std::printf("  passes for one tile: %.2f on average\n", double(passes) / (places + 1));
    return ways.cpuMedian(2) / ways.cpuMedian(0);
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    const QTemporaryDir settings;
    RyAppSettings::setSettingsPath(settings.path());
    if (!program.canDraw())
        return 0;
    std::printf("%s, %d x %d\n", reinterpret_cast<const char *>(glGetString(GL_RENDERER)), Width, Height);
    const int places = program.number(3, 61);
    bool isGood = true;
    for (const int bones : {100, 200, 300, 1000, 2000})
        measure(bones, places, isGood);
    ryDestroyScene();
    return isGood ? 0 : 1;
}
