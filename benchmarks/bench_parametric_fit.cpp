// Ordinary weights are fitted to a parametric figure, a long limb of many bones, beside the deformation of the same
// figure in all poses of the fit: what a fit costs that tries one set of candidates and looks at everything once.
// Before anything is timed, the fit is compared with plain averages, and with itself. Both run in one thread, and
// processor's time counts. The argument --short takes a small limb.
#include <tbb/global_control.h>

#include "RyRoundRobin.h"

#include "rycore/parametric/RyLegacyDeformer.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/fit/RyLegacyFitter.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int Around = 24;
constexpr double Bound = 1.5; // of the deformation, for each set of candidates that is tried

RyLegacyRig::Param param(int type, int axis, int driver, int holder)
{
    RyLegacyRig::Param result;
    result.type = type;
    result.axis = axis;
    result.driver = driver;
    result.bone = holder;
    result.flags = holder == driver ? 0u : unsigned(RyLegacyJointParam::Flipped);
    if (type == RyLegacyJointParam::Bend) {
        result.flags |= RyLegacyJointParam::ApplyAngles;
        result.values = {90, 45, -45, -90, 0, 0, 0, 0};
    } else {
        result.values = {-24384, 24384};
    }
    return result;
}

/// A tube along +X, a ring for every centimetre, a bone for every 20.
RyLegacyFitInput limb(int bones)
{
    RyLegacyFitInput input;
    constexpr int Length = 20;
    for (int bone = 0; bone < bones; ++bone) {
        RyLegacyRig::Bone each;
        each.parent = bone - 1;
        each.origin = {float(Length * bone), 0, 0};
        each.end = {float(Length * (bone + 1)), 0, 0};
        each.hasGroup = true;
        input.rig.bones.push_back(each);
        input.limits.push_back({{{-1.0, 1.0}, {-1.5, 1.5}, {-2.0, 2.0}}});
        input.names.push_back("bone" + std::to_string(bone));
        for (int holder = bone; bone > 0 && holder >= bone - 1; --holder) {
            input.rig.params.push_back(param(RyLegacyJointParam::Twist, 0, bone, holder));
            input.rig.params.push_back(param(RyLegacyJointParam::Bend, 1, bone, holder));
            input.rig.params.push_back(param(RyLegacyJointParam::Bend, 2, bone, holder));
        }
    }
    for (int ring = 0; ring < Length * bones; ++ring) {
        for (int i = 0; i < Around; ++i) {
            const double angle = 2.0 * M_PI * (i + 0.25) / Around;
            input.rest.push_back({float(ring) + 0.5f, float(4.0 * std::cos(angle)), float(4.0 * std::sin(angle))});
            input.rig.owners.push_back(ring / Length);
        }
    }
    return input;
}

bool isSame(const RyLegacyFit &a, const RyLegacyFit &b)
{
    return std::equal(a.bones.begin(), a.bones.end(), b.bones.begin(), b.bones.end(),
                      [](const auto &x, const auto &y) { return x.vertices == y.vertices && x.weights == y.weights; });
}

/// How many sets of candidates are tried for a vertex, in the mean over those that have a choice.
double meanSubsets(const RyLegacyFitInput &input, const RyLegacyDeformer &deformer)
{
    double subsets = 0.0;
    int partly = 0;
    for (int vertex = 0; vertex < int(input.rest.size()); ++vertex) {
        std::vector<RyLegacyPose::Part> parts;
        for (int bone = int(input.rig.bones.size()); bone-- > 0;) {
            if (!deformer.fractions(bone, vertex).isNone())
                parts.push_back({bone, deformer.fractions(bone, vertex)});
        }
        const RyLegacyFitVertex each(input.rig, input.rig.owners[size_t(vertex)], parts);
        if (each.isPartly()) {
            subsets += std::pow(2.0, double(each.bones.size())) - 1.0;
            ++partly;
        }
    }
    return partly > 0 ? subsets / partly : 1.0;
}

} // namespace

int main(int argc, char **argv)
{
    const bool isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    const RyLegacyFitInput input = limb(isShort ? 6 : 30);
    RyLegacyFitter fitter(input);
    const std::shared_ptr<RyLegacyFit> fit = fitter.fit();
    const std::shared_ptr<RyLegacyFit> plain = fitter.plain();
    std::printf("%zu vertices, %zu bones, %d poses: fitted %.3f %% where partly moved, plain averages %.3f %%\n",
                input.rest.size(), input.rig.bones.size(), fit->report.poses, fit->report.rmsPartly,
                plain->report.rmsPartly);
    if (!(fit->report.rmsPartly < plain->report.rmsPartly) || !isSame(*fit, *RyLegacyFitter(input).fit())) {
        std::printf("the fit is not what it should be\n");
        return 1;
    }
    std::vector<int> drivers;
    for (int bone = 1; bone < int(input.rig.bones.size()); ++bone)
        drivers.push_back(bone);
    const std::vector<RyLegacyFitPose> poses = ryLegacyFitPoses(input, drivers);
    RyLegacyDeformer deformer;
    deformer.setRig(input.rig, input.rest);
    std::vector<RyVec3> out;
    const auto inOneThread = [](const RyRoundRobin::Work &timed) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, 1);
        timed();
    };
    RyRoundRobin ways;
    const size_t deformation = ways.add(
        "deformation in its poses",
        [&] {
            for (const RyLegacyFitPose &pose : poses)
                deformer.deform(input.rest, pose.controls, out);
        },
        inOneThread);
    const size_t fitting = ways.add(
        "fit", [&] { RyLegacyFitter(input).fit(); }, inOneThread);
    ways.run(isShort ? 1 : 11);
    ways.print();
    const double ratio = ways.cpuMedian(fitting) / ways.cpuMedian(deformation);
    const double subsets = meanSubsets(input, deformer);
    std::printf("%.1f subsets of candidates, per subset: %.3f, of least times %.3f (at most %.1f)\n", subsets,
                ratio / subsets, ways.cpuLeast(fitting) / ways.cpuLeast(deformation) / subsets, Bound);
    return isShort || ratio / subsets <= Bound ? 0 : 1;
}
