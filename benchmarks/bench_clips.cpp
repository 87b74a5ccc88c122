// Saving a character whose clips have to be re-expressed since its rest was edited, against opening it: what the save
// takes longer than one after an edit that touches no clip. A figure made here, and a character with 76 clips where it
// is (RY_MODELS). What the clips do to the figure is compared first. --short: that comparison alone.

#include "RyClipCheck.h"
#include "RyClipFile.h"
#include "RyRoundRobin.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace {

constexpr double Wanted = 1.0;

bool isShort = false;

using Bones = std::vector<RyBone *>;

struct Edit
{
    const char *name;
    void (*apply)(const Bones &bones, float height);
    bool touchesClips;
};

void label(const Bones &bones, float)
{
    bones[bones.size() / 2]->setLabel(QStringLiteral("Other"));
}

/// Each elsewhere, as far as `size` in each direction.
RyVec3 offset(size_t i, float size)
{
    const float angle = 2.4f * float(i + 1);
    return RyVec3(std::cos(angle), std::sin(2.0f * angle), std::sin(angle)) * size;
}

void move(const Bones &bones, float height)
{
    for (size_t i = 0; i < bones.size(); ++i)
        bones[i]->adjustOrigin(bones[i]->getOrigin() + offset(i, 0.05f * height));
}

void turn(const Bones &bones, float)
{
    for (size_t i = 0; i < bones.size(); ++i)
        bones[i]->adjustOrientation(RyQuat(offset(i, 1.0f), 0.5f + 0.1f * float(i)) * bones[i]->getOrientation());
}

/// One in the middle of a limb: with a bone above it and below it.
void remove(const Bones &bones, float)
{
    const auto limb = std::find_if(bones.begin() + long(bones.size()) / 2, bones.end(), [](const RyBone *bone) {
        return qobject_cast<const RyBone *>(bone->getNodeParent()) && bone->getNumNodeChildren() > 0;
    });
    deleteBone(limb == bones.end() ? bones.back() : *limb);
}

constexpr Edit Edits[] = {{"save after a label", label, false},
                          {"save after all joints moved", move, true},
                          {"save after all joints turned", turn, true},
                          {"save after a bone of a limb was deleted", remove, true}};

bool openFile(const QString &path)
{
    QString error;
    const bool opened = RySceneFile::open(ryScene(), path, &error);
    if (!opened)
        std::printf("%s\n", qPrintable(error));
    return opened;
}

bool saveFile(const QString &path)
{
    QString error;
    const bool saved = RySceneFile::save(ryScene(), path, &error);
    if (!saved)
        std::printf("%s\n", qPrintable(error));
    return saved;
}

void forget()
{
    ryScene()->clear();
    ryUndoStack()->clearAll();
}

bool openEdited(const QString &path, const Edit &edit)
{
    forget();
    if (!openFile(path) || ryScene()->getSkeletons().empty())
        return false;
    const Bones bones = ryScene()->getSkeletons().front()->getAllBones();
    float low = 0.0f, high = 0.0f;
    for (const RyBone *bone : bones) {
        low = std::min(low, bone->getOrigin().y);
        high = std::max(high, bone->getOrigin().y);
    }
    edit.apply(bones, high - low);
    return true;
}

/// What is skinned stays where it was at all times, and channels changed where they had to.
bool isRight(const QString &path, const QString &out, const Edit &edit)
{
    if (!openEdited(path, edit) || !saveFile(out))
        return false;
    const auto before = RyGltfDocument::read(path, nullptr), after = RyGltfDocument::read(out, nullptr);
    if (!before || !after)
        return false;
    const RyClipCheck check(*before, *after);
    const int differences = check.differences();
    const double worst = check.worst();
    std::printf("  %-44s %6d channels differ, joints are off by up to %.1e\n", edit.name, differences, worst);
    return worst < 1e-5 && (differences > 0) == edit.touchesClips;
}

bool measure(const char *what, const QString &path, const QString &out)
{
    std::printf("%s\n", what);
    for (const Edit &edit : Edits) {
        if (!isRight(path, out, edit)) {
            std::printf("  WRONG RESULT\n");
            return false;
        }
    }
    if (isShort)
        return true;

    bool good = true;
    RyRoundRobin ways;
    const size_t opening = ways.add("open", [&] { good &= openFile(path); });
    ways.before(forget);
    std::vector<size_t> saves;
    for (const Edit &edit : Edits) {
        saves.push_back(ways.add(edit.name, [&] { good &= saveFile(out); }));
        ways.before([&] { good &= openEdited(path, edit); });
    }
    ways.run(15);
    ways.print();
    for (size_t i = 1; i < saves.size(); ++i) {
        const double wall = (ways.median(saves[i]) - ways.median(saves[0])) / ways.median(opening);
        const double cpu = (ways.cpuMedian(saves[i]) - ways.cpuMedian(saves[0])) / ways.cpuMedian(opening);
        std::printf("  => %-40s %.3f, of the processor's time %.3f (at most %.1f%s)\n", Edits[i].name, wall, cpu,
                    Wanted, wall <= Wanted && cpu <= Wanted ? "" : ", MISSED");
    }
    return good;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    isShort = application.arguments().value(1) == QLatin1String("--short");
    const QTemporaryDir folder;
    const QString made = folder.filePath(QStringLiteral("made.glb"));
    const QString out = folder.filePath(QStringLiteral("out.glb"));
    constexpr int Joints = 41, Clips = 40;
    bool good = RyClipFile::write(made, Joints, isShort ? Clips / 10 : Clips) && measure("figure made here", made, out);
    const QString knight = qEnvironmentVariable("RY_MODELS") + QStringLiteral("/kaykit_knight.glb");
    if (QFile::exists(knight))
        good &= measure("kaykit_knight", knight, out);
    ryDestroyScene();
    return good ? 0 : 1;
}
