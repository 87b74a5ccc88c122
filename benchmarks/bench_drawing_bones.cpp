// What a frame spends on 300 bones, beside code that draws them by the letter. The pictures of both are compared first.
//
// Argument: how often each way is timed (61), or --short for a few times.
#include "RyBoneCrowd.h"
#include "RyLiteralDrawing.h"
#include "RyOffscreenProgram.h"
#include "RyRoundRobin.h"

#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <cstdlib>

namespace {

constexpr int Width = 1280;
constexpr int Height = 900;
constexpr int Bones = 300;

class Stage
{
public:
    Stage() : m_target(Width, Height, 0)
    {
        m_figure = makeBoneCrowd(ryScene(), Bones);
        m_camera = new RyCamera;
        m_camera->lookAt({20, 30, 320}, {0, 0, 0});
    }
    const RyFigure &figure() const { return *m_figure; }

    /// The state in which a viewport lets its tool draw.
    void begin() const
    {
        m_target.bind();
        glViewport(0, 0, Width, Height);
        glClearColor(0.35f, 0.36f, 0.38f, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable(GL_LIGHTING);
        glLineWidth(1.5f);
        RyViewMatrices(*m_camera, Width, Height).load();
    }
    QImage picture(const std::function<void()> &draw) const
    {
        begin();
        draw();
        return m_target.toImage();
    }

private:
    RyFramebuffer m_target;
    RyFigure *m_figure;
    RyRef<RyCamera> m_camera;
};

/// Part of the pixels that differ by more than rounding of colours.
double difference(const QImage &a, const QImage &b)
{
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            const int most =
                std::max({std::abs(p.red() - q.red()), std::abs(p.green() - q.green()), std::abs(p.blue() - q.blue())});
            different += most > 2;
        }
    }
    return double(different) / (double(a.width()) * a.height());
}

void drawOurs(const RyBoneFrames &frames, bool withLinks)
{
    RyJointToolDisplay display;
    display.showBoneHierarchy = withLinks;
    const RyBoneIndex none;
    const RyDrawContext context{false, 0, display, nullptr, none, nullptr};
    RyBoneDrawing(context).draw(frames);
}

RyBoneFrames framesOf(const RyFigure &figure)
{
    RyBoneFrames frames;
    frames.addBranches(&figure);
    return frames;
}

/// The ratio to the literal code.
double measure(const Stage &stage, bool withLinks, int turns)
{
    const std::vector<RyLiteralDrawing::Bone> prepared = RyLiteralDrawing::prepareAll(stage.figure());
    const RyBoneFrames frames = framesOf(stage.figure());
    const RyLiteralDrawing literal(RyLiteralDrawing::Pass::Normal, withLinks);

    const QImage expected = stage.picture([&] { literal.draw(prepared); });
    const QImage drawn = stage.picture([&] { drawOurs(frames, withLinks); });
    const double differing = difference(expected, drawn);
    const double covered = difference(expected, stage.picture([] {}));
    std::printf("%d bones %s links: %.3f %% of the pixels show bones, %.4f %% differ\n", Bones,
                withLinks ? "with" : "without", 100 * covered, 100 * differing);
    // Links are drawn after all bones, by the letter each after its own bone.
    if (covered < 0.02 || differing > (withLinks ? 0.01 : 0.001) * covered) {
        expected.save(QStringLiteral("expected.png"));
        drawn.save(QStringLiteral("drawn.png"));
        std::printf("the pictures differ\n");
        std::exit(1);
    }

    RyRoundRobin ways;
    const auto frame = [&](const std::function<void()> &draw) {
        return [&stage, draw] {
            stage.begin();
            draw();
            glFinish();
        };
    };
    ways.add("literal code, frames prepared", frame([&] { literal.draw(prepared); }));
    ways.add("literal code, read from the scene (before)", frame([&] { literal.drawFromScene(stage.figure()); }));
    ways.add("ours", frame([&] { drawOurs(frames, withLinks); }));
    ways.add("ours, after a change of the scene", frame([&] { drawOurs(framesOf(stage.figure()), withLinks); }));
    ways.add("an empty picture", frame([] {}));
    ways.run(turns);
    ways.print();
    return ways.median(2) / ways.median(0);
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    if (!program.canDraw())
        return 0;
    const int turns = program.number(3, 61);
    std::printf("%s, %d x %d\n", reinterpret_cast<const char *>(glGetString(GL_RENDERER)), Width, Height);
    double ratio = 0.0;
    {
        const Stage stage;
        ratio = std::max(measure(stage, false, turns), measure(stage, true, turns));
    }
    ryDestroyScene();
    std::printf("ours / literal code: at most %.3f\n", ratio);
    return 0;
}
