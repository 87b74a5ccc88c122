#include "RichSketch.h"

#include <QBuffer>
#include <QImage>

using nlohmann::json;

namespace {

QByteArray picture(QRgb color)
{
    QImage image(2, 3, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

void addLooks(FigureSketch &sketch)
{
    json &tree = sketch.tree;
    const QByteArray inside = picture(0xffa02010u);
    sketch.add(std::vector<std::uint8_t>(inside.begin(), inside.end()), 5121, "SCALAR");
    const std::string beside = "data:image/png;base64," + picture(0xff1020a0u).toBase64().toStdString();
    tree["images"] = {{{"bufferView", tree["bufferViews"].size() - 1}, {"mimeType", "image/png"}},
                      {{"name", "beside"}, {"uri", beside}}};
    tree["samplers"] = {{{"wrapS", 33071}}};
    tree["textures"] = {{{"source", 0}, {"sampler", 0}}, {{"source", 1}}};
    tree["materials"] = {
        {{"name", "skin"},
         {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}, {"roughnessFactor", 0.7}}},
         {"extensions", {{"KHR_materials_clearcoat", {{"clearcoatTexture", {{"index", 1}}}}}}}},
        {{"name", "other"}, {"emissiveTexture", {{"index", 1}}}, {"extensions", {{"ACME_dirt", {{"amount", 3}}}}}}};
    tree["extensions"]["KHR_materials_variants"]["variants"] = {{{"name", "clean"}}, {{"name", "worn"}}};
    json &primitive = tree["meshes"][0]["primitives"][0];
    primitive["material"] = 0;
    primitive["extensions"]["KHR_materials_variants"]["mappings"] = {{{"material", 0}, {"variants", {0}}},
                                                                     {{"material", 1}, {"variants", {1}}}};
}

/// A prop below the upper joint, a camera with a light beside the figure, and a node that only the second scene shows.
void addNodes(FigureSketch &sketch)
{
    json &tree = sketch.tree;
    json prop = tree["meshes"][0];
    prop["name"] = "prop";
    for (const char *influence : {"JOINTS_0", "WEIGHTS_0"})
        prop["primitives"][0]["attributes"].erase(influence);
    prop["primitives"][0]["material"] = 1;
    tree["meshes"].push_back(prop);
    tree["cameras"] = {{{"type", "perspective"}, {"perspective", {{"yfov", 1.0}, {"znear", 0.1}}}}};
    tree["extensions"]["KHR_lights_punctual"]["lights"] = {{{"type", "point"}, {"intensity", 20}},
                                                           {{"type", "directional"}}};
    json &nodes = tree["nodes"];
    nodes.push_back({{"name", "hat"}, {"mesh", 1}, {"rotation", {0.0, 0.6, 0.0, 0.8}}});
    nodes.push_back({{"name", "eye"},
                     {"camera", 0},
                     {"translation", {0, 1, 5}},
                     {"extensions", {{"KHR_lights_punctual", {{"light", 1}}}}}});
    nodes.push_back({{"name", "spare"}, {"mesh", 1}, {"extensions", {{"ACME_dirt", {{"node", 2}}}}}});
    nodes.push_back({{"name", "stool"}, {"mesh", 1}, {"scale", {1, 2, 1}}, {"children", {8}}});
    nodes.push_back({{"translation", {0.5, 0, 0}}, {"mesh", 1}}); // which has no name
    nodes[2]["children"] = {4};
    tree["scenes"] = {{{"nodes", {0, 3, 5, 7}}}, {{"name", "second"}, {"nodes", {6, 0}}}};
}

void addClip(FigureSketch &sketch)
{
    json &tree = sketch.tree;
    const int times = sketch.add<float>({0.0f, 1.0f}, 5126, "SCALAR");
    tree["accessors"][size_t(times)]["min"] = {0.0};
    tree["accessors"][size_t(times)]["max"] = {1.0};
    const int turns = sketch.add<float>({0, 0, 0, 1, 0, 0, 1, 0}, 5126, "VEC4");
    const int values = sketch.add<float>({0.2f, 5.0f}, 5126, "SCALAR");
    const auto pointerTo = [](const char *pointer) {
        return json{{"path", "pointer"}, {"extensions", {{"KHR_animation_pointer", {{"pointer", pointer}}}}}};
    };
    const json drivers = {{{"sampler", 0}, {"target", {{"node", 1}, {"path", "rotation"}}}},
                          {{"sampler", 0}, {"target", {{"node", 2}, {"path", "rotation"}}}},
                          {{"sampler", 1}, {"target", pointerTo("/materials/0/pbrMetallicRoughness/roughnessFactor")}},
                          {{"sampler", 1}, {"target", pointerTo("/extensions/KHR_lights_punctual/lights/1/intensity")}},
                          {{"sampler", 0}, {"target", pointerTo("/nodes/4/rotation")}}};
    tree["animations"] = {
        {{"name", "turn"},
         {"samplers", {{{"input", times}, {"output", turns}}, {{"input", times}, {"output", values}}}},
         {"channels", drivers}},
        {{"name", "hat"},
         {"samplers", {{{"input", times}, {"output", turns}}}},
         {"channels", {{{"sampler", 0}, {"target", {{"node", 4}, {"path", "rotation"}}}}}}}};
}

} // namespace

FigureSketch richSketch(const std::string &suffix, double scale)
{
    FigureSketch sketch;
    json &tree = sketch.tree;
    tree["asset"]["copyright"] = "nobody";
    tree["extras"] = {{"note", "of the file"}};
    addLooks(sketch);
    addNodes(sketch);
    addClip(sketch);
    tree["extensions"]["ACME_dirt"] = {{"kinds", {0, 1}}};
    tree["extensionsUsed"] = {"KHR_lights_punctual", "KHR_materials_variants", "KHR_materials_clearcoat",
                              "KHR_animation_pointer", "ACME_dirt"};
    tree["nodes"][0]["scale"] = {scale, scale, scale};
    tree["nodes"][0]["rotation"] = {0.5, 0.5, 0.5, 0.5};
    for (json &node : tree["nodes"]) {
        if (node.contains("name"))
            node["name"] = node["name"].get<std::string>() + suffix;
    }
    return sketch;
}
