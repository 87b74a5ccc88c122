// Mirroring one side of a figure of many bones onto the other, and what writing values costs while symmetric
// editing carries it over: both sides and telling of either.
#include "RyGrowth.h"

#include "pluginsource/RyJointTools/operations/mirrorBones.h"
#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace {

constexpr int Bones = 500;
constexpr int Moves = 100000;            // beside which switching costs nothing
constexpr double MostForBothSides = 4.0; // of bare writes, a small part of what a drag with the mouse costs

/// Chains of ten bones on either side, which have little in common.
RyFigure *makeSides(int bones)
{
    ryScene()->clear();
    ryUndoStack()->clearAll();
    auto *figure = new RyFigure;
    for (const char *side : {"_L", "_R"}) {
        RyNode *parent = figure;
        for (int i = 0; i < bones / 2; ++i) {
            auto *bone = new RyBone;
            bone->setName(QStringLiteral("bone%1%2").arg(i).arg(QLatin1String(side)));
            const float x = side[1] == 'L' ? 5.0f + float(i / 10) : -6.0f - float(i / 10);
            bone->setOrigin({x, 9.0f * float(i % 10), 0.1f * x}, true);
            bone->setEndPoint({x, 9.0f * float(i % 10) + 8.0f, 1.0f}, true);
            bone->setOrientation(RyQuat({1, x, 2}, 0.1f * x), true);
            (i % 10 == 0 ? figure : parent)->addNodeChild(bone);
            parent = bone;
        }
    }
    ryScene()->addNode(figure);
    return figure;
}

double mirrorAll(int bones)
{
    RyFigure *figure = makeSides(bones);
    MirrorOptions options;
    options.nodes = MirrorOptions::RootRecursive;
    options.direction = MirrorOptions::LeftToRight;
    QElapsedTimer timer;
    timer.start();
    RyUndoStackHold hold;
    const MirrorReport report = mirrorBones(figure, options, [](RyNode *source, RyNode *target, int axis) {
        mirrorNode(source, target, axis);
        return true;
    });
    hold.accept(QStringLiteral("Mirror Joints"));
    const double milliseconds = double(timer.nsecsElapsed()) / 1e6;
    return int(report.copied.size()) == bones / 2 ? milliseconds : -1.0;
}

/// The values of a drag, in one step.
void writeDrag(RyNode *bone)
{
    RyUndoStackHold hold;
    bone->beginEdit();
    for (int i = 0; i < Moves; ++i)
        bone->adjustOrigin({20.0f + 0.001f * float(i), 0.002f * float(i), 3.0f + 0.003f * float(i)});
    bone->finishEdit();
    hold.accept(QStringLiteral("Drag"));
}

bool followsCheaply()
{
    RyFigure *figure = makeSides(Bones);
    RyNode *bone = figure->findBone(QStringLiteral("bone40_L"));
    const RyNode *opposite = figure->findBone(QStringLiteral("bone40_R"));
    RySymmetricEditing &editing = RySymmetricEditing::of(*ryScene());
    const double ratio = RyBenchmark::compare(
        "writes to both sides", 15,
        [&] {
            editing.setOn(true);
            writeDrag(bone);
        },
        "writes to one side",
        [&] {
            editing.setOn(false);
            writeDrag(bone);
        });
    const bool right = opposite->getOrigin()[0] == -bone->getOrigin()[0];
    return right && ratio <= MostForBothSides;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    RyGrowth growth(argc, argv);
    growth.measure("mirror left to right", Bones, mirrorAll);
    const bool isCheap = growth.isShort() || followsCheaply();
    ryDestroyScene();
    return isCheap ? growth.exitCode() : 1;
}
