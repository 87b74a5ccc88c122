// How the time to save clips grows that have to be re-expressed since all joints moved or turned: many clips of a
// figure, and one clip of many joints.
#include "RyClipCheck.h"
#include "RyClipFile.h"
#include "RyGrowth.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <QCoreApplication>
#include <QTemporaryDir>

namespace {

constexpr int Channels = 16000;

bool isRight(const QString &path, const QString &out, int channels)
{
    const auto before = RyGltfDocument::read(path, nullptr), after = RyGltfDocument::read(out, nullptr);
    if (!before || !after)
        return false;
    const RyClipCheck check(*before, *after);
    return check.differences() >= channels / 2 && check.worst() < 1e-5;
}

double saveClips(const QString &path, int joints, int clips, bool turns)
{
    const QString out = path + QStringLiteral(".out.glb");
    ryScene()->clear();
    if (!RyClipFile::write(path, joints, clips) || !RySceneFile::open(ryScene(), path, nullptr))
        return -1.0;
    for (RyBone *bone : ryScene()->getSkeletons().front()->getAllBones()) {
        if (turns)
            bone->adjustOrientation(RyQuat(RyVec3(0.3f, 1.0f, 0.2f), 0.7f) * bone->getOrientation());
        else
            bone->adjustOrigin(bone->getOrigin() + RyVec3(0.2f, 0.1f, -0.15f));
    }
    const double time = RyBenchmark::threadMilliseconds([&] { RySceneFile::save(ryScene(), out, nullptr); });
    return isRight(path, out, RyClipFile::channelCount(joints, clips)) ? time : -1.0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("clips.glb"));
    constexpr int Joints = 40;
    RyGrowth growth(argc, argv);
    for (const bool turns : {false, true}) {
        const char *names[2] = {turns ? "turned, channels of many clips" : "moved, channels of many clips",
                                turns ? "turned, channels of many joints" : "moved, channels of many joints"};
        growth.measure(names[0], Channels, [&](int size) { return saveClips(path, Joints, size / Joints, turns); });
        growth.measure(names[1], Channels, [&](int size) { return saveClips(path, size, 1, turns); });
    }
    ryDestroyScene();
    return growth.exitCode();
}
