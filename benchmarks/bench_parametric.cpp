// Parametric deformation, in one thread, beside the linear blend of the same vertices and bones with four influences
// each: a whole pose, and one bone moved. Results are compared before anything is timed, and what was touched is
// counted. The argument
// --short takes a small figure and one turn, which checks the results and judges no time.
#include <tbb/global_control.h>

#include "RyRoundRobin.h"
#include "rycore/parametric/RyLegacyDeformer.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/skin/RySkinDeformer.h"

#include <cstdio>
#include <cstring>

namespace {

bool isShort = false;
bool allGood = true;

void tell(const char *what, double ratio, double most)
{
    std::printf("  => %-52s %6.3f  (at most %.2f%s)\n", what, ratio, most, isShort || ratio <= most ? "" : ", MISSED");
}

void check(bool good, const char *what)
{
    if (good)
        return;
    std::printf("  WRONG: %s\n", what);
    allGood = false;
}

/// Runs what is timed in one thread: other work on the machine falls on all alike.
void inOneThread(const RyRoundRobin::Work &timed)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, 1);
    timed();
}

/// A root with eleven limbs of nine bones, each a tube, with a joint between every two bones: bends by angles, twists
/// over the whole bone on every eighth one.
struct Figure
{
    static constexpr int Limbs = 11;
    static constexpr int Length = 9;
    static constexpr int Bones = 1 + Limbs * Length;
    static constexpr float BoneLength = 10;

    explicit Figure(int vertexCount)
    {
        addBone(-1, {0, 0, 0});
        for (int limb = 0; limb < Limbs; ++limb) {
            for (int i = 0; i < Length; ++i)
                addBone(i == 0 ? 0 : int(rig.bones.size()) - 1, {BoneLength * float(i + 1), 0, 30.0f * float(limb)});
        }
        const int perBone = vertexCount / Bones;
        for (int b = 0; b < Bones; ++b) {
            for (int v = 0; v < perBone; ++v)
                addVertex(b, v, perBone);
        }
        for (int pose = 0; pose < 2; ++pose) {
            for (int b = 0; b < Bones; ++b) {
                RyLegacyControls &controls = poses[pose].emplace_back();
                const double way = pose == 0 ? 1 : -1;
                controls.turn = {way * 0.3, way * 0.2 + 0.01 * b, way * 0.4};
            }
        }
    }

    void addBone(int parent, const RyVec3 &origin)
    {
        RyLegacyRig::Bone bone;
        bone.parent = parent;
        bone.origin = origin;
        bone.end = origin + RyVec3(BoneLength, 0, 0);
        bone.orientation = RyQuat(RyVec3(1, 0, 0), 0.1f * float(rig.bones.size()));
        bone.hasGroup = true;
        const int index = int(rig.bones.size());
        rig.bones.push_back(bone);
        for (const int joint : {index, parent}) {
            for (int axis = 0; axis < 3 && parent >= 0; ++axis)
                rig.params.push_back(param(joint, index, axis));
        }
    }

    RyLegacyRig::Param param(int joint, int driver, int axis) const
    {
        using Param = RyLegacyJointParam;
        RyLegacyRig::Param result;
        result.type = axis == 0 ? Param::Twist : Param::Bend;
        result.axis = axis;
        result.bone = joint;
        result.driver = driver;
        result.flags = joint == driver ? 0u : unsigned(Param::Flipped);
        const float start = rig.bones[size_t(driver)].origin.x;
        if (axis == 0) {
            result.flags |= driver % 8 == 1 ? unsigned(Param::ApplyBlend) : 0u;
            result.values = {start, start + BoneLength};
        } else {
            result.flags |= Param::ApplyAngles;
            result.values = {135, 45, -45, -135, 0, 0, 0, 0};
        }
        return result;
    }

    void addVertex(int bone, int number, int perBone)
    {
        const float angle = 2.4f * float(number);
        const float along = BoneLength * (float(number) + 0.5f) / float(perBone);
        rest.push_back(rig.bones[size_t(bone)].origin + RyVec3(along, 2 * std::cos(angle), 2 * std::sin(angle)));
        normals.push_back({0, std::cos(angle), std::sin(angle)});
        rig.owners.push_back(bone);
    }

    /// The vertex's bone, two above and one below, where there are.
    std::vector<RySkinDeformer::Channel> channels() const
    {
        std::vector<RySkinDeformer::Channel> result(Bones);
        for (size_t v = 0; v < rest.size(); ++v) {
            const int bone = rig.owners[v];
            for (int k = -2; k < 2; ++k) {
                auto &channel = result[size_t(std::clamp(bone + k, 2, Bones - 2) + (bone < 2 ? k : 0))];
                if (!channel.vertices.empty() && channel.vertices.back() == int(v)) {
                    channel.weights.back() += 0.25f;
                } else {
                    channel.vertices.push_back(int(v));
                    channel.weights.push_back(0.25f);
                }
            }
        }
        return result;
    }

    RyLegacyRig rig;
    std::vector<RyVec3> rest;
    std::vector<RyVec3> normals;
    std::vector<RyLegacyControls> poses[2];
};

/// Beside points that are moved one by one, with weights of their own.
void checkPose(const Figure &figure, const RyLegacyDeformer &deformer, const std::vector<RyVec3> &posed, int which)
{
    const RyLegacyPose pose(figure.rig, figure.poses[which]);
    double most = 0.0;
    for (size_t v = 0; v < posed.size(); v += 7) {
        const double p[3] = {figure.rest[v].x, figure.rest[v].y, figure.rest[v].z};
        double right[3];
        deformer.mapPoint(pose, figure.rig.owners[v], p, right);
        const RyVec3 apart = posed[v] - RyVec3(float(right[0]), float(right[1]), float(right[2]));
        most = std::max(most, double(apart.length()));
    }
    check(most < 1e-3, "a pose");
}

void compare(int vertices, bool withNormals)
{
    const Figure figure(isShort ? vertices / 50 : vertices);
    RyLegacyDeformer parametric;
    parametric.setRig(figure.rig, figure.rest);
    const std::vector<RyVec3> *normals = withNormals ? &figure.normals : nullptr;
    for (int pose = 0; pose < 2; ++pose) {
        checkPose(figure, parametric, parametric.pose(figure.poses[pose], normals), pose);
        check(parametric.lastTouched() == qint64(figure.rest.size()), "a pose touches all");
    }
    int partly = 0;
    for (int v = 0; v < int(figure.rest.size()); ++v) {
        bool isPartly = false;
        for (int bone = std::max(figure.rig.owners[size_t(v)], 1); bone < Figure::Bones; ++bone) {
            for (const double m : parametric.fractions(bone, v).turn)
                isPartly = isPartly || (m > 0 && m < 1);
        }
        partly += isPartly;
    }
    RySkinDeformer linear;
    linear.setInfluences(int(figure.rest.size()), figure.channels());
    std::vector<RyAffine> maps[2];
    for (int pose = 0; pose < 2; ++pose) {
        for (int b = 0; b < Figure::Bones; ++b)
            maps[pose].push_back(RyAffine::fromRotation(RyQuat(RyVec3(1, 2, 3), float(0.1 * b + pose))));
    }
    std::printf("\n%d vertices, %d bones, %s, one thread; %.0f %% of the vertices follow a bone in part\n",
                int(figure.rest.size()), Figure::Bones, withNormals ? "positions and normals" : "positions",
                100.0 * partly / double(figure.rest.size()));
    RyRoundRobin ways;
    bool allMoved = true;
    // Each turns all bones in every call: one that finds some as they were would do less.
    int blendPose = 0;
    const size_t blend = ways.add(
        "linear blend, four influences",
        [&] {
            blendPose = 1 - blendPose;
            linear.deform(figure.rest, maps[blendPose], &figure, 1, {normals, nullptr});
            allMoved = allMoved && linear.lastTouched() == qint64(figure.rest.size());
        },
        inOneThread);
    int pose = 0;
    const size_t ours = ways.add(
        "parametric",
        [&] {
            pose = 1 - pose;
            parametric.pose(figure.poses[pose], normals);
            allMoved = allMoved && parametric.lastTouched() == qint64(figure.rest.size());
        },
        inOneThread);
    ways.before([&] { parametric.pose(figure.poses[pose], normals); });
    // The fifth bone of a limb: it and the four below it.
    std::vector<RyLegacyControls> moving = figure.poses[0];
    const size_t one = ways.add(
        "parametric, one bone moved",
        [&] {
            moving[5].turn[2] = moving[5].turn[2] > 0 ? -0.3 : 0.5;
            parametric.pose(moving, normals);
        },
        inOneThread);
    ways.before([&] { parametric.pose(figure.poses[0], normals); });
    parametric.pose(figure.poses[0], normals);
    moving[5].turn[2] = 0.2;
    const std::vector<RyVec3> partwise = parametric.pose(moving, normals);
    const double share = double(parametric.lastTouched()) / double(figure.rest.size());
    std::vector<RyVec3> whole;
    parametric.deform(figure.rest, moving, whole);
    check(partwise == whole, "one bone moved");
    check(share > 0.04 && share < 0.08, "one bone moved touches its limb from there on");
    int builds = 0;
    for (int p = 0; p < int(figure.rig.params.size()); ++p)
        builds = std::max(builds, parametric.weightBuilds(p));
    check(builds == 1 && parametric.groupBuilds() == 1, "poses make no weights");
    ways.run(isShort ? 1 : 21, isShort ? 0.0 : 2.0);
    check(allMoved, "every timed pose moves all");
    ways.print();
    std::printf("  least times: parametric to linear blend %.3f\n", ways.least(ours) / ways.least(blend));
    tell("parametric to linear blend, processor time", ways.cpuMedian(ours) / ways.cpuMedian(blend), 6);
    std::printf("  one bone moved touches %.1f %% of the vertices\n", 100 * share);
    tell("one bone moved, for its share of a pose", ways.cpuMedian(one) / ways.cpuMedian(ours) / share, 3);
}

} // namespace

int main(int argc, char **argv)
{
    isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    compare(100000, false);
    compare(100000, true);
    return allGood ? 0 : 1;
}
