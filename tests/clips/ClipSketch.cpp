#include "ClipSketch.h"

#include "evaluator/GltfTransform.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cstdint>

using nlohmann::json;

namespace {

Eigen::Quaterniond turned(double degrees, const Eigen::Vector3d &axis)
{
    return Eigen::Quaterniond(Eigen::AngleAxisd(degrees * M_PI / 180.0, axis.normalized()));
}

json numbersOf(const Eigen::Quaterniond &q)
{
    return {q.x(), q.y(), q.z(), q.w()};
}

} // namespace

const std::vector<int> &ClipSketch::joints()
{
    static const std::vector<int> list{Hips, Spine, LeftArm, LeftHand, RightArm, RightHand};
    return list;
}

ClipSketch::ClipSketch(std::mt19937 &random) : m_random(random)
{
    tree["scenes"][0]["nodes"] = {Armature, Body};
    tree["cameras"] = {{{"type", "perspective"}, {"perspective", {{"yfov", 1.0}, {"znear", 0.1}}}}};
    // The strip of the base becomes a thing without a skin.
    json &strip = tree["meshes"][0]["primitives"][0]["attributes"];
    strip.erase("JOINTS_0");
    strip.erase("WEIGHTS_0");
    const auto made = [](const char *name, const Eigen::Vector3d &at, const Eigen::Quaterniond &rotation,
                         const json &children) {
        json node = {{"name", name}, {"translation", {at.x(), at.y(), at.z()}}, {"rotation", numbersOf(rotation)}};
        if (!children.empty())
            node["children"] = children;
        return node;
    };
    tree["nodes"] = {made("Armature", {0.1, 0, -0.2}, turned(20, {0, 1, 0}), {Hips}),
                     made("hips", {0, 0.9, 0}, turned(8, {1, 0, 0.3}), {Spine}),
                     made("spine", {0, 0.4, 0.02}, turned(-15, {1, 0.1, 0}), {LeftArm, RightArm, Empty}),
                     made("left arm", {0.2, 0.25, 0}, turned(-80, {0, 0.2, 1}), {LeftHand}),
                     made("left hand", {0, 0.45, 0.03}, turned(25, {1, 1, 0}), {Camera}),
                     made("right arm", {-0.2, 0.25, 0}, turned(85, {0.1, 0, 1}), {RightHand}),
                     made("right hand", {0, 0.45, -0.02}, turned(160, {0, 1, 0.2}), {Prop}),
                     {{"name", "body"}, {"mesh", 1}, {"skin", 0}},
                     made("eye", {0.05, 0.1, 0}, turned(30, {0, 1, 0}), json::array()),
                     made("helper", {0.3, 0, 0.1}, turned(-70, {1, 2, 3}), json::array()),
                     made("stick", {0, 0.1, 0}, turned(90, {1, 0, 0}), json::array())};
    node(Camera)["camera"] = 0;
    node(Prop)["mesh"] = 0;
    node(Prop)["scale"] = {0.2, 0.15, 0.2};
}

int ClipSketch::parentOf(int index) const
{
    const json &nodes = tree["nodes"];
    for (size_t i = 0; i < nodes.size(); ++i) {
        const json children = nodes[i].value("children", json::array());
        if (std::find(children.begin(), children.end(), json(index)) != children.end())
            return int(i);
    }
    return -1;
}

Eigen::Matrix4d ClipSketch::worldOf(int index) const
{
    Eigen::Matrix4d world = Eigen::Matrix4d::Identity();
    for (; index >= 0; index = parentOf(index)) {
        const json &each = tree["nodes"][size_t(index)];
        Eigen::Matrix4d local = GltfTransform::ofNode(each).matrix();
        if (each.contains("matrix"))
            local = Eigen::Map<const Eigen::Matrix4d>(each["matrix"].get<std::vector<double>>().data());
        world = (local * world).eval();
    }
    return world;
}

void ClipSketch::bind(const Eigen::Vector3d &stretch)
{
    m_stretch = stretch;
    std::vector<Eigen::Matrix4d> worlds;
    for (const int joint : joints())
        worlds.push_back(worldOf(joint));
    json mesh = makeMesh(worlds);
    tree["meshes"] = {tree["meshes"][0], mesh};
    tree["skins"] = {{{"name", "skin"}, {"joints", joints()}, {"inverseBindMatrices", addBinds(stretched(worlds))}}};
}

std::vector<Eigen::Matrix4d> ClipSketch::stretched(std::vector<Eigen::Matrix4d> worlds) const
{
    for (Eigen::Matrix4d &world : worlds)
        world.topLeftCorner<3, 3>() *= m_stretch.asDiagonal();
    return worlds;
}

/// Points around each joint that follow it, its neighbours and joints at random.
json ClipSketch::makeMesh(const std::vector<Eigen::Matrix4d> &worlds)
{
    constexpr int PointsOfJoint = 14;
    std::vector<float> points, weights;
    std::vector<std::uint8_t> places;
    std::vector<std::uint16_t> corners;
    Eigen::Vector3f low = Eigen::Vector3f::Constant(1e9f), high = -low;
    for (size_t j = 0; j < worlds.size(); ++j) {
        for (int i = 0; i < PointsOfJoint; ++i) {
            const Eigen::Vector3d shift(number(-0.25, 0.25), number(-0.25, 0.25), number(-0.25, 0.25));
            const Eigen::Vector3f point = (worlds[j].topRightCorner<3, 1>() + shift).cast<float>();
            points.insert(points.end(), point.data(), point.data() + 3);
            low = low.cwiseMin(point);
            high = high.cwiseMax(point);
            const size_t others[] = {j, (j + 1) % worlds.size(), j / 2, below(worlds.size())};
            // Whole shares of 65535, as they come back from a save.
            int left = 65535;
            for (int k = 0; k < 4; ++k) {
                const bool isSecondTime = std::find(others, others + k, others[k]) != others + k;
                const int share = k == 0 ? 30000 + int(below(35535)) : isSecondTime ? 0 : int(below(size_t(left + 1)));
                places.push_back(std::uint8_t(others[k]));
                weights.push_back(float(share) / 65535.0f);
                left -= share;
            }
            weights[weights.size() - 4] += float(left) / 65535.0f;
            corners.push_back(std::uint16_t(points.size() / 3 - 1));
        }
    }
    corners.resize(corners.size() / 3 * 3);
    const int position = add<float>(points, 5126, "VEC3");
    tree["accessors"].back()["min"] = std::vector<float>(low.data(), low.data() + 3);
    tree["accessors"].back()["max"] = std::vector<float>(high.data(), high.data() + 3);
    const int joint = add<std::uint8_t>(places, 5121, "VEC4");
    const int weight = add<float>(weights, 5126, "VEC4");
    const int index = add<std::uint16_t>(corners, 5123, "SCALAR");
    return {
        {"name", "body"},
        {"primitives",
         {{{"attributes", {{"POSITION", position}, {"JOINTS_0", joint}, {"WEIGHTS_0", weight}}}, {"indices", index}}}}};
}

void ClipSketch::addSecondSkin()
{
    const std::vector<int> some{RightHand, LeftArm, Spine, RightArm};
    std::vector<Eigen::Matrix4d> worlds;
    for (const int joint : some)
        worlds.push_back(worldOf(joint));
    json mesh = makeMesh(worlds);
    tree["meshes"].push_back(mesh);
    tree["skins"].push_back({{"joints", some}, {"inverseBindMatrices", addBinds(stretched(worlds))}});
    tree["nodes"].push_back({{"name", "coat"}, {"mesh", tree["meshes"].size() - 1}, {"skin", 1}});
    tree["scenes"][0]["nodes"].push_back(tree["nodes"].size() - 1);
}

void ClipSketch::pose()
{
    for (const int joint : {Hips, LeftArm, LeftHand, RightArm}) {
        node(joint)["rotation"] = someValues(joint, "rotation", "STEP", 1);
        node(joint)["translation"] = someValues(joint, "translation", "STEP", 1);
    }
}

size_t ClipSketch::addClip(const std::string &name)
{
    tree["animations"].push_back({{"name", name}, {"samplers", json::array()}, {"channels", json::array()}});
    return tree["animations"].size() - 1;
}

int ClipSketch::addTimes(const std::vector<float> &times)
{
    const int accessor = add<float>(times, 5126, "SCALAR");
    tree["accessors"].back()["min"] = {times.front()};
    tree["accessors"].back()["max"] = {times.back()};
    return accessor;
}

int ClipSketch::addValues(const std::string &path, const std::vector<float> &values)
{
    return add<float>(values, 5126, path == "rotation" ? "VEC4" : "VEC3");
}

size_t ClipSketch::addSampler(size_t clip, int input, int output, const std::string &interpolation)
{
    json &samplers = tree["animations"][clip]["samplers"];
    samplers.push_back({{"input", input}, {"output", output}, {"interpolation", interpolation}});
    return samplers.size() - 1;
}

void ClipSketch::addChannel(size_t clip, size_t sampler, int index, const std::string &path)
{
    tree["animations"][clip]["channels"].push_back(
        {{"sampler", sampler}, {"target", {{"node", index}, {"path", path}}}});
}

std::vector<float> ClipSketch::someTimes(size_t count)
{
    std::vector<float> times;
    float time = float(number(0, 0.3));
    for (size_t i = 0; i < count; ++i) {
        times.push_back(time);
        time += float(number(0.1, 2.0 / double(count)));
    }
    return times;
}

std::vector<float> ClipSketch::someValues(int index, const std::string &path, const std::string &interpolation,
                                          size_t count, bool uneven)
{
    const bool isCubic = interpolation == "CUBICSPLINE";
    const GltfTransform own = GltfTransform::ofNode(node(index));
    const Eigen::Quaterniond rotation(own.rotation[3], own.rotation[0], own.rotation[1], own.rotation[2]);
    std::vector<float> values;
    const auto push = [&values](const auto &numbers) {
        for (Eigen::Index i = 0; i < numbers.size(); ++i)
            values.push_back(float(numbers[i]));
    };
    const auto pushTangent = [&] {
        for (int i = 0; isCubic && i < (path == "rotation" ? 4 : 3); ++i)
            values.push_back(float(number(-0.6, 0.6)));
    };
    for (size_t key = 0; key < count; ++key) {
        const Eigen::Vector3d any(number(-1, 1), number(-1, 1), number(-1, 1));
        pushTangent();
        if (path == "rotation")
            push((rotation * turned(number(-70, 70), any)).coeffs());
        else if (path == "translation")
            push(Eigen::Vector3d(own.translation + 0.15 * any));
        else if (uneven)
            push(Eigen::Vector3d(own.scale.cwiseProduct(Eigen::Vector3d::Ones() + 0.3 * any)));
        else
            push(Eigen::Vector3d(own.scale * (1.0 + 0.3 * any.x())));
        pushTangent();
        // One factor has one tangent.
        for (size_t i = values.size() - 9; isCubic && path == "scale" && !uneven && i < values.size(); i += 3)
            values[i + 1] = values[i + 2] = values[i];
    }
    return values;
}

void ClipSketch::drive(size_t clip, int index, const std::string &path, const std::string &interpolation, bool uneven)
{
    const size_t count = 2 + below(5);
    const int input = addTimes(someTimes(count));
    const int output = addValues(path, someValues(index, path, interpolation, count, uneven));
    addChannel(clip, addSampler(clip, input, output, interpolation), index, path);
}

void ClipSketch::driveAll(size_t clip, const std::string &interpolation)
{
    drive(clip, Armature, "translation", interpolation);
    for (const int each : {Armature, Hips, Spine, LeftArm, LeftHand, RightArm, RightHand})
        drive(clip, each, "rotation", interpolation);
    for (const int each : {Hips, LeftHand, RightArm})
        drive(clip, each, "translation", interpolation);
}
