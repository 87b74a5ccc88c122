// A frame of a clip that moves all bones of a figure beside a frame after all of them were posed anew: the same is
// deformed, uploaded and drawn. A character of RY_MODELS where it is, otherwise a figure made here, with a clip made
// here. That both deform and upload once is checked first. --short: a small figure and few turns.
#include "rycore/viewport/RyGL.h"

#include "RyOffscreenProgram.h"
#include "RyRoundRobin.h"
#include "RyTubeFigure.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/viewport/RyCameraController.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RyViewPainter.h"

#include <nlohmann/json.hpp>

#include <QFile>
#include <QTemporaryDir>

namespace {

constexpr int width = 1280;
constexpr int height = 900;
constexpr double Wanted = 1.3;
constexpr float Seconds = 2.0f;

using Json = nlohmann::ordered_json;

/// Adds a clip that turns all joints of the first skin, with a key in each sixth of a second.
bool addClip(const QString &from, const QString &to)
{
    const std::unique_ptr<RyGltfDocument> document = RyGltfDocument::read(from, nullptr, nullptr);
    if (!document || document->model().skins.empty())
        return false;
    std::vector<float> times;
    for (int key = 0; key <= 12; ++key)
        times.push_back(Seconds * float(key) / 12.0f);
    const int input = document->addFloatAccessor(times, 1, 0, true);
    Json clip{{"name", "all"}, {"channels", Json::array()}, {"samplers", Json::array()}};
    const std::vector<int> joints = document->model().skins.front().joints;
    for (size_t joint = 0; joint < joints.size(); ++joint) {
        const RyGltfTransform &own = document->model().nodes[size_t(joints[joint])].transform;
        const RyQuat rest(float(own.rotation[0]), float(own.rotation[1]), float(own.rotation[2]),
                          float(own.rotation[3]));
        std::vector<float> turns;
        for (size_t key = 0; key < times.size(); ++key) {
            const float half = 0.05f * std::sin(0.9f * float(key) + 1.3f * float(joint));
            const RyQuat turn = RyQuat(0.6f * std::sin(half), 0.0f, 0.8f * std::sin(half), std::cos(half)) * rest;
            turns.insert(turns.end(), {turn.x, turn.y, turn.z, turn.w});
        }
        clip["channels"].push_back(
            Json{{"sampler", joint}, {"target", Json{{"node", joints[joint]}, {"path", "rotation"}}}});
        clip["samplers"].push_back(Json{{"input", input}, {"output", document->addFloatAccessor(turns, 4, 0)}});
    }
    document->json()["animations"] = Json::array({clip});
    return document->refresh(nullptr) && document->write(to, nullptr);
}

class Stage
{
public:
    explicit Stage(const QString &path) : m_target(width, height, 0)
    {
        if (!RySceneFile::open(&m_scene, path, nullptr) || m_scene.getClips().empty())
            return;
        for (RySkeleton *figure : m_scene.getSkeletons())
            figure->getAllBones(m_bones);
        m_figure = m_scene.getSkeletons().front();
        m_clip = m_scene.getClips().front();
        m_camera = new RyCamera;
        RyCameraController controller(m_camera);
        controller.frame(m_figure->getBoundingBox(), QSizeF(width, height));
        m_isReady = true;
    }
    bool isReady() const { return m_isReady; }
    int vertices() const { return int(m_figure->getObject()->getDeformedPositions().size()); }
    size_t bones() const { return m_bones.size(); }

    void stopClip() { player().stop(); }
    /// Each bone turned anew, by its controls.
    void pose()
    {
        m_angle = m_angle > 6.0f ? 1.0f : m_angle + 0.7f;
        for (size_t i = 0; i < m_bones.size(); ++i)
            m_bones[i]->getXRotControl()->setValue(m_angle * std::sin(float(i)));
    }
    void showClip()
    {
        if (!player().isShowing())
            player().show(m_clip, 0.0);
    }
    void nextFrame()
    {
        m_time = m_time > 1.8 ? 0.05 : m_time + 0.13;
        player().setTime(m_time);
    }
    void paint()
    {
        m_target.bind();
        m_painter.scene().setScene(&m_scene, ++m_revision);
        RySceneView view{RyViewMatrices(*m_camera, width, height), {}, width, height};
        m_painter.paint(view, 1, RyViewPainter::Depth::Cleared, [] {});
        glFinish();
    }
    int uploads() { return m_painter.scene().uploads(); }
    qint64 touched() const { return RySkinBinding::findSkinFromNode(m_bones.front())->deformer().totalTouched(); }

private:
    RyClipPlayer &player() { return *m_scene.getClipPlayer(); }

    RyScene m_scene;
    RyFramebuffer m_target;
    RyViewPainter m_painter;
    RyRef<RyCamera> m_camera;
    RySkeleton *m_figure = nullptr;
    std::vector<RyBone *> m_bones;
    std::shared_ptr<const RyClip> m_clip;
    quint64 m_revision = 1;
    float m_angle = 0.0f;
    double m_time = 0.0;
    bool m_isReady = false;
};

/// Whether a frame deforms and uploads once.
bool isOnce(Stage &stage, const char *name, const std::function<void()> &change)
{
    const int uploads = stage.uploads();
    const qint64 touched = stage.touched();
    change();
    stage.paint();
    std::printf("%s: %d upload, %lld vertices deformed\n", name, stage.uploads() - uploads,
                static_cast<long long>(stage.touched() - touched));
    return stage.uploads() == uploads + 1 && stage.touched() > touched && stage.touched() - touched <= stage.vertices();
}

QString sourceFile(bool isShort, const QTemporaryDir &folder)
{
    const QString models = QString::fromLocal8Bit(qgetenv("RY_MODELS"));
    const QString character = models + QStringLiteral("/mh_large.glb");
    if (!isShort && QFile::exists(character))
        return character;
    RyScene scene;
    const RyTubeFigure tube(&scene, isShort ? 5000 : 214000, 53);
    const QString path = folder.filePath(QStringLiteral("tube.glb"));
    return RySceneFile::save(&scene, path, nullptr) ? path : QString();
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    if (!program.canDraw())
        return 0;
    const bool isShort = program.isShort;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("clip.glb"));
    if (!addClip(sourceFile(isShort, folder), path)) {
        std::puts("no file with a clip could be made");
        return 1;
    }
    Stage stage(path);
    if (!stage.isReady()) {
        std::puts("the file with the clip cannot be opened");
        return 1;
    }
    std::printf("%d vertices, %zu bones\n", stage.vertices(), stage.bones());
    stage.paint();
    bool isGood = isOnce(stage, "posed", [&] { stage.pose(); });
    stage.showClip();
    stage.paint();
    isGood = isOnce(stage, "clip", [&] { stage.nextFrame(); }) && isGood;

    RyRoundRobin frames;
    const size_t posed = frames.add("all bones posed anew", [&] {
        stage.pose();
        stage.paint();
    });
    frames.before([&] { stage.stopClip(); });
    const size_t clip = frames.add("a frame of a clip", [&] {
        stage.nextFrame();
        stage.paint();
    });
    frames.before([&] { stage.showClip(); });
    frames.run(isShort ? 2 : 25);
    frames.print();
    std::printf("  => a frame of a clip, of a posed one %31.3f  (at most %.2f%s)\n", frames.ratio(clip, posed), Wanted,
                isShort || frames.ratio(clip, posed) <= Wanted ? "" : ", MISSED");
    return isGood ? 0 : 1;
}
