// Baking the pose of a figure of 500,000 vertices and 100 bones, of one deformation of its vertices and one copy of its
// mesh. `--short`: the result alone.

#include "RyBenchmark.h"
#include "RyTubeFigure.h"

#include "pluginsource/RyJointTools/operations/bakePose.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyShapePoints.h"

#include <QCoreApplication>

#include <ctime>

namespace {

constexpr int Vertices = 500000;
constexpr int Bones = 100;
constexpr int Runs = 25;

void pose(const RyTubeFigure &tube, int run)
{
    for (RyBone *bone : tube.chain)
        bone->getXRotControl()->setValue(0.3f + 0.02f * float(run % 7));
}

std::vector<RyVec3> drawn(const RyTubeFigure &tube)
{
    return tube.object->getDeformedPositions();
}

bool isSame(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    float worst = a.size() == b.size() ? 0.0f : 1e30f;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i)
        worst = std::max(worst, (a[i] - b[i]).length());
    return worst < 1e-5f * 180.0f;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const bool isShort = app.arguments().contains(QStringLiteral("--short"));
    const RyTubeFigure tube(ryScene(), isShort ? 20000 : Vertices, Bones);
    pose(tube, 0);
    const std::vector<RyVec3> before = drawn(tube);
    if (!bakePose(tube.figure) || !isSame(drawn(tube), before)) {
        std::printf("the baked figure is not what was drawn\n");
        return 1;
    }
    if (isShort)
        return 0;
    RySkinBinding *skin = tube.figure->getSkinBinding();
    auto *shape = qobject_cast<RyFacetShape *>(tube.object->getCurrentShape());
    // Of the processors' time of all threads, which other programs disturb less than the wall clock.
    const auto milliseconds = [](const std::function<void()> &work) {
        const std::clock_t start = std::clock();
        work();
        return 1e3 * double(std::clock() - start) / CLOCKS_PER_SEC;
    };
    std::vector<double> baking, deforming, copying;
    for (int run = 0; run < Runs; ++run) {
        pose(tube, run + 1);
        RyShapePoints points;
        points.positions = &shape->getBasePositions();
        deforming.push_back(milliseconds([&] { skin->deform(points); }));
        copying.push_back(milliseconds([&] { const RyRef<RyFacetMesh> copy(shape->getFacetMesh()->copy()); }));
        pose(tube, run + 2);
        baking.push_back(milliseconds([&] { bakePose(tube.figure); }));
    }
    const double bake = RyBenchmark::median(baking);
    const double deform = RyBenchmark::median(deforming);
    const double copy = RyBenchmark::median(copying);
    std::printf("bake %d vertices: %.1f ms, one deformation %.1f ms and one copy %.1f ms, ratio %.2f (medians of %d)\n",
                Vertices, bake, deform, copy, bake / (deform + copy), Runs);
    return 0;
}
