#include "MorphFile.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyShape.h"

#include <Eigen/Geometry>

using nlohmann::json;

namespace {

constexpr int Splits = 18; // of a primitive of the sketch

json quaternion(double degrees, const Eigen::Vector3d &axis)
{
    const Eigen::Quaterniond q(Eigen::AngleAxisd(degrees * M_PI / 180.0, axis.normalized()));
    return {q.x(), q.y(), q.z(), q.w()};
}

} // namespace

MorphFile::MorphFile(unsigned seed) : m_random(seed)
{
    json &tree = sketch.tree;
    tree["nodes"][0]["rotation"] = quaternion(35, {1, 2, 0.5});
    tree["nodes"][0]["scale"] = {3.0, 3.0, 3.0};
    tree["nodes"][0]["translation"] = {4, 1, -2};
    tree["nodes"][1]["rotation"] = quaternion(25, {0, 1, 0.2});
    tree["nodes"][2]["rotation"] = quaternion(-40, {1, 0.3, 0});
    tree["nodes"][2]["scale"] = {1.2, 1.2, 1.2};
    json &body = tree["meshes"][0];
    json second = body["primitives"][0];
    std::vector<float> moved;
    for (int split = 0; split < Splits; ++split)
        moved.insert(moved.end(), {split % 2 ? 0.5f : 0.9f, 0.25f * float(split / 2), 0.3f});
    second["attributes"]["POSITION"] = sketch.add<float>(moved, 5126, "VEC3");
    body["primitives"].push_back(second);
    body["primitives"][0]["targets"] = targets(BodyTargets, 0);
    body["primitives"][1]["targets"] = targets(BodyTargets, 3);
    json head = {{"name", "head"}, {"primitives", {second}}};
    head["primitives"][0]["targets"] = targets(HeadTargets, 1);
    json prop = {{"name", "prop"}, {"primitives", {second}}};
    prop["primitives"][0]["attributes"].erase("JOINTS_0");
    prop["primitives"][0]["attributes"].erase("WEIGHTS_0");
    prop["primitives"][0]["targets"] = targets(PropTargets, 0);
    tree["meshes"].push_back(head);
    tree["meshes"].push_back(prop);
    tree["nodes"].push_back({{"name", "head"}, {"mesh", 1}, {"skin", 0}});
    tree["nodes"].push_back({{"name", "prop"},
                             {"mesh", 2},
                             {"translation", {0.3, 0.2, 0.1}},
                             {"rotation", quaternion(70, {1, 1, 0})},
                             {"scale", {2, 2, 2}}});
    tree["nodes"][2]["children"] = {5};
    tree["scenes"][0]["nodes"] = {0, 3, 4};

    // Values of the body stand at its node, those of the others at their meshes.
    json names = json::array(), weights = json::array();
    for (int i = 0; i < BodyTargets; ++i) {
        const bool isNamed = i % 5 != 4;
        const QString name = isNamed ? QString("shape %1").arg(i) : QString("Morph %1").arg(i + 1);
        const float start = i == 8 ? 1.5f : i == 12 ? -0.25f : i % 4 == 1 ? 0.25f + 0.015625f * float(i % 30) : 0.0f;
        names.push_back(isNamed ? json(name.toStdString()) : i % 10 == 4 ? json("") : json(17));
        weights.push_back(start);
        figureMorphs[name].emplace_back(3, i);
        starts[name] = start;
    }
    tree["meshes"][0]["extras"]["targetNames"] = names;
    tree["meshes"][0]["weights"] = json(std::vector<double>(BodyTargets, 0.75));
    tree["nodes"][3]["weights"] = weights;
    names = weights = json::array();
    for (int i = 0; i < HeadTargets; ++i) {
        const bool isNamed = i < HeadTargets - 2; // the list of names is too short
        const bool isShared = i % 3 == 0;
        QString name = isShared ? QString("shape %1").arg(5 * (i / 3) + 1) : QString("head %1").arg(i);
        if (!isNamed)
            name = QString("Morph %1").arg(i + 1); // of the head alone
        const float start = isNamed && isShared ? starts.at(name) : i == 2 ? 0.5f : 0.0f;
        if (isNamed)
            names.push_back(name.toStdString());
        weights.push_back(start);
        figureMorphs[name].emplace_back(4, i);
        starts[name] = start;
    }
    tree["meshes"][1]["extras"] = {{"targetNames", names}, {"other", "kept"}};
    tree["meshes"][1]["weights"] = weights;
    tree["meshes"][2]["weights"] = {0.0, 0.25, 0.0, 0.5};
    for (int i = 0; i < PropTargets; ++i)
        propMorphs[QString("Morph %1").arg(i + 1)] = {{5, i}};

    const int times = sketch.add<float>({0.0f, 1.0f}, 5126, "SCALAR");
    tree["accessors"].back()["min"] = {0.0};
    tree["accessors"].back()["max"] = {1.0};
    std::vector<float> values;
    for (int i = 0; i < 2 * BodyTargets; ++i)
        values.push_back(float(i % 7) / 8.0f);
    const int outputs = sketch.add<float>(values, 5126, "SCALAR");
    const int turns = sketch.add<float>({0, 0, 0, 1, 0, 0.6f, 0, 0.8f}, 5126, "VEC4");
    tree["animations"] = {
        {{"name", "talk"},
         {"samplers", {{{"input", times}, {"output", outputs}}, {{"input", times}, {"output", turns}}}},
         {"channels",
          {{{"sampler", 0}, {"target", {{"node", 3}, {"path", "weights"}}}},
           {{"sampler", 1}, {"target", {{"node", 2}, {"path", "rotation"}}}}}}}};
    tree["extensionsUsed"] = {"KHR_mesh_quantization"};
    tree["extensionsRequired"] = {"KHR_mesh_quantization"};
}

json MorphFile::targets(int count, int firstKind)
{
    json list = json::array();
    for (int i = 0; i < count; ++i)
        list.push_back({{"POSITION", addTarget((firstKind + i) % 4)}});
    return list;
}

int MorphFile::addTarget(int kind)
{
    std::uniform_real_distribution<float> number(-0.2f, 0.2f);
    std::vector<float> deltas;
    switch (kind) {
    case 0: // dense
        for (int i = 0; i < 3 * Splits; ++i)
            deltas.push_back(number(m_random));
        return sketch.add<float>(deltas, 5126, "VEC3");
    case 1: { // sparse, without a view below
        const int places = sketch.add<std::uint16_t>({2, 3, 11}, 5123, "SCALAR");
        const int placeView = sketch.tree["accessors"][size_t(places)]["bufferView"].get<int>();
        for (int i = 0; i < 9; ++i)
            deltas.push_back(number(m_random));
        const int numbers = sketch.add<float>(deltas, 5126, "VEC3");
        const int numberView = sketch.tree["accessors"][size_t(numbers)]["bufferView"].get<int>();
        sketch.tree["accessors"].push_back({{"componentType", 5126},
                                            {"count", Splits},
                                            {"type", "VEC3"},
                                            {"sparse",
                                             {{"count", 3},
                                              {"indices", {{"bufferView", placeView}, {"componentType", 5123}}},
                                              {"values", {{"bufferView", numberView}}}}}});
        return int(sketch.tree["accessors"].size()) - 1;
    }
    case 2: { // normalised
        std::vector<std::int16_t> whole;
        for (int i = 0; i < Splits; ++i) {
            for (int axis = 0; axis < 3; ++axis)
                whole.push_back(std::int16_t(32767 * number(m_random)));
            whole.push_back(0);
        }
        const int accessor = sketch.add<std::int16_t>(whole, 5122, "VEC4");
        sketch.tree["accessors"].back()["type"] = "VEC3";
        sketch.tree["accessors"].back()["normalized"] = true;
        sketch.tree["bufferViews"].back()["byteStride"] = 8;
        return accessor;
    }
    default: // nothing moves
        sketch.tree["accessors"].push_back({{"componentType", 5126}, {"count", Splits}, {"type", "VEC3"}});
        return int(sketch.tree["accessors"].size()) - 1;
    }
}

GltfPose MorphFile::weightsOf(const std::map<QString, Targets> &morphs, const RyNode &node, GltfPose pose)
{
    for (const RyMorph *morph : RyShape::getCurrentShapeForNode(&node)->getMorphs()) {
        for (const auto &[fileNode, number] : morphs.at(morph->getName())) {
            std::vector<double> &weights = pose.weights[fileNode];
            weights.resize(std::max(weights.size(), size_t(number) + 1));
            weights[size_t(number)] = double(morph->getValueControl()->getValue());
        }
    }
    return pose;
}
